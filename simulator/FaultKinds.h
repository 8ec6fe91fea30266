/**
 * The kinds of fault: for each its key in a rule, what it is for, and what it does.
 */
#ifndef SIMULATOR_FAULTKINDS_H
#define SIMULATOR_FAULTKINDS_H

#include "simulator/FaultRules.h"

#include <array>
#include <string>

namespace kvasim {

struct FaultKind {
    const char* key;
    unsigned int functions; /**< that can have it, a bit each */

    /** Checks the value of the key. @return it in its usual form
        @throws InputError with @p path and the reason */
    Json (*read)(const Json& value, const std::string& path, const FaultRule& rule);

    /** Adds what the rule does to what others do. */
    void (*apply)(const FaultRule& rule, CallEffects& effects);
};

const std::array<FaultKind, 7>& faultKinds();

/** Gives the rule its kind. @throws InputError as `FaultKind::read` does, and for a function that
    cannot have the kind. */
void readKind(const FaultKind& kind, const Json& value, const std::string& path, FaultRule& rule);

} // namespace kvasim

#endif
