// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The bytes that a convolution reads and writes, and the arguments that it rejects.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <vector>

#include "OPCV_dlib.h"
#include "filters/convolution_call.h"
#include "oracle/convolution.h"
#include "support/fenced_memory.h"
#include "support/guarded_image.h"
#include "support/random.h"

namespace {

TEST(Convolution, ReadsAndWritesNoByteTooMany) {
    Random random(609);
    for (const auto fence : {FencedMemory::Fence::kBehind, FencedMemory::Fence::kInFront})
        for (const PixelType& type : {k8uC1, k8uC3, k16sC1})
            for (const IppiSize side : {IppiSize{1, 1}, {3, 3}, {5, 5}, {7, 3}})
                for (int width = 1; width <= 70; width += 1 + width / 20) {
                    const auto kernel =
                        kernelOf<int>(side, {side.width / 2, side.height / 2}, [&] { return random.between(-2, 9); });
                    const int height = random.between(1, 3);
                    const int viewRow = (width + side.width - 1) * type.bytes();
                    const int step = viewRow + random.between(0, 3) * type.bytes();
                    const int viewRows = height + side.height - 1;
                    FencedMemory src(static_cast<size_t>(step * (viewRows - 1) + viewRow), fence);
                    random.fill(src.data(), src.size());
                    const int dstRow = width * type.bytes();
                    FencedMemory dst(static_cast<size_t>((dstRow + 2 * type.bytes()) * (height - 1) + dstRow), fence);
                    const uint8_t* first =
                        src.data() + side.height / 2 * step + ptrdiff_t{side.width / 2} * type.bytes();
                    ASSERT_EQ(
                        filterAnyType({first, step, type.code, dst.data(), dstRow + 2 * type.bytes(), {width, height}},
                                      kernel.cells.data(), side, kernel.anchor, 20),
                        ippStsNoErr);
                }
}

TEST(Convolution, SourceAndDestinationMayOverlap) {
    Random random(610);
    for (const PixelType& type : {k8uC1, k8uC3, k16sC1})
        for (const int shift : {0, 1, -1, 3}) {
            const auto kernel = kernelOf<int>({5, 3}, {2, 1}, [&] { return random.between(-5, 9); });
            GuardedImage image(random, {120, 9}, {type.bytes(), 6, 0, 0});
            GuardedImage expected(random, {120, 9}, {type.bytes(), 0, 0, 0});
            filterByDefinition(type, image, expected, kernel, 30);
            ASSERT_EQ(
                filterAnyType({image.data(), image.step(), type.code, image.at(shift, shift), image.step(), {120, 9}},
                              kernel.cells.data(), kernel.size, kernel.anchor, 30),
                ippStsNoErr);
            for (int y = 0; y < 9; ++y)
                ASSERT_EQ(std::memcmp(image.at(shift, y + shift), expected.at(0, y),
                                      static_cast<size_t>(expected.rowBytes())),
                          0)
                    << "type " << type.code << " shift " << shift << " row " << y;
        }
}

// Rows start early by the remainder, on both sides.
TEST(Convolution, StepsNotAMultipleOfThePixelDisplaceRows) {
    Random random(611);
    const auto kernel = kernelOf<int>({3, 3}, {1, 1}, [&] { return random.between(0, 9); });
    std::vector<uint8_t> src(3000);
    random.fill(src.data(), src.size());
    for (const int remainder : {1, 2}) {
        const int step = 3 * 40 + remainder;
        std::vector<uint8_t> dst(1000, 7);
        std::vector<uint8_t> expected(1000, 7);
        ASSERT_EQ(filterByType({src.data() + 600, step, CV_8UC3, dst.data(), step, {30, 5}}, kernel.cells.data(),
                               kernel.size, kernel.anchor, 40),
                  ippStsNoErr);
        oracle::convolve(src.data() + 600, step, CV_8UC3, expected.data(), step, {30, 5}, kernel.cells.data(),
                         kernel.size, kernel.anchor, 40);
        EXPECT_EQ(dst, expected);
    }
}

TEST(Convolution, RefusesBadArguments) {
    Random random(612);
    const GuardedImage src(random, {20, 5}, {3, 8, 0, 0});
    GuardedImage dst(random, {20, 5}, {3, 0, 6, 0});
    const std::vector<int> cells(9, 1);
    const std::vector<float> weights(9, 0.1F);
    const auto refused = [&](const uint8_t* pSrc, int srcStep, uint8_t* pDst, int dstStep, IppiSize roi,
                             bool withKernel, IppiSize kernelSize, IppiPoint anchor, int divisor) {
        const IppStatus status = filterByType({pSrc, srcStep, CV_8UC3, pDst, dstStep, roi},
                                              withKernel ? cells.data() : nullptr, kernelSize, anchor, divisor);
        EXPECT_TRUE(dst.untouched());
        if (divisor == 0) return status == ippStsBadArgErr;
        const IppStatus status32f = filterByType({pSrc, srcStep, CV_8UC3, pDst, dstStep, roi},
                                                 withKernel ? weights.data() : nullptr, kernelSize, anchor);
        EXPECT_TRUE(dst.untouched());
        return status == ippStsBadArgErr && status32f == ippStsBadArgErr;
    };
    const uint8_t* pSrc = src.data();
    uint8_t* pDst = dst.data();
    const int step = src.step();
    const IppiSize roi = {20, 5};
    EXPECT_TRUE(refused(nullptr, step, pDst, 66, roi, true, {3, 3}, {1, 1}, 1));
    EXPECT_TRUE(refused(pSrc, step, nullptr, 66, roi, true, {3, 3}, {1, 1}, 1));
    EXPECT_TRUE(refused(pSrc, step, pDst, 66, roi, false, {3, 3}, {1, 1}, 1));
    EXPECT_TRUE(refused(pSrc, step, pDst, 66, roi, true, {3, 3}, {1, 1}, 0));
    for (const IppiSize empty : {IppiSize{0, 3}, {3, 0}, {-1, 3}, {3, -1}, {INT_MIN, INT_MIN}}) {
        EXPECT_TRUE(refused(pSrc, step, pDst, 66, empty, true, {3, 3}, {1, 1}, 1));
        EXPECT_TRUE(refused(pSrc, step, pDst, 66, roi, true, empty, {1, 1}, 1));
    }
    // 22 columns are read, 20 are written.
    EXPECT_TRUE(refused(pSrc, 22 * 3 - 1, pDst, 66, roi, true, {3, 3}, {1, 1}, 1));
    EXPECT_TRUE(refused(pSrc, step, pDst, 59, roi, true, {3, 3}, {1, 1}, 1));
    EXPECT_TRUE(refused(pSrc, -step, pDst, 66, roi, true, {3, 3}, {1, 1}, 1));
    EXPECT_TRUE(refused(pSrc, step, pDst, -66, roi, true, {3, 3}, {1, 1}, 1));
    EXPECT_TRUE(refused(pSrc, INT_MAX, pDst, INT_MAX, {INT_MAX, 1}, true, {3, 3}, {1, 1}, 1));
    EXPECT_TRUE(refused(pSrc, step, pDst, 66, {1, INT_MAX}, true, {3, 3}, {1, 1}, 1));
    EXPECT_EQ(filterByType({pSrc, 22 * 3, CV_8UC3, pDst, 60, {20, 1}}, cells.data(), {3, 3}, {1, 1}, 9), ippStsNoErr);
}

TEST(Convolution, CoreRoutinesRefuseANullSourceAndADivisorOfZero) {
    const uint8_t src = 9;
    uint8_t dst = 5;
    const int one = 1;
    const float weight = 1;
    EXPECT_EQ(filterAnyType({nullptr, 1, CV_8UC1, &dst, 1, {1, 1}}, &one, {1, 1}, {0, 0}, 1), ippStsBadArgErr);
    EXPECT_EQ(filterAnyType({&src, 1, CV_8UC1, &dst, 1, {1, 1}}, &one, {1, 1}, {0, 0}, 0), ippStsBadArgErr);
    EXPECT_EQ(filterAnyType({nullptr, 1, CV_8UC1, &dst, 1, {1, 1}}, &weight, {1, 1}, {0, 0}), ippStsBadArgErr);
    EXPECT_EQ(dst, 5);
    EXPECT_EQ(filterAnyType({&src, 1, CV_8UC1, &dst, 1, {1, 1}}, &weight, {1, 1}, {0, 0}), ippStsNoErr);
    EXPECT_EQ(dst, 9);
}

TEST(FilterOfAnyType, HalvesOfSeveralChannelsThrowUnderAnyKernel) {
    for (const int side : {1, 3, 13}) {
        const std::vector<float> kernel(static_cast<size_t>(side) * static_cast<size_t>(side), 1.0F);
        constexpr int kSide = 64;
        const std::vector<uint16_t> source(static_cast<size_t>(kSide) * kSide * 3, 0x3C00);
        std::vector<uint16_t> output(3, 0xBEEF);
        const uint16_t* middle = &source[(kSide / 2 * kSide + kSide / 2) * 3];
        const int half = side / 2;
        EXPECT_THROW(filterAnyType({middle, kSide * 6, CV_16FC3, output.data(), 6, {1, 1}}, kernel.data(), {side, side},
                                   {half, half}),
                     cv::Exception)
            << side;
        EXPECT_EQ(output, std::vector<uint16_t>(3, 0xBEEF));
    }
}

TEST(FilterOfAnyType, HalvesOfOneChannelThrowUnderASmallKernel) {
    const std::vector<float> kernel(9, 1.0F);
    const std::vector<uint16_t> source(9, 0x3C00);
    uint16_t output = 0xBEEF;
    EXPECT_THROW(filterAnyType({&source[4], 6, CV_16FC1, &output, 2, {1, 1}}, kernel.data(), {3, 3}, {1, 1}),
                 cv::Exception);
    EXPECT_EQ(output, 0xBEEF);
}

}    // namespace
