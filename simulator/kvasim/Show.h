/**
 * What the command prints: JSON as text for people.
 */
#ifndef SIMULATOR_KVASIM_SHOW_H
#define SIMULATOR_KVASIM_SHOW_H

#include "simulator/BenchStore.h"

#include <functional>
#include <string>

namespace kvasim {

/** The instruments of a bench, an object each, as `kvasim list --json` prints them. */
Json listOf(const BenchStore& store);

// One line for each instrument, field of an instrument, rule, call.
std::string listAsText(const Json& instruments);
std::string instrumentAsText(const Json& instrument);
std::string faultsAsText(const Json& faults);
std::string callAsText(const Json& call);

/** Passes the calls of a log file to @p take, oldest first, and then those that are added, also
    after the file was renamed and a new one begun.
    @param path the file; without it there are no calls
    @param goOn called each time the end is reached; after false the log is read once more */
void followLog(const std::string& path, const std::function<void(const Json&)>& take,
               const std::function<bool()>& goOn);

} // namespace kvasim

#endif
