/**
 * A bench that several programs may use. The file is read again when it has changed, and is changed
 * under its lock. Not thread-safe.
 */
#ifndef SIMULATOR_BENCHSTORE_H
#define SIMULATOR_BENCHSTORE_H

#include "simulator/Bench.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <fcntl.h>

namespace kvasim {

/** Tells two states of a file apart. All zero: there is no file. */
struct Stamp {
    std::int64_t time = 0; /**< of its modification, in nanoseconds */
    std::int64_t size = 0;
    std::int64_t inode = 0;

    bool operator==(const Stamp& other) const {
        return time == other.time && size == other.size && inode == other.inode;
    }
};

Stamp stampOf(const std::string& path);

/** Reads a bench file. Comments are allowed in it.
    @throws InputError with the file and the reason: missing, not a regular file, larger than
    64 MiB, not JSON (with the line), damaged or of a newer version (with the field's path). */
Bench readBenchFile(const std::string& path);

/** Writes with one system call, so that lines of several programs do not mix.
    @return false with `errno` */
bool writeAtOnce(int file, const std::string& text);

/** @throws InputError always: the file, the operation that failed, and the system's reason. */
[[noreturn]] void fail(const std::string& path, const char* what, int error);

/** An environment variable; empty when it is not set. */
std::string environmentOf(const char* name);

/** Shows control characters as '?'. */
std::string printable(std::string text);

/** One printable line on standard error, in the library's name. */
void complain(const std::string& message);

/** The record locks on FILE.lock beside a bench file: one for changes, one for each instrument.
    A process loses them when it ends in any way, and when it closes any descriptor of the file:
    destroying one object releases the locks of every other object for the same bench. */
class BenchLock {
public:
    /** Opens the file, or creates it with access for its owner only. In a folder without write
        permission there is no lock: nothing is held then, and `lock` is refused.
        @param bench absolute path of the bench file; empty: every request is granted
        @throws InputError when it cannot be opened for another reason */
    explicit BenchLock(const std::string& bench);
    ~BenchLock();
    BenchLock(const BenchLock&) = delete;
    BenchLock& operator=(const BenchLock&) = delete;

    /** Waits for the lock for changes. For std::lock_guard; not for two threads at once.
        @throws InputError when it cannot be locked */
    void lock() const;
    void unlock() const;

    /** Locks an instrument for this program. @return false when another program has it */
    bool hold(std::int32_t serialNumber) const {
        return m_file < 0 || set(F_SETLK, F_WRLCK, placeOf(serialNumber));
    }
    void release(std::int32_t serialNumber) const { set(F_SETLK, F_UNLCK, placeOf(serialNumber)); }

    /** Whether another program holds the instrument. */
    bool isHeld(std::int32_t serialNumber) const {
        return set(F_GETLK, F_WRLCK, placeOf(serialNumber));
    }

    /** Marks the bench as used by this program; whether another program uses it. */
    void use() const { set(F_SETLK, F_RDLCK, usePlace); }
    bool isUsed() const { return set(F_GETLK, F_WRLCK, usePlace); }

private:
    // Positions of the locked bytes; the bytes are never written.
    static constexpr std::int64_t changePlace = 0;
    static constexpr std::int64_t usePlace = 1;
    static std::int64_t placeOf(std::int32_t serialNumber) {
        return 2 + std::int64_t{static_cast<std::uint32_t>(serialNumber)};
    }

    /** @return false with `errno`; for F_GETLK, whether another program has the lock */
    bool set(int command, short type, std::int64_t place) const;

    const std::string m_path;
    int m_file = -1;
};

class BenchStore {
public:
    /** Called after a change, with the bench before it. */
    using Seen = std::function<void(const Bench& before)>;

    /** @param path absolute path of the bench file; empty: the bench is in memory only
        @param stamp of that file when it was read */
    explicit BenchStore(Bench bench, const std::string& path = {}, const Stamp& stamp = {})
        : m_bench(std::move(bench)), m_path(path), m_lock(path), m_stamp(stamp) {}

    /** Opens a bench file; creates no lock file when the bench is refused.
        @throws InputError as `readBenchFile` does */
    static std::unique_ptr<BenchStore> open(const std::string& path);

    /** Opens the bench that `KVASIM_BENCH` names, or the one in the user's data folder, which is
       created from the built-in bench if it is missing. Without a home folder the built-in bench is
       used in memory, and one line on standard error says so.
        @throws InputError as `readBenchFile` and `writeBenchFile` do */
    static std::unique_ptr<BenchStore> openOfEnvironment();

    const Bench& bench() const { return m_bench; }
    const std::string& path() const { return m_path; }
    const BenchLock& lock() const { return m_lock; }

    /** Reads the file again if it has changed. An invalid file leaves the bench unchanged; after
       a second one line on standard error reports it.
        @param seen called when the bench has changed */
    void refresh(const Seen& seen);

    /** Changes the bench under its lock: refreshes, lets @p make change a copy, and saves that
       where it is another one. Waits for up to a second for a file that is being saved by hand.
        @throws InputError when that fails, and whatever @p make throws; nothing is changed then */
    void change(const std::function<void(Bench& next)>& make, const Seen& seen);

private:
    using Clock = std::chrono::steady_clock;

    /** Why the file is refused. */
    struct Refusal {
        Clock::time_point since;
        Stamp stamp;
        std::string reason;
        bool isTold;
    };

    bool isBadForLong() const;

    Bench m_bench;
    const std::string m_path;
    const BenchLock m_lock;
    Stamp m_stamp;
    std::optional<Refusal> m_refusal;
};

} // namespace kvasim

#endif
