// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <cstring>
#include <vector>

#include "OPCV_dlib.h"
#include "oracle/convolution.h"
#include "oracle/filters.h"
#include "support/fenced_memory.h"
#include "support/guarded_image.h"
#include "support/random.h"

namespace {

std::vector<float> anyKernels(Random& random, int radius, int count) {
    const int cells = (2 * radius + 1) * (2 * radius + 1);
    std::vector<float> kernels(static_cast<size_t>(count) * static_cast<size_t>(cells));
    for (float& cell : kernels) cell = random.chance(20) ? 0.0F : static_cast<float>(random.real(-1.0, 4.0) / cells);
    return kernels;
}

bool isInside(IppiSize size, int radius, int x, int y) {
    return x >= radius && y >= radius && x < size.width - radius && y < size.height - radius;
}

TEST(Convolution24, GivesWhatTheDefinitionGives) {
    Random random(631);
    for (int round = 0; round < 100; ++round) {
        const int radius = random.between(0, 3);
        const IppiSize size = {2 * radius + random.between(1, 150), 2 * radius + random.between(1, 11)};
        const std::vector<float> kernels = anyKernels(random, radius, 3);
        const GuardedImage src(random, size, {3, 0, 0, random.between(0, 31)}, random.anyValues());
        GuardedImage dst(random, size, {3, 0, 0, random.between(0, 31)});
        GuardedImage expected(random, size, {3, 0, 0, 0});
        ASSERT_TRUE(Convolution24(src.data(), dst.data(), size, radius, kernels.data()));
        ASSERT_TRUE(dst.untouchedOutsideRegion());
        oracle::convolve24(src.data(), expected.data(), size, radius, kernels.data());
        for (int y = 0; y < size.height; ++y)
            ASSERT_EQ(std::memcmp(dst.at(0, y), expected.at(0, y), static_cast<size_t>(dst.rowBytes())), 0)
                << "radius " << radius << " size " << size.width << "x" << size.height << " row " << y;

        const int side = 2 * radius + 1;
        for (int channel = 0; channel < 3; ++channel) {
            const float* kernel = kernels.data() + (2 - channel) * side * side;
            const auto at = [&](int x, int y) { return src.at(x, y)[channel]; };
            for (int y = radius; y < size.height - radius; ++y)
                for (int x = radius; x < size.width - radius; ++x) {
                    const double sum = oracle::convolutionSum(at, x, y, kernel, {side, side}, {radius, radius});
                    ASSERT_LE(oracle::roundingError(dst.at(x, y)[channel], sum, 0, 255), 0.501);
                }
        }
    }
}

// Rows that are too long for one strip of columns.
TEST(Convolution24, LongRowsAreFilteredInStrips) {
    Random random(638);
    for (const int radius : {0, 1, 2, 3})
        for (const int width : {2500, 2800, 4100, 9000}) {
            const IppiSize size = {width, 2 * radius + 6};
            const std::vector<float> kernels = anyKernels(random, radius, 3);
            const GuardedImage src(random, size, {3, 0, 0, 0});
            GuardedImage dst(random, size, {3, 0, 0, 0});
            GuardedImage expected(random, size, {3, 0, 0, 0});
            ASSERT_TRUE(Convolution24(src.data(), dst.data(), size, radius, kernels.data()));
            oracle::convolve24(src.data(), expected.data(), size, radius, kernels.data());
            ASSERT_EQ(std::memcmp(dst.data(), expected.data(), static_cast<size_t>(3 * width * size.height)), 0)
                << "radius " << radius << " width " << width;
        }
}

TEST(Convolution24, LargeKernelsGiveWhatTheDefinitionGives) {
    Random random(632);
    for (const int radius : {4, 5, 6, 7}) {
        const IppiSize size = {2 * radius + 40, 2 * radius + 4};
        const std::vector<float> kernels = anyKernels(random, radius, 3);
        const GuardedImage src(random, size, {3, 0, 0, 0});
        GuardedImage dst(random, size, {3, 0, 0, 0});
        GuardedImage expected(random, size, {3, 0, 0, 0});
        ASSERT_TRUE(Convolution24(src.data(), dst.data(), size, radius, kernels.data()));
        oracle::convolve24(src.data(), expected.data(), size, radius, kernels.data());
        for (int y = 0; y < size.height; ++y)
            ASSERT_EQ(std::memcmp(dst.at(0, y), expected.at(0, y), static_cast<size_t>(dst.rowBytes())), 0) << radius;
    }
}

TEST(Convolution24, TheFirstKernelBelongsToTheLastByte) {
    const std::array<uint8_t, 6> src = {10, 20, 30, 40, 50, 60};
    std::array<uint8_t, 6> dst{};
    const std::array<float, 3> kernels = {2.0F, 3.0F, 4.0F};
    ASSERT_TRUE(Convolution24(src.data(), dst.data(), {2, 1}, 0, kernels.data()));
    EXPECT_EQ(dst, (std::array<uint8_t, 6>{40, 60, 60, 160, 150, 120}));
}

TEST(Convolution24, SourceAndDestinationMayOverlap) {
    Random random(633);
    const IppiSize size = {60, 9};
    const std::vector<float> kernels = anyKernels(random, 1, 3);
    for (const int shift : {0, 1, -1, 7, 180}) {
        std::vector<uint8_t> bytes(3 * 60 * 9 + 600);
        random.fill(bytes.data(), bytes.size());
        uint8_t* src = bytes.data() + 300;
        std::vector<uint8_t> expected(3 * 60 * 9);
        oracle::convolve24(src, expected.data(), size, 1, kernels.data());
        ASSERT_TRUE(Convolution24(src, src + shift, size, 1, kernels.data()));
        EXPECT_EQ(std::memcmp(src + shift, expected.data(), expected.size()), 0) << shift;
    }
}

TEST(Convolution24, ReadsAndWritesNoByteTooMany) {
    Random random(634);
    for (const auto fence : {FencedMemory::Fence::kBehind, FencedMemory::Fence::kInFront})
        for (const int radius : {0, 1, 2, 3})
            for (int width = 2 * radius + 1; width <= 40; ++width) {
                const IppiSize size = {width, 2 * radius + random.between(1, 3)};
                const auto bytes = 3 * static_cast<size_t>(size.width) * static_cast<size_t>(size.height);
                FencedMemory src(bytes, fence);
                FencedMemory dst(bytes, fence);
                random.fill(src.data(), bytes);
                const std::vector<float> kernels = anyKernels(random, radius, 3);
                ASSERT_TRUE(Convolution24(src.data(), dst.data(), size, radius, kernels.data()));
                Convolution24MonoFilter(src.data(), dst.data(), size, radius, kernels.data());
            }
}

TEST(Convolution24, RefusesBadArguments) {
    Random random(635);
    const std::vector<float> kernels = anyKernels(random, 1, 3);
    const GuardedImage src(random, {20, 5}, {3, 0, 0, 0});
    GuardedImage dst(random, {20, 5}, {3, 0, 0, 0});
    const auto refused = [&](const uint8_t* from, uint8_t* to, IppiSize size, int radius, const float* cells) {
        const bool done = Convolution24(from, to, size, radius, cells);
        Convolution24MonoFilter(from, to, size, radius, cells);
        EXPECT_TRUE(dst.untouched());
        return !done;
    };
    EXPECT_TRUE(refused(nullptr, dst.data(), {20, 5}, 1, kernels.data()));
    EXPECT_TRUE(refused(src.data(), nullptr, {20, 5}, 1, kernels.data()));
    EXPECT_TRUE(refused(src.data(), dst.data(), {20, 5}, 1, nullptr));
    for (const int radius : {-1, -2, 3, 10, INT_MIN, INT_MAX})
        EXPECT_TRUE(refused(src.data(), dst.data(), {20, 5}, radius, kernels.data())) << radius;
    for (const IppiSize size : {IppiSize{0, 5}, {20, 0}, {-1, 5}, {20, -1}, {2, 5}, {20, 2}, {INT_MAX, INT_MIN}})
        EXPECT_TRUE(refused(src.data(), dst.data(), size, 1, kernels.data())) << size.width << "x" << size.height;
    EXPECT_TRUE(refused(src.data(), dst.data(), {INT_MAX, 5}, 1, kernels.data()));
}

// 46400 x 15424 pixels of 3 bytes are 31 bits of bytes, rows of a multiple of 64 included.
TEST(Convolution24, RefusesImagesBeyond31BitsOfBytes) {
    const uint8_t src = 0;
    uint8_t dst = 77;
    const std::vector<float> kernels(27);
    EXPECT_FALSE(Convolution24(&src, &dst, {46400, 15500}, 1, kernels.data()));
    EXPECT_FALSE(Convolution24(&src, &dst, {1, INT_MAX / 64 + 1}, 0, kernels.data()));
    EXPECT_EQ(dst, 77);
}

TEST(Convolution24MonoFilter, FiltersAllChannelsAlikeAndLeavesTheRing) {
    Random random(636);
    for (int round = 0; round < 100; ++round) {
        const int radius = random.between(0, 4);
        const IppiSize size = {2 * radius + random.between(1, 120), 2 * radius + random.between(1, 8)};
        const std::vector<float> kernel = anyKernels(random, radius, 1);
        std::vector<float> same = kernel;
        same.insert(same.end(), kernel.begin(), kernel.end());
        same.insert(same.end(), kernel.begin(), kernel.end());
        const GuardedImage src(random, size, {3, 0, 0, random.between(0, 31)}, random.anyValues());
        GuardedImage dst(random, size, {3, 0, 0, random.between(0, 31)});
        const GuardedImage before = dst;
        GuardedImage expected(random, size, {3, 0, 0, 0});
        Convolution24MonoFilter(src.data(), dst.data(), size, radius, kernel.data());
        ASSERT_TRUE(dst.untouchedOutsideRegion());
        oracle::convolve24(src.data(), expected.data(), size, radius, same.data());
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x) {
                const GuardedImage& wanted = isInside(size, radius, x, y) ? expected : before;
                ASSERT_EQ(std::memcmp(dst.at(x, y), wanted.at(x, y), 3), 0)
                    << "radius " << radius << " at " << x << "," << y;
            }
    }
}

TEST(Convolution24MonoFilter, SourceMayBeDestination) {
    Random random(637);
    const IppiSize size = {70, 9};
    const std::vector<float> kernel = anyKernels(random, 2, 1);
    GuardedImage image(random, size, {3, 0, 0, 0});
    GuardedImage expected = image;
    Convolution24MonoFilter(expected.data(), image.data(), size, 2, kernel.data());
    const GuardedImage apart = image;
    Convolution24MonoFilter(expected.data(), expected.data(), size, 2, kernel.data());
    for (int y = 0; y < size.height; ++y)
        ASSERT_EQ(std::memcmp(expected.at(0, y), apart.at(0, y), static_cast<size_t>(apart.rowBytes())), 0);
}

}    // namespace
