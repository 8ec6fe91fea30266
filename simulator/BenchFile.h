/**
 * Bench files: where they are, read whole, and replaced whole.
 */
#ifndef SIMULATOR_BENCHFILE_H
#define SIMULATOR_BENCHFILE_H

#include "simulator/Bench.h"

#include <array>
#include <cstdint>
#include <string>

namespace kvasim {

/** Tells two states of a file apart: modification time in seconds and nanoseconds, size, inode. All
    zero: there is no file. */
using Stamp = std::array<std::int64_t, 4>;

Stamp stampOf(const std::string& path);

/** Reads a bench file. Comments are allowed in it.
    @throws InputError with the file and the reason: missing, no regular file, larger than 64 MiB,
    not JSON (with the line), damaged or of a newer version (with the path of the field). */
Bench readBenchFile(const std::string& path);

/** Puts @p bench in place of the file at once: whoever reads it finds the old one or the new one,
    whole. Comments of the old one are gone. Written beside the file, flushed to the disk and
    renamed; only the owner can read it, or whoever could read the file before. The caller has the
    lock of the bench.
    @param path of a file, not of a symbolic link
    @return the stamp of the new file; its time is later than that of the old one
    @throws InputError when that fails; the file is then as it was. */
Stamp writeBenchFile(const std::string& path, const Bench& bench);

/** The file behind symbolic links, by its absolute path; @p path where there is none. */
std::string resolvedPath(const std::string& path);

/** The bench that the environment asks for: the file that `KVASIM_BENCH` names, or the one of the
    user's data folder, which is made where it is not there.
    @return empty when the user has no home
    @throws InputError when the folder cannot be made */
std::string benchPathOfEnvironment();

/** An environment variable; empty where it is not set. */
std::string environmentOf(const char* name);

/** One line on standard error, in the library's name. Control characters are shown as '?'. */
void complain(const std::string& message);

} // namespace kvasim

#endif
