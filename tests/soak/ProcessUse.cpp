#include "tests/soak/ProcessUse.h"

#include "tests/soak/HeapBlocks.h"

#include <cstddef>
#include <cstdio>
#include <dirent.h>
#include <unistd.h>

#ifdef VQTL4_SANITIZED_HEAP
// Of the sanitizer's runtime; not every compiler brings the header,
// <sanitizer/allocator_interface.h>.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#else
#include <malloc.h>
#endif

namespace {

#ifdef VQTL4_SANITIZED_HEAP

constexpr bool countsBlocks = false;

qint64 blocksOnTheHeap() {
    return 0;
}

// That of the C library stands still under the sanitizer's own heap.
qint64 bytesOnTheHeap() {
    return static_cast<qint64>(__sanitizer_get_current_allocated_bytes());
}

#else

constexpr bool countsBlocks = true;

qint64 blocksOnTheHeap() {
    return heapBlocks();
}

qint64 bytesOnTheHeap() {
    const struct mallinfo2 use = mallinfo2();
    return static_cast<qint64>(use.uordblks + use.hblkhd);
}

#endif

/** The second number of /proc/self/statm, which is in pages; -1 when it cannot be read. */
qint64 bytesInMemory() {
    std::FILE* file = std::fopen("/proc/self/statm", "re");
    if (!file)
        return -1;
    long long pages = -1;
    const bool isRead = std::fscanf(file, "%*d %lld", &pages) == 1;
    std::fclose(file);
    return isRead ? pages * ::sysconf(_SC_PAGESIZE) : -1;
}

/** The entries of a folder without "." and ".."; -1 when it cannot be read. */
int entryCount(const char* path) {
    DIR* folder = ::opendir(path);
    if (!folder)
        return -1;
    int count = -2;
    while (::readdir(folder))
        ++count;
    ::closedir(folder);
    return count;
}

} // namespace

const bool ProcessUse::isExact = countsBlocks;

ProcessUse ProcessUse::now() {
    const int openFiles = entryCount("/proc/self/fd") - 1; // the folder being read is one of them
    const int threads = entryCount("/proc/self/task");
    const qint64 resident = bytesInMemory();
    return {blocksOnTheHeap(), bytesOnTheHeap(), resident, openFiles, threads};
}

QString ProcessUse::text() const {
    return QStringLiteral("heap %1 blocks, %2 bytes; resident %3 KiB; %4 open files; %5 threads")
        .arg(QString::number(heapBlocks), QString::number(heapBytes),
             QString::number(residentBytes / 1024), QString::number(openFiles),
             QString::number(threads));
}
