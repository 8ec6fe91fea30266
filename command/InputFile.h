#ifndef COMMAND_INPUTFILE_H
#define COMMAND_INPUTFILE_H

#include "command/Fault.h"

#include <QByteArray>
#include <QString>

#include <optional>

/** A file of the user's, read once: what is checked is what is used, whatever becomes of the file.
 */
struct InputFile {
    /** The most that is read, in bytes; a longer file is a fault. */
    static constexpr int maxSize = 1024 * 1024;

    QString path; ///< as the user gave it
    QByteArray content;

    /** Reads a regular file (a folder, a pipe or a device is a fault) to its end. Nothing, and
        one fault more in @p faults, when that fails. */
    static std::optional<InputFile> read(const QString& path, Faults& faults);

    /** Of the content, as 64 hexadecimal digits. */
    QByteArray sha256() const;
};

#endif
