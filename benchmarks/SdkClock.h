#ifndef BENCHMARKS_SDKCLOCK_H
#define BENCHMARKS_SDKCLOCK_H

#include <chrono>

/**
 * The time spent in libKVASDK. A program that is linked with it has functions of the library's
 * names of its own, which the linker prefers; each calls the library's and counts the time. They
 * are those that connecting and filling the settings dialog calls.
 */
namespace SdkClock {

/** In all calls so far. */
std::chrono::nanoseconds total();

/** How many calls there were. */
int calls();

} // namespace SdkClock

#endif
