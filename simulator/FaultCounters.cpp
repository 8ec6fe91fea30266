// Which rules a call meets, and how often they may still be met.

#include "simulator/BenchStore.h"
#include "simulator/FaultRules.h"

#include <algorithm>
#include <utility>

namespace kvasim {

namespace {

/** Whether two rules are one, of which there may have been more uses. */
bool isSame(const FaultRule& left, const FaultRule& right) {
    Json uses = left.json;
    if (right.has("times"))
        uses["times"] = right.json["times"];
    return uses == right.json;
}

bool isFor(const FaultRule& rule, std::string_view function,
           std::optional<std::int32_t> serialNumber) {
    return rule.isFor(function) && (!rule.has("serialNumber") ||
                                    rule.json["serialNumber"].get<std::int32_t>() == serialNumber);
}

/** Whether the rule, met by a call, goes by chance and does nothing this time. */
bool isSpared(const FaultRule& rule, std::mt19937& chance) {
    return rule.has("probability") &&
           static_cast<double>(chance()) >= rule.json["probability"].get<double>() * 4294967296.0;
}

} // namespace

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
    const auto left = found->json["times"].get<std::uint32_t>() - 1;
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
        const std::uint32_t seed = rule.json.value("seed", std::random_device()());
        m_rules.push_back({rule, {}, std::mt19937(seed)});
        if (rule.has("probability"))
            complain("a rule for " + (rule.function() == "*" ? "every function" : rule.function()) +
                     " goes by chance, with seed " + std::to_string(seed));
    }
}

std::vector<FaultRule> FaultCounters::meet(std::string_view function,
                                           std::optional<std::int32_t> serialNumber) {
    std::vector<FaultRule> met;
    for (Counted& counted : m_rules) {
        const FaultRule& rule = counted.rule;
        if (!isFor(rule, function, serialNumber))
            continue;
        const std::uint64_t call = ++counted.calls[function];
        const bool isPast = rule.lastCall != UINT32_MAX && call > rule.lastCall;
        if (call >= rule.firstCall && !isPast && !isSpared(rule, counted.chance))
            met.push_back(rule);
    }
    return met;
}

} // namespace kvasim
