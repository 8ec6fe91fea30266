#ifndef COMMAND_INPUTFILE_H
#define COMMAND_INPUTFILE_H

#include "command/Fault.h"

#include <QByteArray>
#include <QString>

#include <optional>

/** A user's file, read once, so that the checked content is the one used, even if the file changes.
 */
struct InputFile {
    /** The maximum size in bytes; a longer file is a fault. */
    static constexpr int maxSize = 1024 * 1024;

    QString path; ///< as the user gave it
    QByteArray content;

    /** Reads a regular file (a folder, a pipe or a device is a fault) to its end. On failure
        nothing, and one more fault in @p faults. */
    static std::optional<InputFile> read(const QString& path, Faults& faults);

    /** The hash of the content, as 64 hexadecimal digits. */
    QByteArray sha256() const;
};

#endif
