#ifndef COMMAND_FILECHECK_H
#define COMMAND_FILECHECK_H

#include "command/Fault.h"
#include "command/InputFile.h"

#include <cstddef>
#include <string_view>
#include <vector>

/** One strict check of a text file: its lines, and the faults found in them. No encoding is used,
    as in the tool's readers. The file and the faults belong to the caller and must outlive it. */
class FileCheck {
public:
    FileCheck(const InputFile& file, Faults& faults);

    /** Without their LF; the last one may have none. */
    const std::vector<std::string_view>& lines() const& { return m_lines; }
    const std::vector<std::string_view>& lines() const&& = delete;

    /** @param place  within a line; gives line and column */
    void add(const char* place, Text text);
    /** @param lineIndex  from 0; may be one past the last line */
    void addAtLine(std::size_t lineIndex, Text text);

    /** Refuses a file without lines: UTF-16, and text whose lines end in CR alone.
        @return whether there are lines to check */
    bool hasLines();

    /** Refuses a NUL or a CR in @p text, a part of a line. @return whether there is none */
    bool isText(std::string_view text);

    /** Sorts the faults by place. @return whether there are none */
    bool finish();

    /** Bytes of the file for a message: shortened, with control characters made visible.
     */
    static QString quoted(std::string_view bytes);

private:
    const InputFile& m_file;
    Faults& m_faults;
    std::size_t m_before;
    std::vector<std::string_view> m_lines;
};

#endif
