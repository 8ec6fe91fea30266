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

/** The threshold for the relative deviation from it, divided by its standard error: this allows
    1.0 % in the middle of a row, and 2.3 % at its ends, where the parabola extrapolates. */
constexpr double deviation = 0.007;

/** Deviations below this share of the row's large values are ignored: values around zero, as at the
   end of a sensor's range, differ by any factor. */
constexpr double negligible = 0.0005;

/** The factor by which the row as a whole may be larger or smaller than the instrument's: half a
    decimal place on a logarithmic scale. */
constexpr double scale = 3.1622776601683795;

} // namespace PlausibilityLimits

/** A value that looks wrong. */
struct Implausible {
    std::size_t index = 0; ///< of the value, from 0; 0 when the row as a whole is wrong
    float value = 0;
    Text why;
    Text expected;
};

/**
 * The values that look wrong, in the order of the row; none for a row that is plausible.
 *
 * Each value is compared with its neighbours, and the row with the one that the instrument holds.
 * @param newValues  as many as @p accessory has, each finite
 * @param oldValues  as many, those of the instrument; or null. A row of zeros, as in an instrument
 *                   that never had the accessory, or one with a NaN or infinity counts as null.
 */
std::vector<Implausible> findImplausible(const CalibrationAccessory& accessory,
                                         const float* newValues, const float* oldValues);

#endif
