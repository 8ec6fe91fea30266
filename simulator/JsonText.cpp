#include "simulator/JsonText.h"

#include <algorithm>
#include <cstddef>
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

/** The parser's own reason without its position and without the input that it quotes. */
std::string reasonOf(const std::string& what) {
    std::string reason = what;
    const auto start = reason.find("syntax error");
    if (start == std::string::npos)
        return "syntax error";
    reason.erase(0, start);
    const auto quoted = reason.find("; last read: ");
    if (quoted != std::string::npos) {
        const auto expected = reason.rfind("; expected ");
        const bool hasExpected = expected != std::string::npos && expected > quoted;
        reason.erase(quoted, hasExpected ? expected - quoted : std::string::npos);
    }
    return reason;
}

std::string positionOf(std::string_view text, std::size_t byte) {
    // The parser counts bytes from 1 and names the one it stopped at.
    const auto before = text.substr(0, std::min(text.size(), byte > 0 ? byte - 1 : 0));
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    const auto lineFeed = before.rfind('\n');
    const auto column =
        lineFeed == std::string_view::npos ? before.size() + 1 : before.size() - lineFeed;
    return "line " + std::to_string(line) + ", column " + std::to_string(column);
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
        throw InputError(positionOf(text, error.byte) + ": " + reasonOf(error.what()));
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
