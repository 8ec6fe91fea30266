/**
 * Rules that make calls fail. docs/simulator.md has their JSON.
 *
 * Calls are counted for each rule and each function, by each program for itself, from when it first
 * sees the rule; a rule with a serial number counts the calls for that instrument only.
 */
#ifndef SIMULATOR_FAULTRULES_H
#define SIMULATOR_FAULTRULES_H

#include "simulator/Field.h"
#include "simulator/SdkNames.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace kvasim {

enum class Moment { Before, During, After };

/** An instrument is detached at some moment of the call. */
struct Unplugging {
    Moment moment;
    std::optional<std::int32_t> instrument; /**< nothing: the one that the call is for */
};

/** What the rules that a call has met do to it, taken together. */
struct CallEffects {
    std::optional<KVA_RESULT> result; /**< of the first rule that answers */
    std::chrono::milliseconds delay{0};
    bool dropped = false;
    bool stale = false;
    std::vector<Json> corruptions; /**< values of "corrupted" */
    std::optional<std::uint32_t> longestList;
    std::optional<Unplugging> unplug; /**< of the first rule that detaches */

    bool unplugs(Moment moment) const { return unplug && unplug->moment == moment; }

    /** Whether the instrument's answer does not arrive. */
    bool answerIsLost() const { return unplugs(Moment::During); }
};

/** Applies the corruptions that are meant for an answer of @p function. */
void corrupt(const CallEffects& effects, Function function, void* record);

struct FaultRule;

/** A kind of fault: "result", "delayMs" and so on. */
struct FaultKind {
    const char* key;
    unsigned int functions; /**< that can have it, a bit each */

    /** Checks the value of the key. @return it in its usual form
        @throws InputError with @p path and the reason */
    Json (*read)(const Json& value, const std::string& path, const FaultRule& rule);

    /** Adds what the rule does to what others do. */
    void (*apply)(const Json& value, const FaultRule& rule, CallEffects& effects);
};

const std::array<FaultKind, 7>& faultKinds();

struct FaultRule {
    Json json; /**< checked, and in its usual form */
    const FaultKind* kind = nullptr;
    std::optional<Function> function;    /**< nothing: every function */
    std::uint32_t firstCall = 1;         /**< counted from 1, inclusive */
    std::uint32_t lastCall = UINT32_MAX; /**< inclusive; UINT32_MAX: no end */

    bool has(const char* key) const { return json.contains(key); }
    template <typename Value>
    Value get(const char* key) const {
        return json.at(key).get<Value>();
    }
};

/** @param path the place of @p json in its document, for the reason of a refusal.
    @throws InputError when @p json is no rule. */
FaultRule makeFaultRule(const Json& json, const std::string& path);

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
    std::vector<FaultRule> meet(Function function, std::optional<std::int32_t> serialNumber);

private:
    struct Counted {
        FaultRule rule;
        std::array<std::uint64_t, functionCount> calls{};
        std::mt19937 chance;
    };

    std::vector<Counted> m_rules;
};

} // namespace kvasim

#endif
