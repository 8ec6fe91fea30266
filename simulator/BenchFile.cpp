#include "simulator/BenchFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
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

[[noreturn]] void fail(const std::string& path, const char* what, int error) {
    throw InputError(path + ": " + what + ": " + std::generic_category().message(error));
}

Stamp stampOf(const struct stat& status) {
#ifdef __APPLE__
    const timespec& time = status.st_mtimespec;
#else
    const timespec& time = status.st_mtim;
#endif
    return {time.tv_sec, time.tv_nsec, status.st_size, static_cast<std::int64_t>(status.st_ino)};
}

/** Gives the file a time after that of @p before. The system's own times are coarse: two changes
    within some milliseconds would have the same.
    @return false with `errno` */
bool setTimeAfter(const Stamp& before, int file) {
    timespec now{};
    static_cast<void>(::clock_gettime(CLOCK_REALTIME, &now));
    if (std::array<std::int64_t, 2>{now.tv_sec, now.tv_nsec} <=
        std::array<std::int64_t, 2>{before[0], before[1]}) {
        now.tv_sec = static_cast<std::time_t>(before[0] + (before[1] + 1) / 1000000000);
        now.tv_nsec = static_cast<long>((before[1] + 1) % 1000000000);
    }
    const timespec times[2] = {now, now};
    return ::futimens(file, times) == 0;
}

/** Writes the new file, with the mode and after the time of the one that it will replace, and
   closes it. @return 0 or the system's error number */
int writeBeside(std::FILE* stream, const std::string& path, const std::string& text, Stamp& stamp) {
    const int file = ::fileno(stream);
    struct stat old {};
    struct stat made {};
    const bool isThere = ::stat(path.c_str(), &old) == 0;
    const bool isWritten = ::fcntl(file, F_SETFD, FD_CLOEXEC) == 0 &&
                           (!isThere || ::fchmod(file, old.st_mode & 0777U) == 0) &&
                           std::fputs(text.c_str(), stream) >= 0 && std::fflush(stream) == 0 &&
                           setTimeAfter(stampOf(old), file) && ::fsync(file) == 0 &&
                           ::fstat(file, &made) == 0;
    const int error = isWritten ? 0 : errno;
    stamp = stampOf(made);
    return std::fclose(stream) != 0 && isWritten ? errno : error;
}

/** The folder's entry for the new file is flushed too, so that a power cut does not bring the old
    file back. Where a file system cannot do that, the file itself is still whole. */
void flushFolder(const std::string& folder) {
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_CLOEXEC | O_DIRECTORY);
    if (descriptor < 0)
        return;
    static_cast<void>(::fsync(descriptor));
    ::close(descriptor);
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

/** Makes the folder and those above it, for the owner only. */
void makeFolders(const fs::path& folder) {
    fs::path made;
    for (const fs::path& part : folder) {
        made /= part;
        const bool isMade = ::mkdir(made.c_str(), S_IRWXU) == 0;
        const int error = errno;
        std::error_code ignored;
        if (!isMade && !fs::is_directory(made, ignored))
            fail(made.string(), "cannot be made", error);
    }
}

} // namespace

Stamp stampOf(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? stampOf(status) : Stamp{};
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
    const int file = ::mkstemp(beside.data());
    if (file < 0)
        fail(path, "cannot be saved", errno);
    Stamp stamp{};
    std::FILE* stream = ::fdopen(file, "wb");
    int error = stream ? writeBeside(stream, path, text, stamp) : errno;
    if (!stream)
        ::close(file);
    if (error == 0 && ::rename(beside.c_str(), path.c_str()) != 0)
        error = errno;
    if (error != 0) {
        ::unlink(beside.c_str());
        fail(path, "cannot be saved", error);
    }
    flushFolder(fs::path(path).parent_path());
    return stamp;
}

std::string resolvedPath(const std::string& path) {
    std::error_code error;
    const fs::path resolved = fs::canonical(path, error);
    return error ? path : resolved.string();
}

std::string benchPathOfEnvironment() {
    const std::string named = environmentOf("KVASIM_BENCH");
    if (!named.empty())
        return named;
    const fs::path data = dataFolder();
    if (data.empty())
        return {};
    makeFolders(data / "vq-tl4-simulator");
    return data / "vq-tl4-simulator" / "bench.json";
}

std::string environmentOf(const char* name) {
    // Read on the caller's thread, as by every other function of the library.
    const char* const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe)
    return value == nullptr ? "" : value;
}

void complain(const std::string& message) {
    std::string line = message;
    std::replace_if(
        line.begin(), line.end(),
        [](char character) { return static_cast<unsigned char>(character) < 0x20; }, '?');
    std::fprintf(stderr, "libKVASDK (simulated): %s\n", line.c_str());
}

} // namespace kvasim
