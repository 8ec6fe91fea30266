#include "tests/fuzz/NaiveCalRef.h"

#include <cstdlib>
#include <sstream>
#include <vector>

namespace {

constexpr std::size_t maxLine = 1024 * 1024;

int digit(char c) {
    const std::string digits = "0123456789abcdef0123456789ABCDEF";
    const std::size_t at = digits.find(c);
    return at == std::string::npos ? -1 : static_cast<int>(at % 16);
}

/** Four bytes of up to eight characters: zeros before them, 0xFF for a pair that is no byte. */
std::string serialBytes(std::string line) {
    if (line.size() % 2 != 0)
        line.insert(0, "0");
    std::string bytes;
    for (std::size_t i = 0; i < line.size(); i += 2) {
        const int high = digit(line[i]);
        const int low = digit(line[i + 1]);
        bytes += static_cast<char>(high < 0 || low < 0 ? 0xFF : high * 16 + low);
    }
    return std::string(4 - bytes.size(), '\0') + bytes;
}

/** The values of the line, in the bytes of single precision. */
std::string valueBytes(const std::string& line) {
    std::vector<std::string> pieces;
    std::string piece;
    for (const char c : line + ',') {
        if (c != ',') {
            piece += c;
        } else if (!piece.empty()) {
            pieces.push_back(piece);
            piece.clear();
        }
    }
    std::string bytes;
    for (const std::string& text : pieces) {
        // The program keeps the C locale that it starts with.
        const auto value = static_cast<float>(std::strtod(text.c_str(), nullptr));
        bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
    }
    return bytes;
}

} // namespace

NaiveCalRef::Reading NaiveCalRef::read(const std::string& text, bool isAdapter,
                                       const std::string& record) {
    Reading reading = {true, record, {}};
    const std::size_t serialOffset = isAdapter ? 156 : 0;
    std::istringstream stream(text);
    std::string line;
    for (int number = 1; std::getline(stream, line); ++number) {
        const bool isCut = line.size() > maxLine;
        line = line.substr(0, maxLine);
        if (!line.empty() && line.find('\r') == line.size() - 1)
            line.pop_back();
        if (number == 3) {
            const bool isWrong = isAdapter ? line.size() != 8 : line.size() > 8;
            if (isWrong)
                reading.printed = "incorrect data. " + line.substr(0, line.find('\0')) + '\n';
            else if (!line.empty())
                reading.record.replace(serialOffset, 4, serialBytes(line));
            reading.accepted = reading.accepted && (isAdapter || !isWrong);
        } else if (number == 4) {
            const std::string bytes = valueBytes(line);
            const bool isRight = !isCut && bytes.size() == (isAdapter ? 75U : 38U) * 4;
            if (isRight)
                reading.record.replace(serialOffset + 4, bytes.size(), bytes);
            reading.accepted = reading.accepted && isRight;
        }
    }
    return reading;
}
