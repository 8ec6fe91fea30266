#include "simulator/BenchStore.h"

#include <cerrno>
#include <filesystem>
#include <mutex>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace kvasim {

namespace {

constexpr std::chrono::seconds patience{1};
constexpr std::chrono::milliseconds pause{20};

// The bytes of the lock file that stand for something; none of them is ever written.
constexpr std::int64_t changePlace = 0;
constexpr std::int64_t usePlace = 1;

std::int64_t placeOf(std::int32_t serialNumber) {
    return 2 + std::int64_t{static_cast<std::uint32_t>(serialNumber)};
}

/** @return false with `errno` */
bool setLock(int file, int command, short type, std::int64_t place) {
    struct flock lock {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = place;
    lock.l_len = 1;
    return ::fcntl(file, command, &lock) == 0 && (command != F_GETLK || lock.l_type != F_UNLCK);
}

} // namespace

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
    while (!setLock(m_file, F_SETLKW, F_WRLCK, changePlace)) {
        if (errno != EINTR)
            fail(m_path, "cannot be locked", errno);
    }
}

void BenchLock::unlock() const {
    setLock(m_file, F_SETLK, F_UNLCK, changePlace);
}

bool BenchLock::hold(std::int32_t serialNumber) const {
    return m_file < 0 || setLock(m_file, F_SETLK, F_WRLCK, placeOf(serialNumber));
}

void BenchLock::release(std::int32_t serialNumber) const {
    setLock(m_file, F_SETLK, F_UNLCK, placeOf(serialNumber));
}

bool BenchLock::isHeld(std::int32_t serialNumber) const {
    return setLock(m_file, F_GETLK, F_WRLCK, placeOf(serialNumber));
}

void BenchLock::use() const {
    setLock(m_file, F_SETLK, F_RDLCK, usePlace); // shared
}

bool BenchLock::isUsed() const {
    return setLock(m_file, F_GETLK, F_WRLCK, usePlace);
}

std::unique_ptr<BenchStore> BenchStore::open(const std::string& path) {
    const Stamp stamp = stampOf(path); // before reading: a later change is seen as one
    Bench bench = readBenchFile(path);
    // Absolute, and no symbolic link: the program may change its working directory.
    return std::make_unique<BenchStore>(std::move(bench), std::filesystem::canonical(path), stamp);
}

std::unique_ptr<BenchStore> BenchStore::openOfEnvironment() {
    const std::string path = benchPathOfEnvironment();
    if (path.empty()) {
        complain("no home folder, the built-in bench is kept in memory only");
        return std::make_unique<BenchStore>(parseBench(builtInBenchText));
    }
    if (environmentOf("KVASIM_BENCH").empty() && stampOf(path) == Stamp{}) {
        const BenchLock lock(path);
        const std::lock_guard<const BenchLock> guard(lock);
        if (stampOf(path) == Stamp{}) // or another program has made it meanwhile
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
