/**
 * Reading the log of calls while it grows.
 */
#ifndef SIMULATOR_KVASIM_FOLLOW_H
#define SIMULATOR_KVASIM_FOLLOW_H

#include "simulator/Json.h"

#include <functional>
#include <string>

namespace kvasim {

/** Hands over the calls of a log file, oldest first, and then those that are added to it, also when
    the file has been moved away and a new one begun.
    @param path the file; no calls where there is none
    @param goOn asked each time the end is reached; the log is read once more after it said no */
void followLog(const std::string& path, const std::function<void(const Json&)>& take,
               const std::function<bool()>& goOn);

} // namespace kvasim

#endif
