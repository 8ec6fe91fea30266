#ifndef COMMAND_PLAUSIBILITY_H
#define COMMAND_PLAUSIBILITY_H

#include "command/Text.h"
#include "instrument/CalibrationAccessory.h"

#include <cstddef>
#include <vector>

/** The thresholds; docs/plausibility.md says how they were found. */
namespace PlausibilityLimits {

/** A value is compared with the parabola through this many of its nearest neighbours. */
constexpr std::size_t neighbours = 4;

/** The greatest deviation from it, relative, for a value that is as uncertain as its expectation is
    not: 1.0 % in the middle of a row, 2.3 % at its ends, where the parabola has to reach further.
 */
constexpr double deviation = 0.007;

/** What is less than this share of the row's large values is nothing: values around zero, as at the
   end of a sensor's range, deviate by any factor. */
constexpr double negligible = 0.0005;

/** How many times larger or smaller than the instrument's the values may be as a whole: half way,
    as a factor, to a decimal point that moved by one place. */
constexpr double scale = 3.1622776601683795;

} // namespace PlausibilityLimits

/** A value that looks wrong. */
struct Implausible {
    std::size_t index = 0; ///< of the value, from 0; of the first when the row as a whole is wrong
    float value = 0;
    Text why;
    Text expected;
};

/**
 * The values that look wrong, in the order of the row; none for a row that is plausible.
 *
 * Each value is compared with its neighbours, and the row with the one that the instrument holds.
 * @param newValues  as many as @p accessory has, each finite
 * @param oldValues  as many, as the instrument holds them; or null. All zero, as in an instrument
 *                   that never had the accessory, or one that is no number, counts as null.
 */
std::vector<Implausible> findImplausible(const CalibrationAccessory& accessory,
                                         const float* newValues, const float* oldValues);

#endif
