// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "OPCV_dlib.h"
#include "core/ownership.h"

namespace {

static_assert(offsetof(KVIMG, data) == 0 && offsetof(KVIMG, depth) == 8 && offsetof(KVIMG, width) == 12);
static_assert(offsetof(KVIMG, height) == 16 && offsetof(KVIMG, rowBytes) == 20 && offsetof(KVIMG, size) == 24);
static_assert(offsetof(KVRect, top) == 0 && offsetof(KVRect, left) == 4);
static_assert(offsetof(KVRect, bottom) == 8 && offsetof(KVRect, right) == 12);
static_assert(offsetof(KVImageDescription, verticalResolution) == 12 && offsetof(KVImageDescription, depth) == 20);
static_assert(offsetof(KVImageHeader, depth) == 16 && offsetof(KVImageHeader, width) == 20);
static_assert(offsetof(KVImageHeader, height) == 24 && offsetof(KVImageHeader, rowStep) == 28);

using Creator = OSErr (*)(KVIMG**, const KVRect*, unsigned char);

KVRect rectOf(int width, int height) { return {3, -4, 3 + height, -4 + width}; }

void expectRecord(Creator creator, int width, int height, unsigned char depth, int rowBytes) {
    const KVRect r = rectOf(width, height);
    KVIMG* made = nullptr;
    ASSERT_EQ(creator(&made, &r, depth), noErr);
    ASSERT_NE(made, nullptr);
    const opcv::RecordPtr owner(made);
    EXPECT_EQ(made->depth, depth);
    EXPECT_EQ(made->width, width);
    EXPECT_EQ(made->height, height);
    EXPECT_EQ(made->rowBytes, rowBytes);
    EXPECT_EQ(made->size, rowBytes * height);
    ASSERT_NE(made->data, nullptr);
    std::memset(made->data, 0xAB, static_cast<size_t>(made->size));
}

TEST(KVImage, SetRectTakesLeftTopRightBottom) {
    KVRect r{};
    KVSetRect(&r, 1, 2, 3, 4);
    EXPECT_EQ(r.left, 1);
    EXPECT_EQ(r.top, 2);
    EXPECT_EQ(r.right, 3);
    EXPECT_EQ(r.bottom, 4);
}

TEST(KVImage, RowRules) {
    for (const Creator creator : {CreateNewKVIMGPtr, CreateNewKVIMGPtrForUnite}) {
        expectRecord(creator, 100, 10, 1, 16);
        expectRecord(creator, 128, 10, 1, 16);
        expectRecord(creator, 129, 10, 1, 32);
        expectRecord(creator, 100, 10, 8, 112);
        expectRecord(creator, 112, 10, 8, 112);
        expectRecord(creator, 113, 10, 40, 128);
        expectRecord(creator, 100, 10, 40, 112);
        expectRecord(creator, 100, 10, 24, 300);
        expectRecord(creator, 100, 10, 32, 400);
        expectRecord(creator, 101, 10, 32, 416);
    }
    for (int width = 1; width < 40; ++width) {
        expectRecord(CreateNewKVIMGPtr, width, 3, 24, 3 * width);
        expectRecord(CreateNewKVIMGPtrForUnite, width, 3, 24, (3 * width + 3) / 4 * 4);
    }
}

TEST(KVImage, UnknownDepthsReturnZeroAndCreateNothing) {
    const KVRect r = rectOf(10, 10);
    KVIMG untouched{};
    for (const Creator creator : {CreateNewKVIMGPtr, CreateNewKVIMGPtrForUnite})
        for (int depth = 0; depth < 256; ++depth) {
            if (depth == 1 || depth == 8 || depth == 24 || depth == 32 || depth == 40) continue;
            KVIMG* out = &untouched;
            ASSERT_EQ(creator(&out, &r, static_cast<unsigned char>(depth)), noErr) << depth;
            ASSERT_EQ(out, &untouched) << depth;
        }
}

TEST(KVImage, NullArgumentsReturnZero) {
    const KVRect r = rectOf(10, 10);
    KVIMG untouched{};
    KVIMG* out = &untouched;
    for (const Creator creator : {CreateNewKVIMGPtr, CreateNewKVIMGPtrForUnite}) {
        EXPECT_EQ(creator(&out, nullptr, 8), noErr);
        EXPECT_EQ(creator(nullptr, &r, 8), noErr);
        EXPECT_EQ(creator(nullptr, nullptr, 8), noErr);
    }
    EXPECT_EQ(out, &untouched);
}

TEST(KVImage, AnEmptyRectangleMakesAnEmptyRecord) {
    expectRecord(CreateNewKVIMGPtr, 0, 7, 8, 0);
    expectRecord(CreateNewKVIMGPtr, 7, 0, 24, 21);
}

TEST(KVImage, NegativeSizesAreOutOfMemory) {
    for (const Creator creator : {CreateNewKVIMGPtr, CreateNewKVIMGPtrForUnite}) {
        const KVRect inverted = {0, 100, 10, 0};
        KVIMG* out = nullptr;
        EXPECT_EQ(creator(&out, &inverted, 8), memFullErr);
        EXPECT_EQ(out, nullptr);
    }
    // Twice negative is positive, and -5 rounds up to 0.
    expectRecord(CreateNewKVIMGPtr, -100, -10, 8, -96);
    expectRecord(CreateNewKVIMGPtr, -5, -10, 8, 0);
    // Bits to bytes rounds down on this side of 0 as well: (-128 + 7) >> 3 is -16.
    expectRecord(CreateNewKVIMGPtr, -128, -10, 1, -16);
    expectRecord(CreateNewKVIMGPtrForUnite, -100, -10, 24, -296);
}

// The true size never wraps to a small block.
TEST(KVImage, SizesOver31BitsAreOutOfMemory) {
    for (const Creator creator : {CreateNewKVIMGPtr, CreateNewKVIMGPtrForUnite})
        for (const auto& [r, depth] : {std::pair{KVRect{0, 0, 65536, 65536}, 8},
                                       {KVRect{0, 0, 32768, 65536}, 8},    // 2^31, the first that does not fit
                                       {KVRect{0, 0, 65537, 65536}, 8},
                                       {KVRect{0, 0, 2, 0x30000000}, 24},
                                       {KVRect{0, 0, 1, INT_MAX}, 32},
                                       {KVRect{0, INT_MIN, 1, INT_MAX}, 1},
                                       {KVRect{INT_MIN, 0, INT_MAX, 1}, 8}}) {
            KVIMG* out = nullptr;
            EXPECT_EQ(creator(&out, &r, static_cast<unsigned char>(depth)), memFullErr);
            EXPECT_EQ(out, nullptr);
        }
}

// If allocating the pixels fails, the block that the caller's variable points to is freed and the variable is
// unchanged.
TEST(KVImage, AFailureFreesTheBlockThatTheSlotHeld) {
    for (const Creator creator : {CreateNewKVIMGPtr, CreateNewKVIMGPtrForUnite}) {
        auto* const stale = static_cast<KVIMG*>(std::malloc(sizeof(KVIMG)));
        KVIMG* out = stale;
        const KVRect huge = {0, 0, 65536, 65536};
        EXPECT_EQ(creator(&out, &huge, 8), memFullErr);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(out), reinterpret_cast<uintptr_t>(stale));
    }
}

// Blocks of 4 MB or more request huge pages. This must not affect the contents of neighbouring blocks.
TEST(KVImage, LargeRecordsHoldWhatIsWrittenBesideOtherBlocks) {
    for (const int height : {1023, 1024, 1025, 2500}) {
        const KVRect r = rectOf(4096, height);
        opcv::RecordPtr records[3];
        for (size_t i = 0; i < 3; ++i) {
            ASSERT_EQ(opcv::createRecord(r, 8, records[i]), noErr);
            std::memset(records[i]->data, static_cast<int>(i + 1), static_cast<size_t>(records[i]->size));
        }
        records[1].reset();
        ASSERT_EQ(opcv::createRecord(r, 8, records[1]), noErr);
        std::memset(records[1]->data, 9, static_cast<size_t>(records[1]->size));
        for (const size_t i : {size_t{0}, size_t{2}}) {
            const unsigned char* const data = records[i]->data;
            EXPECT_EQ(data[0], static_cast<int>(i + 1));
            EXPECT_EQ(std::memcmp(data, data + 1, static_cast<size_t>(records[i]->size) - 1), 0) << height;
        }
    }
}

TEST(KVImage, DisposeTakesNullAndRecordsWithoutPixels) {
    DisposeKVIMG(nullptr);
    auto* const record = static_cast<KVIMG*>(std::calloc(1, sizeof(KVIMG)));
    DisposeKVIMG(record);
}

}    // namespace
