#include "files/IniLine.h"

#include "files/BoundedLineReader.h"

#include <algorithm>

namespace {

char lowerCase(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return lowerCase(x) == lowerCase(y); });
}

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos)
        return text.substr(text.size());
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

} // namespace

bool IniLine::beginsSection(std::string_view line, std::string_view name) {
    line = withoutLineEndCr(line);
    return line.size() == name.size() + 2 && line.front() == '[' && line.back() == ']' &&
           equalsIgnoringCase(line.substr(1, name.size()), name);
}

bool IniLine::assigns(std::string_view line, std::string_view key, std::string_view& value) {
    const std::size_t equalsSign = line.find('=');
    if (equalsSign == std::string_view::npos || equalsSign + 1 == line.size())
        return false;
    if (!equalsIgnoringCase(trimmed(line.substr(0, equalsSign)), key))
        return false;
    value = withoutLineEndCr(trimmed(line.substr(equalsSign + 1)));
    return true;
}
