#ifndef TESTS_UNIT_FILES_FILEFIXTURE_H
#define TESTS_UNIT_FILES_FILEFIXTURE_H

#include <QByteArray>
#include <QFile>
#include <QTemporaryDir>

#include <csignal>
#include <cstring>
#include <sys/resource.h>
#include <type_traits>

/** A temporary folder of the test's own, and the files in it. */
class TestFolder {
public:
    /** In the local 8-bit encoding, as the code under test takes it. */
    QByteArray path(const char* name) const {
        return QFile::encodeName(m_folder.filePath(QString::fromUtf8(name)));
    }

    /** @return the path of the file, or an empty one when it could not be written */
    QByteArray write(const char* name, const QByteArray& content) const {
        QFile file(m_folder.filePath(QString::fromUtf8(name)));
        const bool written = file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
                             file.write(content) == content.size() && file.flush();
        return written ? path(name) : QByteArray();
    }

    /** The content of the file; null when it cannot be read. */
    QByteArray read(const char* name) const {
        QFile file(m_folder.filePath(QString::fromUtf8(name)));
        if (!file.open(QIODevice::ReadOnly))
            return {};
        const QByteArray content = file.readAll();
        return content.isNull() ? QByteArray("") : content;
    }

private:
    QTemporaryDir m_folder;
};

/** Makes every write to a file fail while it exists; files can still be created and emptied. */
class NoSpaceForFiles {
public:
    NoSpaceForFiles() : m_handler(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &m_limit);
        rlimit none = m_limit;
        none.rlim_cur = 0;
        ::setrlimit(RLIMIT_FSIZE, &none);
    }
    ~NoSpaceForFiles() {
        ::setrlimit(RLIMIT_FSIZE, &m_limit);
        std::signal(SIGXFSZ, m_handler);
    }
    NoSpaceForFiles(const NoSpaceForFiles&) = delete;
    NoSpaceForFiles& operator=(const NoSpaceForFiles&) = delete;

private:
    void (*m_handler)(int);
    rlimit m_limit = {};
};

template <class Record>
QByteArray bytesOf(const Record& record) {
    static_assert(std::is_trivially_copyable<Record>::value, "a record of bytes");
    return {reinterpret_cast<const char*>(&record), static_cast<int>(sizeof(Record))};
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

#endif
