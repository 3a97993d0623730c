// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>

#include "jpeg/marker_search.h"
#include "support/fenced_memory.h"
#include "support/random.h"

namespace {

size_t markerAt(const uint8_t* bytes, size_t count) {
    for (size_t i = 0; i < count; ++i)
        if (bytes[i] == 255 && (i + 1 == count || bytes[i + 1] != 0)) return i;
    return count;
}

// Bytes from a position to the end of a memory page that is followed by an inaccessible one.
void expectFound(FencedMemory& block, size_t begin, const char* what) {
    const uint8_t* from = block.data() + begin;
    const size_t count = block.size() - begin;
    EXPECT_EQ(findMarker(from, from + count) - from, static_cast<ptrdiff_t>(markerAt(from, count)))
        << what << ", " << count << " bytes";
}

TEST(FindMarker, StopsAtAnUnstuffed255) {
    Random random(17);
    FencedMemory block(200, FencedMemory::Fence::kBehind);
    for (int round = 0; round < 200; ++round) {
        const int oneIn = random.between(2, 60);
        for (size_t i = 0; i < block.size(); ++i) {
            const bool escaped = i > 0 && block.data()[i - 1] == 255 && !random.chance(4);
            block.data()[i] = escaped ? 0 : random.between(1, oneIn) == 1 ? 255 : random.byte();
        }
        for (size_t begin = 0; begin <= block.size(); ++begin) expectFound(block, begin, "coded data");
    }
}

TEST(FindMarker, FindsTheOnlyOneAnywhere) {
    FencedMemory block(150, FencedMemory::Fence::kBehind);
    for (const uint8_t successor : std::initializer_list<uint8_t>{1, 0xD0, 255}) {
        for (size_t at = 0; at < block.size(); ++at) {
            std::fill_n(block.data(), block.size(), uint8_t{0});
            block.data()[at] = 255;
            if (at + 1 < block.size()) block.data()[at + 1] = successor;
            expectFound(block, 0, "one marker");
            expectFound(block, std::min<size_t>(at, 3), "one marker");
        }
    }
}

TEST(FindMarker, FindsNoneAmongStuffed255s) {
    FencedMemory block(150, FencedMemory::Fence::kBehind);
    for (size_t i = 0; i < block.size(); ++i) block.data()[i] = i % 2 == 0 ? 255 : 0;
    for (size_t begin = 0; begin <= block.size(); ++begin) expectFound(block, begin, "escaped");
}

}    // namespace
