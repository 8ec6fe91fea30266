#include "simulator/Field.h"

#include "simulator/Json.h"

#include <algorithm>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstring>
#include <vector>

#include <arpa/inet.h>

namespace kvasim {

// The records are kept as the caller sees them, and a port entry is compared byte for byte.
static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "the records are little-endian");

namespace {

constexpr std::int64_t maxDurationMs = 600000;
constexpr std::int64_t maxTime = std::int64_t{1} << 53U; // exact in every JSON reader

template <typename Number>
void store(std::uint8_t* bytes, Number value) {
    std::memcpy(bytes, &value, sizeof value);
}

template <typename Number>
Number load(const std::uint8_t* bytes) {
    Number value{};
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

std::string hexOf(std::uint32_t bits) {
    const std::uint8_t bytes[4] = {
        static_cast<std::uint8_t>(bits >> 24U), static_cast<std::uint8_t>(bits >> 16U),
        static_cast<std::uint8_t>(bits >> 8U), static_cast<std::uint8_t>(bits)};
    return "0x" + toHex(bytes, sizeof bytes);
}

/** A number that would become infinite, subnormal or, not being zero, zero is refused.
    @return why it is refused; null: it is not */
const char* readFloat(const Json& value, float& result) {
    if (value.is_string()) {
        const auto& text = value.get_ref<const std::string&>();
        std::uint8_t bytes[4] = {};
        if (text.size() != 10 || text.compare(0, 2, "0x") != 0 ||
            !fromHex(std::string_view(text).substr(2), {}, bytes, sizeof bytes))
            return "must be a number or a bit pattern such as \"0x7fc00001\"";
        std::reverse(bytes, bytes + sizeof bytes);
        result = load<float>(bytes);
        return nullptr;
    }
    if (!value.is_number())
        return "must be a number or a bit pattern such as \"0x7fc00001\"";
    const auto number = value.get<double>();
    if (!(std::fabs(number) <= static_cast<double>(FLT_MAX)))
        return "is too large for a single-precision number";
    result = static_cast<float>(number);
    return number != 0.0 && !std::isnormal(result)
               ? "is too small for a single-precision number; give its bit pattern"
               : nullptr;
}

/** A number where a number carries the value exactly, the bit pattern for everything else:
   infinities, not-a-numbers with their payload, subnormal values and negative zero. */
Json floatToJson(const std::uint8_t* bytes) {
    const auto bits = load<std::uint32_t>(bytes);
    const auto value = load<float>(bytes);
    if (!std::isnormal(value) && bits != 0)
        return hexOf(bits);
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
    if (!value.is_array() || value.size() != count)
        refuse(path, "must be an array of " + std::to_string(count) + " values");
    for (std::size_t index = 0; index < count; ++index) {
        float number = 0;
        if (const char* const reason = readFloat(value[index], number))
            refuse(path + '[' + std::to_string(index) + ']', reason);
        store(bytes + index * sizeof number, number);
    }
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
    JsonFields fields(value, path);
    if (const Json* hex = fields.find("hex")) {
        if (!fromHex(readString(*hex, fields.pathOf("hex")), {}, bytes, size))
            refuse(fields.pathOf("hex"),
                   "must be exactly " + std::to_string(size) + " bytes of hexadecimal");
    } else if (const Json* fill = fields.find("fill")) {
        std::fill_n(bytes, size, readNumber<std::uint8_t>(*fill, fields.pathOf("fill")));
    } else if (const Json* seed = fields.find("seed")) {
        fillFromSeed(readNumber<std::uint32_t>(*seed, fields.pathOf("seed")), bytes, size);
    }
    fields.finish();
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
    if (text.find('\0') != std::string::npos)
        refuse(path, "holds a NUL character; give the field's bytes in hex");
    if (text.size() > size)
        refuse(path, "is longer than " + std::to_string(size) + " bytes");
    std::memset(bytes, 0, size);
    std::copy(text.begin(), text.end(), bytes);
}

/** The text of a field as JSON; null where it is not UTF-8. */
Json utf8(std::string text) {
    try {
        Json json(std::move(text));
        static_cast<void>(json.dump()); // throws for what is not UTF-8
        return json;
    } catch (const Json::type_error&) {
        return nullptr;
    }
}

/** A string where that is exact; {"hex"} where the field has bytes that are not UTF-8 or that lie
    behind its first NUL. Never {"fill"}: a text of one repeated byte is rare. */
Json textToJson(const std::uint8_t* bytes, std::size_t size) {
    std::string text(bytes, bytes + size);
    text.erase(std::min(text.find('\0'), size));
    const bool cleanRest =
        std::all_of(bytes + text.size(), bytes + size, [](auto byte) { return byte == 0; });
    Json json = cleanRest ? utf8(std::move(text)) : Json();
    return json.is_null() ? Json{{"hex", toHex(bytes, size)}} : json;
}

void readAddress(const Json& value, const std::string& path, std::uint8_t* octets) {
    const std::string text = value.is_string() ? value.get<std::string>() : std::string();
    const bool isWhole = text.find('\0') == std::string::npos;
    if (!isWhole || ::inet_pton(AF_INET, text.c_str(), octets) != 1)
        refuse(path, "must be an address such as \"192.168.0.10\"");
}

Json addressToJson(const std::uint8_t* octets) {
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
    if (!isDecimal(text) || !fromHex(text, {}, bytes, size))
        refuse(path, "must be eight decimal digits");
}

} // namespace

Json digitsToJson(const std::uint8_t* bytes, std::size_t size) {
    std::string text = toHex(bytes, size);
    return isDecimal(text) ? Json(std::move(text)) : Json{{"hex", std::move(text)}};
}

bool Field::isString() const {
    return kind == Kind::Text || kind == Kind::Address || kind == Kind::Mac || kind == Kind::Digits;
}

std::optional<ByteRange> Field::range(std::string_view element) const {
    if (element.empty())
        return ByteRange{offset, size};
    const std::size_t width = kind == Kind::Floats ? sizeof(float) : 1;
    const bool isArray = kind == Kind::Floats || kind == Kind::Bytes || isString();
    const char* const digits = element.data() + 1;
    const char* const end = element.data() + element.size() - 1;
    std::size_t index = 0;
    if (!isArray || element.size() < 3 || element.front() != '[' || element.back() != ']' ||
        std::from_chars(digits, end, index).ptr != end || index >= size / width)
        return std::nullopt;
    return ByteRange{offset + index * width, width};
}

void Field::read(const Json& value, const std::string& path, std::uint8_t* record) const {
    std::uint8_t* const bytes = record + offset;
    switch (kind) {
    case Kind::Flag:
        return store(bytes, readBool(value, path));
    case Kind::Module:
        if (!value.is_boolean() && !value.is_number())
            refuse(path, "must be true, false or a whole number from 0 to 255");
        return store(bytes, value.is_boolean() ? std::uint8_t{value.get<bool>()}
                                               : readNumber<std::uint8_t>(value, path));
    case Kind::Byte:
        return store(bytes, readNumber<std::uint8_t>(value, path));
    case Kind::Int32:
        return store(bytes, readNumber<std::int32_t>(value, path));
    case Kind::Uint32:
        return store(bytes, readNumber<std::uint32_t>(value, path));
    case Kind::Duration:
        return store(bytes, static_cast<std::uint32_t>(readInteger(value, path, 0, maxDurationMs)));
    case Kind::Time:
        return store(bytes, readInteger(value, path, 0, maxTime));
    case Kind::Bytes:
        return readBytes(value, path, bytes, size);
    case Kind::Text:
        return readText(value, path, bytes, size);
    case Kind::Address:
        return readAddress(value, path, bytes);
    case Kind::Mac:
        if (!fromHex(readString(value, path), ":", bytes, size))
            refuse(path, "must be an address such as \"02:00:00:0f:42:41\"");
        return;
    case Kind::Digits:
        return readDigits(value, path, bytes, size);
    case Kind::Floats:
        return readFloats(value, path, bytes, size);
    }
}

Json Field::write(const std::uint8_t* record) const {
    const std::uint8_t* const bytes = record + offset;
    switch (kind) {
    case Kind::Flag:
        return load<bool>(bytes);
    case Kind::Module:
        return *bytes > 1 ? Json(*bytes) : Json(*bytes == 1);
    case Kind::Byte:
        return *bytes;
    case Kind::Int32:
        return load<std::int32_t>(bytes);
    case Kind::Uint32:
    case Kind::Duration:
        return load<std::uint32_t>(bytes);
    case Kind::Time:
        return load<std::int64_t>(bytes);
    case Kind::Bytes:
        return bytesToJson(bytes, size);
    case Kind::Text:
        return textToJson(bytes, size);
    case Kind::Address:
        return addressToJson(bytes);
    case Kind::Mac:
        return toHex(bytes, size, ":");
    case Kind::Digits:
        return digitsToJson(bytes, size);
    case Kind::Floats: {
        Json values = Json::array();
        for (std::size_t index = 0; index < size; index += sizeof(float))
            values.push_back(floatToJson(bytes + index));
        return values;
    }
    }
    return nullptr;
}

} // namespace kvasim
