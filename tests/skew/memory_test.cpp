// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Every allocation fails once: the status says so, nothing is written, nothing is left.
#include <gtest/gtest.h>

#include <cstring>
#include <utility>
#include <vector>

#include "drawing.h"
#include "failing_heap.h"

namespace {

void failEachAllocation(DrawnPage& drawn) {
    const KVIMG page = drawn.record();
    FailingHeap::arm(FailingHeap::kNever, FailingHeap::Failure::kOnce);
    const Finding expected = find(page);
    FailingHeap::disarm();
    ASSERT_EQ(expected.status, noErr);
    EXPECT_EQ(FailingHeap::liveBlocks(), 0U);

    for (const auto failure : {FailingHeap::Failure::kOnce, FailingHeap::Failure::kLasting})
        for (long n = 1;; ++n) {
            opcv_skew skew;
            std::memset(&skew, 0x5A, sizeof(skew));
            skew.struct_size = sizeof(skew);
            const opcv_skew before = skew;
            FailingHeap::arm(n, failure);
            const OSErr status = opcv_find_skew(&page, &skew);
            if (!FailingHeap::disarm()) break;
            ASSERT_EQ(status, memFullErr) << "allocation " << n;
            ASSERT_EQ(std::memcmp(&skew, &before, sizeof(skew)), 0) << "allocation " << n;
            ASSERT_EQ(FailingHeap::liveBlocks(), 0U) << "allocation " << n;
        }
}

TEST(OutOfMemory, OnAPageOfText) {
    DrawnPage drawn(700, 900, 0.03);
    failEachAllocation(drawn);
}

// A page with so few letters that they are counted, and looked at across.
TEST(OutOfMemory, OnAPageWithLittleText) {
    DrawnPage drawn(300, 330, 0.03, 44);
    failEachAllocation(drawn);
}

// It is too thin for lines, however long it is.
TEST(OutOfMemory, DoesNotMatterToAThinPage) {
    std::vector<uint8_t> pixels(31 * 50000, 255);
    for (const auto& [width, height] : {std::pair{31, 50000}, std::pair{50000, 31}}) {
        const KVIMG page = {pixels.data(), 8, width, height, width, 0};
        FailingHeap::arm(1, FailingHeap::Failure::kOnce);
        const Finding found = find(page);
        EXPECT_FALSE(FailingHeap::disarm()) << width << " x " << height;
        EXPECT_EQ(found.status, noErr);
        EXPECT_EQ(found.skew.outcome, OPCV_SKEW_UNSURE);
    }
}

}    // namespace
