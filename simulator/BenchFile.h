/**
 * Where benches are kept.
 */
#ifndef SIMULATOR_BENCHFILE_H
#define SIMULATOR_BENCHFILE_H

#include "simulator/Bench.h"
#include "simulator/BenchLock.h"

#include <memory>
#include <string>

namespace kvasim {

/** A bench and the file that it lives in. */
struct StoredBench {
    Bench bench;
    std::string path;                /**< absolute; empty: in memory only */
    std::shared_ptr<BenchLock> lock; /**< null: in memory only, or a file that is only read */
};

/** Reads a bench file. The file is only read, never changed.
    Comments are allowed in it.
    @throws InputError with the file and the reason: missing, no regular file, larger than 64 MiB,
    not JSON (with the line), damaged or of a newer version (with the path of the field). */
StoredBench loadBenchFile(const std::string& path);

/** Reads a bench file and keeps other programs from it.
    @throws InputError as `loadBenchFile` and `BenchLock::acquire` do */
StoredBench openBenchFile(const std::string& path);

/** Puts @p bench in place of the file at once: whoever reads it finds the old one or the new one,
    whole. Comments of the old one are gone. Written beside the file, flushed to the disk and
   renamed; only the owner can read it, or whoever could read the file before. A symbolic link stays
   and its target is replaced.
    @throws InputError when that fails; the file is then as it was. */
void saveBenchFile(const std::string& path, const Bench& bench);

/** The bench that the environment asks for: the file that `KVASIM_BENCH` names; without it the file
    of the user's data folder, made with the built-in bench where there is none; where the user has
    no home, the built-in bench in memory, which one line on standard error then says.
    @throws InputError as `loadBenchFile` and `saveBenchFile` do. */
StoredBench loadBenchFromEnvironment();

/** One line on standard error, in the library's name. Control characters are shown as '?'. */
void complain(const std::string& message);

} // namespace kvasim

#endif
