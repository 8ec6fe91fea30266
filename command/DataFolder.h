#ifndef COMMAND_DATAFOLDER_H
#define COMMAND_DATAFOLDER_H

#include <QString>

#include <cstdint>

/** Where the command keeps what outlives it: `vq-tl4ctl` in the user's data folder. */
namespace DataFolder {

/** `$XDG_DATA_HOME`, or `~/.local/share`; on macOS `~/Library/Application Support`; with
    `/vq-tl4ctl`. Absolute. */
QString path();

QString snapshots();
/** The mark of an unfinished write, whether it is there or not. */
QString unfinishedMark(std::int32_t serialNumber);
/** The folder of those marks. */
QString unfinishedMarks();
QString lockFile();

/** The journal that the command line names, or the usual one. Absolute. */
QString journal();
QString usualJournal();
/** Once, before any of the others is used. @param path  relative to the working folder */
void useJournal(const QString& path);

} // namespace DataFolder

#endif
