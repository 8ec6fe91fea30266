#include "simulator/FaultRules.h"

#include "simulator/BenchFile.h"

#include <algorithm>
#include <utility>

namespace kvasim {

namespace {

constexpr std::uint32_t unlimited = UINT32_MAX;

bool meets(const FaultRule& rule, Function function, std::optional<std::int32_t> serialNumber) {
    return (!rule.function || rule.function == function) &&
           (!rule.serialNumber || rule.serialNumber == serialNumber);
}

/** Whether the rule, met by a call, goes by chance and is spared this time. */
bool isSpared(const FaultRule& rule, std::mt19937& chance) {
    return rule.probability && static_cast<double>(chance()) >= *rule.probability * 4294967296.0;
}

} // namespace

void FaultRules::assign(const std::vector<FaultRule>& rules) {
    m_rules.clear();
    for (const FaultRule& rule : rules)
        add(rule);
}

void FaultRules::add(const FaultRule& rule) {
    Counted counted{rule, {}, std::mt19937()};
    if (rule.probability) {
        if (!rule.seed)
            counted.rule.seed = std::random_device()();
        counted.chance.seed(*counted.rule.seed);
        complain("a rule for " +
                 std::string(rule.function ? functionName(*rule.function) : "every function") +
                 " goes by chance, with seed " + std::to_string(*counted.rule.seed));
    }
    m_rules.push_back(std::move(counted));
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
        if (isSpared(rule, counted.chance))
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
