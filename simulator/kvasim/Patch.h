/**
 * FIELD=VALUE, as `kvasim set` takes it, as a merge patch.
 */
#ifndef SIMULATOR_KVASIM_PATCH_H
#define SIMULATOR_KVASIM_PATCH_H

#include "simulator/JsonText.h"

#include <string>

namespace kvasim {

/** Adds an assignment to @p patch, a merge patch for @p instrument.
    @param assignment a dotted path into the instrument's JSON ("network.active.SSID",
        "calibration.committed.white.values.3", "device.firmware[1]"), "=" and the value: JSON, or,
        where the field holds a text, the text as it is
    @param instrument the whole instrument, for what its fields hold
    @throws InputError when it is no assignment, or its path leads through something that has no
        fields. Whether the field exists is for the program to say. */
void addAssignment(const std::string& assignment, const Json& instrument, Json& patch);

} // namespace kvasim

#endif
