#include "simulator/FaultRules.h"

#include "simulator/Complaint.h"
#include "simulator/FaultKinds.h"
#include "simulator/JsonFields.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace kvasim {

namespace {

constexpr std::uint32_t unlimited = UINT32_MAX;

/** A call number in decimal, from 1; nothing for any other text. */
std::optional<std::uint32_t> callNumber(std::string_view text) {
    std::uint32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, number);
    const bool isNumber = text.size() <= 9 && read.ec == std::errc() && read.ptr == end;
    return isNumber && number > 0 ? std::optional(number) : std::nullopt;
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

Json callToJson(const FaultRule& rule) {
    if (rule.lastCall == unlimited && rule.firstCall == 1)
        return "every";
    if (rule.firstCall == rule.lastCall)
        return rule.firstCall;
    return std::to_string(rule.firstCall) + '-' + std::to_string(rule.lastCall);
}

double readProbability(const Json& value, const std::string& path) {
    const double probability = value.is_number() ? value.get<double>() : 0;
    if (!(probability > 0 && probability <= 1))
        refuse(path, "must be a number above 0, to 1");
    return probability;
}

std::uint32_t readTimes(const Json& value, const std::string& path) {
    return static_cast<std::uint32_t>(readInteger(value, path, 1, UINT32_MAX));
}

template <typename Value>
void readOptional(JsonFields& fields, const char* key, std::optional<Value>& target,
                  Value (*read)(const Json&, const std::string&)) {
    if (const Json* value = fields.find(key))
        target = read(*value, fields.pathOf(key));
}

template <typename Value>
void writeOptional(Json& json, const char* key, const std::optional<Value>& value) {
    if (value)
        json[key] = *value;
}

void readKindOf(JsonFields& fields, FaultRule& rule) {
    for (const FaultKind& kind : faultKinds()) {
        const Json* const value = fields.find(kind.key);
        if (value == nullptr)
            continue;
        if (rule.kind != nullptr)
            refuse(fields.pathOf(kind.key),
                   std::string("cannot be given together with ") + rule.kind->key);
        readKind(kind, *value, fields.pathOf(kind.key), rule);
    }
    if (rule.kind == nullptr)
        refuse(fields.pathOf("result"), "is missing, and so is every other fault");
    if (rule.kind->key == std::string_view("unplug"))
        readOptional(fields, "instrument", rule.instrument, readInt32);
}

/** Whether two rules are one, of which there may have been more uses. */
bool isSame(FaultRule left, const FaultRule& right) {
    left.times = right.times;
    return left.id == right.id && faultRuleToJson(left) == faultRuleToJson(right);
}

bool meets(const FaultRule& rule, Function function, std::optional<std::int32_t> serialNumber) {
    return (!rule.function || rule.function == function) &&
           (!rule.serialNumber || rule.serialNumber == serialNumber);
}

/** Whether the rule, met by a call, goes by chance and does nothing this time. */
bool isSpared(const FaultRule& rule, std::mt19937& chance) {
    return rule.probability && static_cast<double>(chance()) >= *rule.probability * 4294967296.0;
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
    readOptional(fields, "serialNumber", rule.serialNumber, readInt32);
    readOptional(fields, "times", rule.times, readTimes);
    readOptional(fields, "probability", rule.probability, readProbability);
    readOptional(fields, "seed", rule.seed, readUint32);
    readOptional(fields, "id", rule.id, readUint32);
    if (rule.seed && !rule.probability)
        refuse(fields.pathOf("seed"), "needs a probability");
    readKindOf(fields, rule);
    fields.finish();
    return rule;
}

Json faultRuleToJson(const FaultRule& rule) {
    Json json = {{"function", rule.function ? functionName(*rule.function) : "*"},
                 {"call", callToJson(rule)}};
    writeOptional(json, "serialNumber", rule.serialNumber);
    writeOptional(json, "times", rule.times);
    writeOptional(json, "probability", rule.probability);
    writeOptional(json, "seed", rule.seed);
    json[rule.kind->key] = rule.value;
    writeOptional(json, "instrument", rule.instrument);
    writeOptional(json, "id", rule.id);
    return json;
}

void addFault(std::vector<FaultRule>& rules, FaultRule rule) {
    std::random_device random;
    rule.id = random();
    if (rule.probability && !rule.seed)
        rule.seed = random();
    rules.push_back(std::move(rule));
}

bool useUp(std::vector<FaultRule>& rules, const FaultRule& used) {
    const auto found = std::find_if(rules.begin(), rules.end(),
                                    [&](const FaultRule& rule) { return isSame(rule, used); });
    if (found == rules.end() || !found->times)
        return false;
    if (--*found->times == 0)
        rules.erase(found);
    return true;
}

void FaultCounters::assign(const std::vector<FaultRule>& rules) {
    std::vector<Counted> before;
    before.swap(m_rules);
    for (const FaultRule& rule : rules) {
        const auto known = std::find_if(before.begin(), before.end(), [&](const Counted& counted) {
            return isSame(counted.rule, rule);
        });
        if (known != before.end()) {
            m_rules.push_back(std::move(*known));
            m_rules.back().rule.times = rule.times;
            before.erase(known);
            continue;
        }
        m_rules.push_back({rule, {}, std::mt19937()});
        if (!rule.probability)
            continue;
        const std::uint32_t seed = rule.seed ? *rule.seed : std::random_device()();
        m_rules.back().chance.seed(seed);
        complain("a rule for " +
                 std::string(rule.function ? functionName(*rule.function) : "every function") +
                 " goes by chance, with seed " + std::to_string(seed));
    }
}

std::vector<FaultRule> FaultCounters::meet(Function function,
                                           std::optional<std::int32_t> serialNumber) {
    std::vector<FaultRule> met;
    for (Counted& counted : m_rules) {
        const FaultRule& rule = counted.rule;
        if (!meets(rule, function, serialNumber))
            continue;
        const std::uint64_t call = ++counted.calls.at(static_cast<std::size_t>(function));
        const bool isBounded = rule.lastCall != unlimited;
        if (call < rule.firstCall || (isBounded && call > rule.lastCall))
            continue;
        if (!isSpared(rule, counted.chance))
            met.push_back(rule);
    }
    return met;
}

} // namespace kvasim
