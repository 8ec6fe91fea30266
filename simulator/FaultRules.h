/**
 * Rules that make calls fail. docs/simulator.md has their JSON.
 *
 * Calls are counted for each rule and each function, by each program for itself, from when it first
 * sees the rule; a rule with a serial number counts the calls for that instrument only.
 */
#ifndef SIMULATOR_FAULTRULES_H
#define SIMULATOR_FAULTRULES_H

#include "instrument/KvaSdk.h"
#include "simulator/Json.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace kvasim {

/** What the rules that a call has met do to it, taken together. */
struct CallEffects {
    std::optional<KVA_RESULT> result; /**< of the first rule that answers */
    std::chrono::milliseconds delay{0};
    bool dropped = false;
    bool stale = false;
    std::vector<Json> corruptions; /**< values of "corrupted" */
    std::uint32_t longestList = UINT32_MAX;
    std::string unplug; /**< "before", "during", "after"; empty: nothing is detached */
    std::optional<std::int32_t> unplugged; /**< nothing: the instrument that the call is for */

    /** Whether the instrument's answer does not arrive. */
    bool answerIsLost() const { return unplug == "during"; }
};

/** Applies the corruptions that are meant for an answer of @p function. */
void corrupt(const CallEffects& effects, std::string_view function, void* record);

struct FaultRule {               // NOLINT(bugprone-exception-escape): moving JSON throws nothing
    Json json;                   /**< checked, and in its usual form */
    std::uint32_t firstCall = 1; /**< counted from 1, inclusive */
    std::uint32_t lastCall = UINT32_MAX; /**< inclusive; UINT32_MAX: no end */

    bool operator==(const FaultRule& other) const { return json == other.json; }
    bool has(const char* key) const { return json.contains(key); }
    std::string function() const { return json["function"]; }
    bool isFor(std::string_view called) const { return function() == "*" || function() == called; }
};

/** @param path the place of @p json in its document, for the reason of a refusal.
    @throws InputError when @p json is no rule. */
FaultRule makeFaultRule(const Json& json, const std::string& path);

/** Adds what a rule does. */
void apply(const FaultRule& rule, CallEffects& effects);

/** Adds a rule: draws its number, and the seed of its chance where it has none. */
void addFault(std::vector<FaultRule>& rules, FaultRule rule);

/** Takes one use of @p used, whose `times` may be out of date; a rule that is used up is removed.
    @return false when it is no longer there */
bool useUp(std::vector<FaultRule>& rules, const FaultRule& used);

/** This program's count of the calls that rules have met. Not thread-safe. */
class FaultCounters {
public:
    /** Counts for @p rules from now on. Rules that were there before keep their counts. One line on
        standard error tells the seed of each new rule that goes by chance. */
    void assign(const std::vector<FaultRule>& rules);

    /** Counts one call, and picks the rules that it meets, in their order.
        @param serialNumber the instrument that the call is for, if any */
    std::vector<FaultRule> meet(std::string_view function,
                                std::optional<std::int32_t> serialNumber);

private:
    struct Counted {
        FaultRule rule;
        std::map<std::string_view, std::uint64_t> calls; // by function
        std::mt19937 chance;
    };

    std::vector<Counted> m_rules;
};

} // namespace kvasim

#endif
