#include "failing_heap.h"

#include <malloc.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
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

// The blocks of an armed call; a fixed table, as it cannot allocate.
class LiveBlocks {
public:
    void clear() { used_ = 0; }
    void add(void* block) {
        if (block && used_ < blocks_.size()) blocks_[used_++] = block;
    }
    void remove(void* block) {
        for (size_t i = used_; i-- > 0;)
            if (blocks_[i] == block) {
                blocks_[i] = blocks_[--used_];
                return;
            }
    }
    size_t count() const { return used_; }

private:
    std::array<void*, 1 << 14> blocks_{};
    size_t used_ = 0;
};

thread_local bool armed = false;
thread_local bool lasting = false;
thread_local bool failed = false;
thread_local bool tracking = false;
thread_local long untilFailure = 0;
LiveBlocks live;    // of the one thread that arms
std::atomic<int> fillByte{-1};

bool mustFail() {
    if (!armed) return false;
    --untilFailure;
    if (untilFailure > 0 || (untilFailure < 0 && !lasting)) return false;
    failed = true;
    errno = ENOMEM;
    return true;
}

void* tracked(void* block) {
    if (armed) live.add(block);
    return block;
}

// From its byte `kept` on, as far as the block may be used.
void* filled(void* block, size_t kept = 0) {
    const int byte = fillByte.load(std::memory_order_relaxed);
    if (!block || byte < 0) return block;
    const size_t usable = malloc_usable_size(block);
    if (usable > kept) std::memset(static_cast<uint8_t*>(block) + kept, byte, usable - kept);
    return block;
}

void* allocate(size_t size) { return mustFail() ? nullptr : filled(tracked(__libc_malloc(size))); }

void release(void* block) {
    if (tracking && block) live.remove(block);
    __libc_free(block);
}

void* allocateOrThrow(size_t size) {
    void* block = allocate(size);
    if (!block) throw std::bad_alloc();
    return block;
}

}    // namespace

extern "C" {
void* malloc(size_t size) { return allocate(size); }
void* calloc(size_t count, size_t size) { return mustFail() ? nullptr : tracked(__libc_calloc(count, size)); }
void free(void* block) { release(block); }
void* realloc(void* block, size_t size) {
    if (mustFail()) return nullptr;
    if (tracking && block) live.remove(block);
    const size_t kept = block ? malloc_usable_size(block) : 0;
    return filled(tracked(__libc_realloc(block, size)), kept);
}
void* memalign(size_t alignment, size_t size) {
    return mustFail() ? nullptr : filled(tracked(__libc_memalign(alignment, size)));
}
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
void* operator new(size_t size, const std::nothrow_t& /*tag*/) noexcept { return allocate(size); }
void* operator new[](size_t size, const std::nothrow_t& /*tag*/) noexcept { return allocate(size); }
void operator delete(void* block) noexcept { release(block); }
void operator delete[](void* block) noexcept { release(block); }
void operator delete(void* block, size_t /*size*/) noexcept { release(block); }
void operator delete[](void* block, size_t /*size*/) noexcept { release(block); }

void FailingHeap::arm(long n, Failure failure) {
    live.clear();
    untilFailure = n;
    lasting = failure == Failure::kLasting;
    failed = false;
    tracking = true;
    armed = true;
}

bool FailingHeap::disarm() {
    armed = false;
    return failed;
}

void FailingHeap::fillWith(int byte) { fillByte = byte; }

size_t FailingHeap::liveBlocks() { return live.count(); }
