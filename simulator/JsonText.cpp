#include "simulator/JsonText.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <set>
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

} // namespace kvasim
