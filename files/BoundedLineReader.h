#ifndef FILES_BOUNDEDLINEREADER_H
#define FILES_BOUNDEDLINEREADER_H

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <sys/stat.h>

/** The text without the carriage return of a CR LF line end. It is dropped when it is the last
    character and the first carriage return in the text. */
std::string_view withoutLineEndCr(std::string_view text);

/** Whether both describe one file with the same content, judged by its size and time of change. */
bool isSameContent(const struct stat& a, const struct stat& b);

/**
 * Reads a text file line by line in bounded memory.
 *
 * Lines end at '\n', which is not part of them; the last line needs none. A line longer than the
 * limit is truncated and its rest is skipped, so that an endless line takes time but no memory.
 *
 * Only regular files can be opened: a folder has no lines, and a pipe or a device might never end.
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

    /** Reads the next line into @p line. False at the end of the file or after a read error;
        `failed` distinguishes the two. @p line is then empty. A line whose end could not be read is
        not returned. */
    bool next(std::string& line);

    /** Whether the file could not be opened, a read failed, or its content has changed since it was
        opened. The lines returned so far must then not be used. */
    bool failed() const;

    /** The file's status when it was opened; all zero when it could not be opened. */
    const struct stat& status() const { return m_status; }

    /** Whether the line returned last was truncated: it may end in the middle of a value. */
    bool wasCut() const { return m_wasCut; }

private:
    bool fill();

    struct stat m_status = {}; ///< of the file, when it was opened
    int m_file;
    std::size_t m_maxLine;
    off_t m_offset = 0; ///< bytes read from the file so far
    std::unique_ptr<char[]> m_buffer;
    std::size_t m_begin = 0; ///< first byte of m_buffer that was not returned yet
    bool m_wasCut = false;
    bool m_readFailed = false;
    std::size_t m_end = 0; ///< one past the last byte of m_buffer that was read
};

#endif
