// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <opencv2/core/utility.hpp>
#include <vector>

#include "OPCV_dlib.h"
#include "filters/close_neighbourhoods.h"
#include "filters/same_rows.h"
#include "oracle/bilateral.h"
#include "support/fenced_memory.h"
#include "support/guarded_image.h"
#include "support/random.h"

namespace {

TEST(DeosNr, FiltersTheInsideAndLeavesTheRing) {
    Random random(648);
    for (const int mode : {0, 1, 2, 3, -1})
        for (int strength = 0; strength <= 10; ++strength) {
            const int inset = mode == 2 ? 2 : 1;
            const IppiSize size = {random.between(2 * inset + 1, 80), random.between(2 * inset + 1, 12)};
            const GuardedImage src(random, size, {1, 0, 0, random.between(0, 31)}, random.anyValues());
            GuardedImage dst(random, size, {1, 0, 0, random.between(0, 31)});
            GuardedImage expected = dst;
            DeosNr(src.data(), dst.data(), size, mode, strength);
            const auto squareSigma = static_cast<float>(strength == 0 ? 1 : 96 * strength);
            oracle::bilateral(src.at(inset, inset), size.width, expected.at(inset, inset), size.width,
                              {size.width - 2 * inset, size.height - 2 * inset}, 2 * inset + 1, squareSigma,
                              squareSigma);
            ASSERT_TRUE(sameRows(dst, expected)) << "mode " << mode << " strength " << strength;
            ASSERT_TRUE(dst.untouchedOutsideRegion());
        }
}

TEST(DeosNr, SourceMayBeDestination) {
    Random random(649);
    GuardedImage image(random, {80, 9}, {}, Random::Values::kFew);
    GuardedImage expected = image;
    DeosNr(image.data(), expected.data(), image.size(), 2, 5);
    DeosNr(image.data(), image.data(), image.size(), 2, 5);
    EXPECT_TRUE(sameRows(image, expected));
}

TEST(DeosNr, AFlatImageStaysFlat) {
    for (const int mode : {0, 2})
        for (int strength = 0; strength <= 10; ++strength)
            for (const int value : {0, 1, 127, 255}) {
                const std::vector<uint8_t> src(40 * 7, static_cast<uint8_t>(value));
                std::vector<uint8_t> dst = src;
                DeosNr(src.data(), dst.data(), {40, 7}, mode, strength);
                ASSERT_EQ(dst, src);
            }
}

TEST(DeosNr, StrengthZeroStillFilters) {
    std::vector<uint8_t> src(9 * 9, 100);
    src[40] = 101;
    std::vector<uint8_t> dst(9 * 9);
    DeosNr(src.data(), dst.data(), {9, 9}, 0, 0);
    EXPECT_EQ(dst[40], 100);
}

TEST(DeosNr, DoesNothingWithoutAnImage) {
    Random random(650);
    const GuardedImage src(random, {20, 5}, {});
    GuardedImage dst(random, {20, 5}, {});
    DeosNr(nullptr, dst.data(), {20, 5}, 0, 5);
    DeosNr(src.data(), nullptr, {20, 5}, 0, 5);
    for (const IppiSize size : {IppiSize{2, 5}, {20, 2}, {0, 0}, {-5, 5}, {5, -5}, {INT_MIN, INT_MIN}})
        DeosNr(src.data(), dst.data(), size, 0, 5);
    for (const IppiSize size : {IppiSize{4, 5}, {20, 4}}) DeosNr(src.data(), dst.data(), size, 2, 5);
    EXPECT_TRUE(dst.untouched());
}

TEST(DeosNrRGB, FiltersEachChannel) {
    Random random(651);
    for (const int mode : {0, 1, 2})
        for (int strength = 0; strength <= 10; ++strength)
            for (int round = 0; round < 4; ++round) {
                const int side = mode == 2 ? 5 : 3;
                const IppiSize size = {4 * random.between(side / 2 + 1, 30), random.between(side, 12)};
                const GuardedImage src(random, size, {3, 0, 0, random.between(0, 31)}, random.anyValues());
                GuardedImage dst(random, size, {3, 0, 0, random.between(0, 31)});
                GuardedImage expected(random, size, {3, 0, 0, 0});
                ASSERT_EQ(DeosNrRGB(src.data(), dst.data(), size.width, size.height, mode, strength), 0);
                oracle::noiseReduction24(src.data(), expected.data(), size, side,
                                         static_cast<float>(strength == 0 ? 1 : 96 * strength));
                ASSERT_TRUE(sameRows(dst, expected)) << "mode " << mode << " strength " << strength;
                ASSERT_TRUE(dst.untouchedOutsideRegion());
            }
}

TEST(DeosNrRGB, LargeImagesAreFilteredAlikeOnAnyNumberOfThreads) {
    Random random(652);
    const int threads = cv::getNumThreads();
    const IppiSize size = {180, 190};
    for (const int count : {1, 3}) {
        cv::setNumThreads(count);
        for (const int mode : {1, 2}) {
            const GuardedImage src(random, size, {3, 0, 0, 0}, Random::Values::kFew);
            GuardedImage dst(random, size, {3, 0, 0, 0});
            GuardedImage expected(random, size, {3, 0, 0, 0});
            ASSERT_EQ(DeosNrRGB(src.data(), dst.data(), size.width, size.height, mode, 3), 0);
            oracle::noiseReduction24(src.data(), expected.data(), size, mode == 2 ? 5 : 3, 288);
            EXPECT_TRUE(sameRows(dst, expected));
        }
    }
    cv::setNumThreads(threads);
}

TEST(DeosNrRGB, AnImageThatIsAllRingIsCopied) {
    Random random(653);
    for (const IppiSize size : {IppiSize{4, 1}, {4, 2}, {8, 2}, {4, 4}, {4, 9}, {40, 4}}) {
        const GuardedImage src(random, size, {3, 0, 0, 0});
        GuardedImage dst(random, size, {3, 0, 0, 0});
        ASSERT_EQ(DeosNrRGB(src.data(), dst.data(), size.width, size.height, 2, 3), 0);
        EXPECT_TRUE(sameRows(dst, src)) << size.width << "x" << size.height;
        EXPECT_TRUE(dst.untouchedOutsideRegion());
    }
}

TEST(DeosNrRGB, SourceAndDestinationMayOverlap) {
    Random random(654);
    const IppiSize size = {60, 9};
    for (const int shift : {0, 1, -1, 180}) {
        std::vector<uint8_t> bytes(3 * 60 * 9 + 600);
        random.fill(bytes.data(), bytes.size(), Random::Values::kFew);
        uint8_t* src = bytes.data() + 300;
        std::vector<uint8_t> expected(3 * 60 * 9);
        oracle::noiseReduction24(src, expected.data(), size, 5, 192);
        ASSERT_EQ(DeosNrRGB(src, src + shift, 60, 9, 2, 2), 0);
        EXPECT_EQ(std::memcmp(src + shift, expected.data(), expected.size()), 0) << shift;
    }
}

TEST(DeosNrRGB, ReadsAndWritesNoByteTooMany) {
    Random random(655);
    for (const auto fence : {FencedMemory::Fence::kBehind, FencedMemory::Fence::kInFront})
        for (const int mode : {1, 2})
            for (int width = 4; width <= 60; width += 4) {
                const int height = random.between(1, 7);
                FencedMemory src(static_cast<size_t>(3 * width * height), fence);
                FencedMemory dst(src.size(), fence);
                random.fill(src.data(), src.size());
                ASSERT_EQ(DeosNrRGB(src.data(), dst.data(), width, height, mode, 4), 0);
            }
}

TEST(DeosNrRGB, ChecksArgumentsInOrder) {
    Random random(656);
    const GuardedImage src(random, {8, 5}, {3, 0, 0, 0});
    GuardedImage dst(random, {8, 5}, {3, 0, 0, 0});
    const auto call = [&](const uint8_t* from, uint8_t* to, int width, int height, int mode, int strength) {
        const int result = DeosNrRGB(from, to, width, height, mode, strength);
        EXPECT_TRUE(dst.untouched());
        return result;
    };
    for (const int mode : {3, -1, INT_MIN, INT_MAX}) EXPECT_EQ(call(src.data(), dst.data(), 6, 5, mode, 11), 1);
    for (const int strength : {11, -1, INT_MIN, INT_MAX}) EXPECT_EQ(call(src.data(), dst.data(), 6, 5, 2, strength), 2);
    for (const int width : {6, 5, 7, 1, -1, INT_MAX}) EXPECT_EQ(call(src.data(), dst.data(), width, 5, 0, 10), 3);
    EXPECT_EQ(call(nullptr, nullptr, 6, 5, 0, 0), 3);
    EXPECT_EQ(call(nullptr, dst.data(), 8, 5, 0, 0), 0);
    EXPECT_EQ(call(src.data(), nullptr, 8, 5, 0, 0), 0);
    EXPECT_EQ(call(src.data(), dst.data(), 0, 5, 0, 0), 0);
    EXPECT_EQ(call(src.data(), dst.data(), -4, 5, 0, 0), 0);
    EXPECT_EQ(call(src.data(), dst.data(), 8, 0, 0, 0), 0);
    EXPECT_EQ(call(src.data(), dst.data(), 8, -1, 0, 0), 0);
    EXPECT_EQ(call(src.data(), dst.data(), 46400, 15500, 0, 0), 0);
}

// In each channel of a packed image, next to flat channels.
TEST(DeosNrRGB, TheLastColumnsAreSummedInFours) {
    for (size_t i = 0; i < kNeighbourhoods.size(); ++i) {
        const Neighbourhood& neighbourhood = kNeighbourhoods[i];
        const int radius = neighbourhood.radius;
        const int side = 2 * radius + 1;
        const auto squareSigma = static_cast<float>(96 * neighbourhood.strength);
        for (int width = 8; width <= 40; width += 4)
            for (int column = radius; column < width - radius; ++column)
                for (int channel = 0; channel < 3; ++channel) {
                    const std::vector<uint8_t> plane = imageOf(neighbourhood, width, column);
                    std::vector<uint8_t> src(3 * plane.size(), 90);
                    for (size_t k = 0; k < plane.size(); ++k) src[3 * k + static_cast<size_t>(channel)] = plane[k];
                    std::vector<uint8_t> dst(src.size());
                    std::vector<uint8_t> expected(src.size());
                    ASSERT_EQ(
                        DeosNrRGB(src.data(), dst.data(), width, side, radius == 2 ? 2 : 0, neighbourhood.strength), 0);
                    oracle::noiseReduction24(src.data(), expected.data(), {width, side}, side, squareSigma);
                    ASSERT_EQ(dst, expected) << "neighbourhood " << i << " width " << width << " column " << column;
                }
    }
}

}    // namespace
