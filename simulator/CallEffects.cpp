#include "simulator/CallEffects.h"

#include "simulator/AnswerFields.h"

#include <algorithm>

namespace kvasim {

namespace {

struct Gather {
    CallEffects& effects;

    void operator()(const ResultFault& fault) const {
        if (!effects.result)
            effects.result = fault.result;
    }
    void operator()(const DelayFault& fault) const {
        effects.delay += std::chrono::milliseconds(fault.milliseconds);
    }
    void operator()(const DroppedFault& /*fault*/) const { effects.dropped = true; }
    void operator()(const StaleFault& /*fault*/) const { effects.stale = true; }
    void operator()(const CorruptedFault& fault) const { effects.corruptions.push_back(fault); }
    void operator()(const ShortListFault& fault) const {
        effects.longestList = std::min(fault.entries, effects.longestList.value_or(UINT32_MAX));
    }
    void operator()(const UnplugFault& fault) const {
        if (!effects.unplug)
            effects.unplug = fault;
    }
};

} // namespace

CallEffects effectsOf(const std::vector<FaultAction>& actions) {
    CallEffects effects;
    for (const FaultAction& action : actions)
        std::visit(Gather{effects}, action);
    return effects;
}

void corrupt(const CallEffects& effects, Function function, void* record, std::size_t size) {
    auto* bytes = static_cast<std::uint8_t*>(record);
    for (const CorruptedFault& fault : effects.corruptions) {
        const auto range = fault.field.empty()
                               ? ByteRange{fault.offset, 1}
                               : answerField(function, fault.field).value_or(ByteRange{size, 0});
        const std::size_t end = std::min(size, range.offset + range.size);
        for (std::size_t index = range.offset; index < end; ++index)
            bytes[index] =
                fault.value.value_or(static_cast<std::uint8_t>(bytes[index] ^ fault.flipped));
    }
}

} // namespace kvasim
