/**
 * A bench that several programs may use: read again when its file has changed, and changed under
 * its lock. Not thread-safe.
 */
#ifndef SIMULATOR_BENCHSTORE_H
#define SIMULATOR_BENCHSTORE_H

#include "simulator/BenchFile.h"
#include "simulator/BenchLock.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace kvasim {

class BenchStore {
public:
    /** How to see that @p before has become `bench()`. */
    using Seen = std::function<void(const Bench& before)>;

    /** A bench in memory only. */
    explicit BenchStore(Bench bench) : m_bench(std::move(bench)) {}

    /** Opens a bench file; nothing is made beside one that is refused.
        @throws InputError as `readBenchFile` does */
    static std::unique_ptr<BenchStore> open(const std::string& path);

    /** Opens the bench of the environment; makes it from the built-in bench where it is the one of
        the user's data folder and is not there. A user without a home has the built-in bench in
        memory, which one line on standard error then says.
        @throws InputError as `readBenchFile` and `writeBenchFile` do */
    static std::unique_ptr<BenchStore> openOfEnvironment();

    const Bench& bench() const { return m_bench; }

    /** Absolute; empty: in memory only. */
    const std::string& path() const { return m_path; }

    /** Reads the file again if it has changed. A file that cannot be read or is refused leaves the
        bench as it is; one line on standard error says so once it has been that way for a second.
        @param seen told when the bench has changed */
    void refresh(const Seen& seen);

    /** Changes the bench: takes the lock, refreshes, lets @p make change a copy, saves that where
        @p make returns true, and gives the lock back. Waits for up to a second for a file that is
        just being saved by hand.
        @throws InputError when that fails, and whatever @p make throws; the bench is then as the
        file has it */
    void change(const std::function<bool(Bench& next)>& make, const Seen& seen);

    /** The locks of the file; null: in memory only. */
    BenchLock* lock() const { return m_lock.get(); }

private:
    void requireGoodFile(const Seen& seen);
    bool isBadForLong() const;

    Bench m_bench;
    std::string m_path;
    std::unique_ptr<BenchLock> m_lock;
    Stamp m_stamp{};

    using Clock = std::chrono::steady_clock;
    std::optional<Clock::time_point> m_badSince; /**< when the file was first refused */
    Stamp m_badStamp{};
    std::string m_refusal;
    bool m_complained = false;
};

} // namespace kvasim

#endif
