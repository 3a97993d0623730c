// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <vector>

#include "OPCV_dlib.h"
#include "oracle/bit_packing.h"
#include "support/fenced_memory.h"
#include "support/guarded_image.h"
#include "support/random.h"

namespace {

// Widths 1 to 300 meet every remainder of a block on both vector widths, the rest are page-like.
int anyWidth(Random& random) { return random.chance(80) ? random.between(1, 300) : random.between(301, 2600); }

std::vector<uint8_t> bytesOf(std::initializer_list<int> values) { return {values.begin(), values.end()}; }

TEST(BitPacking, ExpandsLikeTheDefinition) {
    Random random(101);
    for (int round = 0; round < 1500; ++round) {
        const int offset = random.between(0, 7);
        const IppiSize size = {anyWidth(random), random.between(1, 4)};
        const int bytes = (offset + size.width + 7) / 8;
        const GuardedImage bits(random, {bytes, size.height}, GuardedImage::anyLayout(random, 1));
        GuardedImage grey(random, size, GuardedImage::anyLayout(random, 1));
        ASSERT_EQ(IPPShare_ippiConvert_1u8u_C1R(bits.data(), bits.step(), offset, grey.data(), grey.step(), size),
                  ippStsNoErr);
        ASSERT_TRUE(grey.untouchedOutsideRegion()) << "round " << round;
        for (int y = 0; y < size.height; ++y) {
            std::vector<uint8_t> expected(static_cast<size_t>(size.width));
            oracle::expandRow(bits.at(0, y), offset, expected.data(), size.width);
            ASSERT_EQ(expected, std::vector<uint8_t>(grey.at(0, y), grey.at(size.width, y)))
                << "round " << round << " offset " << offset << " width " << size.width;
        }
    }
}

TEST(BitPacking, ReducesLikeTheDefinition) {
    Random random(102);
    for (int round = 0; round < 1500; ++round) {
        const int offset = random.between(0, 7);
        const IppiSize size = {anyWidth(random), random.between(1, 4)};
        const int bytes = (offset + size.width + 7) / 8;
        const int threshold = random.chance(20) ? 255 : random.between(0, 255);
        const GuardedImage grey(random, size, GuardedImage::anyLayout(random, 1), random.anyValues());
        GuardedImage bits(random, {bytes, size.height}, GuardedImage::anyLayout(random, 1), random.anyValues());
        GuardedImage expected = bits;
        ASSERT_EQ(IPPShare_ippiReduceBits_8u1u_C1R(grey.data(), grey.step(), bits.data(), bits.step(), offset, size,
                                                   random.between(-3, 300), random.between(-3, 300),
                                                   random.between(-3, 300), static_cast<uint8_t>(threshold)),
                  ippStsNoErr);
        ASSERT_TRUE(bits.untouchedOutsideRegion()) << "round " << round;
        for (int y = 0; y < size.height; ++y) {
            oracle::packRow(grey.at(0, y), expected.at(0, y), offset, size.width, threshold);
            ASSERT_EQ(std::vector<uint8_t>(expected.at(0, y), expected.at(bytes, y)),
                      std::vector<uint8_t>(bits.at(0, y), bits.at(bytes, y)))
                << "round " << round << " offset " << offset << " width " << size.width << " threshold " << threshold;
        }
    }
}

// One block; a second one of one pixel; two whole blocks between the first and the last.
TEST(BitPacking, BlocksMeetAtTheirEdges) {
    Random random(106);
    for (const int width : {127, 128, 129, 255, 256, 257, 384, 385})
        for (int offset = 0; offset < 8; ++offset) {
            const int bytes = (offset + width + 7) / 8;
            GuardedImage grey(random, {width, 1}, {}, Random::Values::kExtreme);
            GuardedImage bits(random, {bytes, 1}, {});
            GuardedImage expected = bits;
            Convert_8u1u_C1R(grey.data(), width, bits.data(), bytes, offset, width, 1, 127);
            oracle::packRow(grey.data(), expected.data(), offset, width, 127);
            ASSERT_TRUE(bits.untouchedOutsideRegion());
            ASSERT_TRUE(std::equal(bits.data(), bits.data() + bytes, expected.data())) << width << " at " << offset;
            GuardedImage back(random, {width, 1}, {});
            Convert_1u8u_C1R(bits.data(), bytes, offset, back.data(), width, width, 1);
            ASSERT_TRUE(back.untouchedOutsideRegion());
            ASSERT_TRUE(std::equal(back.data(), back.data() + width, grey.data())) << width << " at " << offset;
        }
}

TEST(BitPacking, ReadsAndWritesNoByteTooMany) {
    Random random(103);
    for (const auto fence : {FencedMemory::Fence::kBehind, FencedMemory::Fence::kInFront})
        for (int width = 1; width <= 300; ++width)
            for (int offset = 0; offset < 8; ++offset) {
                const int bytes = (offset + width + 7) / 8;
                FencedMemory bits(static_cast<size_t>(bytes), fence);
                FencedMemory grey(static_cast<size_t>(width), fence);
                random.fill(bits.data(), bits.size());
                const std::vector<uint8_t> before(bits.data(), bits.data() + bytes);
                Convert_1u8u_C1R(bits.data(), bytes, offset, grey.data(), width, width, 1);
                Convert_8u1u_C1R(grey.data(), width, bits.data(), bytes, offset, width, 1, 127);
                ASSERT_EQ(before, std::vector<uint8_t>(bits.data(), bits.data() + bytes));
            }
}

TEST(BitPacking, ExpandsMostSignificantBitFirst) {
    const uint8_t bits = 0xA5;
    std::array<uint8_t, 8> grey{};
    EXPECT_EQ(IPPShare_ippiConvert_1u8u_C1R(&bits, 1, 0, grey.data(), 8, {8, 1}), ippStsNoErr);
    EXPECT_EQ(grey, (std::array<uint8_t, 8>{255, 0, 255, 0, 0, 255, 0, 255}));
    EXPECT_EQ(IPPShare_ippiConvert_1u8u_C1R(&bits, 1, 3, grey.data(), 8, {5, 1}), ippStsNoErr);
    EXPECT_EQ(grey, (std::array<uint8_t, 8>{0, 0, 255, 0, 255, 255, 0, 255}));
}

TEST(BitPacking, KeepsTheBitsAroundTheRegionBelowThreshold255) {
    const auto grey = bytesOf({200, 100, 128});
    uint8_t bits = 0xFF;
    EXPECT_EQ(IPPShare_ippiReduceBits_8u1u_C1R(grey.data(), 3, &bits, 1, 2, {3, 1}, 0, 0, 0, 127), ippStsNoErr);
    EXPECT_EQ(bits, 0b11101111);
    bits = 0xFF;
    EXPECT_EQ(IPPShare_ippiReduceBits_8u1u_C1R(grey.data(), 3, &bits, 1, 2, {3, 1}, 0, 0, 0, 254), ippStsNoErr);
    EXPECT_EQ(bits, 0b11000111);
    bits = 0xFF;
    EXPECT_EQ(IPPShare_ippiReduceBits_8u1u_C1R(grey.data(), 3, &bits, 1, 2, {3, 1}, 0, 0, 0, 255), ippStsNoErr);
    EXPECT_EQ(bits, 0);
}

TEST(BitPacking, ThresholdIsStrict) {
    const auto grey = bytesOf({126, 127, 128, 0, 255, 127, 128, 127});
    uint8_t bits = 0;
    EXPECT_EQ(IPPShare_ippiReduceBits_8u1u_C1R(grey.data(), 8, &bits, 1, 0, {8, 1}, 0, 0, 0, 127), ippStsNoErr);
    EXPECT_EQ(bits, 0b00101010);
}

TEST(BitPacking, ExpandRefusesBadArguments) {
    Random random(104);
    const std::array<uint8_t, 8> bits{};
    GuardedImage grey(random, {16, 2}, {});
    const auto call = [&](const uint8_t* src, int srcStep, int offset, uint8_t* dst, int dstStep, IppiSize size) {
        const IppStatus status = IPPShare_ippiConvert_1u8u_C1R(src, srcStep, offset, dst, dstStep, size);
        EXPECT_TRUE(grey.untouched());
        return status;
    };
    EXPECT_EQ(call(nullptr, 2, 0, grey.data(), 16, {16, 2}), ippStsBadArgErr);
    EXPECT_EQ(call(bits.data(), 2, 0, nullptr, 16, {16, 2}), ippStsBadArgErr);
    for (const int offset : {-1, 8, INT_MIN, INT_MAX})
        EXPECT_EQ(call(bits.data(), 4, offset, grey.data(), 16, {8, 1}), ippStsBadArgErr) << offset;
    for (const IppiSize size : {IppiSize{0, 1}, {1, 0}, {-1, 1}, {1, -1}})
        EXPECT_EQ(call(bits.data(), 4, 0, grey.data(), 16, size), ippStsBadArgErr);
    EXPECT_EQ(call(bits.data(), 1, 1, grey.data(), 16, {8, 1}), ippStsBadArgErr);
    EXPECT_EQ(call(bits.data(), -1, 0, grey.data(), 16, {8, 1}), ippStsBadArgErr);
    EXPECT_EQ(call(bits.data(), 2, 0, grey.data(), 15, {16, 1}), ippStsBadArgErr);
    // 8 x step would wrap to 8 in 32 bits.
    EXPECT_EQ(call(bits.data(), INT_MIN + 1, 0, grey.data(), 16, {8, 1}), ippStsBadArgErr);
}

TEST(BitPacking, ReduceRefusesBadArguments) {
    Random random(105);
    const std::array<uint8_t, 64> grey{};
    GuardedImage bits(random, {4, 2}, {});
    const auto call = [&](const uint8_t* src, int srcStep, uint8_t* dst, int dstStep, int offset, IppiSize size) {
        const IppStatus status =
            IPPShare_ippiReduceBits_8u1u_C1R(src, srcStep, dst, dstStep, offset, size, 0, 0, 0, 128);
        EXPECT_TRUE(bits.untouched());
        return status;
    };
    EXPECT_EQ(call(nullptr, 32, bits.data(), 4, 0, {8, 1}), ippStsBadArgErr);
    EXPECT_EQ(call(grey.data(), 32, nullptr, 4, 0, {8, 1}), ippStsBadArgErr);
    for (const int offset : {-1, 8, INT_MIN, INT_MAX})
        EXPECT_EQ(call(grey.data(), 32, bits.data(), 4, offset, {8, 1}), ippStsBadArgErr) << offset;
    for (const IppiSize size : {IppiSize{0, 1}, {1, 0}, {-1, 1}, {1, -1}})
        EXPECT_EQ(call(grey.data(), 32, bits.data(), 4, 0, size), ippStsBadArgErr);
    EXPECT_EQ(call(grey.data(), 8, bits.data(), 4, 0, {9, 1}), ippStsBadArgErr);
    EXPECT_EQ(call(grey.data(), 32, bits.data(), 1, 0, {9, 1}), ippStsBadArgErr);
    EXPECT_EQ(call(grey.data(), 32, bits.data(), 1, 1, {8, 1}), ippStsBadArgErr);
    EXPECT_EQ(call(grey.data(), 32, bits.data(), -1, 0, {8, 1}), ippStsBadArgErr);
}

TEST(BitPacking, KernelsDoNothingWithoutRows) {
    const uint8_t source = 0xFF;
    uint8_t destination = 0x55;
    for (const int height : {0, -1}) {
        Convert_1u8u_C1R(&source, 1, 0, &destination, 1, 1, height);
        Convert_8u1u_C1R(&source, 1, &destination, 1, 0, 1, height, 1);
    }
    EXPECT_EQ(destination, 0x55);
}

TEST(BitPacking, KernelsDoNothingWithoutColumns) {
    const uint8_t source = 0xFF;
    uint8_t destination = 0x55;
    for (const int width : {0, -1, INT_MIN})
        for (const uint8_t threshold : std::initializer_list<uint8_t>{0, 1, 255}) {
            Convert_1u8u_C1R(&source, 1, 0, &destination, 1, width, 1);
            Convert_8u1u_C1R(&source, 1, &destination, 1, 0, width, 1, threshold);
        }
    EXPECT_EQ(destination, 0x55);
}

}    // namespace
