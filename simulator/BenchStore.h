/**
 * A bench that several programs may use: read again when its file has changed, and changed under
 * its lock. Not thread-safe.
 */
#ifndef SIMULATOR_BENCHSTORE_H
#define SIMULATOR_BENCHSTORE_H

#include "simulator/BenchFile.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace kvasim {

/** The lock beside a bench file, FILE.lock: one change at a time, and who holds which instrument.
 *
 * The locks are the system's record locks. They belong to the process and end with it, however it
 * ends. Closing any descriptor of the file ends all of them, so a process has one object for a
 * bench, or none of the earlier one's locks counts any more. The file stays; nothing is in it. */
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
    bool hold(std::int32_t serialNumber) const;
    void release(std::int32_t serialNumber) const;

    /** Whether another program holds the instrument. */
    bool isHeld(std::int32_t serialNumber) const;

    /** Tells others that this program uses the bench, and whether another one does. */
    void use() const;
    bool isUsed() const;

private:
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

    /** Opens the bench of the environment; makes it from the built-in bench where it is the one of
        the user's data folder and is not there. A user without a home has the built-in bench in
        memory, which one line on standard error then says.
        @throws InputError as `readBenchFile` and `writeBenchFile` do */
    static std::unique_ptr<BenchStore> openOfEnvironment();

    const Bench& bench() const { return m_bench; }

    const std::string& path() const { return m_path; }

    /** Reads the file again if it has changed. A file that cannot be read or is refused leaves the
        bench as it is; one line on standard error says so once it has been that way for a second.
        @param seen told when the bench has changed */
    void refresh(const Seen& seen);

    /** Changes the bench: takes the lock, refreshes, lets @p make change a copy, saves that where
       it is another one, and gives the lock back. Waits for up to a second for a file that is just
        being saved by hand.
        @throws InputError when that fails, and whatever @p make throws; the bench is then as the
        file has it */
    void change(const std::function<void(Bench& next)>& make, const Seen& seen);

    const BenchLock& lock() const { return m_lock; }

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
