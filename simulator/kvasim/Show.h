/**
 * What the command prints: JSON of the program as text for people.
 */
#ifndef SIMULATOR_KVASIM_SHOW_H
#define SIMULATOR_KVASIM_SHOW_H

#include "simulator/Json.h"

#include <string>

namespace kvasim {

/** The answer to "list", a line each. */
std::string listAsText(const Json& instruments);

/** An instrument as a table: what it is; its network settings, active and pending; its calibration
    data, committed and staged. */
std::string instrumentAsText(const Json& instrument);

/** The rules, a line each. */
std::string faultsAsText(const Json& faults);

/** One call of the log in a line. */
std::string callAsText(const Json& call);

} // namespace kvasim

#endif
