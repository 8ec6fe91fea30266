#ifndef TESTS_SOAK_HEAPBLOCKS_H
#define TESTS_SOAK_HEAPBLOCKS_H

#include <cstdint>

// A sanitizer has an allocator of its own, which must not be replaced.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define VQTL4_SANITIZED_HEAP
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define VQTL4_SANITIZED_HEAP
#endif
#endif

#ifndef VQTL4_SANITIZED_HEAP
/** How many blocks of memory the process, its libraries included, was given and has not given back.
    Counted by functions in the place of malloc and its kin. Any thread. */
std::int64_t heapBlocks();
#endif

#endif
