/**
 * One program at a time on one bench file.
 */
#ifndef SIMULATOR_BENCHLOCK_H
#define SIMULATOR_BENCHLOCK_H

#include <memory>
#include <string>

namespace kvasim {

/** Held while its object lives, released by the system at the latest with the process. Any
    thread. */
class BenchLock : public std::enable_shared_from_this<BenchLock> {
public:
    /** Locks a bench file; this process may hold one lock several times. The control folder is made
        and stays.
        @param bench the absolute path of an existing file
        @return null when nothing can be written beside the file, so that no program can save it
        @throws InputError when another program has it, or when the control folder is not fit */
    static std::shared_ptr<BenchLock> acquire(const std::string& bench);

    BenchLock(std::string bench, int descriptor);
    ~BenchLock();
    BenchLock(const BenchLock&) = delete;
    BenchLock& operator=(const BenchLock&) = delete;

    const std::string& bench() const { return m_bench; }

private:
    std::string m_bench;
    int m_descriptor;
    BenchLock* m_next = nullptr; // of those that this process holds
};

} // namespace kvasim

#endif
