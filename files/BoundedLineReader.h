#ifndef FILES_BOUNDEDLINEREADER_H
#define FILES_BOUNDEDLINEREADER_H

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <sys/stat.h>

/** The text without the carriage return of a CR LF line end: dropped when the first one in the text
    is its last character. */
std::string_view withoutLineEndCr(std::string_view text);

/** Whether two looks at files saw one file with one content, as far as its size and the time of its
    last change tell. */
bool isSameContent(const struct stat& a, const struct stat& b);

/**
 * Reads a text file line by line in bounded memory.
 *
 * Lines end at '\n', which is not part of them; the last line needs none. A line longer than the
 * limit is cut there and its rest is skipped, so that a file that is one endless line costs time
 * but no memory.
 *
 * Only regular files open: a folder has no lines, and a pipe or a device might never end.
 */
class BoundedLineReader {
public:
    /** @param path     in the local 8-bit encoding
        @param maxLine  the most bytes of a line that are kept */
    BoundedLineReader(const char* path, std::size_t maxLine);
    ~BoundedLineReader();
    BoundedLineReader(const BoundedLineReader&) = delete;
    BoundedLineReader& operator=(const BoundedLineReader&) = delete;

    bool isOpen() const { return m_file >= 0; }

    /** Puts the next line into @p line. False at the end of the file or when it cannot be read
        further, which `failed` tells apart; @p line is then empty. A line whose end could not be
        read is not handed out. */
    bool next(std::string& line);

    /** Whether the file could not be opened, a read of it failed, or its content is no longer the
        one that was opened: the lines handed out are then not to be used. */
    bool failed() const;

    /** Of the file when it was opened; all zero when it could not be opened. */
    const struct stat& status() const { return m_status; }

    /** Whether the line handed out last was longer than the limit: what was kept of it may end in
        the middle of a value. */
    bool wasCut() const { return m_wasCut; }

private:
    bool fill();

    struct stat m_status = {}; ///< of the file, when it was opened
    int m_file;
    std::size_t m_maxLine;
    off_t m_offset = 0; ///< how much of the file was read
    std::unique_ptr<char[]> m_buffer;
    std::size_t m_begin = 0; ///< first byte of m_buffer that was not handed out yet
    bool m_wasCut = false;
    bool m_readFailed = false;
    std::size_t m_end = 0; ///< one past the last byte of m_buffer that was read
};

#endif
