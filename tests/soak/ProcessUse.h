#ifndef TESTS_SOAK_PROCESSUSE_H
#define TESTS_SOAK_PROCESSUSE_H

#include <QString>

/** What this process holds of the machine. Linux only. */
struct ProcessUse {
    /** Whether blocks and resident memory say anything: under a sanitizer the blocks are not
        counted (0), and freed memory is kept back. */
    static const bool isExact;

    qint64 heapBlocks; ///< given to the process, its libraries included, and not given back
    qint64 heapBytes;  ///< as the allocator counts them, what it keeps ready for reuse included
    qint64 residentBytes;
    int openFiles;
    int threads;

    /** As of now. Whoever asks sees to it that nothing is under way. */
    static ProcessUse now();

    QString text() const;
};

#endif
