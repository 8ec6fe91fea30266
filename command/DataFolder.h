#ifndef COMMAND_DATAFOLDER_H
#define COMMAND_DATAFOLDER_H

#include <QString>

#include <cstdint>

/** The files that the command keeps: in `vq-tl4ctl` in the user's data folder. */
namespace DataFolder {

/** `$XDG_DATA_HOME`, or `~/.local/share`; on macOS `~/Library/Application Support`; with
    `/vq-tl4ctl`. Absolute. */
QString path();

QString snapshots();
/** The path of the mark of an unfinished write; the file need not exist. */
QString unfinishedMark(std::int32_t serialNumber);
/** The folder of those marks. */
QString unfinishedMarks();
QString lockFile();

/** The journal that the command line names, or the usual one. Absolute. */
QString journal();
QString usualJournal();
/** Call once, before the other functions. @param path  relative to the working folder */
void useJournal(const QString& path);

} // namespace DataFolder

#endif
