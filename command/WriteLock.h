#ifndef COMMAND_WRITELOCK_H
#define COMMAND_WRITELOCK_H

#include "command/Text.h"

/** One of these commands at a time writes: a lock of the kernel's, which ends with its process,
    however that ends. */
class WriteLock {
public:
    WriteLock() = default;
    /** Gives the lock back. */
    ~WriteLock();
    WriteLock(const WriteLock&) = delete;
    WriteLock& operator=(const WriteLock&) = delete;

    /** Takes the lock. Empty when it has it; otherwise which process holds it, or why the lock
        file cannot be used. */
    Text take();

private:
    int m_descriptor = -1;
};

#endif
