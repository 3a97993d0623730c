#include "counting_heap.h"

#include <atomic>
#include <cerrno>
#include <new>

#include <malloc.h>

// NOLINTBEGIN(bugprone-reserved-identifier): the C library's allocator under its internal names, which cannot be taken
// over.
extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
void* __libc_memalign(size_t alignment, size_t size);
void __libc_free(void* block);
}
// NOLINTEND(bugprone-reserved-identifier)

namespace {

// The threads of OpenCV's pool allocate too.
std::atomic<bool> counting{false};
std::atomic<long> held{0};
std::atomic<long> most{0};
std::atomic<size_t> blocks{0};

void* taken(void* block) {
    if (!block || !counting.load(std::memory_order_relaxed)) return block;
    ++blocks;
    const long now = held += static_cast<long>(malloc_usable_size(block));
    long before = most;
    while (now > before && !most.compare_exchange_weak(before, now)) {
    }
    return block;
}

// Blocks from before the count are given back as well, so the balance may fall below zero.
void leaving(void* block) {
    if (block && counting.load(std::memory_order_relaxed)) held -= static_cast<long>(malloc_usable_size(block));
}

void* allocateOrThrow(size_t size) {
    void* block = taken(__libc_malloc(size));
    if (!block) throw std::bad_alloc();
    return block;
}

void release(void* block) {
    leaving(block);
    __libc_free(block);
}

}    // namespace

extern "C" {
void* malloc(size_t size) { return taken(__libc_malloc(size)); }
void* calloc(size_t nmemb, size_t size) { return taken(__libc_calloc(nmemb, size)); }
void free(void* ptr) { release(ptr); }
void* realloc(void* ptr, size_t size) {
    leaving(ptr);
    return taken(__libc_realloc(ptr, size));
}
void* memalign(size_t alignment, size_t size) { return taken(__libc_memalign(alignment, size)); }
void* aligned_alloc(size_t alignment, size_t size) { return memalign(alignment, size); }
int posix_memalign(void** memptr, size_t alignment, size_t size) {
    void* block = memalign(alignment, size);
    if (!block) return ENOMEM;
    *memptr = block;
    return 0;
}
}

void* operator new(size_t size) { return allocateOrThrow(size); }
void* operator new[](size_t size) { return allocateOrThrow(size); }
void* operator new(size_t size, const std::nothrow_t& /*tag*/) noexcept { return taken(__libc_malloc(size)); }
void* operator new[](size_t size, const std::nothrow_t& /*tag*/) noexcept { return taken(__libc_malloc(size)); }
void operator delete(void* block) noexcept { release(block); }
void operator delete[](void* block) noexcept { release(block); }
void operator delete(void* block, size_t /*size*/) noexcept { release(block); }
void operator delete[](void* block, size_t /*size*/) noexcept { release(block); }

namespace bench {

HeapUse heapUseOf(const std::function<void()>& call) {
    held = 0;
    most = 0;
    blocks = 0;
    counting = true;
    call();
    counting = false;
    return {static_cast<size_t>(most.load()), blocks.load()};
}

}    // namespace bench
