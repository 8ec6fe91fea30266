#include "simulator/FaultRules.h"

#include "simulator/BenchFile.h"

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

Json readProbability(const Json& value, const std::string& path) {
    const double probability = value.is_number() ? value.get<double>() : 0;
    if (!(probability > 0 && probability <= 1))
        refuse(path, "must be a number above 0, to 1");
    return value;
}

/** A number of the type. */
template <typename Number>
Json number(const Json& value, const std::string& path) {
    return readNumber<Number>(value, path);
}

/** What a rule may have beside its function, its calls and its kind. */
struct Limit {
    const char* key;
    Json (*read)(const Json& value, const std::string& path);
    const char* needs; /**< another field, without which it is refused; null: none */
};
constexpr std::array<Limit, 6> limits = {{{"serialNumber", number<std::int32_t>, nullptr},
                                          {"times", number<std::uint32_t>, nullptr},
                                          {"probability", readProbability, nullptr},
                                          {"seed", number<std::uint32_t>, "probability"},
                                          {"instrument", number<std::int32_t>, "unplug"},
                                          {"id", number<std::uint32_t>, nullptr}}};

void readKind(JsonFields& fields, FaultRule& rule) {
    for (const FaultKind& kind : faultKinds()) {
        const Json* const value = fields.find(kind.key);
        if (value == nullptr)
            continue;
        const std::string path = fields.pathOf(kind.key);
        if (rule.kind != nullptr)
            refuse(path, std::string("cannot be given together with ") + rule.kind->key);
        rule.kind = &kind;
        rule.json[kind.key] = kind.read(*value, path, rule);
        const auto function = static_cast<unsigned int>(rule.function.value_or(Function{}));
        if (rule.function && (kind.functions >> function & 1U) == 0)
            refuse(path, std::string("is not for ") + functionName(*rule.function));
    }
    if (rule.kind == nullptr)
        refuse(fields.pathOf("result"), "is missing, and so is every other fault");
}

/** Whether two rules are one, of which there may have been more uses. */
bool isSame(const FaultRule& left, const FaultRule& right) {
    Json uses = left.json;
    if (right.has("times"))
        uses["times"] = right.json["times"];
    return uses == right.json;
}

bool meets(const FaultRule& rule, Function function, std::optional<std::int32_t> serialNumber) {
    return (!rule.function || rule.function == function) &&
           (!rule.has("serialNumber") || rule.get<std::int32_t>("serialNumber") == serialNumber);
}

/** Whether the rule, met by a call, goes by chance and does nothing this time. */
bool isSpared(const FaultRule& rule, std::mt19937& chance) {
    return rule.has("probability") &&
           static_cast<double>(chance()) >= rule.get<double>("probability") * 4294967296.0;
}

} // namespace

FaultRule makeFaultRule(const Json& json, const std::string& path) {
    FaultRule rule;
    JsonFields fields(json, path);
    const std::string name = readString(fields.get("function"), fields.pathOf("function"));
    rule.function = functionFromName(name);
    if (!rule.function && name != "*")
        refuse(fields.pathOf("function"), "is not the name of a function");
    if (const Json* call = fields.find("call"))
        readCall(*call, fields.pathOf("call"), rule);
    rule.json = {{"function", name}, {"call", callToJson(rule)}};
    for (const Limit& limit : limits) {
        const Json* const value = fields.find(limit.key);
        if (value == nullptr)
            continue;
        rule.json[limit.key] = limit.read(*value, fields.pathOf(limit.key));
        if (limit.needs != nullptr && !json.contains(limit.needs))
            refuse(fields.pathOf(limit.key), std::string("needs the field ") + limit.needs);
    }
    if (rule.json.value("times", 1) == 0)
        refuse(fields.pathOf("times"), "must be 1 or more");
    readKind(fields, rule);
    fields.finish();
    return rule;
}

void addFault(std::vector<FaultRule>& rules, FaultRule rule) {
    std::random_device random;
    rule.json["id"] = random();
    if (rule.has("probability") && !rule.has("seed"))
        rule.json["seed"] = random();
    rules.push_back(std::move(rule));
}

bool useUp(std::vector<FaultRule>& rules, const FaultRule& used) {
    const auto found = std::find_if(rules.begin(), rules.end(),
                                    [&](const FaultRule& rule) { return isSame(rule, used); });
    if (found == rules.end())
        return false;
    const auto left = found->get<std::uint32_t>("times") - 1;
    found->json["times"] = left;
    if (left == 0)
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
            m_rules.back().rule = rule;
            before.erase(known);
            continue;
        }
        m_rules.push_back({rule, {}, std::mt19937()});
        if (!rule.has("probability"))
            continue;
        const std::uint32_t seed =
            rule.has("seed") ? rule.get<std::uint32_t>("seed") : std::random_device()();
        m_rules.back().chance.seed(seed);
        complain("a rule for " +
                 (rule.function ? functionName(*rule.function) : std::string("every function")) +
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
