#include "tests/soak/ProcessUse.h"

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <malloc.h>
#include <unistd.h>

// A sanitizer has an allocator of its own, which must not be replaced.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define VQTL4_SANITIZED_HEAP
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define VQTL4_SANITIZED_HEAP
#endif
#endif

namespace {

// Constant-initialised: the first calls come before any constructor has run.
std::atomic<qint64> blocks{0};

} // namespace

#ifdef VQTL4_SANITIZED_HEAP

const bool ProcessUse::isExact = false;

// Of the sanitizer's runtime; not every compiler brings the header,
// <sanitizer/allocator_interface.h>.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();

// That of the C library stands still under the sanitizer's own heap.
static std::size_t bytesOnTheHeap() {
    return __sanitizer_get_current_allocated_bytes();
}

#else

const bool ProcessUse::isExact = true;

static std::size_t bytesOnTheHeap() {
    const struct mallinfo2 use = mallinfo2();
    return use.uordblks + use.hblkhd;
}

static void* counted(void* block) {
    if (block)
        blocks.fetch_add(1, std::memory_order_relaxed);
    return block;
}

// The program's own functions take the place of the C library's, for all libraries as well, and
// call those by their other names.
extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);

void* malloc(std::size_t size) {
    return counted(__libc_malloc(size));
}

void* calloc(std::size_t count, std::size_t size) {
    return counted(__libc_calloc(count, size));
}

void* realloc(void* block, std::size_t size) {
    void* moved = __libc_realloc(block, size);
    if (!block)
        return counted(moved);
    if (!moved && size == 0) // has freed it
        blocks.fetch_sub(1, std::memory_order_relaxed);
    return moved;
}

void* memalign(std::size_t alignment, std::size_t size) {
    return counted(__libc_memalign(alignment, size));
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return memalign(alignment, size);
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
    void* made = memalign(alignment, size);
    if (!made)
        return ENOMEM;
    *block = made;
    return 0;
}

void free(void* block) {
    if (block)
        blocks.fetch_sub(1, std::memory_order_relaxed);
    __libc_free(block);
}

} // extern "C"

#endif

/** The entries of a folder without "." and "..". */
static int entryCount(const char* path) {
    return static_cast<int>(std::distance(std::filesystem::directory_iterator(path), {}));
}

ProcessUse ProcessUse::now() {
    const int openFiles = entryCount("/proc/self/fd") - 1; // the folder being read is one of them
    const int threads = entryCount("/proc/self/task");
    qint64 pages = -1; // the second number
    std::ifstream("/proc/self/statm") >> pages >> pages;
    return {blocks, static_cast<qint64>(bytesOnTheHeap()), pages * ::sysconf(_SC_PAGESIZE),
            openFiles, threads};
}

QString ProcessUse::text() const {
    return QString("heap %1 blocks, %2 bytes; resident %3 KiB; %4 open files; %5 threads")
        .arg(heapBlocks)
        .arg(heapBytes)
        .arg(residentBytes / 1024)
        .arg(openFiles)
        .arg(threads);
}
