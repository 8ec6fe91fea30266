/**
 * The benches that are compiled in. The build makes them from their files.
 */
#ifndef SIMULATOR_BENCHTEXTS_H
#define SIMULATOR_BENCHTEXTS_H

namespace kvasim {

extern const char* const builtInBenchText;  /**< benches/usb-and-network.json */
extern const char* const startingBenchText; /**< kvasim/starting-bench.json */

} // namespace kvasim

#endif
