#include "files/BoundedLineReader.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <tuple>
#include <unistd.h>

namespace {

constexpr std::size_t bufferSize = 64 * 1024;

/** @return a descriptor of the regular file at @p path, or -1
    @param status  of that file; untouched otherwise */
int openRegularFile(const char* path, struct stat& status) {
    // Without O_NONBLOCK, opening a pipe that nobody writes to would never return.
    const int file = ::open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (file < 0)
        return -1;
    struct stat found = {};
    if (::fstat(file, &found) != 0 || !S_ISREG(found.st_mode)) {
        ::close(file);
        return -1;
    }
    status = found;
    return file;
}

const timespec& lastChange(const struct stat& status) {
#ifdef __APPLE__
    return status.st_mtimespec;
#else
    return status.st_mtim;
#endif
}

} // namespace

bool isSameContent(const struct stat& a, const struct stat& b) {
    const auto key = [](const struct stat& status) {
        const timespec& time = lastChange(status);
        return std::make_tuple(status.st_dev, status.st_ino, status.st_size, time.tv_sec,
                               time.tv_nsec);
    };
    return key(a) == key(b);
}

std::string_view withoutLineEndCr(std::string_view text) {
    const std::size_t cr = text.find('\r');
    if (cr != std::string_view::npos && cr + 1 == text.size())
        text.remove_suffix(1);
    return text;
}

BoundedLineReader::BoundedLineReader(const char* path, std::size_t maxLine)
    : m_file(openRegularFile(path, m_status)), m_maxLine(maxLine) {
    // Not zeroed: that would take longer than reading a file of the usual size.
    if (isOpen())
        m_buffer.reset(new char[bufferSize]);
}

BoundedLineReader::~BoundedLineReader() {
    if (isOpen())
        ::close(m_file);
}

bool BoundedLineReader::next(std::string& line) {
    line.clear();
    m_wasCut = false;
    bool anything = false;
    while (m_begin < m_end || fill()) {
        anything = true;
        const char* begin = m_buffer.get() + m_begin;
        const std::size_t available = m_end - m_begin;
        const void* lineEnd = std::memchr(begin, '\n', available);
        const std::size_t length =
            lineEnd ? static_cast<std::size_t>(static_cast<const char*>(lineEnd) - begin)
                    : available;
        const std::size_t kept = std::min(length, m_maxLine - line.size());
        line.append(begin, kept);
        m_wasCut = m_wasCut || kept < length;
        m_begin += length;
        if (lineEnd) {
            ++m_begin;
            return true;
        }
    }
    // The part of a line read before the error may end inside a number.
    if (m_readFailed)
        line.clear();
    return anything && !m_readFailed;
}

bool BoundedLineReader::failed() const {
    struct stat now = {};
    return m_readFailed || ::fstat(m_file, &now) != 0 || !isSameContent(now, m_status);
}

bool BoundedLineReader::fill() {
    if (!isOpen() || m_readFailed || (m_offset > 0 && m_offset == m_status.st_size))
        return false;
    ssize_t count = 0;
    do {
        count = ::read(m_file, m_buffer.get(), bufferSize);
    } while (count < 0 && errno == EINTR);
    m_readFailed = count < 0;
    m_begin = 0;
    m_end = count > 0 ? static_cast<std::size_t>(count) : 0;
    m_offset += static_cast<off_t>(m_end);
    return m_end > 0;
}
