/**
 * Rules that make calls fail. docs/simulator.md has their JSON.
 *
 * Each program counts calls by itself, for each rule and function, from when it first reads the
 * rule. A rule with a serial number counts only the calls for that instrument.
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

/** The combined effects of the rules that match a call. */
struct CallEffects {
    std::optional<KVA_RESULT> result; /**< of the first rule with a result */
    std::chrono::milliseconds delay{0};
    bool dropped = false;
    bool stale = false;
    std::vector<Json> corruptions; /**< values of "corrupted" */
    std::uint32_t longestList = UINT32_MAX;
    std::string unplug; /**< "before", "during", "after"; empty: nothing is unplugged */
    std::optional<std::int32_t> unplugged; /**< nothing: the instrument that the call is for */

    /** Whether the instrument's answer is lost. */
    bool answerIsLost() const { return unplug == "during"; }
};

/** Applies the corruptions that are meant for an answer of @p function. */
void corrupt(const CallEffects& effects, std::string_view function, void* record);

struct FaultRule {               // NOLINT(bugprone-exception-escape): moving JSON throws nothing
    Json json;                   /**< checked, and in normal form */
    std::uint32_t firstCall = 1; /**< counted from 1, inclusive */
    std::uint32_t lastCall = UINT32_MAX; /**< inclusive; UINT32_MAX: no end */

    bool operator==(const FaultRule& other) const { return json == other.json; }
    bool has(const char* key) const { return json.contains(key); }
    std::string function() const { return json["function"]; }
    bool isFor(std::string_view called) const { return function() == "*" || function() == called; }
};

/** @param path the place of @p json in its document, for error messages.
    @throws InputError when @p json is not a valid rule. */
FaultRule makeFaultRule(const Json& json, const std::string& path);

/** Adds the effects of a rule. */
void apply(const FaultRule& rule, CallEffects& effects);

/** Adds a rule with a random `id`, and a random `seed` if it needs one. */
void addFault(std::vector<FaultRule>& rules, FaultRule rule);

/** Takes one use of @p used, whose `times` may be out of date; removes the rule at 0.
    @return false when the rule is no longer there */
bool useUp(std::vector<FaultRule>& rules, const FaultRule& used);

/** This program's call counts for each rule. Not thread-safe. */
class FaultCounters {
public:
    /** Counts for @p rules from now on. Rules that were there before keep their counts. Prints the
        seed of each new rule with a probability on standard error. */
    void assign(const std::vector<FaultRule>& rules);

    /** Counts one call, and returns the rules that match it, in their order.
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
