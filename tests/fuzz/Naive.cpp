#include "tests/fuzz/Naive.h"

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <vector>

namespace {

constexpr std::size_t maxIniLine = 64 * 1024;
constexpr std::size_t maxCsvLine = 1024 * 1024;

std::string lower(std::string text) {
    for (char& c : text)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

std::string trim(const std::string& text) {
    const std::size_t first = text.find_first_not_of(" \t");
    return first == std::string::npos
               ? ""
               : text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::string dropLastCr(std::string text) {
    if (!text.empty() && text.find('\r') == text.size() - 1)
        text.pop_back();
    return text;
}

/** The pieces between delimiters that are not empty. */
std::vector<std::string> pieces(const std::string& text, char delimiter) {
    std::istringstream stream(text);
    std::vector<std::string> found;
    for (std::string piece; std::getline(stream, piece, delimiter);) {
        if (!piece.empty())
            found.push_back(piece);
    }
    return found;
}

/** Saturated at 64 bits, then the low 32. */
std::uint32_t number(const std::string& text) {
    return static_cast<std::uint32_t>(std::strtoll(text.c_str(), nullptr, 10));
}

void address(const std::string& text, std::uint8_t (&octets)[4]) {
    const std::vector<std::string> found = pieces(text, '.');
    for (std::size_t i = 0; i < found.size() && i < 4; ++i)
        octets[i] = static_cast<std::uint8_t>(number(found[i]) % 256);
}

bool take(const std::string& key, const std::string& value, KVA_NETWORKINFO& info) {
    if (key == "DHCPUse")
        info.DHCPUse = number(value);
    else if (key == "APConnectUse")
        info.APConnectUse = number(value);
    else if (key == "IPAddress")
        address(value, info.IPAddress);
    else if (key == "SubnetMask")
        address(value, info.SubnetMask);
    else if (key == "DefaultGateway")
        address(value, info.DefaultGateway);
    else if (key == "DNS")
        address(value, info.DNS);
    else if (value.size() > (key == "SSID" ? 32U : 64U))
        return false;
    else
        std::memcpy(key == "SSID" ? info.SSID : info.EncryptKey, value.data(), value.size());
    return true;
}

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
    std::string bytes;
    for (const std::string& text : pieces(line, ',')) {
        // The program keeps the C locale that it starts with.
        const auto value = static_cast<float>(std::strtod(text.c_str(), nullptr));
        bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
    }
    return bytes;
}

} // namespace

std::optional<std::string> Naive::find(const std::string& text, const std::string& section,
                                       const std::string& key) {
    std::istringstream stream(text);
    bool inside = false;
    for (std::string line; std::getline(stream, line);) {
        const bool isCut = line.size() > maxIniLine;
        line = line.substr(0, maxIniLine);
        if (!line.empty() && line[0] == '[') {
            inside = inside || lower(dropLastCr(line)) == lower("[" + section + "]");
            continue;
        }
        const std::size_t equals = line.find('=');
        if (!inside || equals == std::string::npos || equals == line.size() - 1 ||
            lower(trim(line.substr(0, equals))) != lower(key))
            continue;
        std::string value = dropLastCr(trim(line.substr(equals + 1)));
        if (isCut && !value.empty() && value.size() < 511)
            value.resize(511, ' ');
        return std::string(value.c_str()).substr(0, 511);
    }
    return std::nullopt;
}

bool Naive::readSettings(const std::string& text, KVA_NETWORKINFO& info) {
    for (const char* key : {"DHCPUse", "IPAddress", "SubnetMask", "DefaultGateway", "SSID",
                            "EncryptKey", "DNS", "APConnectUse"}) {
        const std::string value = find(text, "Network", key).value_or("");
        if (value.empty() || value.size() > 510 || !take(key, value, info))
            return false;
    }
    return true;
}

bool Naive::readCalibration(const std::string& text, bool isAdapter, std::string& record,
                            std::string& printed) {
    const std::size_t serialOffset = isAdapter ? 156 : 0;
    bool accepted = true;
    std::istringstream stream(text);
    std::string line;
    for (int number = 1; std::getline(stream, line); ++number) {
        const bool isCut = line.size() > maxCsvLine;
        line = dropLastCr(line.substr(0, maxCsvLine));
        const std::string values = number == 4 && !isCut ? valueBytes(line) : "";
        if (number == 3 && (line.size() > 8 || (isAdapter && line.size() < 8))) {
            printed = "incorrect data. " + line.substr(0, line.find('\0')) + '\n';
            accepted = isAdapter;
        } else if (number == 3 && !line.empty()) {
            record.replace(serialOffset, 4, serialBytes(line));
        } else if (number == 4 && values.size() == (isAdapter ? 75U : 38U) * 4) {
            record.replace(serialOffset + 4, values.size(), values);
        } else if (number == 4) {
            accepted = false;
        }
    }
    return accepted;
}
