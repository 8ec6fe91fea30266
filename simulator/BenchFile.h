/**
 * Bench files: where they are, read whole, and replaced whole.
 */
#ifndef SIMULATOR_BENCHFILE_H
#define SIMULATOR_BENCHFILE_H

#include "simulator/Bench.h"

#include <cstdint>
#include <string>
#include <tuple>

namespace kvasim {

/** Tells two states of a file apart. All zero: there is no file. */
struct Stamp {
    std::int64_t time = 0; /**< of its modification, in nanoseconds */
    std::int64_t size = 0;
    std::int64_t inode = 0;

    bool operator==(const Stamp& other) const {
        return std::tie(time, size, inode) == std::tie(other.time, other.size, other.inode);
    }
};

Stamp stampOf(const std::string& path);

/** Reads a bench file. Comments are allowed in it.
    @throws InputError with the file and the reason: missing, no regular file, larger than 64 MiB,
    not JSON (with the line), damaged or of a newer version (with the path of the field). */
Bench readBenchFile(const std::string& path);

/** Puts @p bench in place of the file at once: whoever reads it finds the old one or the new one,
    whole. Only the owner can read it, or whoever could read the file before. The caller has the
    lock of the bench.
    @param path of a file, not of a symbolic link
    @return the stamp of the new file; its time is later than that of the old one
    @throws InputError when that fails; the file is then as it was. */
Stamp writeBenchFile(const std::string& path, const Bench& bench);

/** The bench that the environment asks for: the file that `KVASIM_BENCH` names, or the one of the
    user's data folder, which is made where it is not there.
    @return empty when the user has no home
    @throws InputError when the folder cannot be made */
std::string benchPathOfEnvironment();

/** An environment variable; empty where it is not set. */
std::string environmentOf(const char* name);

/** Writes in one call, so that programs with one file do not mix their texts.
    @return false with `errno` */
bool writeAtOnce(int file, const std::string& text);

/** @throws InputError always: the file, what has failed, and the system's reason. */
[[noreturn]] void fail(const std::string& path, const char* what, int error);

/** One line on standard error, in the library's name. Control characters are shown as '?'. */
void complain(const std::string& message);

} // namespace kvasim

#endif
