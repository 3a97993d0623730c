// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "failing_heap.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <cstring>

#include <malloc.h>

#include "support/own_malloc.h"

namespace {

// The blocks of an armed call; a fixed table, as it cannot allocate.
class LiveBlocks {
public:
    void clear() { used_ = 0; }
    void add(void* block) {
        if (used_ < blocks_.size()) blocks_[used_++] = block;
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

}    // namespace

bool own_malloc::mayTake() {
    if (!armed) return true;
    --untilFailure;
    if (untilFailure > 0 || (untilFailure < 0 && !lasting)) return true;
    failed = true;
    return false;
}

// Filled as far as the block may be used.
void own_malloc::taken(void* block, size_t kept) {
    if (armed) live.add(block);
    const int byte = fillByte.load(std::memory_order_relaxed);
    if (byte < 0) return;
    const size_t usable = malloc_usable_size(block);
    if (usable > kept) std::memset(static_cast<uint8_t*>(block) + kept, byte, usable - kept);
}

void own_malloc::leaving(void* block) {
    if (tracking) live.remove(block);
}

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
