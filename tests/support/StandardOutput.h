#ifndef TESTS_SUPPORT_STANDARDOUTPUT_H
#define TESTS_SUPPORT_STANDARDOUTPUT_H

#include "tests/support/GiveUp.h"

#include <QTemporaryFile>

#include <unistd.h>

/** Takes what the process writes to its standard output while it exists. */
class StandardOutput {
public:
    StandardOutput() {
        std::fflush(stdout);
        if (!m_file.open())
            giveUp("no file for the standard output");
        m_saved = ::dup(STDOUT_FILENO);
        ::dup2(m_file.handle(), STDOUT_FILENO);
    }
    ~StandardOutput() {
        std::fflush(stdout);
        ::dup2(m_saved, STDOUT_FILENO);
        ::close(m_saved);
    }
    Q_DISABLE_COPY(StandardOutput)

    /** What was written and flushed since the last call, or since the start. */
    QByteArray take() {
        QFile file(m_file.fileName());
        if (!file.open(QIODevice::ReadOnly) || !file.seek(m_taken))
            return {};
        QByteArray written = file.readAll();
        m_taken += written.size();
        return written;
    }

private:
    QTemporaryFile m_file;
    int m_saved = -1;
    qint64 m_taken = 0;
};

#endif
