#include "tests/fuzz/NaiveIni.h"

#include <cstring>
#include <sstream>
#include <vector>

namespace {

std::string lower(std::string text) {
    for (char& c : text) {
        if (std::strchr("ABCDEFGHIJKLMNOPQRSTUVWXYZ", c) != nullptr && c != '\0')
            c = static_cast<char>(c + 32);
    }
    return text;
}

std::string trim(std::string text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t'))
        text.erase(0, 1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t'))
        text.pop_back();
    return text;
}

std::string dropLastCr(std::string text) {
    if (!text.empty() && text.find('\r') == text.size() - 1)
        text.pop_back();
    return text;
}

/** Digit by digit in 128 bits, saturated at 64, then the low 32 bits. */
std::uint32_t number(const std::string& text) {
    std::size_t i = 0;
    while (i < text.size() && std::strchr(" \t\n\v\f\r", text[i]) != nullptr && text[i] != '\0')
        ++i;
    bool negative = false;
    if (i < text.size() && (text[i] == '+' || text[i] == '-'))
        negative = text[i++] == '-';
    __extension__ typedef __int128 Wide;
    const Wide limit = static_cast<Wide>(INT64_MAX) + (negative ? 1 : 0);
    Wide value = 0;
    for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
        value = value * 10 + (text[i] - '0');
        if (value > limit)
            value = limit;
    }
    return static_cast<std::uint32_t>(static_cast<std::int64_t>(negative ? -value : value));
}

void address(const std::string& text, std::uint8_t (&octets)[4]) {
    std::string piece;
    std::size_t count = 0;
    for (const char c : text + '.') {
        if (c != '.') {
            piece += c;
        } else if (!piece.empty()) {
            if (count < 4)
                octets[count++] = static_cast<std::uint8_t>(number(piece) % 256);
            piece.clear();
        }
    }
}

template <std::size_t Size>
bool copyText(const std::string& text, char (&field)[Size]) {
    if (text.size() >= Size)
        return false;
    std::memcpy(field, text.data(), text.size());
    return true;
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
    else if (key == "SSID")
        return copyText(value, info.SSID);
    else
        return copyText(value, info.EncryptKey);
    return true;
}

} // namespace

std::optional<std::string> NaiveIni::find(const std::string& text, const std::string& section,
                                          const std::string& key) {
    std::istringstream stream(text);
    std::string line;
    bool inside = false;
    while (std::getline(stream, line)) {
        const bool isCut = line.size() > 64 * 1024;
        line = line.substr(0, 64 * 1024);
        if (line.empty())
            continue;
        if (line[0] == '[') {
            if (lower(dropLastCr(line)) == lower("[" + section + "]"))
                inside = true;
            continue;
        }
        const std::size_t equals = line.find('=');
        if (!inside || equals == std::string::npos || equals == line.size() - 1 ||
            lower(trim(line.substr(0, equals))) != lower(key))
            continue;
        std::string value = dropLastCr(trim(line.substr(equals + 1)));
        while (isCut && !value.empty() && value.size() < 511)
            value += ' ';
        return std::string(value.c_str()).substr(0, 511);
    }
    return std::nullopt;
}

NaiveIni::Settings NaiveIni::read(const std::string& text) {
    Settings settings = {false, {}};
    for (const char* key : {"DHCPUse", "IPAddress", "SubnetMask", "DefaultGateway", "SSID",
                            "EncryptKey", "DNS", "APConnectUse"}) {
        const std::optional<std::string> value = find(text, "Network", key);
        if (!value || value->empty() || value->size() > 510 || !take(key, *value, settings.info))
            return settings;
    }
    settings.accepted = true;
    return settings;
}
