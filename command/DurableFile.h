#ifndef COMMAND_DURABLEFILE_H
#define COMMAND_DURABLEFILE_H

#include "command/Text.h"

#include <QByteArray>
#include <QString>

/**
 * Atomic files: even after a power failure a file is complete or does not exist. It is written
 * under a temporary name, synced and linked to its name, and then its folder is synced. Mode 0600.
 * Missing folders are created with mode 0700.
 *
 * Each function returns an empty text on success, and the reason of the failure otherwise.
 */
namespace DurableFile {

/** Creates a new file. If it exists, sets @p isTaken and does nothing else. */
Text create(const QString& path, const QByteArray& content, bool& isTaken);

/** Removes the file and syncs its folder; a missing file counts as removed. */
Text remove(const QString& path);

/** Creates the folder and its parents, and syncs them. */
Text makeFolder(const QString& path);

/** "PATH cannot be written: reason" for @p error, an `errno`. */
Text writeFailure(const QString& path, int error);

} // namespace DurableFile

#endif
