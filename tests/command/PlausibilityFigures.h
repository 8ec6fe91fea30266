#ifndef TESTS_COMMAND_PLAUSIBILITYFIGURES_H
#define TESTS_COMMAND_PLAUSIBILITYFIGURES_H

#include "instrument/CalibrationAccessory.h"
#include "tests/command/SpectrumSamples.h"

/** What the plausibility check says to a number of seeded samples. */
struct PlausibilityFigures {
    int samples = 0;
    int found = 0;       ///< samples in which something is implausible
    int named = 0;       ///< of these, the spoiled value is among what is named
    int atEnds = 0;      ///< samples whose spoiled value is one of the first or last two
    int foundAtEnds = 0; ///< of these, those in which something is implausible

    double share() const { return samples > 0 ? 100.0 * found / samples : 0; }
};

struct NamedDamage {
    const char* name;
    Damage damage;
    bool needsHeld; ///< cannot be told without the instrument's values
};

constexpr NamedDamage namedDamages[] = {
    {"decimal point missing", Damage::MissingPoint, false},
    {"decimal point misplaced", Damage::MisplacedPoint, false},
    {"sign", Damage::Sign, false},
    {"two digits exchanged", Damage::DigitsExchanged, false},
    {"digit doubled", Damage::DigitDoubled, false},
    {"digit lost", Damage::DigitLost, false},
    {"one percentage or ratio", Damage::OneInPercent, false},
    {"all values equal", Damage::AllEqual, false},
    {"all percentages or ratios", Damage::AllInPercent, true},
};

constexpr double leastCaught = 99.0;         ///< per cent of the damages of each kind
constexpr double mostFalseAlarms = 10 / 1e4; ///< of the undamaged

/** @param held  whether the instrument holds values, or never had the accessory */
PlausibilityFigures falseAlarms(const CalibrationAccessory& accessory, bool held, int samples);
PlausibilityFigures caught(const CalibrationAccessory& accessory, bool held, Damage damage,
                           int samples);

#endif
