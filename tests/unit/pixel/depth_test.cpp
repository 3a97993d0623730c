// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <opencv2/core.hpp>
#include <vector>

#include "OPCV_dlib.h"
#include "oracle/threshold.h"
#include "support/cv_views.h"
#include "support/fenced_memory.h"
#include "support/guarded_image.h"
#include "support/random.h"

namespace {

short* shorts(uint8_t* p) { return reinterpret_cast<short*>(p); }

GuardedImage::Layout layout16(Random& random) { return {2, 0, 2 * random.between(0, 9), 2 * random.between(0, 15)}; }

IppiSize anySize(Random& random) { return {random.between(1, 200), random.between(1, 5)}; }

TEST(Depth, WidensLikeTheDefinition) {
    Random random(201);
    for (int round = 0; round < 300; ++round) {
        const IppiSize size = anySize(random);
        const GuardedImage narrow(random, size, GuardedImage::anyLayout(random, 1), random.anyValues());
        GuardedImage wide(random, size, layout16(random));
        ASSERT_EQ(IPPShare_ippiConvert_8u16s_C1R(narrow.data(), narrow.step(), shorts(wide.data()), wide.step(), size),
                  ippStsNoErr);
        ASSERT_TRUE(wide.untouchedOutsideRegion()) << "round " << round;
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x)
                ASSERT_EQ(oracle::pixelAt<short>(wide.data(), wide.step(), x, y), *narrow.at(x, y)) << x << ' ' << y;
        cv::Mat expected;
        viewOf(narrow, CV_8UC1).convertTo(expected, CV_16S);
        ASSERT_EQ(firstDifferentRow(wide, expected), -1);
    }
}

TEST(Depth, NarrowsLikeTheDefinition) {
    Random random(202);
    for (int round = 0; round < 300; ++round) {
        const IppiSize size = anySize(random);
        GuardedImage wide(random, size, layout16(random), random.anyValues());
        // Half of the pixels around the two ends of a byte.
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x)
                if (random.chance(50))
                    oracle::setPixel(wide.data(), wide.step(), x, y, static_cast<short>(random.between(-3, 258)));
        GuardedImage narrow(random, size, GuardedImage::anyLayout(random, 1));
        ASSERT_EQ(IPPShare_ippiConvert_16s8u_C1R(shorts(wide.data()), wide.step(), narrow.data(), narrow.step(), size),
                  ippStsNoErr);
        ASSERT_TRUE(narrow.untouchedOutsideRegion()) << "round " << round;
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x)
                ASSERT_EQ(*narrow.at(x, y), oracle::saturated(oracle::pixelAt<short>(wide.data(), wide.step(), x, y)));
        cv::Mat expected;
        viewOf(wide, CV_16SC1).convertTo(expected, CV_8U);
        ASSERT_EQ(firstDifferentRow(narrow, expected), -1);
    }
}

TEST(Depth, NarrowsEvery16BitValue) {
    std::vector<short> wide(65536);
    for (int i = 0; i < 65536; ++i) wide[static_cast<size_t>(i)] = static_cast<short>(i - 32768);
    std::vector<uint8_t> narrow(wide.size());
    ASSERT_EQ(IPPShare_ippiConvert_16s8u_C1R(wide.data(), 512, narrow.data(), 256, {256, 256}), ippStsNoErr);
    for (int i = 0; i < 65536; ++i) ASSERT_EQ(narrow[static_cast<size_t>(i)], oracle::saturated(i - 32768)) << i;
}

TEST(Depth, SaturatesBelow0AndAbove255) {
    const std::vector<short> wide = {-300, 0, 128, 300};
    std::vector<uint8_t> narrow(4);
    EXPECT_EQ(IPPShare_ippiConvert_16s8u_C1R(wide.data(), 8, narrow.data(), 4, {4, 1}), ippStsNoErr);
    EXPECT_EQ(narrow, (std::vector<uint8_t>{0, 0, 128, 255}));
}

// The length of a row is step / pixel size whole pixels.
TEST(Depth, OddStepsOf16BitImagesDisplaceRows) {
    Random random(203);
    const IppiSize size = {5, 4};
    const int oddStep = 13;
    const GuardedImage narrow(random, size, {});
    GuardedImage wide(random, {12, 4}, {});
    ASSERT_EQ(IPPShare_ippiConvert_8u16s_C1R(narrow.data(), narrow.step(), shorts(wide.data()), oddStep, size),
              ippStsNoErr);
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x)
            ASSERT_EQ(oracle::pixelAt<short>(wide.data(), oddStep - 1, x, y), *narrow.at(x, y)) << x << ' ' << y;

    GuardedImage back(random, size, {1, 0, 3, 1});
    ASSERT_EQ(IPPShare_ippiConvert_16s8u_C1R(shorts(wide.data()), oddStep, back.data(), back.step(), size),
              ippStsNoErr);
    EXPECT_TRUE(back.untouchedOutsideRegion());
    EXPECT_EQ(firstDifferentRow(back, viewOf(narrow, CV_8UC1)), -1);
}

TEST(Depth, ReadsAndWritesNoByteTooMany) {
    for (const auto fence : {FencedMemory::Fence::kBehind, FencedMemory::Fence::kInFront})
        for (int width = 1; width <= 140; ++width) {
            const auto count = static_cast<size_t>(width);
            FencedMemory narrow(count, fence);
            FencedMemory wide(2 * count, fence);
            ASSERT_EQ(IPPShare_ippiConvert_8u16s_C1R(narrow.data(), width, shorts(wide.data()), 2 * width, {width, 1}),
                      ippStsNoErr);
            ASSERT_EQ(IPPShare_ippiConvert_16s8u_C1R(shorts(wide.data()), 2 * width, narrow.data(), width, {width, 1}),
                      ippStsNoErr);
        }
}

TEST(Depth, WideningRefusesBadArguments) {
    Random random(204);
    const std::vector<uint8_t> narrow(64);
    GuardedImage wide(random, {32, 2}, {});
    const auto call = [&](const uint8_t* src, int srcStep, short* dst, int dstStep, IppiSize size) {
        const IppStatus status = IPPShare_ippiConvert_8u16s_C1R(src, srcStep, dst, dstStep, size);
        EXPECT_TRUE(wide.untouched());
        return status;
    };
    short* dst = shorts(wide.data());
    EXPECT_EQ(call(nullptr, 16, dst, 32, {16, 1}), ippStsBadArgErr);
    EXPECT_EQ(call(narrow.data(), 16, nullptr, 32, {16, 1}), ippStsBadArgErr);
    for (const IppiSize size : {IppiSize{0, 1}, {1, 0}, {-1, 1}, {1, -1}})
        EXPECT_EQ(call(narrow.data(), 16, dst, 32, size), ippStsBadArgErr);
    EXPECT_EQ(call(narrow.data(), 15, dst, 32, {16, 1}), ippStsBadArgErr);
    EXPECT_EQ(call(narrow.data(), 16, dst, 31, {16, 1}), ippStsBadArgErr);
    for (const int step : {0, -16, INT_MIN}) {
        EXPECT_EQ(call(narrow.data(), step, dst, 32, {16, 1}), ippStsBadArgErr) << step;
        EXPECT_EQ(call(narrow.data(), 16, dst, step, {16, 1}), ippStsBadArgErr) << step;
    }
}

TEST(Depth, NarrowingRefusesBadArguments) {
    Random random(205);
    const std::vector<short> wide(64);
    GuardedImage narrow(random, {16, 2}, {});
    const auto call = [&](const short* src, int srcStep, uint8_t* dst, int dstStep, IppiSize size) {
        const IppStatus status = IPPShare_ippiConvert_16s8u_C1R(src, srcStep, dst, dstStep, size);
        EXPECT_TRUE(narrow.untouched());
        return status;
    };
    EXPECT_EQ(call(nullptr, 32, narrow.data(), 16, {16, 1}), ippStsBadArgErr);
    EXPECT_EQ(call(wide.data(), 32, nullptr, 16, {16, 1}), ippStsBadArgErr);
    for (const IppiSize size : {IppiSize{0, 1}, {1, 0}, {-1, 1}, {1, -1}})
        EXPECT_EQ(call(wide.data(), 32, narrow.data(), 16, size), ippStsBadArgErr);
    EXPECT_EQ(call(wide.data(), 31, narrow.data(), 16, {16, 1}), ippStsBadArgErr);
    EXPECT_EQ(call(wide.data(), 32, narrow.data(), 15, {16, 1}), ippStsBadArgErr);
    for (const int step : {0, -32, INT_MIN}) {
        EXPECT_EQ(call(wide.data(), step, narrow.data(), 16, {16, 1}), ippStsBadArgErr) << step;
        EXPECT_EQ(call(wide.data(), 32, narrow.data(), step, {16, 1}), ippStsBadArgErr) << step;
    }
}

}    // namespace
