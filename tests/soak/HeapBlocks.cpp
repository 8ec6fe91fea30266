#include "tests/soak/HeapBlocks.h"

#include <atomic>
#include <cerrno>
#include <cstddef>

#ifndef VQTL4_SANITIZED_HEAP

namespace {

// Constant-initialised: the first calls come before any constructor has run.
std::atomic<std::int64_t> blocks{0};

void* counted(void* block) {
    if (block)
        blocks.fetch_add(1, std::memory_order_relaxed);
    return block;
}

} // namespace

std::int64_t heapBlocks() {
    return blocks.load();
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
    return counted(__libc_memalign(alignment, size));
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
    void* made = counted(__libc_memalign(alignment, size));
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
