#ifndef COMMAND_PLAUSIBILITY_H
#define COMMAND_PLAUSIBILITY_H

#include "command/Text.h"
#include "instrument/CalibrationAccessory.h"

#include <cstddef>
#include <vector>

/** A value that looks wrong. */
struct Implausible {
    std::size_t index = 0; ///< of the value, from 0
    float value = 0;
    Text why;
    Text expected;
};

/**
 * The values that look wrong, in their order; none for a row that is plausible.
 *
 * Each value is compared with its neighbours, and with those that the instrument holds.
 * @param newValues  as many as @p accessory has, each finite
 * @param oldValues  as many, as the instrument holds them; or null. All zero, as in an instrument
 *                   that never had the accessory, counts as null.
 */
std::vector<Implausible> findImplausible(const CalibrationAccessory& accessory,
                                         const float* newValues, const float* oldValues);

#endif
