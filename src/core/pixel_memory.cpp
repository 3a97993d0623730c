// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "core/pixel_memory.h"

#include <cstdint>
#include <cstdlib>

#include <sys/mman.h>
#include <unistd.h>

namespace opcv {

namespace {

constexpr size_t kLargeBlock = size_t{4} << 20;    // smaller blocks hardly contain a whole huge page

// Only a hint: a kernel that does not grant it returns an error, which has no effect.
void askForHugePages(void* block, size_t bytes) {
    const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    const size_t skipped = -reinterpret_cast<uintptr_t>(block) & (page - 1);
    madvise(static_cast<unsigned char*>(block) + skipped, (bytes - skipped) & ~(page - 1), MADV_HUGEPAGE);
}

}    // namespace

void* allocatePixels(size_t bytes) {
    void* block = std::malloc(bytes);
    if (block && bytes >= kLargeBlock) askForHugePages(block, bytes);
    return block;
}

}    // namespace opcv
