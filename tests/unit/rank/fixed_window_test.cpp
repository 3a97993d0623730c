// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// What all medians with a fixed window have in common, by their kernels and by the entry points that choose one by a
// code. The tests of this file run on the filters that the tests of each median name.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <vector>

#include "rank/fixed_window.h"
#include "support/fenced_memory.h"
#include "support/guarded_image.h"
#include "support/random.h"

namespace {

TEST_P(FixedWindow, FiltersEveryNarrowWidthLikeTheDefinition) {
    Random random(201);
    for (int width = 1; width <= 70; ++width)
        for (const int height : {1, 2, 3, 6}) ASSERT_NO_FATAL_FAILURE(expectLikeTheDefinition(random, {width, height}));
}

TEST_P(FixedWindow, FiltersWideRegionsLikeTheDefinition) {
    Random random(202);
    for (int round = 0; round < 40; ++round)
        ASSERT_NO_FATAL_FAILURE(expectLikeTheDefinition(random, {random.between(71, 900), random.between(1, 5)}));
    // One more and one less than a strip of the colour median writes.
    for (const int width : {317, 318, 319, 320, 636, 637, 2480})
        ASSERT_NO_FATAL_FAILURE(expectLikeTheDefinition(random, {width, 3}));
}

IppiPoint cellOfLargeCross(int i) {
    const std::array<IppiPoint, 9> cells = {
        {{0, -2}, {0, -1}, {-2, 0}, {-1, 0}, {0, 0}, {1, 0}, {2, 0}, {0, 1}, {0, 2}}};
    return cells.at(static_cast<size_t>(i));
}

// Every window of black and white pixels. A network of minimum and maximum that is right for these is right for all.
TEST_P(FixedWindow, IsCorrectForEveryBlackAndWhiteWindow) {
    Random random(203);
    const int side = 2 * filter().reach + 1;
    const IppiSize size = {512 * side, 1};
    GuardedImage source(random, size, {filter().pixelSize, filter().reach, 0, 0});
    const auto fill = [&](int x, int y, bool white) {
        std::fill_n(source.at(x, y), filter().pixelSize, static_cast<uint8_t>(white ? 255 : 0));
    };
    for (int pattern = 0; pattern < 512; ++pattern)
        for (int bit = 0; bit < 9; ++bit) {
            const bool white = (pattern >> bit & 1) != 0;
            const int centre = pattern * side + filter().reach;
            const IppiPoint cell = filter().reach == 1 ? IppiPoint{bit % 3 - 1, bit / 3 - 1} : cellOfLargeCross(bit);
            fill(centre + cell.x, cell.y, white);
        }
    GuardedImage result(random, size, {filter().pixelSize, 0, 0, 0});
    ASSERT_NO_FATAL_FAILURE(expectLikeTheDefinition(source, result));
}

// The source ends with the last byte of a window, the destination with the last byte written; and both begin with the
// first.
TEST_P(FixedWindow, ReadsAndWritesNoByteTooMany) {
    Random random(204);
    const int reach = filter().reach;
    for (const auto fence : {FencedMemory::Fence::kBehind, FencedMemory::Fence::kInFront})
        for (int width = 1; width <= 300; width += width < 70 ? 1 : 23)
            for (int height = 1; height <= 3; ++height) {
                const int step = (width + 2 * reach) * filter().pixelSize;
                FencedMemory source(static_cast<size_t>(step) * static_cast<size_t>(height + 2 * reach), fence);
                random.fill(source.data(), source.size());
                const uint8_t* first = source.data() + ptrdiff_t{step} * reach + ptrdiff_t{filter().pixelSize} * reach;
                const int dstStep = width * filter().pixelSize;
                FencedMemory result(static_cast<size_t>(dstStep) * static_cast<size_t>(height), fence);
                filter().kernel(first, step, result.data(), dstStep, width, height);
                std::array<uint8_t, 3> expected{};
                filter().definition(first, step, expected.data());
                ASSERT_EQ(expected[0], *result.data()) << width << " x " << height;
            }
}

TEST_P(FixedWindow, LeavesAUniformImageAsItIs) {
    Random random(205);
    const IppiSize size = {40, 5};
    for (const uint8_t level : std::array<uint8_t, 4>{0, 1, 127, 255}) {
        GuardedImage source(random, size, anyLayout(random, filter().reach));
        for (int y = -filter().reach; y < size.height + filter().reach; ++y)
            std::fill(source.at(-filter().reach, y), source.at(size.width + filter().reach, y), level);
        GuardedImage result(random, size, anyLayout(random, 0));
        ASSERT_EQ(filter().entryPoint(source.data(), source.step(), result.data(), result.step(), size, filter().code),
                  ippStsNoErr);
        for (int y = 0; y < size.height; ++y)
            EXPECT_EQ(std::vector<uint8_t>(result.at(0, y), result.at(size.width, y)),
                      std::vector<uint8_t>(static_cast<size_t>(result.rowBytes()), level));
    }
}

TEST_P(FixedWindow, RefusesBadArguments) {
    Random random(206);
    const int pixelSize = filter().pixelSize;
    const GuardedImage source(random, {10, 2}, {pixelSize, 2, 0, 0});
    GuardedImage result(random, {10, 2}, {pixelSize, 0, 0, 0});
    const auto call = [&](const uint8_t* src, uint8_t* dst, int dstStep, IppiSize size, int code) {
        const IppStatus status = filter().entryPoint(src, source.step(), dst, dstStep, size, code);
        EXPECT_TRUE(result.untouched());
        return status;
    };
    const int step = result.step();
    const int code = filter().code;
    EXPECT_EQ(call(nullptr, result.data(), step, {10, 2}, code), ippStsBadArgErr);
    EXPECT_EQ(call(source.data(), nullptr, step, {10, 2}, code), ippStsBadArgErr);
    for (const IppiSize size : {IppiSize{0, 2}, {10, 0}, {-1, 2}, {10, -1}, {INT_MIN, 2}, {10, INT_MIN}})
        EXPECT_EQ(call(source.data(), result.data(), step, size, code), ippStsBadArgErr);
    EXPECT_EQ(call(source.data(), result.data(), step - 1, {10, 2}, code), ippStsBadArgErr);
    EXPECT_EQ(call(source.data(), result.data(), -step, {10, 2}, code), ippStsBadArgErr);
    // 3 x width would wrap to 2 in 32 bits.
    if (pixelSize == 3) {
        EXPECT_EQ(call(source.data(), result.data(), step, {INT_MAX / 3 * 2 + 2, 1}, code), ippStsBadArgErr);
    }
    for (const int bad : {0, 1, 2, 4, 7, 13, 31, 34, 53, 77, -code, INT_MIN, INT_MAX}) {
        EXPECT_EQ(call(source.data(), result.data(), step, {10, 2}, bad), ippStsBadArgErr) << bad;
        EXPECT_EQ(call(nullptr, result.data(), step, {10, 2}, bad), ippStsBadArgErr) << bad;
    }
    EXPECT_EQ(call(source.data(), result.data(), step, {10, 2}, pixelSize == 3 ? 55 : code + 1), ippStsBadArgErr);

    EXPECT_EQ(filter().entryPoint(source.data(), source.step(), result.data(), step, {10, 2}, code), ippStsNoErr);
    EXPECT_FALSE(result.untouched());
}

// Windows may overlap in memory as the caller likes.
TEST_P(FixedWindow, TakesAnySourceStep) {
    Random random(207);
    std::vector<uint8_t> bytes(400);
    random.fill(bytes.data(), bytes.size());
    const uint8_t* first = bytes.data() + 200;
    for (const int srcStep : {1, 0, -1, -7}) {
        std::vector<uint8_t> result(static_cast<size_t>(10) * static_cast<size_t>(filter().pixelSize));
        ASSERT_EQ(filter().entryPoint(first, srcStep, result.data(), 10 * filter().pixelSize, {10, 1}, filter().code),
                  ippStsNoErr);
        for (int x = 0; x < 10; ++x) {
            std::array<uint8_t, 3> expected{};
            filter().definition(first + ptrdiff_t{x} * filter().pixelSize, srcStep, expected.data());
            EXPECT_EQ(expected[0], result[static_cast<size_t>(x) * static_cast<size_t>(filter().pixelSize)]);
        }
    }
}

TEST_P(FixedWindow, KernelDoesNothingWithoutRows) {
    const std::vector<uint8_t> source(1000, 7);
    std::vector<uint8_t> result(100, 0x55);
    for (const int height : {0, -1, INT_MIN}) {
        filter().kernel(source.data() + 500, 60, result.data(), 60, 20, height);
        filter().kernel(nullptr, 60, nullptr, 60, 20, height);    // nothing is read either
    }
    EXPECT_EQ(result, std::vector<uint8_t>(100, 0x55));
}

}    // namespace
