// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <vector>

#include "OPCV_dlib.h"
#include "oracle/threshold.h"
#include "support/cv_views.h"
#include "support/fenced_memory.h"
#include "support/guarded_image.h"
#include "support/random.h"

namespace {

short* shorts(uint8_t* p) { return reinterpret_cast<short*>(p); }

// One byte of an image as a 16-bit pixel would be too rare a tie, so thresholds are taken from the image.
template <typename T>
T anyThreshold(Random& random, const GuardedImage& image) {
    const IppiSize size = image.size();
    const int off = random.chance(60) ? 0 : random.between(-1, 1);
    return static_cast<T>(oracle::pixelAt<T>(image.data(), image.step(), random.between(0, size.width - 1),
                                             random.between(0, size.height - 1)) +
                          off);
}

TEST(Threshold, ReplacesLikeTheDefinition8Bit) {
    Random random(301);
    for (int round = 0; round < 1000; ++round) {
        const IppiSize size = {random.between(1, 200), random.between(1, 4)};
        GuardedImage image(random, size, GuardedImage::anyLayout(random, 1), random.anyValues());
        GuardedImage expected = image;
        const auto level = anyThreshold<uint8_t>(random, image);
        const uint8_t value = random.byte();
        oracle::threshold(expected.data(), expected.step(), size.width, size.height, level, value);
        ASSERT_EQ(IPPShare_ippiThreshold_LTVal_8u_C1IR(image.data(), image.step(), size, level, value), ippStsNoErr);
        ASSERT_TRUE(image.untouchedOutsideRegion());
        ASSERT_EQ(firstDifferentRow(image, viewOf(expected, CV_8UC1)), -1) << "round " << round;
    }
}

// Any step is allowed, including odd ones; with negative ones the rows go upwards.
TEST(Threshold, ReplacesLikeTheDefinition16Bit) {
    Random random(302);
    for (int round = 0; round < 1000; ++round) {
        const IppiSize size = {random.between(1, 100), random.between(1, 4)};
        GuardedImage image(random, size, {2, 0, random.between(0, 9), random.between(0, 31)}, random.anyValues());
        GuardedImage expected = image;
        const auto level = anyThreshold<short>(random, image);
        const auto value = static_cast<short>(random.between(SHRT_MIN, SHRT_MAX));
        oracle::threshold(expected.data(), expected.step(), size.width, size.height, level, value);
        const bool upwards = random.chance(50);
        short* first = shorts(image.at(0, upwards ? size.height - 1 : 0));
        const int step = upwards ? -image.step() : image.step();
        ASSERT_EQ(IPPShare_ippiThreshold_LTVal_16s_C1IR(first, step, size, level, value), ippStsNoErr);
        ASSERT_TRUE(image.untouchedOutsideRegion());
        const cv::Mat bytes(size.height, expected.rowBytes(), CV_8UC1, expected.data(),
                            static_cast<size_t>(expected.step()));
        ASSERT_EQ(firstDifferentRow(image, bytes), -1) << "round " << round;
    }
}

TEST(Threshold, MeetsEveryPairOfBytes) {
    std::vector<uint8_t> row(256);
    for (int level = 0; level < 256; ++level) {
        for (int i = 0; i < 256; ++i) row[static_cast<size_t>(i)] = static_cast<uint8_t>(i);
        const auto value = static_cast<uint8_t>(level * 7 + 3);
        Threshold_LTVal_8u_C1IR(row.data(), 256, 256, 1, static_cast<uint8_t>(level), value);
        for (int i = 0; i < 256; ++i) ASSERT_EQ(row[static_cast<size_t>(i)], i <= level ? value : i) << level;
    }
}

TEST(Threshold, ReplacesAPixelEqualToTheThreshold) {
    std::vector<uint8_t> bytes = {99, 100, 101};
    EXPECT_EQ(IPPShare_ippiThreshold_LTVal_8u_C1IR(bytes.data(), 3, {3, 1}, 100, 0), ippStsNoErr);
    EXPECT_EQ(bytes, (std::vector<uint8_t>{0, 0, 101}));
    std::vector<short> words = {-2, -1, 0};
    EXPECT_EQ(IPPShare_ippiThreshold_LTVal_16s_C1IR(words.data(), 6, {3, 1}, -1, 7), ippStsNoErr);
    EXPECT_EQ(words, (std::vector<short>{7, 7, 0}));
}

TEST(Threshold, ReadsAndWritesNoByteTooMany) {
    for (const auto fence : {FencedMemory::Fence::kBehind, FencedMemory::Fence::kInFront})
        for (int width = 1; width <= 140; ++width) {
            FencedMemory image(2 * static_cast<size_t>(width), fence);
            Threshold_LTVal_8u_C1IR(image.data(), 0, 2 * width, 1, 3, 200);
            ASSERT_EQ(image.data()[2 * width - 1], 200);
            Threshold_LTVal_16s_C1IR(shorts(image.data()), 0, width, 1, -1, 0x0101);
            ASSERT_EQ(image.data()[2 * width - 1], 1);
        }
}

// The first row is at the bottom.
TEST(Threshold, NegativeStepsWalkUpwards) {
    std::vector<short> words = {1, 2, 3, 4, 5, 6, 7, 8};
    EXPECT_EQ(IPPShare_ippiThreshold_LTVal_16s_C1IR(words.data() + 4, -8, {4, 2}, 2, 9), ippStsNoErr);
    EXPECT_EQ(words, (std::vector<short>{9, 9, 3, 4, 5, 6, 7, 8}));
    Threshold_LTVal_16s_C1IR(words.data() + 4, -8, 3, 2, 6, 0);
    EXPECT_EQ(words, (std::vector<short>{9, 9, 0, 4, 0, 0, 7, 8}));
    std::vector<uint8_t> bytes = {1, 2, 3, 4};
    Threshold_LTVal_8u_C1IR(bytes.data() + 2, -2, 2, 2, 3, 9);
    EXPECT_EQ(bytes, (std::vector<uint8_t>{9, 9, 9, 4}));
}

TEST(Threshold, EightBitRefusesBadArguments) {
    Random random(303);
    GuardedImage image(random, {16, 2}, {});
    const auto call = [&](uint8_t* p, int step, IppiSize size) {
        const IppStatus status = IPPShare_ippiThreshold_LTVal_8u_C1IR(p, step, size, 255, 1);
        EXPECT_TRUE(image.untouched());
        return status;
    };
    EXPECT_EQ(call(nullptr, 16, {16, 1}), ippStsBadArgErr);
    EXPECT_EQ(call(image.data(), 9, {10, 1}), ippStsBadArgErr);
    for (const int step : {-1, -10, INT_MIN, 0}) EXPECT_EQ(call(image.at(0, 1), step, {10, 1}), ippStsBadArgErr);
    for (const IppiSize size : {IppiSize{0, 1}, {1, 0}, {-1, 1}, {1, -1}})
        EXPECT_EQ(call(image.data(), 16, size), ippStsBadArgErr);
}

TEST(Threshold, SixteenBitRefusesBadArguments) {
    Random random(304);
    GuardedImage image(random, {32, 2}, {});
    const auto call = [&](short* p, int step, IppiSize size) {
        const IppStatus status = IPPShare_ippiThreshold_LTVal_16s_C1IR(p, step, size, SHRT_MAX, 1);
        EXPECT_TRUE(image.untouched());
        return status;
    };
    EXPECT_EQ(call(nullptr, 16, {4, 1}), ippStsBadArgErr);
    EXPECT_EQ(call(nullptr, -16, {4, 1}), ippStsBadArgErr);
    EXPECT_EQ(call(shorts(image.data()), 9, {5, 1}), ippStsBadArgErr);
    EXPECT_EQ(call(shorts(image.data()), 0, {1, 1}), ippStsBadArgErr);
    // Twice the width would wrap to a small number in 32 bits.
    EXPECT_EQ(call(shorts(image.data()), INT_MAX, {(1 << 30) + 1, 1}), ippStsBadArgErr);
    for (const IppiSize size : {IppiSize{0, 1}, {1, 0}, {-1, 1}, {1, -1}}) {
        EXPECT_EQ(call(shorts(image.data()), 16, size), ippStsBadArgErr);
        EXPECT_EQ(call(shorts(image.data()), -16, size), ippStsBadArgErr);
    }
}

TEST(Threshold, TakesRowsThatFillTheStep) {
    std::vector<short> words = {-5, 5, -5, 5, -5, 5, -5, 5};
    EXPECT_EQ(IPPShare_ippiThreshold_LTVal_16s_C1IR(words.data(), 8, {4, 2}, 0, 0), ippStsNoErr);
    EXPECT_EQ(words, (std::vector<short>{0, 5, 0, 5, 0, 5, 0, 5}));
    std::vector<uint8_t> bytes = {1, 2, 1, 2};
    EXPECT_EQ(IPPShare_ippiThreshold_LTVal_8u_C1IR(bytes.data(), 2, {2, 2}, 1, 0), ippStsNoErr);
    EXPECT_EQ(bytes, (std::vector<uint8_t>{0, 2, 0, 2}));
}

TEST(Threshold, KernelsDoNothingOnEmptyRegions) {
    uint8_t byte = 1;
    short word = 1;
    for (const IppiSize size : {IppiSize{0, 1}, {1, 0}, {-1, 1}, {1, -1}, {INT_MIN, 1}, {1, INT_MIN}}) {
        Threshold_LTVal_8u_C1IR(&byte, 1, size.width, size.height, 255, 0);
        Threshold_LTVal_16s_C1IR(&word, 2, size.width, size.height, SHRT_MAX, 0);
    }
    EXPECT_EQ(byte, 1);
    EXPECT_EQ(word, 1);
}

TEST(Fill, SetsTheRegionAndNothingElse) {
    Random random(305);
    for (int round = 0; round < 200; ++round) {
        const IppiSize size = {random.between(1, 200), random.between(1, 5)};
        GuardedImage image(random, size, GuardedImage::anyLayout(random, 1));
        const uint8_t value = random.byte();
        ASSERT_EQ(IPPShare_ippiSet_8u_C1R(value, image.data(), image.step(), size), ippStsNoErr);
        ASSERT_TRUE(image.untouchedOutsideRegion());
        ASSERT_EQ(firstDifferentRow(image, cv::Mat(size.height, size.width, CV_8UC1, cv::Scalar(value))), -1);
    }
}

TEST(Fill, FillsWholeRowsWhenTheWidthIsTheStep) {
    std::vector<uint8_t> bytes(12, 1);
    EXPECT_EQ(IPPShare_ippiSet_8u_C1R(7, bytes.data(), 5, {5, 2}), ippStsNoErr);
    EXPECT_EQ(bytes, (std::vector<uint8_t>{7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 1, 1}));
}

TEST(Fill, RefusesBadArguments) {
    Random random(306);
    GuardedImage image(random, {16, 2}, {});
    const auto call = [&](uint8_t* p, int step, IppiSize size) {
        const IppStatus status = IPPShare_ippiSet_8u_C1R(1, p, step, size);
        EXPECT_TRUE(image.untouched());
        return status;
    };
    EXPECT_EQ(call(nullptr, 16, {16, 1}), ippStsBadArgErr);
    EXPECT_EQ(call(image.data(), 10, {11, 1}), ippStsBadArgErr);
    for (const int step : {0, -1, -16, INT_MIN}) EXPECT_EQ(call(image.at(0, 1), step, {1, 1}), ippStsBadArgErr);
    for (const IppiSize size : {IppiSize{0, 1}, {1, 0}, {-1, 1}, {1, -1}})
        EXPECT_EQ(call(image.data(), 16, size), ippStsBadArgErr);
}

}    // namespace
