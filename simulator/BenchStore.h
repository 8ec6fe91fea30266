/**
 * A bench that several programs may use: read again when its file has changed, and changed under
 * its lock. Not thread-safe.
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
    @throws InputError with the file and the reason: missing, no regular file, larger than 64 MiB,
    not JSON (with the line), damaged or of a newer version (with the path of the field). */
Bench readBenchFile(const std::string& path);

/** Writes in one call, so that programs do not mix their texts. @return false with `errno` */
bool writeAtOnce(int file, const std::string& text);

/** @throws InputError always: the file, what has failed, and the system's reason. */
[[noreturn]] void fail(const std::string& path, const char* what, int error);

/** An environment variable; empty where it is not set. */
std::string environmentOf(const char* name);

/** Shows control characters as '?'. */
std::string printable(std::string text);

/** One printable line on standard error, in the library's name. */
void complain(const std::string& message);

/** The lock beside a bench file, FILE.lock: one change at a time, and who holds which instrument.
    The system's record locks belong to the process and end with it, however it ends, or when it
    closes any descriptor of the file: of an earlier object for the bench no lock counts. */
class BenchLock {
public:
    /** Opens the file and makes it for its owner where it is not there. In a folder that cannot be
        written there is no lock: nothing is held then, and `lock` is refused.
        @param bench the bench file, by its absolute path; empty: all is granted
        @throws InputError when it cannot be opened for another reason */
    explicit BenchLock(const std::string& bench);
    ~BenchLock();
    BenchLock(const BenchLock&) = delete;
    BenchLock& operator=(const BenchLock&) = delete;

    /** Waits for the right to change the bench. For std::lock_guard; not for two threads at once.
        @throws InputError when there is none to be had */
    void lock() const;
    void unlock() const;

    /** Holds an instrument for this program. @return false when another program does */
    bool hold(std::int32_t serialNumber) const {
        return m_file < 0 || set(F_SETLK, F_WRLCK, placeOf(serialNumber));
    }
    void release(std::int32_t serialNumber) const { set(F_SETLK, F_UNLCK, placeOf(serialNumber)); }

    /** Whether another program holds the instrument. */
    bool isHeld(std::int32_t serialNumber) const {
        return set(F_GETLK, F_WRLCK, placeOf(serialNumber));
    }

    /** Tells others that this program uses the bench, and whether another one does. */
    void use() const { set(F_SETLK, F_RDLCK, usePlace); }
    bool isUsed() const { return set(F_GETLK, F_WRLCK, usePlace); }

private:
    // The bytes of the file that stand for something; none of them is ever written.
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
    /** How to see that @p before has become `bench()`. */
    using Seen = std::function<void(const Bench& before)>;

    /** @param path of the file of the bench, absolute; empty: it is in memory only
        @param stamp of that file when it was read */
    explicit BenchStore(Bench bench, const std::string& path = {}, const Stamp& stamp = {})
        : m_bench(std::move(bench)), m_path(path), m_lock(path), m_stamp(stamp) {}

    /** Opens a bench file; nothing is made beside one that is refused.
        @throws InputError as `readBenchFile` does */
    static std::unique_ptr<BenchStore> open(const std::string& path);

    /** Opens the bench that `KVASIM_BENCH` names, or the one of the user's data folder, which is
       made from the built-in bench where it is not there. A user without a home has the built-in
       bench in memory, which one line on standard error then says.
        @throws InputError as `readBenchFile` and `writeBenchFile` do */
    static std::unique_ptr<BenchStore> openOfEnvironment();

    const Bench& bench() const { return m_bench; }
    const std::string& path() const { return m_path; }
    const BenchLock& lock() const { return m_lock; }

    /** Reads the file again if it has changed. A file that is refused leaves the bench as it is;
       one line on standard error says so once it has been that way for a second.
        @param seen told when the bench has changed */
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
