#ifndef TESTS_UNIT_FILES_FILEFIXTURE_H
#define TESTS_UNIT_FILES_FILEFIXTURE_H

#include "tests/support/DebugLog.h"
#include "tests/support/StandardOutput.h"
#include "tests/support/TestBench.h"
#include "tests/support/TestFolder.h"
#include "tests/support/TestMain.h"

#include <csignal>
#include <cstring>
#include <sys/resource.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/prctl.h>
#endif

using TestBench::bytesOf;

/** A row of a table: what a test gives in, and what has to come out. */
template <typename Given, typename Expected>
struct Case {
    QByteArray name;
    Given given;
    Expected expected = {};
};

using TextCase = Case<QByteArray, QByteArray>;

/** Lets files have no more than so many bytes while it exists; they can still be created and
    emptied. */
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : m_handler(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &m_limit);
        rlimit limit = m_limit;
        limit.rlim_cur = bytes;
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &m_limit);
        std::signal(SIGXFSZ, m_handler);
    }
    Q_DISABLE_COPY(FileSizeLimit)

private:
    void (*m_handler)(int);
    rlimit m_limit = {};
};

/** Gives up the superuser's right to everything while it exists. */
class WithoutPrivileges {
public:
    WithoutPrivileges() : m_user(::geteuid()) {
        if (m_user == 0 && ::seteuid(65534) != 0)
            giveUp("the superuser cannot become another user");
    }
    ~WithoutPrivileges() {
        if (m_user != 0)
            return;
        if (::seteuid(m_user) != 0)
            giveUp("the superuser's rights are lost");
#ifdef __linux__
        ::prctl(PR_SET_DUMPABLE, 1); // a change of user takes it away, leak checkers need it
#endif
    }
    Q_DISABLE_COPY(WithoutPrivileges)

private:
    uid_t m_user;
};

/** The most bytes that the process has had in memory at once. */
inline qint64 peakMemory() {
    rusage use = {};
    ::getrusage(RUSAGE_SELF, &use);
#ifdef __APPLE__
    return use.ru_maxrss;
#else
    return use.ru_maxrss * 1024;
#endif
}

/** What an action writes to the standard output. To be compared afterwards: a failure reported
    meanwhile would go astray. */
template <typename Action>
QByteArray printedDuring(const Action& action) {
    StandardOutput output;
    action();
    return output.take();
}

/** The same, and then, each behind "log: ", what goes to Qt's log. */
template <typename Action>
QByteArray saidDuring(const Action& action) {
    const DebugLog log;
    QByteArray said = printedDuring(action);
    for (const QString& line : log.lines() + log.others())
        said += "log: " + line.toUtf8() + '\n';
    return said;
}

/** The result of a reader, what it said, and the record afterwards, to be compared as one text. */
inline QByteArray outcome(bool accepted, const QByteArray& record, const QByteArray& said = {}) {
    return (accepted ? "accepted: " : "refused: ") + said + record.toHex();
}

/** A record whose bytes are all different from their neighbours and from zero, so that a byte that
    is written, moved or cleared shows. */
template <class Record>
Record patternedRecord() {
    unsigned char bytes[sizeof(Record)];
    for (std::size_t i = 0; i < sizeof(Record); ++i)
        bytes[i] = static_cast<unsigned char>(0x81U + i % 113U);
    Record record;
    std::memcpy(&record, bytes, sizeof(Record));
    return record;
}

/** @p bytes with the part at @p offset replaced by one of the same length. */
inline QByteArray overlaid(QByteArray bytes, int offset, const QByteArray& part) {
    return bytes.replace(offset, part.size(), part);
}

/** A text of single bytes in UTF-16, without a mark. */
inline QByteArray utf16(const QByteArray& text, bool lowByteFirst) {
    QByteArray converted;
    for (const char c : text) {
        converted.append(lowByteFirst ? c : '\0');
        converted.append(lowByteFirst ? '\0' : c);
    }
    return converted;
}

#endif
