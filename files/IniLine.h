#ifndef FILES_INILINE_H
#define FILES_INILINE_H

#include <cstddef>
#include <string_view>

/** The lines of a settings file, as they are understood wherever one is read. Letters are compared
    without regard to ASCII letter case. */
namespace IniLine {

/** The most bytes of a line that are looked at. */
constexpr std::size_t maxSize = 64 * 1024;

/** Whether @p line, which begins with "[", begins the section of the given name. */
bool beginsSection(std::string_view line, std::string_view name);

/** Whether @p line assigns a value to @p key. That value goes to @p value; it lies within the line
    and may be empty. */
bool assigns(std::string_view line, std::string_view key, std::string_view& value);

} // namespace IniLine

#endif
