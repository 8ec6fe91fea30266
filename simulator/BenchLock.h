/**
 * The lock beside a bench file, FILE.lock: one change at a time, and who holds which instrument.
 *
 * The locks are the system's record locks. They belong to the process and end with it, however it
 * ends. Closing any descriptor of the file ends all of them, so a process has one object for a
 * bench, or none of the earlier one's locks counts any more. The file stays; nothing is in it.
 */
#ifndef SIMULATOR_BENCHLOCK_H
#define SIMULATOR_BENCHLOCK_H

#include <cstdint>
#include <string>

namespace kvasim {

class BenchLock {
public:
    /** Opens the file and makes it for its owner where it is not there. In a folder that cannot be
        written there is no lock: nothing is held then, and `lock` is refused.
        @param bench the bench file, by its absolute path
        @throws InputError when it cannot be opened for another reason */
    explicit BenchLock(const std::string& bench);
    ~BenchLock();
    BenchLock(const BenchLock&) = delete;
    BenchLock& operator=(const BenchLock&) = delete;

    /** Waits for the right to change the bench. For std::lock_guard; not for two threads at once.
        @throws InputError when there is none to be had */
    void lock();
    void unlock();

    /** Holds an instrument for this program. @return false when another program does */
    bool hold(std::int32_t serialNumber);
    void release(std::int32_t serialNumber);

    /** Whether another program holds the instrument. */
    bool isHeld(std::int32_t serialNumber) const;

    /** Tells others that this program uses the bench. */
    void use();

    /** Whether another program uses the bench. */
    bool isUsed() const;

private:
    bool set(short type, std::int64_t place, bool wait = false);
    bool isTaken(std::int64_t place) const;

    std::string m_path;
    int m_file;
};

} // namespace kvasim

#endif
