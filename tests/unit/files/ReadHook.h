#ifndef TESTS_UNIT_FILES_READHOOK_H
#define TESTS_UNIT_FILES_READHOOK_H

#include <QByteArray>

#include <functional>
#include <sys/stat.h>
#include <sys/types.h>

/**
 * Stands between the process and one file while it exists; one at a time. A program that is linked
 * with it defines `read` itself: reads end at a place in the file, and there something happens.
 */
class ReadHook {
public:
    /** @param offset    the place, in bytes
        @param atOffset  called before each read from there on; false lets the read fail (EIO) */
    ReadHook(const QByteArray& path, off_t offset, std::function<bool()> atOffset);
    ~ReadHook();
    ReadHook(const ReadHook&) = delete;
    ReadHook& operator=(const ReadHook&) = delete;

    /** What `read` does for a descriptor. */
    static ssize_t read(int file, void* buffer, std::size_t count);

private:
    bool isFor(int file) const;

    struct stat m_status = {};
    off_t m_offset;
    std::function<bool()> m_atOffset;
};

#endif
