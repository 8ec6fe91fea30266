#include "command/WriteLock.h"

#include "command/DataFolder.h"
#include "command/DurableFile.h"

#include <QByteArray>
#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace {

/** The process id that the lock's holder wrote into the file. */
QString holder(int descriptor) {
    char text[32] = {};
    const ssize_t size = ::pread(descriptor, text, sizeof text - 1, 0);
    return QString::fromLatin1(text, static_cast<int>(size < 0 ? 0 : size)).trimmed();
}

} // namespace

WriteLock::~WriteLock() {
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

Text WriteLock::take() {
    const QString path = DataFolder::lockFile();
    Text problem = DurableFile::makeFolder(DataFolder::path());
    if (!problem.isEmpty())
        return problem;
    m_descriptor = ::open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (m_descriptor < 0)
        return DurableFile::writeFailure(path, errno);
    if (::flock(m_descriptor, LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK)
            return DurableFile::writeFailure(path, errno);
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl",
                                      "Another vq-tl4ctl is writing to an instrument: process %1."),
                    {holder(m_descriptor)});
    }
    const QByteArray self = QByteArray::number(static_cast<qlonglong>(::getpid())) + '\n';
    if (::ftruncate(m_descriptor, 0) != 0 ||
        ::pwrite(m_descriptor, self.constData(), static_cast<std::size_t>(self.size()), 0) !=
            self.size())
        return DurableFile::writeFailure(path, errno);
    return {};
}
