#include "simulator/Json.h"

#include <algorithm>
#include <charconv>
#include <functional>
#include <limits>
#include <set>
#include <utility>
#include <vector>

namespace kvasim {

namespace {

constexpr int maxDepth = 64;
constexpr std::size_t maxKeys = 1000;

/** Refuses, while the parser runs, what it would take silently or without bound. */
class ParseGuard {
public:
    bool operator()(int depth, Json::parse_event_t event, const Json& parsed) {
        if (depth > maxDepth)
            throw InputError("more than 64 levels of arrays and objects");
        if (event == Json::parse_event_t::object_start) {
            m_keys.emplace_back();
        } else if (event == Json::parse_event_t::object_end) {
            m_keys.pop_back();
        } else if (event == Json::parse_event_t::key) {
            const auto& key = parsed.get_ref<const std::string&>();
            if (!m_keys.back().insert(key).second)
                throw InputError("the key \"" + key + "\" is given twice in one object");
            if (m_keys.back().size() > maxKeys)
                throw InputError("an object of more than 1000 keys");
        }
        return true;
    }

private:
    std::vector<std::set<std::string>> m_keys;
};

/** The parser's own message from the position on, without the input that it quotes, which may hold
   a security key. */
std::string reasonOf(std::string reason) {
    const std::string lead = "parse error at ";
    const auto start = reason.find(lead);
    if (start != std::string::npos)
        reason.erase(0, start + lead.size());
    const auto quoted = reason.find("; last read: ");
    if (quoted != std::string::npos) {
        // The quoted input may itself hold this text: the last one is the parser's.
        const auto expected = reason.rfind("; expected ");
        const bool hasExpected = expected != std::string::npos && expected > quoted;
        reason.erase(quoted, hasExpected ? expected - quoted : std::string::npos);
    }
    return reason;
}

bool isPlainArray(const Json& value) {
    return std::none_of(value.begin(), value.end(),
                        [](const Json& element) { return element.is_structured(); });
}

void append(std::string& text, const Json& value, std::size_t indent) {
    if (!value.is_structured() || value.empty()) {
        text += value.dump();
        return;
    }
    const bool isObject = value.is_object();
    const bool onOneLine = !isObject && isPlainArray(value);
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
    try {
        ParseGuard guard;
        return Json::parse(text.begin(), text.end(), std::ref(guard), true,
                           comments == Comments::Allowed);
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

void JsonFields::finish() const {
    for (const auto& item : m_object.items()) {
        if (std::find(m_known.begin(), m_known.end(), item.key()) == m_known.end())
            refuse(pathOf(item.key().c_str()), "is not a known field");
    }
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
    if (!value.is_boolean())
        refuse(path, "must be true or false");
    return value.get<bool>();
}

std::string readString(const Json& value, const std::string& path) {
    if (!value.is_string())
        refuse(path, "must be a string");
    return value.get<std::string>();
}

const Json& readArray(const Json& value, const std::string& path) {
    if (!value.is_array())
        refuse(path, "must be an array");
    return value;
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
        if (text.size() < 2)
            return false;
        const auto end = std::from_chars(text.data(), text.data() + 2, bytes[index], 16).ptr;
        if (end != text.data() + 2)
            return false;
        text.remove_prefix(2);
    }
    return text.empty();
}

} // namespace kvasim
