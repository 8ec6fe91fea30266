#ifndef COMMAND_DURABLEFILE_H
#define COMMAND_DURABLEFILE_H

#include "command/Text.h"

#include <QByteArray>
#include <QString>

/**
 * Files that are whole or not there, whenever the power fails: written beside, synced, given their
 * name, and their folder synced. For the user alone, mode 0600. Folders that are missing are made,
 * with mode 0700.
 *
 * Each function is empty when it has done its work, and says what went wrong otherwise.
 */
namespace DurableFile {

/** Writes a file under a name that is not taken; sets @p isTaken and does nothing where it is. */
Text create(const QString& path, const QByteArray& content, bool& isTaken);

/** Removes the file and syncs its folder; a file that is not there is removed already. */
Text remove(const QString& path);

/** Makes the folder, with those above it, and syncs what was made. */
Text makeFolder(const QString& path);

/** "PATH cannot be written: reason" for @p error, an `errno`. */
Text writeFailure(const QString& path, int error);

} // namespace DurableFile

#endif
