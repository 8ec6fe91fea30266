#include "simulator/JsonFields.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

namespace kvasim {

namespace {

int hexDigit(char digit) {
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    if (digit >= 'a' && digit <= 'f')
        return digit - 'a' + 10;
    if (digit >= 'A' && digit <= 'F')
        return digit - 'A' + 10;
    return -1;
}

/** Length of the UTF-8 sequence at the start of @p text, 0 when there is no well-formed one. */
std::size_t sequenceLength(std::string_view text) {
    const auto at = [&](std::size_t index) {
        return index < text.size() ? static_cast<unsigned char>(text[index]) : 0U;
    };
    const unsigned lead = at(0);
    if (lead < 0x80)
        return 1;
    std::size_t length = 0;
    unsigned lowest = 0x80;
    unsigned highest = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        lowest = lead == 0xE0 ? 0xA0 : lowest;
        highest = lead == 0xED ? 0x9F : highest;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        lowest = lead == 0xF0 ? 0x90 : lowest;
        highest = lead == 0xF4 ? 0x8F : highest;
    }
    if (length == 0 || at(1) < lowest || at(1) > highest)
        return 0;
    for (std::size_t index = 2; index < length; ++index) {
        if (at(index) < 0x80 || at(index) > 0xBF)
            return 0;
    }
    return length;
}

bool isUtf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = sequenceLength(text);
        if (length == 0)
            return false;
        text.remove_prefix(length);
    }
    return true;
}

std::uint32_t bitsOf(float value) {
    std::uint32_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

float readFloatBits(const Json& value, const std::string& path) {
    const auto& text = value.get_ref<const std::string&>();
    std::uint8_t bytes[4] = {};
    if (text.size() != 10 || text.compare(0, 2, "0x") != 0 ||
        !fromHex(std::string_view(text).substr(2), {}, bytes, sizeof bytes))
        refuse(path, "must be a number or a bit pattern such as \"0x7fc00001\"");
    std::uint32_t bits = 0;
    for (const std::uint8_t byte : bytes)
        bits = bits << 8U | byte;
    float result = 0;
    std::memcpy(&result, &bits, sizeof result);
    return result;
}

} // namespace

void refuse(const std::string& path, const std::string& reason) {
    throw InputError((path.empty() ? "the document" : path) + ": " + reason);
}

JsonFields::JsonFields(const Json& object, std::string path)
    : m_object(object), m_path(std::move(path)) {
    if (!object.is_object())
        refuse(m_path, "must be an object");
}

const Json* JsonFields::find(const char* key) {
    m_known.emplace_back(key);
    const auto found = m_object.find(key);
    return found == m_object.end() ? nullptr : &*found;
}

const Json& JsonFields::get(const char* key) {
    const Json* value = find(key);
    if (value == nullptr)
        refuse(pathOf(key), "is missing");
    return *value;
}

std::string JsonFields::pathOf(const char* key) const {
    return m_path.empty() ? key : m_path + '.' + key;
}

void JsonFields::finish() const {
    for (const auto& item : m_object.items()) {
        if (std::find(m_known.begin(), m_known.end(), item.key()) == m_known.end())
            refuse(pathOf(item.key().c_str()), "is not a known field");
    }
}

std::int64_t readInteger(const Json& value, const std::string& path, std::int64_t lowest,
                         std::int64_t highest) {
    bool fits = false;
    std::int64_t number = 0;
    if (value.is_number_unsigned()) {
        const auto large = value.get<std::uint64_t>();
        fits = large <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
        number = fits ? static_cast<std::int64_t>(large) : 0;
    } else if (value.is_number_integer()) {
        fits = true;
        number = value.get<std::int64_t>();
    }
    if (!fits || number < lowest || number > highest)
        refuse(path, "must be a whole number from " + std::to_string(lowest) + " to " +
                         std::to_string(highest));
    return number;
}

std::int32_t readInt32(const Json& value, const std::string& path) {
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(readInteger(value, path, Limits::min(), Limits::max()));
}

std::uint32_t readUint32(const Json& value, const std::string& path) {
    using Limits = std::numeric_limits<std::uint32_t>;
    return static_cast<std::uint32_t>(readInteger(value, path, 0, Limits::max()));
}

std::uint8_t readUint8(const Json& value, const std::string& path) {
    return static_cast<std::uint8_t>(readInteger(value, path, 0, 255));
}

bool readBool(const Json& value, const std::string& path) {
    if (!value.is_boolean())
        refuse(path, "must be true or false");
    return value.get<bool>();
}

std::string readString(const Json& value, const std::string& path) {
    if (!value.is_string())
        refuse(path, "must be a string");
    return value.get<std::string>();
}

float readFloat(const Json& value, const std::string& path) {
    if (value.is_string())
        return readFloatBits(value, path);
    if (!value.is_number())
        refuse(path, "must be a number or a bit pattern such as \"0x7fc00001\"");
    const auto number = value.get<double>();
    if (!(std::fabs(number) <= static_cast<double>(FLT_MAX)))
        refuse(path, "is too large for a single-precision number");
    const auto result = static_cast<float>(number);
    if (number != 0.0 && !std::isnormal(result))
        refuse(path, "is too small for a single-precision number; give its bit pattern");
    return result;
}

Json floatToJson(float value) {
    const std::uint32_t bits = bitsOf(value);
    if (!std::isnormal(value) && bits != 0) {
        const std::uint8_t bytes[4] = {
            static_cast<std::uint8_t>(bits >> 24U), static_cast<std::uint8_t>(bits >> 16U),
            static_cast<std::uint8_t>(bits >> 8U), static_cast<std::uint8_t>(bits)};
        return "0x" + toHex(bytes, sizeof bytes);
    }
    // A JSON number is a double: 0.1f would be written as 0.10000000149011612. The shortest text
    // that is the same float is what people wrote and want to see.
    using FloatJson = nlohmann::basic_json<std::map, std::vector, std::string, bool, std::int64_t,
                                           std::uint64_t, float>;
    const auto shortest = Json::parse(FloatJson(value).dump()).get<double>();
    const bool exact = std::fabs(shortest) <= static_cast<double>(FLT_MAX) &&
                       bitsOf(static_cast<float>(shortest)) == bits;
    return exact ? shortest : static_cast<double>(value);
}

void readBytes(const Json& value, const std::string& path, std::uint8_t* bytes, std::size_t size) {
    if (!value.is_object() || value.size() != 1)
        refuse(path, "must be an object of one of the fields hex, fill and seed");
    JsonFields fields(value, path);
    if (const Json* hex = fields.find("hex")) {
        if (!fromHex(readString(*hex, fields.pathOf("hex")), {}, bytes, size))
            refuse(fields.pathOf("hex"),
                   "must be exactly " + std::to_string(size) + " bytes of hexadecimal");
    } else if (const Json* fill = fields.find("fill")) {
        std::fill_n(bytes, size, readUint8(*fill, fields.pathOf("fill")));
    } else if (const Json* seed = fields.find("seed")) {
        fillFromSeed(readUint32(*seed, fields.pathOf("seed")), bytes, size);
    }
    fields.finish();
}

Json bytesToJson(const std::uint8_t* bytes, std::size_t size) {
    const bool allSame =
        size > 0 && std::all_of(bytes, bytes + size, [&](auto byte) { return byte == bytes[0]; });
    if (allSame)
        return {{"fill", bytes[0]}};
    return {{"hex", toHex(bytes, size)}};
}

void fillFromSeed(std::uint64_t seed, std::uint8_t* bytes, std::size_t size) {
    // SplitMix64, one byte of each step.
    for (std::size_t index = 0; index < size; ++index) {
        seed += 0x9E3779B97F4A7C15U;
        std::uint64_t mixed = seed;
        mixed = (mixed ^ (mixed >> 30U)) * 0xBF58476D1CE4E5B9U;
        mixed = (mixed ^ (mixed >> 27U)) * 0x94D049BB133111EBU;
        bytes[index] = static_cast<std::uint8_t>(mixed ^ (mixed >> 31U));
    }
}

void readText(const Json& value, const std::string& path, char* field, std::size_t size) {
    if (!value.is_string()) {
        std::vector<std::uint8_t> bytes(size);
        readBytes(value, path, bytes.data(), size);
        std::memcpy(field, bytes.data(), size);
        return;
    }
    const auto& text = value.get_ref<const std::string&>();
    if (text.find('\0') != std::string::npos)
        refuse(path, "holds a NUL character; give the field's bytes in hex");
    if (text.size() > size)
        refuse(path, "is longer than " + std::to_string(size) + " bytes");
    std::memset(field, 0, size);
    std::memcpy(field, text.data(), text.size());
}

Json textToJson(const char* field, std::size_t size) {
    const std::string_view whole(field, size);
    const std::string_view text = whole.substr(0, whole.find('\0'));
    const bool cleanRest = whole.find_first_not_of('\0', text.size()) == std::string_view::npos;
    if (cleanRest && isUtf8(text))
        return std::string(text);
    std::vector<std::uint8_t> bytes(size);
    std::memcpy(bytes.data(), field, size);
    // Never as {"fill": n}: a text field of one repeated byte is rare, a form for each is not worth
    // it to the reader.
    return {{"hex", toHex(bytes.data(), size)}};
}

void readAddress(const Json& value, const std::string& path, std::uint8_t (&octets)[4]) {
    const std::string text = value.is_string() ? value.get<std::string>() : std::string();
    std::uint8_t read[4] = {};
    std::size_t position = 0;
    bool good = true;
    for (int index = 0; good && index < 4; ++index) {
        const std::size_t start = position;
        int number = 0;
        while (position < text.size() && position - start < 3 && text[position] >= '0' &&
               text[position] <= '9')
            number = number * 10 + (text[position++] - '0');
        good = position > start && number <= 255;
        read[index] = static_cast<std::uint8_t>(number);
        if (index < 3)
            good = good && position < text.size() && text[position++] == '.';
    }
    if (!good || position != text.size())
        refuse(path, "must be an address such as \"192.168.0.10\"");
    std::copy_n(read, 4, octets);
}

Json addressToJson(const std::uint8_t (&octets)[4]) {
    std::string text;
    for (const std::uint8_t octet : octets)
        text += (text.empty() ? "" : ".") + std::to_string(octet);
    return text;
}

void readSerialDigits(const Json& value, const std::string& path, std::uint8_t (&bytes)[4]) {
    if (!value.is_string())
        return readBytes(value, path, bytes, sizeof bytes);
    const auto& text = value.get_ref<const std::string&>();
    const bool decimal = text.find_first_not_of("0123456789") == std::string::npos;
    if (!decimal || !fromHex(text, {}, bytes, sizeof bytes))
        refuse(path, "must be eight decimal digits");
}

Json serialDigitsToJson(const std::uint8_t (&bytes)[4]) {
    std::string text = toHex(bytes, sizeof bytes);
    if (text.find_first_not_of("0123456789") == std::string::npos)
        return text;
    return {{"hex", std::move(text)}};
}

std::string toHex(const std::uint8_t* bytes, std::size_t size, std::string_view separator) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    text.reserve(size * (2 + separator.size()));
    for (std::size_t index = 0; index < size; ++index) {
        if (index > 0)
            text += separator;
        text += digits[bytes[index] >> 4U];
        text += digits[bytes[index] & 0xFU];
    }
    return text;
}

bool fromHex(std::string_view text, std::string_view separator, std::uint8_t* bytes,
             std::size_t size) {
    for (std::size_t index = 0; index < size; ++index) {
        if (index > 0) {
            if (text.substr(0, separator.size()) != separator)
                return false;
            text.remove_prefix(separator.size());
        }
        const int high = text.size() < 2 ? -1 : hexDigit(text[0]);
        const int low = text.size() < 2 ? -1 : hexDigit(text[1]);
        if (high < 0 || low < 0)
            return false;
        bytes[index] = static_cast<std::uint8_t>(high * 16 + low);
        text.remove_prefix(2);
    }
    return text.empty();
}

} // namespace kvasim
