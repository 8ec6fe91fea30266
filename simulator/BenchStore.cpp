#include "simulator/BenchStore.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

namespace kvasim {

namespace fs = std::filesystem;

namespace {

constexpr std::int64_t second = 1000000000; // in nanoseconds
constexpr std::int64_t maxFileSize = std::int64_t{64} * 1024 * 1024;
constexpr std::chrono::seconds patience{1};
constexpr std::chrono::milliseconds pause{20};

/** Writes the new file with the mode of the file that it will replace, and a later time: file times
    are coarse, so two changes within some milliseconds would have the same one.
    @return false with `errno` */
bool writeBeside(int file, const std::string& path, const std::string& text) {
    struct stat old {};
    const bool isThere = ::stat(path.c_str(), &old) == 0;
    const std::chrono::nanoseconds now = std::chrono::system_clock::now().time_since_epoch();
    const std::int64_t time = std::max<std::int64_t>(now.count(), stampOf(path).time + 1);
    const timespec stamp = {time / second, time % second};
    const timespec times[2] = {stamp, stamp};
    return (!isThere || ::fchmod(file, old.st_mode & 0777U) == 0) && writeAtOnce(file, text) &&
           ::futimens(file, times) == 0 && ::fsync(file) == 0;
}

/** Replaces the file atomically: a reader sees the complete old or new bench. A new file is
    readable only by its owner; an existing one keeps its permissions.
    @return the stamp of the new file; its time is later than that of the old one
    @throws InputError when that fails; the file is then unchanged. */
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

/** The folder for users' data, empty when the user has no home. */
fs::path dataFolder() {
    std::error_code ignored;
    const fs::path home = environmentOf("HOME");
    const bool hasHome = home.is_absolute() && fs::is_directory(home, ignored);
#ifdef __APPLE__
    return hasHome ? home / "Library/Application Support" : fs::path();
#else
    fs::path data = environmentOf("XDG_DATA_HOME");
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
    return {second * time.tv_sec + time.tv_nsec, status.st_size,
            static_cast<std::int64_t>(status.st_ino)};
}

Bench readBenchFile(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0)
        fail(path, "cannot be opened", errno);
    if (!S_ISREG(status.st_mode)) // a pipe without a writer would block the caller for ever
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

std::string printable(std::string text) {
    const auto isControl = [](unsigned char code) { return code < 0x20 || code == 0x7F; };
    std::replace_if(text.begin(), text.end(), isControl, '?');
    return text;
}

void complain(const std::string& message) {
    std::fprintf(stderr, "libKVASDK (simulated): %s\n", printable(message).c_str());
}

BenchLock::BenchLock(const std::string& bench) : m_path(bench.empty() ? "" : bench + ".lock") {
    if (m_path.empty())
        return;
    m_file = ::open(m_path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (m_file < 0 && errno != EACCES && errno != EROFS)
        fail(m_path, "cannot be opened", errno);
}

BenchLock::~BenchLock() {
    if (m_file >= 0)
        ::close(m_file);
}

void BenchLock::lock() const {
    if (m_path.empty())
        return;
    if (m_file < 0)
        fail(m_path, "cannot be opened", EACCES);
    while (!set(F_SETLKW, F_WRLCK, changePlace)) {
        if (errno != EINTR)
            fail(m_path, "cannot be locked", errno);
    }
}

void BenchLock::unlock() const {
    set(F_SETLK, F_UNLCK, changePlace);
}

bool BenchLock::set(int command, short type, std::int64_t place) const {
    struct flock lock {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = place;
    lock.l_len = 1;
    return ::fcntl(m_file, command, &lock) == 0 && (command != F_GETLK || lock.l_type != F_UNLCK);
}

std::unique_ptr<BenchStore> BenchStore::open(const std::string& path) {
    const Stamp stamp = stampOf(path); // before reading: a later change is seen as one
    Bench bench = readBenchFile(path);
    // Absolute, and no symbolic link: the program may change its working directory.
    return std::make_unique<BenchStore>(std::move(bench), fs::canonical(path), stamp);
}

std::unique_ptr<BenchStore> BenchStore::openOfEnvironment() {
    const std::string named = environmentOf("KVASIM_BENCH");
    if (!named.empty())
        return open(named);
    const fs::path data = dataFolder();
    if (data.empty()) {
        complain("no home folder, the built-in bench is kept in memory only");
        return std::make_unique<BenchStore>(parseBench(builtInBenchText));
    }
    const fs::path folder = data / "vq-tl4-simulator";
    std::error_code error;
    if (fs::create_directories(folder, error))
        fs::permissions(folder, fs::perms::owner_all, error);
    if (error)
        fail(folder, "cannot be made", error.value());
    const std::string path = folder / "bench.json";
    if (!fs::exists(path, error)) {
        const BenchLock lock(path);
        const std::lock_guard<const BenchLock> guard(lock);
        if (!fs::exists(path, error)) // another program may have created it meanwhile
            writeBenchFile(path, parseBench(builtInBenchText));
    }
    return open(path);
}

void BenchStore::refresh(const Seen& seen) {
    if (m_path.empty())
        return;
    const Stamp stamp = stampOf(m_path);
    if (stamp == m_stamp)
        return m_refusal.reset();
    if (m_refusal && m_refusal->isTold && stamp == m_refusal->stamp)
        return;
    try {
        const Bench before = std::exchange(m_bench, readBenchFile(m_path));
        m_stamp = stamp;
        m_refusal.reset();
        seen(before);
    } catch (const InputError& error) {
        if (!m_refusal)
            m_refusal = Refusal{Clock::now(), {}, {}, false};
        m_refusal->reason = error.what();
        m_refusal->stamp = stamp;
        if (isBadForLong() && !std::exchange(m_refusal->isTold, true))
            complain(m_refusal->reason + "; the last good state holds until that is put right");
    }
}

void BenchStore::change(const std::function<void(Bench& next)>& make, const Seen& seen) {
    const std::lock_guard<const BenchLock> guard(m_lock);
    for (refresh(seen); m_refusal; refresh(seen)) {
        if (isBadForLong())
            throw InputError(m_refusal->reason);
        std::this_thread::sleep_for(pause);
    }
    Bench next = m_bench;
    make(next);
    if (next == m_bench)
        return;
    if (!m_path.empty())
        m_stamp = writeBenchFile(m_path, next);
    seen(std::exchange(m_bench, std::move(next)));
}

bool BenchStore::isBadForLong() const {
    return Clock::now() - m_refusal->since >= patience;
}

} // namespace kvasim
