#include "simulator/BenchFile.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kvasim {

namespace fs = std::filesystem;

namespace {

constexpr std::int64_t maxFileSize = std::int64_t{64} * 1024 * 1024;

/** Gives the file a time after that of @p before. The system's own times are coarse: two changes
    within some milliseconds would have the same.
    @return false with `errno` */
bool setTimeAfter(const Stamp& before, int file) {
    using Nanoseconds = std::chrono::nanoseconds;
    const Nanoseconds now = std::chrono::system_clock::now().time_since_epoch();
    const std::int64_t time = std::max<std::int64_t>(now.count(), before.time + 1);
    const timespec stamp = {time / Nanoseconds(std::chrono::seconds(1)).count(),
                            time % Nanoseconds(std::chrono::seconds(1)).count()};
    const timespec times[2] = {stamp, stamp};
    return ::futimens(file, times) == 0;
}

/** Writes the new file, with the mode and after the time of the one that it will replace.
    @return false with `errno` */
bool writeBeside(int file, const std::string& path, const std::string& text) {
    struct stat old {};
    const bool isThere = ::stat(path.c_str(), &old) == 0;
    return (!isThere || ::fchmod(file, old.st_mode & 0777U) == 0) && writeAtOnce(file, text) &&
           setTimeAfter(stampOf(path), file) && ::fsync(file) == 0;
}

/** The folder for users' data, empty when the user has no home. */
fs::path dataFolder() {
    std::error_code ignored;
    const fs::path home = environmentOf("HOME");
    const bool hasHome = home.is_absolute() && fs::is_directory(home, ignored);
#ifdef __APPLE__
    return hasHome ? home / "Library/Application Support" : fs::path();
#else
    const fs::path data = environmentOf("XDG_DATA_HOME");
    if (data.is_absolute())
        return data;
    return hasHome ? home / ".local/share" : fs::path();
#endif
}

} // namespace

Stamp stampOf(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0)
        return {};
#ifdef __APPLE__
    const timespec& time = status.st_mtimespec;
#else
    const timespec& time = status.st_mtim;
#endif
    return {std::int64_t{time.tv_sec} * 1000000000 + time.tv_nsec, status.st_size,
            static_cast<std::int64_t>(status.st_ino)};
}

Bench readBenchFile(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0)
        fail(path, "cannot be opened", errno);
    if (!S_ISREG(status.st_mode)) // a pipe without a writer would hold the caller for ever
        throw InputError(path + ": is not a regular file");
    if (status.st_size > maxFileSize)
        throw InputError(path + ": is larger than 64 MiB");
    std::ifstream file(path, std::ios::binary);
    if (!file)
        fail(path, "cannot be opened", errno);
    const std::string text(std::istreambuf_iterator<char>(file), {});
    try {
        return parseBench(text);
    } catch (const InputError& error) {
        throw InputError(path + ": " + error.what());
    }
}

Stamp writeBenchFile(const std::string& path, const Bench& bench) {
    const std::string text = formatJson(benchToJson(bench));
    std::string beside = path + ".XXXXXX";
    const int file = ::mkostemp(beside.data(), O_CLOEXEC);
    if (file < 0)
        fail(path, "cannot be saved", errno);
    int error = writeBeside(file, path, text) ? 0 : errno;
    const Stamp stamp = stampOf(beside);
    if (::close(file) != 0 && error == 0)
        error = errno;
    if (error == 0 && ::rename(beside.c_str(), path.c_str()) != 0)
        error = errno;
    if (error != 0) {
        ::unlink(beside.c_str());
        fail(path, "cannot be saved", error);
    }
    return stamp;
}

std::string benchPathOfEnvironment() {
    const std::string named = environmentOf("KVASIM_BENCH");
    if (!named.empty())
        return named;
    const fs::path data = dataFolder();
    if (data.empty())
        return {};
    const fs::path folder = data / "vq-tl4-simulator";
    std::error_code error;
    if (fs::create_directories(folder, error))
        fs::permissions(folder, fs::perms::owner_all, error);
    if (error)
        fail(folder, "cannot be made", error.value());
    return folder / "bench.json";
}

std::string environmentOf(const char* name) {
    // Read on the caller's thread, as by every other function of the library.
    const char* const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe)
    return value == nullptr ? "" : value;
}

bool writeAtOnce(int file, const std::string& text) {
    const ssize_t written = ::write(file, text.data(), text.size());
    const bool isWhole = written == static_cast<ssize_t>(text.size());
    if (written >= 0 && !isWhole)
        errno = ENOSPC;
    return isWhole;
}

void fail(const std::string& path, const char* what, int error) {
    throw InputError(path + ": " + what + ": " + std::generic_category().message(error));
}

void complain(const std::string& message) {
    std::string line = message;
    const auto isControl = [](char character) {
        return static_cast<unsigned char>(character) < 0x20;
    };
    std::replace_if(line.begin(), line.end(), isControl, '?');
    std::fprintf(stderr, "libKVASDK (simulated): %s\n", line.c_str());
}

} // namespace kvasim
