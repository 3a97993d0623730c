// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "support/own_malloc.h"

#include <cerrno>
#include <new>

#include <malloc.h>

// The C library's allocator under its internal names, which cannot be interposed.
extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
void* __libc_memalign(size_t alignment, size_t size);
void __libc_free(void* block);
}

namespace {

bool mayTake() {
    if (own_malloc::mayTake()) return true;
    errno = ENOMEM;
    return false;
}

void* taken(void* block, size_t kept = 0) {
    if (block) own_malloc::taken(block, kept);
    return block;
}

void leaving(void* block) {
    if (block) own_malloc::leaving(block);
}

void* allocate(size_t size) { return mayTake() ? taken(__libc_malloc(size)) : nullptr; }

void* allocateAligned(size_t alignment, size_t size) {
    return mayTake() ? taken(__libc_memalign(alignment, size)) : nullptr;
}

void* allocateAligned(std::align_val_t alignment, size_t size) {
    return allocateAligned(static_cast<size_t>(alignment), size);
}

void* orThrow(void* block) {
    if (!block) throw std::bad_alloc();
    return block;
}

void release(void* block) {
    leaving(block);
    __libc_free(block);
}

}    // namespace

extern "C" {
void* malloc(size_t size) { return allocate(size); }
void* calloc(size_t nmemb, size_t size) {
    if (!mayTake()) return nullptr;
    void* block = __libc_calloc(nmemb, size);
    return taken(block, malloc_usable_size(block));
}
void* realloc(void* ptr, size_t size) {
    if (!mayTake()) return nullptr;
    leaving(ptr);
    const size_t kept = malloc_usable_size(ptr);
    return taken(__libc_realloc(ptr, size), kept);
}
void* memalign(size_t alignment, size_t size) { return allocateAligned(alignment, size); }
void* aligned_alloc(size_t alignment, size_t size) { return allocateAligned(alignment, size); }
int posix_memalign(void** memptr, size_t alignment, size_t size) {
    void* block = allocateAligned(alignment, size);
    if (!block) return ENOMEM;
    *memptr = block;
    return 0;
}
void free(void* ptr) { release(ptr); }
}

using Alignment = std::align_val_t;
using NoThrow = std::nothrow_t;

void* operator new(size_t size) { return orThrow(allocate(size)); }
void* operator new[](size_t size) { return orThrow(allocate(size)); }
void* operator new(size_t size, const NoThrow& /*tag*/) noexcept { return allocate(size); }
void* operator new[](size_t size, const NoThrow& /*tag*/) noexcept { return allocate(size); }
void* operator new(size_t size, Alignment to) { return orThrow(allocateAligned(to, size)); }
void* operator new[](size_t size, Alignment to) { return orThrow(allocateAligned(to, size)); }
void* operator new(size_t size, Alignment to, const NoThrow& /*tag*/) noexcept { return allocateAligned(to, size); }
void* operator new[](size_t size, Alignment to, const NoThrow& /*tag*/) noexcept { return allocateAligned(to, size); }

void operator delete(void* block) noexcept { release(block); }
void operator delete[](void* block) noexcept { release(block); }
void operator delete(void* block, size_t /*size*/) noexcept { release(block); }
void operator delete[](void* block, size_t /*size*/) noexcept { release(block); }
void operator delete(void* block, const NoThrow& /*tag*/) noexcept { release(block); }
void operator delete[](void* block, const NoThrow& /*tag*/) noexcept { release(block); }
void operator delete(void* block, Alignment /*to*/) noexcept { release(block); }
void operator delete[](void* block, Alignment /*to*/) noexcept { release(block); }
void operator delete(void* block, size_t /*size*/, Alignment /*to*/) noexcept { release(block); }
void operator delete[](void* block, size_t /*size*/, Alignment /*to*/) noexcept { release(block); }
void operator delete(void* block, Alignment /*to*/, const NoThrow& /*tag*/) noexcept { release(block); }
void operator delete[](void* block, Alignment /*to*/, const NoThrow& /*tag*/) noexcept { release(block); }
