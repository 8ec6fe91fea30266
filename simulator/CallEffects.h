/**
 * What the rules that a call has met do to it, taken together.
 */
#ifndef SIMULATOR_CALLEFFECTS_H
#define SIMULATOR_CALLEFFECTS_H

#include "simulator/FaultRules.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace kvasim {

struct CallEffects {
    std::optional<KVA_RESULT> result; /**< of the first rule that answers */
    std::chrono::milliseconds delay{0};
    bool dropped = false;
    bool stale = false;
    std::vector<CorruptedFault> corruptions;
    std::optional<std::uint32_t> longestList;
    std::optional<UnplugFault> unplug; /**< of the first rule that detaches */

    bool unplugs(Moment moment) const { return unplug && unplug->moment == moment; }

    /** Whether the instrument's answer does not arrive. */
    bool answerIsLost() const { return unplugs(Moment::During); }
};

CallEffects effectsOf(const std::vector<FaultAction>& actions);

/** Applies the corruptions that are meant for an answer of @p function.
    @param record of @p size bytes; bytes beyond are not touched */
void corrupt(const CallEffects& effects, Function function, void* record, std::size_t size);

} // namespace kvasim

#endif
