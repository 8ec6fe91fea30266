#include "tests/command/PlausibilityFigures.h"

#include "command/Plausibility.h"

#include <algorithm>

namespace {

constexpr std::uint64_t seed = 20260417;

std::vector<Implausible> check(const CalibrationAccessory& accessory, bool held,
                               const SpectrumSample& sample) {
    return findImplausible(accessory, sample.values().data(), held ? sample.held.data() : nullptr);
}

} // namespace

PlausibilityFigures falseAlarms(const CalibrationAccessory& accessory, bool held, int samples) {
    SpectrumSamples source(accessory, seed);
    PlausibilityFigures figures;
    for (; figures.samples < samples; ++figures.samples)
        figures.found += check(accessory, held, source.next()).empty() ? 0 : 1;
    return figures;
}

PlausibilityFigures caught(const CalibrationAccessory& accessory, bool held, Damage damage,
                           int samples) {
    SpectrumSamples source(accessory, seed + static_cast<std::uint64_t>(damage) + 1);
    PlausibilityFigures figures;
    for (; figures.samples < samples; ++figures.samples) {
        std::size_t index = 0;
        const SpectrumSample sample = source.next(damage, index);
        const std::vector<Implausible> found = check(accessory, held, sample);
        const bool isNamed = std::any_of(found.begin(), found.end(),
                                         [&](const Implausible& i) { return i.index == index; });
        const bool isAtEnd = index < 2 || index + 2 >= accessory.valueCount;
        figures.found += found.empty() ? 0 : 1;
        figures.named += isNamed ? 1 : 0;
        figures.atEnds += isAtEnd ? 1 : 0;
        figures.foundAtEnds += isAtEnd && !found.empty() ? 1 : 0;
    }
    return figures;
}
