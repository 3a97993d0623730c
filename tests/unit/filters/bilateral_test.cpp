// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <limits>
#include <opencv2/core/utility.hpp>
#include <vector>

#include "OPCV_dlib.h"
#include "filters/close_neighbourhoods.h"
#include "filters/same_rows.h"
#include "oracle/bilateral.h"
#include "oracle/filters.h"
#include "oracle/plain_filters.h"
#include "support/fenced_memory.h"
#include "support/guarded_image.h"
#include "support/random.h"

namespace {

float anySquareSigma(Random& random) {
    switch (random.between(0, 3)) {
        case 0: return 1.0F;
        case 1: return static_cast<float>(96 * random.between(1, 10));
        case 2: return static_cast<float>(random.real(0.01, 5));
        default: return static_cast<float>(random.real(1, 5000));
    }
}

// Noise of some grey levels, so that neighbours weigh in.
void smooth(Random& random, GuardedImage& image, int margin, int levels) {
    const int base = random.between(0, 255 - levels);
    for (int y = -margin; y < image.size().height + margin; ++y)
        for (int x = -margin; x < image.size().width + margin; ++x)
            *image.at(x, y) = static_cast<uint8_t>(base + random.between(0, levels));
}

void expectBilateral(Random& random, IppiSize size, int side, float colorSquareSigma, float spaceSquareSigma) {
    const int margin = side / 2 + 2;
    GuardedImage src(random, size, GuardedImage::anyLayout(random, 1, margin), random.anyValues());
    if (random.chance(60)) smooth(random, src, margin, random.between(1, 60));
    GuardedImage dst(random, size, GuardedImage::anyLayout(random, 1));
    GuardedImage expected(random, size, {});
    ASSERT_EQ(OPCV_ippiFilterBilateral_8u_C1R(src.data(), src.step(), dst.data(), dst.step(), size, {side, side},
                                              colorSquareSigma, spaceSquareSigma),
              ippStsNoErr);
    ASSERT_TRUE(dst.untouchedOutsideRegion());
    // OpenCV itself filters windows other than 3x3 and 5x5. It sums the last columns differently on arm64.
    const bool ours = side == 3 || side == 5;
    oracle::plainBilateral(src.data(), src.step(), expected.data(), expected.step(), size, side, colorSquareSigma,
                           spaceSquareSigma);
    ASSERT_TRUE(closeRows(dst, expected, ours ? 1 : 0))
        << "side " << side << " size " << size.width << "x" << size.height << " sigmas " << colorSquareSigma << " "
        << spaceSquareSigma;
    if (ours) {
        oracle::bilateral(src.data(), src.step(), expected.data(), expected.step(), size, side, colorSquareSigma,
                          spaceSquareSigma);
        ASSERT_TRUE(sameRows(dst, expected)) << "side " << side << " size " << size.width << "x" << size.height
                                             << " sigmas " << colorSquareSigma << " " << spaceSquareSigma;
    }
    if (side == 1) return;    // filters with 3x3 pixels and a border of OpenCV's
    const auto at = [&](int x, int y) { return *src.at(x, y); };
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x)
            ASSERT_LE(
                std::abs(*dst.at(x, y) - oracle::bilateralMean(at, x, y, side, colorSquareSigma, spaceSquareSigma)),
                0.501);
}

TEST(Bilateral, GivesWhatOpenCVAndTheDefinitionGive) {
    Random random(641);
    for (const int side : {3, 5, 7, 9, 1})
        for (int round = 0; round < (side <= 5 ? 120 : 20); ++round) {
            const IppiSize size = {random.chance(92) ? random.between(1, 90) : random.between(90, 1300),
                                   random.between(1, 6)};
            expectBilateral(random, size, side, anySquareSigma(random), anySquareSigma(random));
            if (HasFatalFailure()) return;
        }
}

TEST(Bilateral, LongRowsAreFilteredInStrips) {
    Random random(657);
    for (const int side : {3, 5})
        for (const int width : {511, 512, 520, 1030, 1536, 1550, 5200}) {
            expectBilateral(random, {width, 2}, side, 96, 96);
            if (HasFatalFailure()) return;
        }
}

// The last columns of a view are summed in another order than the others; every remainder is met here.
TEST(Bilateral, EveryWidthIsFilteredToItsEnd) {
    Random random(642);
    for (const int side : {3, 5})
        for (int width = 1; width <= 80; ++width) {
            expectBilateral(random, {width, 6}, side, static_cast<float>(96 * random.between(1, 10)),
                            anySquareSigma(random));
            if (HasFatalFailure()) return;
        }
}

TEST(Bilateral, TheLastColumnsAreSummedInFours) {
    for (const Neighbourhood& neighbourhood : kNeighbourhoods) {
        const int radius = neighbourhood.radius;
        const int side = 2 * radius + 1;
        const auto squareSigma = static_cast<float>(96 * neighbourhood.strength);
        // In every column of views that fill vectors and such that do not.
        for (int width = side; width <= 20; ++width)
            for (int column = radius; column < width - radius; ++column) {
                const std::vector<uint8_t> src = imageOf(neighbourhood, width, column);
                std::vector<uint8_t> dst(src.size());
                std::vector<uint8_t> expected(src.size());
                const uint8_t* first = src.data() + radius * (width + 1);
                const IppiSize roi = {width - 2 * radius, 1};
                ASSERT_EQ(OPCV_ippiFilterBilateral_8u_C1R(first, width, dst.data(), width, roi, {side, side},
                                                          squareSigma, squareSigma),
                          ippStsNoErr);
                oracle::bilateral(first, width, expected.data(), width, roi, side, squareSigma, squareSigma);
                ASSERT_EQ(dst, expected) << "radius " << radius << " width " << width << " column " << column;
            }
    }
}

// Above about 65000 pixels bands of rows are filtered side by side.
TEST(Bilateral, LargeRegionsAreFilteredAlikeOnAnyNumberOfThreads) {
    Random random(643);
    const int threads = cv::getNumThreads();
    for (const int count : {1, 3}) {
        cv::setNumThreads(count);
        for (const int side : {3, 5}) {
            const GuardedImage src(random, {331, 257}, {1, 2, 0, 0}, Random::Values::kFew);
            GuardedImage dst(random, {331, 257}, {});
            GuardedImage expected(random, {331, 257}, {});
            ASSERT_EQ(OPCV_ippiFilterBilateral_8u_C1R(src.data(), src.step(), dst.data(), dst.step(), src.size(),
                                                      {side, side}, 96, 96),
                      ippStsNoErr);
            oracle::bilateral(src.data(), src.step(), expected.data(), expected.step(), src.size(), side, 96, 96);
            EXPECT_TRUE(sameRows(dst, expected));
        }
    }
    cv::setNumThreads(threads);
}

TEST(Bilateral, UnusualSigmasCountAsDefined) {
    Random random(644);
    const GuardedImage src(random, {40, 6}, {1, 2, 0, 0});
    for (const float color : {0.0F, -1.0F, 1e-30F, 1e30F, std::numeric_limits<float>::infinity(),
                              std::numeric_limits<float>::quiet_NaN(), 50.0F})
        for (const float space : {0.0F, -1.0F, 1e-30F, 1e30F, std::numeric_limits<float>::infinity(), 50.0F})
            for (const int side : {3, 5}) {
                GuardedImage dst(random, src.size(), {});
                GuardedImage expected(random, src.size(), {});
                ASSERT_EQ(OPCV_ippiFilterBilateral_8u_C1R(src.data(), src.step(), dst.data(), dst.step(), src.size(),
                                                          {side, side}, color, space),
                          ippStsNoErr);
                oracle::bilateral(src.data(), src.step(), expected.data(), expected.step(), src.size(), side, color,
                                  space);
                EXPECT_TRUE(sameRows(dst, expected)) << color << " " << space;
            }
}

TEST(Bilateral, ReadsAndWritesNoByteTooMany) {
    Random random(645);
    for (const auto fence : {FencedMemory::Fence::kBehind, FencedMemory::Fence::kInFront})
        for (const int side : {3, 5, 7})
            for (int width = 1; width <= 50; ++width) {
                const int height = random.between(1, 3);
                const int row = width + side - 1;
                const int step = row + random.between(0, 3);
                FencedMemory src(static_cast<size_t>(step * (height + side - 2) + row), fence);
                FencedMemory dst(static_cast<size_t>((width + 1) * (height - 1) + width), fence);
                random.fill(src.data(), src.size());
                ASSERT_EQ(OPCV_ippiFilterBilateral_8u_C1R(src.data() + side / 2 * (step + 1), step, dst.data(),
                                                          width + 1, {width, height}, {side, side}, 96, 96),
                          ippStsNoErr);
            }
}

TEST(Bilateral, SourceAndDestinationMayOverlap) {
    Random random(646);
    for (const int side : {3, 5})
        for (const int shift : {0, 1, -1, 2}) {
            GuardedImage image(random, {70, 9}, {1, 5, 0, 0}, Random::Values::kFew);
            GuardedImage expected(random, {70, 9}, {});
            oracle::bilateral(image.data(), image.step(), expected.data(), expected.step(), {70, 9}, side, 96, 96);
            ASSERT_EQ(OPCV_ippiFilterBilateral_8u_C1R(image.data(), image.step(), image.at(shift, shift), image.step(),
                                                      {70, 9}, {side, side}, 96, 96),
                      ippStsNoErr);
            for (int y = 0; y < 9; ++y)
                ASSERT_EQ(std::memcmp(image.at(shift, y + shift), expected.at(0, y), 70), 0) << shift;
        }
}

TEST(Bilateral, RefusesBadArguments) {
    Random random(647);
    const GuardedImage src(random, {20, 5}, {1, 4, 0, 0});
    GuardedImage dst(random, {20, 5}, {});
    const auto refused = [&](const uint8_t* from, int srcStep, uint8_t* to, int dstStep, IppiSize roi,
                             IppiSize kernel) {
        const IppStatus status = OPCV_ippiFilterBilateral_8u_C1R(from, srcStep, to, dstStep, roi, kernel, 96, 96);
        EXPECT_TRUE(dst.untouched());
        return status == ippStsBadArgErr;
    };
    EXPECT_TRUE(refused(nullptr, src.step(), dst.data(), 20, {20, 5}, {3, 3}));
    EXPECT_TRUE(refused(src.data(), src.step(), nullptr, 20, {20, 5}, {3, 3}));
    for (const IppiSize kernel :
         {IppiSize{4, 4}, {3, 5}, {5, 3}, {0, 0}, {-1, -1}, {-3, -3}, {2, 2}, {INT_MIN, INT_MIN}})
        EXPECT_TRUE(refused(src.data(), src.step(), dst.data(), 20, {20, 5}, kernel)) << kernel.width;
    for (const IppiSize roi : {IppiSize{0, 5}, {20, 0}, {-1, 5}, {20, -1}, {-1, -1}, {INT_MAX, 1}, {1, INT_MAX}})
        EXPECT_TRUE(refused(src.data(), src.step(), dst.data(), 20, roi, {3, 3})) << roi.width;
    EXPECT_TRUE(refused(src.data(), 21, dst.data(), 20, {20, 5}, {3, 3}));
    EXPECT_TRUE(refused(src.data(), -src.step(), dst.data(), 20, {20, 5}, {3, 3}));
    EXPECT_TRUE(refused(src.data(), src.step(), dst.data(), 19, {20, 5}, {3, 3}));
}

}    // namespace
