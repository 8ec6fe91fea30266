#include "command/DurableFile.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/** Repeats a system call while a signal interrupts it. */
template <typename Call>
auto uninterrupted(const Call& call) {
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

/** Syncs the file to the disk; on macOS fsync alone does not do this. */
bool sync(int descriptor) {
#ifdef F_FULLFSYNC
    if (::fcntl(descriptor, F_FULLFSYNC) == 0)
        return true;
#endif
    return uninterrupted([&] { return ::fsync(descriptor); }) == 0;
}

bool syncFolder(const QString& path) {
    const QByteArray name = QFile::encodeName(path);
    const int descriptor =
        uninterrupted([&] { return ::open(name.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); });
    if (descriptor < 0)
        return false;
    const bool synced = sync(descriptor);
    const int error = errno;
    ::close(descriptor);
    errno = error;
    return synced;
}

bool writeAll(int descriptor, const QByteArray& content) {
    int written = 0;
    while (written < content.size()) {
        const ssize_t count = uninterrupted([&] {
            return ::write(descriptor, content.constData() + written,
                           static_cast<std::size_t>(content.size() - written));
        });
        if (count < 0)
            return false;
        written += static_cast<int>(count);
    }
    return sync(descriptor);
}

/** Writes a file with a temporary name beside @p path. Empty, with `errno`, when that fails. */
QByteArray writeBeside(const QString& path, const QByteArray& content) {
    QByteArray name = QFile::encodeName(path) + ".XXXXXX";
    const int descriptor = ::mkstemp(name.data()); // mode 0600
    if (descriptor < 0)
        return {};
    ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    const bool written = writeAll(descriptor, content);
    const int error = errno;
    ::close(descriptor);
    if (!written) {
        ::unlink(name.constData());
        errno = error;
        return {};
    }
    return name;
}

/** Empty on success. @param path  what was changed in the folder */
Text syncedFolder(const QString& folder, const QString& path) {
    if (!syncFolder(folder))
        return DurableFile::writeFailure(path, errno);
    return {};
}

} // namespace

Text DurableFile::writeFailure(const QString& path, int error) {
    return Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1 cannot be written: %2"),
                {path, QString::fromLocal8Bit(std::strerror(error))});
}

Text DurableFile::create(const QString& path, const QByteArray& content, bool& isTaken) {
    isTaken = false;
    const QString folder = QFileInfo(path).path();
    Text problem = makeFolder(folder);
    if (!problem.isEmpty())
        return problem;
    const QByteArray beside = writeBeside(path, content);
    if (beside.isEmpty())
        return writeFailure(path, errno);
    // A link, since a rename would overwrite a file that another program has just created.
    const bool named = ::link(beside.constData(), QFile::encodeName(path).constData()) == 0;
    const int error = errno;
    ::unlink(beside.constData());
    if (!named && error == EEXIST) {
        isTaken = true;
        return {};
    }
    if (!named)
        return writeFailure(path, error);
    return syncedFolder(folder, path);
}

Text DurableFile::remove(const QString& path) {
    if (::unlink(QFile::encodeName(path).constData()) != 0 && errno != ENOENT)
        return writeFailure(path, errno);
    const QString folder = QFileInfo(path).path();
    if (!QFileInfo::exists(folder))
        return {};
    return syncedFolder(folder, path);
}

Text DurableFile::makeFolder(const QString& path) {
    if (QFileInfo(path).isDir())
        return {};
    const QString parent = QFileInfo(path).path();
    if (parent != path) {
        Text problem = makeFolder(parent);
        if (!problem.isEmpty())
            return problem;
    }
    if (::mkdir(QFile::encodeName(path).constData(), 0700) != 0 && errno != EEXIST)
        return writeFailure(path, errno);
    return syncedFolder(parent, path);
}
