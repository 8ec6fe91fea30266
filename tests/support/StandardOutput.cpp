#include "tests/support/StandardOutput.h"

#include <QFile>

#include <cstdio>
#include <unistd.h>

StandardOutput::StandardOutput() {
    std::fflush(stdout);
    const bool opened = m_file.open();
    Q_ASSERT(opened);
    Q_UNUSED(opened)
    m_saved = ::dup(STDOUT_FILENO);
    ::dup2(m_file.handle(), STDOUT_FILENO);
}

StandardOutput::~StandardOutput() {
    std::fflush(stdout);
    ::dup2(m_saved, STDOUT_FILENO);
    ::close(m_saved);
}

QByteArray StandardOutput::take() {
    std::fflush(stdout);
    QFile file(m_file.fileName());
    if (!file.open(QIODevice::ReadOnly) || !file.seek(m_taken))
        return {};
    const QByteArray written = file.readAll();
    m_taken += written.size();
    return written;
}
