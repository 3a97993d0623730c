// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "support/heap_meter.h"

#include <algorithm>
#include <atomic>

#include <malloc.h>

#include "support/own_malloc.h"

namespace {

// The threads of OpenCV's pool allocate too.
std::atomic<bool> running{false};
std::atomic<long> held{0};
std::atomic<long> most{0};
std::atomic<size_t> blocks{0};

long sizeOf(void* block) { return static_cast<long>(malloc_usable_size(block)); }

}    // namespace

bool own_malloc::mayTake() { return true; }

void own_malloc::taken(void* block, size_t /*kept*/) {
    if (!running.load(std::memory_order_relaxed)) return;
    ++blocks;
    const long now = held += sizeOf(block);
    long before = most;
    while (now > before && !most.compare_exchange_weak(before, now)) {
    }
}

// Blocks from before the start may also be freed, so the balance may fall below zero.
void own_malloc::leaving(void* block) {
    if (running.load(std::memory_order_relaxed)) held -= sizeOf(block);
}

void HeapMeter::start() {
    held = 0;
    most = 0;
    blocks = 0;
    running = true;
}

HeapMeter::Use HeapMeter::stop() {
    running = false;
    return {static_cast<size_t>(most.load()), static_cast<size_t>(std::max(0L, held.load())), blocks.load()};
}
