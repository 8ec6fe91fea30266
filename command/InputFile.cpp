#include "command/InputFile.h"

#include <QCryptographicHash>
#include <QFile>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

QString systemError(int error) {
    return QString::fromLocal8Bit(std::strerror(error));
}

/** Reads up to one byte more than the limit. False, with `errno`, after a read error.
    @param expected  the file's size, which may change meanwhile */
bool readAll(int descriptor, off_t expected, QByteArray& content) {
    constexpr int most = InputFile::maxSize + 1;
    constexpr int least = 4096;
    int size = 0;
    // One byte more than expected, to find the end.
    content.resize(static_cast<int>(std::min<off_t>(expected, InputFile::maxSize)) + 1);
    while (size < most) {
        if (size == content.size())
            content.resize(std::clamp(2 * size, least, most));
        const ssize_t count = ::read(descriptor, content.data() + size,
                                     static_cast<std::size_t>(content.size() - size));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return false;
        if (count == 0)
            break;
        size += static_cast<int>(count);
    }
    content.resize(size);
    content.squeeze(); // a plan keeps all the files that it names
    return true;
}

/** Empty when @p content has been read. */
Text readRegularFile(const QString& path, QByteArray& content) {
    // Without O_NONBLOCK, opening a pipe that nobody writes to would never return.
    const int descriptor =
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0)
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "The file cannot be opened: %1"),
                    {systemError(errno)});
    struct stat status = {};
    const bool known = ::fstat(descriptor, &status) == 0;
    const bool regular = known && S_ISREG(status.st_mode);
    const bool whole = regular && readAll(descriptor, status.st_size, content);
    const int error = errno;
    ::close(descriptor);
    if (known && !regular)
        return Text(
            QT_TRANSLATE_NOOP("vq-tl4ctl", "This is not a file: only regular files are read"));
    if (!whole)
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "The file cannot be read: %1"),
                    {systemError(error)});
    if (content.size() > InputFile::maxSize)
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "The file has more than %1 bytes"),
                    {QString::number(InputFile::maxSize)});
    return {};
}

} // namespace

std::optional<InputFile> InputFile::read(const QString& path, Faults& faults) {
    InputFile file = {path, {}};
    const Text wrong = readRegularFile(path, file.content);
    if (!wrong.isEmpty()) {
        faults.push_back({path, 0, 0, wrong});
        return std::nullopt;
    }
    return file;
}

QByteArray InputFile::sha256() const {
    return QCryptographicHash::hash(content, QCryptographicHash::Sha256).toHex();
}
