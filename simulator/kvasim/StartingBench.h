/**
 * The bench that `kvasim bench init` writes.
 */
#ifndef SIMULATOR_KVASIM_STARTINGBENCH_H
#define SIMULATOR_KVASIM_STARTINGBENCH_H

#include <string>

namespace kvasim {

/** Writes a bench with comments that explain its fields.
    @throws InputError when the file is there already or cannot be written */
void writeStartingBench(const std::string& path);

} // namespace kvasim

#endif
