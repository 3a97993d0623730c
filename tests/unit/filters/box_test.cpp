// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <vector>

#include "OPCV_dlib.h"
#include "oracle/filters.h"
#include "oracle/plain_filters.h"
#include "support/fenced_memory.h"
#include "support/guarded_image.h"
#include "support/random.h"

namespace {

IppiSize anyMask(Random& random) {
    switch (random.between(0, 5)) {
        case 0: return {3, 3};
        case 1: return {5, 5};
        case 2: return {random.between(1, 40), 1};
        case 3: return {1, random.between(1, 40)};
        case 4: return {random.between(1, 20), random.between(1, 20)};
        default: return {random.between(1, 6), random.between(1, 6)};
    }
}

IppiPoint anyAnchor(Random& random, IppiSize mask) {
    if (random.chance(40)) return {mask.width / 2, mask.height / 2};
    return {random.between(-2, mask.width + 1), random.between(-2, mask.height + 1)};
}

// The margin holds the windows of masks with sides up to 40 and anchors in or near them.
constexpr int kUsualMargin = 45;

void expectBox(Random& random, IppiSize size, IppiSize mask, IppiPoint anchor, int margin = kUsualMargin) {
    GuardedImage image(random, size, GuardedImage::anyLayout(random, 3, margin), random.anyValues());
    const GuardedImage before = image;
    GuardedImage expected = image;
    ASSERT_EQ(IPPMini_ippiFilterBox_8u_C3IR(image.data(), image.step(), size, mask, anchor), ippStsNoErr);
    oracle::plainBox(expected.data(), expected.step(), size, mask, anchor);
    for (int y = 0; y < size.height; ++y)
        ASSERT_EQ(std::memcmp(image.at(0, y), expected.at(0, y), static_cast<size_t>(image.rowBytes())), 0)
            << "region " << size.width << "x" << size.height << " mask " << mask.width << "x" << mask.height
            << " anchor " << anchor.x << "," << anchor.y << " row " << y;
    ASSERT_TRUE(image.untouchedOutsideRegion());
    const int area = mask.width * mask.height;
    if (area == 2) return;    // OpenCV's own sums overflow there
    // Powers of two round up one sum early.
    const double tolerance = 0.5001 + ((area & (area - 1)) == 0 ? 1.0 / area : 0);
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x)
            for (int channel = 0; channel < 3; ++channel) {
                const auto at = [&](int column, int row) { return before.at(column, row)[channel]; };
                const double mean = static_cast<double>(oracle::boxSum(at, x, y, mask, anchor)) / area;
                ASSERT_LE(oracle::roundingError(image.at(x, y)[channel], mean, 0, 255), tolerance);
            }
}

TEST(Box, GivesWhatOpenCVAndTheDefinitionGive) {
    Random random(621);
    for (int round = 0; round < 300; ++round) {
        const IppiSize mask = anyMask(random);
        const IppiSize size = {random.chance(90) ? random.between(1, 80) : random.between(80, 400),
                               random.between(1, 8)};
        expectBox(random, size, mask, anyAnchor(random, mask));
        if (HasFatalFailure()) return;
    }
}

TEST(Box, EveryWidthIsFilteredToItsEnd) {
    Random random(622);
    for (const IppiSize mask : {IppiSize{3, 3}, {5, 5}})
        for (int width = 1; width <= 70; ++width) {
            expectBox(random, {width, 3}, mask, {mask.width / 2, mask.height / 2});
            if (HasFatalFailure()) return;
        }
}

// Areas around 256, where OpenCV's sums grow from 16 to 32 bits, and those for which a mean is a shift.
TEST(Box, EveryAreaHasItsOwnRounding) {
    Random random(623);
    for (int area = 1; area <= 260; ++area) {
        if (area > 40 && area < 250 && area % 16 != 0) continue;
        for (int width = 1; width <= 16; ++width) {
            if (area % width != 0 || area / width > 40) continue;
            expectBox(random, {50, 3}, {width, area / width}, {0, 0});
            if (HasFatalFailure()) return;
        }
    }
}

// All sums of a mask, which a step from 0 to 255 column by column runs through.
TEST(Box, EverySumIsRoundedAsOpenCVRounds) {
    for (const IppiSize mask : {IppiSize{3, 3}, {5, 5}, {2, 2}, {3, 2}, {4, 4}, {7, 7}, {9, 1}, {16, 16}, {1, 3}}) {
        const int area = mask.width * mask.height;
        const int sums = 255 * area + 1;
        const int rows = mask.height | 1;
        const int columns = (sums + 1) * mask.width;
        // Window n, apart from the others, has the sum n.
        std::vector<uint8_t> image(static_cast<size_t>(3 * columns) * static_cast<size_t>(rows));
        for (int n = 0; n < sums; ++n)
            for (int cell = 0; cell < area; ++cell) {
                const int value = n / area + (cell < n % area ? 1 : 0);
                const int x = n * mask.width + cell % mask.width;
                const int y = cell / mask.width;
                for (int channel = 0; channel < 3; ++channel)
                    image.data()[3 * (y * columns + x) + channel] = static_cast<uint8_t>(value);
            }
        std::vector<uint8_t> expected = image;
        const IppiSize roi = {sums * mask.width, 1};
        ASSERT_EQ(IPPMini_ippiFilterBox_8u_C3IR(image.data(), 3 * columns, roi, mask, {0, 0}), ippStsNoErr);
        oracle::plainBox(expected.data(), 3 * columns, roi, mask, {0, 0});
        ASSERT_EQ(image, expected) << mask.width << "x" << mask.height;
    }
}

// The windows are outside the region that is written, or extend into parts of it that are already filtered.
TEST(Box, AnAnchorFarOutsideTheMaskMovesTheWindows) {
    Random random(628);
    constexpr int kFar = 60;
    for (const IppiSize mask : {IppiSize{3, 3}, {5, 5}, {1, 4}, {4, 1}, {17, 17}})
        for (const int x : {-kFar, -7, 0, mask.width, mask.width + 1, mask.width + 9, kFar})
            for (const int y : {-kFar, -7, 0, mask.height, mask.height + 1, mask.height + 9, kFar}) {
                expectBox(random, {random.between(1, 40), random.between(1, 20)}, mask, {x, y}, 2 * kFar);
                if (HasFatalFailure()) return;
            }
}

// Areas above 256, whose sums have 32 bits, next to some below: a flat image stays what it is.
TEST(Box, FlatImagesStayFlatUnderLargeMasks) {
    for (const IppiSize mask :
         {IppiSize{16, 16}, {15, 17}, {1, 255}, {1, 257}, {257, 1}, {13, 20}, {17, 17}, {16, 40}, {40, 16}}) {
        const IppiSize roi = {9, 3};
        const IppiSize image = {roi.width + mask.width / 2 * 2, roi.height + mask.height / 2 * 2};
        const int step = 3 * image.width;
        for (int value = 0; value < 256; ++value) {
            const std::vector<uint8_t> flat(static_cast<size_t>(step) * static_cast<size_t>(image.height),
                                            static_cast<uint8_t>(value));
            std::vector<uint8_t> filtered = flat;
            std::vector<uint8_t> expected = flat;
            ASSERT_EQ(IPPMini_ippiFilterBox_8u_C3IR(filtered.data(), step, roi, mask, {0, 0}), ippStsNoErr);
            oracle::plainBox(expected.data(), step, roi, mask, {0, 0});
            ASSERT_EQ(filtered, expected) << mask.width << "x" << mask.height << " of " << value;
            ASSERT_EQ(filtered, flat) << mask.width << "x" << mask.height << " of " << value;
        }
    }
}

TEST(Box, AMaskOfOnePixelChangesNothing) {
    Random random(624);
    GuardedImage image(random, {31, 7}, {3, 0, 3, 0});
    EXPECT_EQ(IPPMini_ippiFilterBox_8u_C3IR(image.data(), image.step(), {31, 7}, {1, 1}, {0, 0}), ippStsNoErr);
    EXPECT_TRUE(image.untouched());
}

TEST(Box, ReadsAndWritesNoByteTooMany) {
    Random random(625);
    for (const auto fence : {FencedMemory::Fence::kBehind, FencedMemory::Fence::kInFront})
        for (const int side : {1, 3, 5, 9, 19})
            for (int width = 1; width <= 40; ++width) {
                const int height = random.between(1, 4);
                const int row = 3 * (width + side - 1);
                const int step = row + 3 * random.between(0, 2);
                FencedMemory image(static_cast<size_t>(step * (height + side - 2) + row), fence);
                random.fill(image.data(), image.size());
                uint8_t* first = image.data() + side / 2 * (step + 3);
                ASSERT_EQ(
                    IPPMini_ippiFilterBox_8u_C3IR(first, step, {width, height}, {side, side}, {side / 2, side / 2}),
                    ippStsNoErr);
            }
}

TEST(Box, StepsNotAMultipleOfThePixelDisplaceRows) {
    Random random(626);
    for (const int remainder : {1, 2}) {
        const int step = 3 * 40 + remainder;
        std::vector<uint8_t> image(3000);
        random.fill(image.data(), image.size());
        std::vector<uint8_t> expected = image;
        ASSERT_EQ(IPPMini_ippiFilterBox_8u_C3IR(image.data() + 600, step, {30, 9}, {5, 5}, {2, 2}), ippStsNoErr);
        oracle::plainBox(expected.data() + 600, step, {30, 9}, {5, 5}, {2, 2});
        EXPECT_EQ(image, expected);
    }
}

TEST(Box, RefusesBadArguments) {
    Random random(627);
    GuardedImage image(random, {20, 5}, {3, 6, 0, 0});
    const auto refused = [&](uint8_t* srcDst, int step, IppiSize roi, IppiSize mask) {
        const IppStatus status = IPPMini_ippiFilterBox_8u_C3IR(srcDst, step, roi, mask, {1, 1});
        EXPECT_TRUE(image.untouched());
        return status == ippStsBadArgErr;
    };
    EXPECT_TRUE(refused(nullptr, image.step(), {20, 5}, {3, 3}));
    for (const IppiSize empty : {IppiSize{0, 3}, {3, 0}, {-1, 3}, {3, -1}, {INT_MIN, INT_MIN}}) {
        EXPECT_TRUE(refused(image.data(), image.step(), {20, 5}, empty));
        EXPECT_TRUE(refused(image.data(), image.step(), empty, {3, 3}));
    }
    EXPECT_TRUE(refused(image.data(), 22 * 3 - 1, {20, 1}, {3, 3}));
    EXPECT_TRUE(refused(image.data(), -image.step(), {20, 1}, {3, 3}));
    EXPECT_TRUE(refused(image.data(), INT_MAX, {INT_MAX, 1}, {3, 3}));
    EXPECT_TRUE(refused(image.data(), image.step(), {1, INT_MAX}, {3, 3}));
    // The margin of an empty region is no region.
    EXPECT_TRUE(refused(image.data(), image.step(), {-1, -1}, {5, 5}));
}

}    // namespace
