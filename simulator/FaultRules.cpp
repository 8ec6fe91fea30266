#include "simulator/FaultRules.h"

#include "simulator/JsonFields.h"

#include <algorithm>
#include <string_view>

namespace kvasim {

namespace {

constexpr std::uint32_t unlimited = UINT32_MAX;

/** A call number in decimal, from 1; nothing for any other text. */
std::optional<std::uint32_t> callNumber(std::string_view text) {
    if (text.empty() || text.size() > 9 ||
        text.find_first_not_of("0123456789") != std::string_view::npos)
        return std::nullopt;
    std::uint32_t number = 0;
    for (const char digit : text)
        number = number * 10 + static_cast<std::uint32_t>(digit - '0');
    return number > 0 ? std::optional(number) : std::nullopt;
}

void readCall(const Json& value, const std::string& path, FaultRule& rule) {
    if (value.is_number()) {
        rule.firstCall = static_cast<std::uint32_t>(readInteger(value, path, 1, unlimited - 1));
        rule.lastCall = rule.firstCall;
        return;
    }
    const std::string text = value.is_string() ? value.get<std::string>() : std::string();
    if (text == "every")
        return;
    const auto dash = text.find('-');
    const auto first = callNumber(std::string_view(text).substr(0, dash));
    const auto last =
        dash == std::string::npos ? first : callNumber(std::string_view(text).substr(dash + 1));
    if (!first || !last || *first > *last)
        refuse(path, "must be a call number from 1, a range such as \"2-5\" or \"every\"");
    rule.firstCall = *first;
    rule.lastCall = *last;
}

KVA_RESULT readResult(const Json& value, const std::string& path) {
    if (value.is_number())
        return readInt32(value, path);
    const auto result = resultFromName(readString(value, path));
    if (!result)
        refuse(path, "is not the name of a result code");
    return *result;
}

bool meets(const FaultRule& rule, Function function, std::optional<std::int32_t> serialNumber) {
    return (!rule.function || rule.function == function) &&
           (!rule.serialNumber || rule.serialNumber == serialNumber);
}

} // namespace

FaultRule faultRuleFromJson(const Json& json, const std::string& path) {
    FaultRule rule;
    JsonFields fields(json, path);
    const std::string name = readString(fields.get("function"), fields.pathOf("function"));
    if (name != "*") {
        rule.function = functionFromName(name);
        if (!rule.function)
            refuse(fields.pathOf("function"), "is not the name of a function");
    }
    if (const Json* call = fields.find("call"))
        readCall(*call, fields.pathOf("call"), rule);
    if (const Json* serialNumber = fields.find("serialNumber"))
        rule.serialNumber = readInt32(*serialNumber, fields.pathOf("serialNumber"));
    if (const Json* times = fields.find("times"))
        rule.times =
            static_cast<std::uint32_t>(readInteger(*times, fields.pathOf("times"), 1, UINT32_MAX));
    rule.action = ResultFault{readResult(fields.get("result"), fields.pathOf("result"))};
    fields.finish();
    return rule;
}

Json faultRuleToJson(const FaultRule& rule) {
    Json json;
    json["function"] = rule.function ? functionName(*rule.function) : "*";
    if (rule.lastCall == unlimited && rule.firstCall == 1)
        json["call"] = "every";
    else if (rule.firstCall == rule.lastCall)
        json["call"] = rule.firstCall;
    else
        json["call"] = std::to_string(rule.firstCall) + '-' + std::to_string(rule.lastCall);
    if (rule.serialNumber)
        json["serialNumber"] = *rule.serialNumber;
    if (rule.times)
        json["times"] = *rule.times;
    const KVA_RESULT result = std::get<ResultFault>(rule.action).result;
    const std::string name = resultName(result);
    // A name stands for known bits only; a value with others would come back without them.
    if (!name.empty() && resultFromName(name) == result)
        json["result"] = name;
    else
        json["result"] = result;
    return json;
}

void FaultRules::assign(const std::vector<FaultRule>& rules) {
    m_rules.clear();
    for (const FaultRule& rule : rules)
        add(rule);
}

void FaultRules::add(const FaultRule& rule) {
    m_rules.push_back({rule, {}});
}

void FaultRules::clear() {
    m_rules.clear();
}

std::vector<FaultAction> FaultRules::fire(Function function,
                                          std::optional<std::int32_t> serialNumber) {
    std::vector<FaultAction> actions;
    for (Counted& counted : m_rules) {
        FaultRule& rule = counted.rule;
        if (!meets(rule, function, serialNumber))
            continue;
        const std::uint64_t call = ++counted.calls.at(static_cast<std::size_t>(function));
        const bool unbounded = rule.lastCall == unlimited;
        if (call < rule.firstCall || (!unbounded && call > rule.lastCall))
            continue;
        actions.push_back(rule.action);
        if (rule.times)
            --*rule.times;
    }
    const auto usedUp = [](const Counted& counted) { return counted.rule.times == 0U; };
    m_rules.erase(std::remove_if(m_rules.begin(), m_rules.end(), usedUp), m_rules.end());
    return actions;
}

Json FaultRules::toJson() const {
    Json json = Json::array();
    for (const Counted& counted : m_rules)
        json.push_back(faultRuleToJson(counted.rule));
    return json;
}

} // namespace kvasim
