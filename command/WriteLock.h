#ifndef COMMAND_WRITELOCK_H
#define COMMAND_WRITELOCK_H

#include "command/Text.h"

/** A file lock, so that only one of these commands writes at a time. The kernel releases it when
    the process ends in any way. */
class WriteLock {
public:
    WriteLock() = default;
    /** Releases the lock. */
    ~WriteLock();
    WriteLock(const WriteLock&) = delete;
    WriteLock& operator=(const WriteLock&) = delete;

    /** Takes the lock. Empty on success; otherwise the process that holds it, or why the lock file
        cannot be used. */
    Text take();

private:
    int m_descriptor = -1;
};

#endif
