#include "heap_meter.h"

#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <new>

// The C library's allocator under its internal names, which cannot be taken over.
extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
void* __libc_memalign(size_t alignment, size_t size);
void __libc_free(void* block);
}

namespace {

std::atomic<bool> running{false};
std::atomic<long> now{0};
std::atomic<long> most{0};

void* counted(void* block) {
    if (block && running) {
        const long after = now += static_cast<long>(malloc_usable_size(block));
        long before = most;
        while (after > before && !most.compare_exchange_weak(before, after)) {
        }
    }
    return block;
}

void discount(void* block) {
    if (block && running) now -= static_cast<long>(malloc_usable_size(block));
}

void* allocateOrThrow(size_t size) {
    void* block = counted(__libc_malloc(size));
    if (!block) throw std::bad_alloc();
    return block;
}

}    // namespace

extern "C" {
void* malloc(size_t size) { return counted(__libc_malloc(size)); }
void* calloc(size_t count, size_t size) { return counted(__libc_calloc(count, size)); }
void free(void* block) {
    discount(block);
    __libc_free(block);
}
void* realloc(void* block, size_t size) {
    discount(block);
    return counted(__libc_realloc(block, size));
}
void* memalign(size_t alignment, size_t size) { return counted(__libc_memalign(alignment, size)); }
void* aligned_alloc(size_t alignment, size_t size) { return memalign(alignment, size); }
int posix_memalign(void** out, size_t alignment, size_t size) {
    void* block = memalign(alignment, size);
    if (!block) return ENOMEM;
    *out = block;
    return 0;
}
}

void* operator new(size_t size) { return allocateOrThrow(size); }
void* operator new[](size_t size) { return allocateOrThrow(size); }
void operator delete(void* block) noexcept { free(block); }
void operator delete[](void* block) noexcept { free(block); }
void operator delete(void* block, size_t /*size*/) noexcept { free(block); }
void operator delete[](void* block, size_t /*size*/) noexcept { free(block); }

void HeapMeter::start() {
    now = 0;
    most = 0;
    running = true;
}

HeapMeter::Use HeapMeter::stop() {
    running = false;
    return {static_cast<size_t>(most.load()), static_cast<size_t>(std::max(0L, now.load()))};
}
