// Prints what the plausibility check finds in 10,000 seeded spectra and in 10,000 of each kind of
// damage to them. Fails when a figure misses its limit.
#include "command/Plausibility.h"
#include "tests/command/PlausibilityFigures.h"

#include <cstdio>

namespace {

constexpr int samples = 10000;

bool printFigures(const CalibrationAccessory& accessory, bool held) {
    const PlausibilityFigures alarms = falseAlarms(accessory, held, samples);
    std::printf("%-28s %8d %8d %8.2f %%\n", "undamaged: false alarms", alarms.samples, alarms.found,
                alarms.share());
    bool good = alarms.found <= mostFalseAlarms * samples;
    for (const NamedDamage& kind : namedDamages) {
        if (kind.needsHeld && !held)
            continue;
        const PlausibilityFigures figures = caught(accessory, held, kind.damage, samples);
        std::printf("%-28s %8d %8d %8.2f %% %8d", kind.name, figures.samples, figures.found,
                    figures.share(), figures.named);
        if (figures.atEnds < figures.samples)
            std::printf(" %8d of %d", figures.foundAtEnds, figures.atEnds);
        std::printf("\n");
        good = good && figures.share() >= leastCaught;
    }
    return good;
}

} // namespace

int main() {
    std::printf("Thresholds: deviation %.3f from the parabola through %zu neighbours, negligible "
                "%.4f, scale %.3f\n",
                PlausibilityLimits::deviation, PlausibilityLimits::neighbours,
                PlausibilityLimits::negligible, PlausibilityLimits::scale);
    bool good = true;
    for (const bool plate : {true, false}) {
        for (const bool held : {false, true}) {
            std::printf("\n%s, %s\n%-28s %8s %8s %10s %8s %s\n",
                        plate ? "White calibration plate" : "Ambient light adapter",
                        held ? "the instrument holds values" : "the instrument never had one", "",
                        "samples", "found", "share", "named", "at the ends");
            good = printFigures(plate ? CalibrationAccessory::whitePlate
                                      : CalibrationAccessory::ambientAdapter,
                                held) &&
                   good;
        }
    }
    std::printf("\n%s\n", good ? "All within the limits." : "NOT within the limits.");
    return good ? 0 : 1;
}
