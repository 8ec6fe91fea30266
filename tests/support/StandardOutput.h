#ifndef TESTS_SUPPORT_STANDARDOUTPUT_H
#define TESTS_SUPPORT_STANDARDOUTPUT_H

#include <QByteArray>
#include <QTemporaryFile>

/** Takes what the process writes to its standard output while it exists. */
class StandardOutput {
public:
    StandardOutput();
    ~StandardOutput();
    StandardOutput(const StandardOutput&) = delete;
    StandardOutput& operator=(const StandardOutput&) = delete;

    /** What was written since the last call, or since the start. */
    QByteArray take();

private:
    QTemporaryFile m_file;
    int m_saved;
    qint64 m_taken = 0;
};

#endif
