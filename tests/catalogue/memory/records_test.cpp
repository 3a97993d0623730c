// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// What functions that create records do with the caller's slot if they are out of memory.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>

#include "OPCV_dlib.h"
#include "core/ownership.h"
#include "failing_heap.h"
#include "records.h"

namespace {

TEST(OutOfMemory, PlaneAllocators) {
    int step = 0;
    FailingHeap::arm(1, FailingHeap::Failure::kOnce);
    short* samples = IPPShare_ippiMalloc_16s_C1(33, 2, &step);
    EXPECT_TRUE(FailingHeap::disarm());
    EXPECT_EQ(samples, nullptr);
    EXPECT_EQ(step, 128);
    step = 0;
    FailingHeap::arm(1, FailingHeap::Failure::kOnce);
    unsigned char* pixels = IPPMini_ippiMalloc_8u_C3(22, 1, &step);
    EXPECT_TRUE(FailingHeap::disarm());
    EXPECT_EQ(pixels, nullptr);
    EXPECT_EQ(step, 128);
}

// A caller's own record in the slot is released when the new one cannot be made.
TEST(OutOfMemory, AStaleRecordIsReleased) {
    const opcv::RecordPtr source = recordOf(20, 10, 8);
    KVImageDescription description{20, 10, 0, 0, 0, 8};
    KVImageDescription* record = &description;
    for (long n = 1; n <= 2; ++n) {
        constexpr long kStaleBlocks = 2;
        FailingHeap::arm(kStaleBlocks + n, FailingHeap::Failure::kOnce);
        KVIMG* slot = recordOf(5, 5, 24).release();
        ASSERT_EQ(FailingHeap::liveBlocks(), size_t{kStaleBlocks});
        EXPECT_EQ(RotateImageWithIPP(source.get(), &record, &slot, 90), memFullErr);
        EXPECT_TRUE(FailingHeap::disarm());
        EXPECT_EQ(slot, nullptr);
        EXPECT_EQ(FailingHeap::liveBlocks(), 0U);
    }
}

// If allocating the pixels fails, the functions free the block in the slot and leave the slot unchanged.
TEST(OutOfMemory, CreatorsFreeTheBlockInTheSlot) {
    const KVRect r = {0, 0, 10, 10};
    for (const auto creator : {CreateNewKVIMGPtr, CreateNewKVIMGPtrForUnite}) {
        FailingHeap::arm(2, FailingHeap::Failure::kOnce);
        auto* slot = static_cast<KVIMG*>(std::malloc(sizeof(KVIMG)));
        const auto stale = reinterpret_cast<uintptr_t>(slot);
        EXPECT_EQ(creator(&slot, &r, 8), memFullErr);
        EXPECT_TRUE(FailingHeap::disarm());
        EXPECT_EQ(reinterpret_cast<uintptr_t>(slot), stale);
        EXPECT_EQ(FailingHeap::liveBlocks(), 0U);
    }
}

TEST(OutOfMemory, NothingIsAllocatedForAnUnknownDepth) {
    const KVRect r = {0, 0, 10, 10};
    for (const auto creator : {CreateNewKVIMGPtr, CreateNewKVIMGPtrForUnite})
        for (const int depth : {0, 2, 16, 41}) {
            KVIMG* slot = nullptr;
            FailingHeap::arm(1, FailingHeap::Failure::kOnce);
            EXPECT_EQ(creator(&slot, &r, static_cast<unsigned char>(depth)), noErr);
            EXPECT_FALSE(FailingHeap::disarm()) << depth;
        }
}

}    // namespace
