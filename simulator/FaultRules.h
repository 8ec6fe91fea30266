/**
 * Rules that make calls fail.
 *
 * As JSON:
 *
 *     {"function": "KVA_Connect", "call": "2-5", "serialNumber": 1000001, "times": 1,
 *      "result": "KVA_ERROR_CONNECT"}
 *
 * | Field          | Value                                                     | Left out     |
 * |----------------|-----------------------------------------------------------|--------------|
 * | `function`     | an exported name, or "*" for every function               | refused      |
 * | `call`         | the nth call: 3, "3", "2-5" or "every"; counted from 1    | "every"      |
 * | `serialNumber` | the instrument that the call is for                       | any          |
 * | `times`        | after how many uses the rule is used up, 1 or more        | never        |
 * | `result`       | a result code, by name (warnings joined by a slash) or number | refused  |
 *
 * Calls are counted for each rule and each function since the rule was added; a rule with a serial
 * number counts the calls for that instrument only: `KVA_Connect` with its entry, and the calls
 * over a connection to it. `KVA_RegisterDeviceEventHandler` and `KVA_GetDevicePortList` are for no
 * instrument.
 */
#ifndef SIMULATOR_FAULTRULES_H
#define SIMULATOR_FAULTRULES_H

#include "simulator/JsonText.h"
#include "simulator/SdkNames.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace kvasim {

/** The call answers this result. A negative one: the call is not performed; otherwise it is, and
    the result takes the place of its success. */
struct ResultFault {
    KVA_RESULT result;
};

/** What a rule does to a call. */
using FaultAction = std::variant<ResultFault>;

struct FaultRule {
    std::optional<Function> function;         /**< nothing: every function */
    std::uint32_t firstCall = 1;              /**< counted from 1, inclusive */
    std::uint32_t lastCall = UINT32_MAX;      /**< inclusive; UINT32_MAX: no end */
    std::optional<std::int32_t> serialNumber; /**< nothing: any instrument */
    std::optional<std::uint32_t> times;       /**< nothing: never used up */
    FaultAction action;
};

/** @param path the place of @p json in its document, for the reason of a refusal.
    @throws InputError when @p json is no rule. */
FaultRule faultRuleFromJson(const Json& json, const std::string& path);

Json faultRuleToJson(const FaultRule& rule);

/** The rules in force, with their counters. Not thread-safe. */
class FaultRules {
public:
    /** Puts @p rules in place of all rules; counting starts again. */
    void assign(const std::vector<FaultRule>& rules);
    void add(const FaultRule& rule);
    void clear();

    /** Counts one call and tells what happens to it: the action of each rule that it meets, in the
        order of the rules.
        @param serialNumber the instrument that the call is for, if any */
    std::vector<FaultAction> fire(Function function, std::optional<std::int32_t> serialNumber);

    /** The rules as an array; those that are used up are no longer there. `times` is what is
        left. */
    Json toJson() const;

private:
    struct Counted {
        FaultRule rule;
        std::array<std::uint64_t, functionCount> calls{};
    };

    std::vector<Counted> m_rules;
};

} // namespace kvasim

#endif
