#include "simulator/Records.h"

#include <algorithm>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

#include <arpa/inet.h>

namespace kvasim {

// The records have the caller's byte order, and port entries are compared byte for byte.
static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "the records are little-endian");

namespace {

constexpr std::int64_t maxDurationMs = 600000;
constexpr std::int64_t maxTime = std::int64_t{1} << 53U; // exact in every JSON reader

template <typename Number>
Number load(const std::uint8_t* bytes) {
    Number value{};
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

/** Reads what `toHex` writes; it must be exactly @p size bytes. */
bool fromHex(std::string_view text, std::string_view separator, std::uint8_t* bytes,
             std::size_t size) {
    const std::size_t width = 2 + separator.size();
    if (text.size() + separator.size() != size * width)
        return false;
    for (std::size_t index = 0; index < size; ++index) {
        const std::string_view part = text.substr(index * width, width);
        const char* const end = part.data() + 2;
        const bool isByte = std::from_chars(part.data(), end, bytes[index], 16).ptr == end;
        if (!isByte || part.substr(2) != (index + 1 < size ? separator : ""))
            return false;
    }
    return true;
}

/** A number that would become infinite, subnormal or, not being zero, zero is refused. */
float readFloat(const Json& value, const std::string& path) {
    if (value.is_number()) {
        const auto number = value.get<double>();
        require(std::fabs(number) <= static_cast<double>(FLT_MAX), path,
                "is too large for a single-precision number");
        const auto nearest = static_cast<float>(number);
        require(number == 0.0 || std::isnormal(nearest), path,
                "is too small for a single-precision number; give its bit pattern");
        return nearest;
    }
    const std::string text = value.is_string() ? value.get<std::string>() : std::string();
    std::uint32_t bits = 0;
    const char* const end = text.data() + text.size();
    require(text.size() == 10 && text.compare(0, 2, "0x") == 0 &&
                std::from_chars(text.data() + 2, end, bits, 16).ptr == end,
            path, "must be a number or a bit pattern such as \"0x7fc00001\"");
    return load<float>(reinterpret_cast<const std::uint8_t*>(&bits));
}

/** A number if that is exact; otherwise the bit pattern: infinities, NaNs with their payload,
   subnormal values and negative zero. */
Json floatToJson(const std::uint8_t* bytes) {
    const auto bits = load<std::uint32_t>(bytes);
    const auto value = load<float>(bytes);
    if (!std::isnormal(value) && bits != 0)
        return toHex(bits);
    // A JSON number is a double: 0.1f would be written as 0.10000000149011612. The shortest text
    // that is the same float is what people wrote and want to see.
    using FloatJson = nlohmann::basic_json<std::map, std::vector, std::string, bool, std::int64_t,
                                           std::uint64_t, float>;
    const auto shortest = Json::parse(FloatJson(value).dump()).get<double>();
    const bool isExact = std::fabs(shortest) <= static_cast<double>(FLT_MAX) &&
                         static_cast<float>(shortest) == value;
    return isExact ? shortest : static_cast<double>(value);
}

void readFloats(const Json& value, const std::string& path, std::uint8_t* bytes, std::size_t size) {
    const std::size_t count = size / sizeof(float);
    require(value.is_array() && value.size() == count, path,
            "must be an array of " + std::to_string(count) + " values");
    for (std::size_t index = 0; index < count; ++index) {
        const float number = readFloat(value[index], path + '[' + std::to_string(index) + ']');
        std::memcpy(bytes + index * sizeof number, &number, sizeof number);
    }
}

Json floatsToJson(const std::uint8_t* bytes, std::size_t size) {
    Json values = Json::array();
    for (std::size_t index = 0; index < size; index += sizeof(float))
        values.push_back(floatToJson(bytes + index));
    return values;
}

/** The repeatable pattern of {"seed": seed}. */
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

void readBytes(const Json& value, const std::string& path, std::uint8_t* bytes, std::size_t size) {
    if (!value.is_object() || value.size() != 1)
        refuse(path, "must be an object of one of the fields hex, fill and seed");
    requireFields(value, path, {"hex", "fill", "seed"});
    const std::string place = joined(path, value.begin().key());
    const Json& given = value.front();
    if (value.contains("hex"))
        require(fromHex(readString(given, place), {}, bytes, size), place,
                "must be exactly " + std::to_string(size) + " bytes of hexadecimal");
    else if (value.contains("fill"))
        std::fill_n(bytes, size, readNumber<std::uint8_t>(given, place));
    else
        fillFromSeed(readNumber<std::uint32_t>(given, place), bytes, size);
}

Json bytesToJson(const std::uint8_t* bytes, std::size_t size) {
    if (std::all_of(bytes, bytes + size, [&](auto byte) { return byte == bytes[0]; }))
        return {{"fill", bytes[0]}};
    return {{"hex", toHex(bytes, size)}};
}

void readText(const Json& value, const std::string& path, std::uint8_t* bytes, std::size_t size) {
    if (!value.is_string())
        return readBytes(value, path, bytes, size);
    const auto& text = value.get_ref<const std::string&>();
    require(text.find('\0') == std::string::npos, path,
            "holds a NUL character; give the field's bytes in hex");
    require(text.size() <= size, path, "is longer than " + std::to_string(size) + " bytes");
    std::memset(bytes, 0, size);
    std::copy(text.begin(), text.end(), bytes);
}

/** A string if that is exact; {"hex"} when the field has bytes that are not UTF-8, or any after its
    first NUL. Never {"fill"}: a text of one repeated byte is rare. */
Json textToJson(const std::uint8_t* bytes, std::size_t size) {
    std::string text(bytes, bytes + size);
    text.erase(std::min(text.find('\0'), size));
    const bool cleanRest =
        std::all_of(bytes + text.size(), bytes + size, [](auto byte) { return byte == 0; });
    Json json = std::move(text);
    // Invalid UTF-8 is dropped, which makes the text differ.
    const std::string valid = json.dump(-1, ' ', false, Json::error_handler_t::ignore);
    return cleanRest && Json::parse(valid) == json ? json : Json{{"hex", toHex(bytes, size)}};
}

void readAddress(const Json& value, const std::string& path, std::uint8_t* octets, std::size_t) {
    const std::string text = value.is_string() ? value.get<std::string>() : std::string();
    const bool isWhole = text.find('\0') == std::string::npos;
    require(isWhole && ::inet_pton(AF_INET, text.c_str(), octets) == 1, path,
            "must be an address such as \"192.168.0.10\"");
}

Json addressToJson(const std::uint8_t* octets, std::size_t) {
    char text[INET_ADDRSTRLEN] = "";
    return ::inet_ntop(AF_INET, octets, text, sizeof text);
}

bool isDecimal(const std::string& text) {
    return text.find_first_not_of("0123456789") == std::string::npos;
}

void readDigits(const Json& value, const std::string& path, std::uint8_t* bytes, std::size_t size) {
    if (!value.is_string())
        return readBytes(value, path, bytes, size);
    const auto& text = value.get_ref<const std::string&>();
    require(isDecimal(text) && fromHex(text, {}, bytes, size), path,
            "must be eight decimal digits");
}

Json digitsToJson(const std::uint8_t* bytes, std::size_t size) {
    std::string text = toHex(bytes, size);
    return isDecimal(text) ? Json(std::move(text)) : Json{{"hex", std::move(text)}};
}

template <typename Number, std::int64_t lowest = std::numeric_limits<Number>::min(),
          std::int64_t highest = std::numeric_limits<Number>::max()>
constexpr FieldType numberType = {
    [](const Json& value, const std::string& path, std::uint8_t* bytes, std::size_t) {
        const auto number = static_cast<Number>(readInteger(value, path, lowest, highest));
        std::memcpy(bytes, &number, sizeof number);
    },
    [](const std::uint8_t* bytes, std::size_t) -> Json { return load<Number>(bytes); }};

} // namespace

const FieldType flagType = {
    [](const Json& value, const std::string& path, std::uint8_t* bytes, std::size_t) {
        *bytes = static_cast<std::uint8_t>(readBool(value, path));
    },
    [](const std::uint8_t* bytes, std::size_t) -> Json { return *bytes != 0; }};
const FieldType moduleType = {
    [](const Json& value, const std::string& path, std::uint8_t* bytes, std::size_t) {
        require(value.is_boolean() || value.is_number(), path,
                "must be true, false or a whole number from 0 to 255");
        *bytes = value.is_boolean() ? std::uint8_t{value.get<bool>()}
                                    : readNumber<std::uint8_t>(value, path);
    },
    [](const std::uint8_t* bytes, std::size_t) {
        return *bytes > 1 ? Json(*bytes) : Json(*bytes == 1);
    }};
const FieldType byteType = numberType<std::uint8_t>;
const FieldType int32Type = numberType<std::int32_t>;
const FieldType uint32Type = numberType<std::uint32_t>;
const FieldType durationType = numberType<std::uint32_t, 0, maxDurationMs>;
const FieldType timeType = numberType<std::int64_t, 0, maxTime>;
const FieldType bytesType = {readBytes, bytesToJson, 1};
const FieldType textType = {readText, textToJson, 1, true};
const FieldType addressType = {readAddress, addressToJson, 1, true};
const FieldType macType = {
    [](const Json& value, const std::string& path, std::uint8_t* bytes, std::size_t size) {
        require(fromHex(readString(value, path), ":", bytes, size), path,
                "must be an address such as \"02:00:00:0f:42:41\"");
    },
    [](const std::uint8_t* bytes, std::size_t size) -> Json { return toHex(bytes, size, ":"); }, 1,
    true};
const FieldType digitsType = {readDigits, digitsToJson, 1, true};
const FieldType floatsType = {readFloats, floatsToJson, sizeof(float)};

} // namespace kvasim
