/**
 * Rules that make calls fail.
 *
 * As JSON:
 *
 *     {"function": "KVA_Connect", "call": "2-5", "serialNumber": 1000001, "times": 1,
 *      "probability": 0.5, "seed": 7, "result": "KVA_ERROR_CONNECT"}
 *
 * | Field          | Value                                                     | Left out     |
 * |----------------|-----------------------------------------------------------|--------------|
 * | `function`     | an exported name, or "*" for every function               | refused      |
 * | `call`         | the nth call: 3, "3", "2-5" or "every"; counted from 1    | "every"      |
 * | `serialNumber` | the instrument that the call is for                       | any          |
 * | `times`        | after how many uses the rule is used up, 1 or more        | never        |
 * | `probability`  | above 0, to 1: the chance of each such call               | 1            |
 * | `seed`         | unsigned 32-bit, of the chance; with `probability` only   | drawn anew   |
 *
 * and exactly one of
 *
 * | Field       | Value                                        | What happens                     |
 * |-------------|----------------------------------------------|----------------------------------|
 * | `result`    | a code, by name (warnings joined by a slash) | answered: a negative one in      |
 * |             | or number                                    | place of the call, another after |
 * |             |                                              | it                               |
 * | `delayMs`   | 0 to 600000                                  | the call takes longer            |
 * | `dropped`   | true                                         | answered with success, without   |
 * |             |                                              | effect                           |
 * | `stale`     | true                                         | answered as before the last      |
 * |             |                                              | write that changed the answer    |
 * | `corrupted` | {"field": name} or {"offset": n}, with       | those bytes of the answer differ |
 * |             | "value": 0 to 255 for each byte, or "xor":   |                                  |
 * |             | 1 to 255 (255 where both are left out)       |                                  |
 * | `shortList` | 0 or more                                    | no more ports than that          |
 * | `unplug`    | "before", "during", "after"                  | the instrument is detached; a    |
 * |             |                                              | call with "during" has its       |
 * |             |                                              | effect, but answers              |
 * |             |                                              | KVA_ERROR_COMMUNICATION_RECEIVE  |
 *
 * Fields of answers: see AnswerFields.h. `unplug` takes "instrument", the serial number of the one
 * to detach; left out: the one that the call is for, or the first of the list where it is for none.
 *
 * Calls are counted for each rule and each function since the rule was added; a rule with a serial
 * number counts the calls for that instrument only: `KVA_Connect` with its entry, and the calls
 * over a connection to it. `KVA_RegisterDeviceEventHandler` and `KVA_GetDevicePortList` are for no
 * instrument. A seed gives the same chances again; one that is drawn is told on standard error, as
 * is one that is given.
 */
#ifndef SIMULATOR_FAULTRULES_H
#define SIMULATOR_FAULTRULES_H

#include "simulator/JsonText.h"
#include "simulator/SdkNames.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <variant>
#include <vector>

namespace kvasim {

/** The call answers this result. A negative one: the call is not performed; otherwise it is, and
    the result takes the place of its success. */
struct ResultFault {
    KVA_RESULT result;
};

/** The call takes longer. */
struct DelayFault {
    std::uint32_t milliseconds;
};

/** The call is accepted and has no effect. */
struct DroppedFault {};

/** The answer is what it was before the last write. */
struct StaleFault {};

/** Bytes of the answer differ. */
struct CorruptedFault {
    std::string field;                 /**< empty: one byte, at the offset */
    std::size_t offset = 0;            /**< in the record, when there is no field */
    std::optional<std::uint8_t> value; /**< of each byte; nothing: flipped as in `flipped` */
    std::uint8_t flipped = 0xFF;       /**< the bits that differ */
};

/** The list has no more entries than that. */
struct ShortListFault {
    std::uint32_t entries;
};

enum class Moment { Before, During, After };

/** An instrument is detached at some moment of the call. */
struct UnplugFault {
    Moment moment;
    std::optional<std::int32_t> instrument; /**< nothing: the one that the call is for */
};

/** What a rule does to a call. */
using FaultAction = std::variant<ResultFault, DelayFault, DroppedFault, StaleFault, CorruptedFault,
                                 ShortListFault, UnplugFault>;

struct FaultRule {
    std::optional<Function> function;         /**< nothing: every function */
    std::uint32_t firstCall = 1;              /**< counted from 1, inclusive */
    std::uint32_t lastCall = UINT32_MAX;      /**< inclusive; UINT32_MAX: no end */
    std::optional<std::int32_t> serialNumber; /**< nothing: any instrument */
    std::optional<std::uint32_t> times;       /**< nothing: never used up */
    std::optional<double> probability;        /**< above 0, to 1; nothing: certain */
    std::optional<std::uint32_t> seed;        /**< of the chance; nothing: drawn when added */
    FaultAction action{ResultFault{KVA_SUCCESS}};
};

/** @param path the place of @p json in its document, for the reason of a refusal.
    @throws InputError when @p json is no rule. */
FaultRule faultRuleFromJson(const Json& json, const std::string& path);

Json faultRuleToJson(const FaultRule& rule);

/** The rules in force, with their counters. Not thread-safe. */
class FaultRules {
public:
    /** Puts @p rules in place of all rules; counting starts again. */
    /** One line on standard error tells the seed of a rule that goes by chance; here and in `add`.
     */
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
        std::mt19937 chance;
    };

    std::vector<Counted> m_rules;
};

} // namespace kvasim

#endif
