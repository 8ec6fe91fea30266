#ifndef COMMAND_FILECHECK_H
#define COMMAND_FILECHECK_H

#include "command/Fault.h"
#include "command/InputFile.h"

#include <cstddef>
#include <string_view>
#include <vector>

/** One strict check of a text file: its lines, and the faults found in them. Bytes are bytes, as
    for the tool's readers. The file and the faults are the caller's and outlive it. */
class FileCheck {
public:
    FileCheck(const InputFile& file, Faults& faults);

    /** Without their LF; the last one may have none. */
    const std::vector<std::string_view>& lines() const& { return m_lines; }
    const std::vector<std::string_view>& lines() const&& = delete;

    /** @param place  within a line: it names line and column */
    void add(const char* place, Text text);
    /** @param lineIndex  from 0; may be one behind the last line */
    void addAtLine(std::size_t lineIndex, Text text);

    /** Refuses what has no lines: UTF-16, and text whose lines end in CR alone.
        @return whether there are lines to look at */
    bool hasLines();

    /** Refuses a NUL or a CR in @p text, a part of a line. @return whether there is none */
    bool isText(std::string_view text);

    /** Puts the faults in the order of their places. @return whether there are none */
    bool finish();

    /** Bytes of the file, as they are quoted in a message: shortened, control characters visible.
     */
    static QString quoted(std::string_view bytes);

private:
    const InputFile& m_file;
    Faults& m_faults;
    std::size_t m_before;
    std::vector<std::string_view> m_lines;
};

#endif
