#include "simulator/Json.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <set>

namespace kvasim {

namespace {

constexpr int maxDepth = 64;
constexpr std::size_t maxKeys = 1000;

/** The parser's own message from the position on, without the input that it quotes, which may hold
   a security key. */
std::string reasonOf(std::string reason) {
    const std::string lead = "parse error at ";
    const auto start = reason.find(lead);
    if (start != std::string::npos)
        reason.erase(0, start + lead.size());
    const auto quoted = reason.find("; last read: ");
    // The quoted input may contain "expected" too: the last one is the parser's.
    if (quoted != std::string::npos)
        reason.erase(quoted, reason.rfind("; expected ") - quoted);
    return reason;
}

void append(std::string& text, const Json& value, std::size_t indent) {
    if (!value.is_structured() || value.empty()) {
        text += value.dump();
        return;
    }
    const bool isObject = value.is_object();
    const auto isStructured = [](const Json& element) { return element.is_structured(); };
    const bool onOneLine = !isObject && std::none_of(value.begin(), value.end(), isStructured);
    const std::string lead = onOneLine ? "" : "\n" + std::string(indent + 2, ' ');
    const char* separator = "";
    text += isObject ? '{' : '[';
    for (const auto& item : value.items()) {
        text += separator;
        text += lead;
        if (isObject)
            text += Json(item.key()).dump() + ": ";
        append(text, item.value(), indent + 2);
        separator = onOneLine ? ", " : ",";
    }
    if (!onOneLine)
        text += "\n" + std::string(indent, ' ');
    text += isObject ? '}' : ']';
}

} // namespace

Json parseJson(std::string_view text, Comments comments) {
    std::vector<std::set<std::string>> keys; // of the objects that are open
    // Refuses what the parser itself would accept: repeated keys, any depth and size.
    const auto guard = [&](int depth, Json::parse_event_t event, const Json& parsed) {
        if (depth > maxDepth)
            throw InputError("more than 64 levels of arrays and objects");
        if (event == Json::parse_event_t::object_start)
            keys.emplace_back();
        if (event == Json::parse_event_t::object_end)
            keys.pop_back();
        if (event != Json::parse_event_t::key)
            return true;
        const auto& key = parsed.get_ref<const std::string&>();
        if (!keys.back().insert(key).second)
            throw InputError("the key \"" + key + "\" is given twice in one object");
        if (keys.back().size() > maxKeys)
            throw InputError("an object of more than 1000 keys");
        return true;
    };
    try {
        return Json::parse(text.begin(), text.end(), guard, true, comments == Comments::Allowed);
    } catch (const Json::parse_error& error) {
        throw InputError(reasonOf(error.what()));
    } catch (const Json::exception&) {
        throw InputError("a number is out of range");
    }
}

std::string formatJson(const Json& value) {
    std::string text;
    append(text, value, 0);
    text += '\n';
    return text;
}

void refuse(const std::string& path, const std::string& reason) {
    throw InputError((path.empty() ? "the document" : path) + ": " + reason);
}

std::string joined(const std::string& path, const std::string& key) {
    return path.empty() ? key : path + '.' + key;
}

void require(bool isGood, const std::string& path, const std::string& reason) {
    if (!isGood)
        refuse(path, reason);
}

void requireFields(const Json& object, const std::string& path,
                   const std::vector<std::string>& known) {
    require(object.is_object(), path, "must be an object");
    for (const auto& item : object.items()) {
        const bool isKnown = std::find(known.begin(), known.end(), item.key()) != known.end();
        require(isKnown, joined(path, item.key()), "is not a known field");
    }
}

const Json& fieldOf(const Json& object, const std::string& path, const char* key) {
    require(object.is_object(), path, "must be an object");
    require(object.contains(key), joined(path, key), "is missing");
    return object[key];
}

std::int64_t readInteger(const Json& value, const std::string& path, std::int64_t lowest,
                         std::int64_t highest) {
    const bool isLarge = value.is_number_unsigned() && value.get<std::uint64_t>() > INT64_MAX;
    const std::int64_t number = value.is_number_integer() ? value.get<std::int64_t>() : 0;
    if (!value.is_number_integer() || isLarge || number < lowest || number > highest)
        refuse(path, "must be a whole number from " + std::to_string(lowest) + " to " +
                         std::to_string(highest));
    return number;
}

bool readBool(const Json& value, const std::string& path) {
    require(value.is_boolean(), path, "must be true or false");
    return value.get<bool>();
}

std::string readString(const Json& value, const std::string& path) {
    require(value.is_string(), path, "must be a string");
    return value.get<std::string>();
}

std::string toHex(const std::uint8_t* bytes, std::size_t size, std::string_view separator) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (std::size_t index = 0; index < size; ++index) {
        if (index > 0)
            text += separator;
        text += digits[bytes[index] >> 4U];
        text += digits[bytes[index] & 0xFU];
    }
    return text;
}

std::string toHex(std::uint32_t number) {
    char text[11] = "";
    std::snprintf(text, sizeof text, "0x%08" PRIx32, number);
    return text;
}

} // namespace kvasim
