// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "OPCV_dlib.h"
#include "oracle/median.h"
#include "support/fenced_memory.h"
#include "support/guarded_image.h"
#include "support/random.h"
#include "support/shared_byte.h"

namespace {

int typeOf(int channels) { return CV_MAKETYPE(CV_8U, channels); }

std::vector<uint8_t> rowOf(const GuardedImage& image, int y) {
    return {image.at(0, y), image.at(image.size().width, y)};
}

// The enlarged region of the source, its median by OpenCV, and the interior of that.
cv::Mat openCVMedian(const GuardedImage& source, int channels, int m, IppiPoint anchor) {
    const IppiSize size = source.size();
    const cv::Mat view(size.height + m - 1, size.width + m - 1, typeOf(channels),
                       const_cast<uint8_t*>(source.at(-anchor.x, -anchor.y)), static_cast<size_t>(source.step()));
    cv::Mat filtered;
    cv::medianBlur(view.clone(), filtered, m);
    return filtered(cv::Rect(m / 2, m / 2, size.width, size.height));
}

std::vector<uint8_t> rowOf(const cv::Mat& image, int y) {
    return {image.ptr(y), image.ptr(y) + static_cast<size_t>(image.cols) * image.elemSize()};
}

// Anchors inside the mask, and outside of it by as much as the margin allows.
constexpr int kMargin = 40;
IppiPoint anyAnchor(Random& random, int m) {
    if (random.chance(70)) return {random.between(0, m - 1), random.between(0, m - 1)};
    return {random.between(m - kMargin, kMargin), random.between(m - kMargin, kMargin)};
}

class SquareMedian : public testing::TestWithParam<int> {
protected:
    static int m() { return GetParam(); }

    // Filters an image of random content.
    void filterAny(Random& random, IppiSize size, int channels, bool byDefinition) {
        const IppiPoint anchor = anyAnchor(random, m());
        const GuardedImage source(random, size, GuardedImage::anyLayout(random, channels, kMargin), random.anyValues());
        GuardedImage result(random, size, GuardedImage::anyLayout(random, channels));
        ASSERT_EQ(ippiFilterMedian(source.data(), source.step(), typeOf(channels), result.data(), result.step(), size,
                                   {m(), m()}, anchor),
                  ippStsNoErr);
        ASSERT_TRUE(result.untouchedOutsideRegion());
        const cv::Mat filtered = byDefinition ? cv::Mat() : openCVMedian(source, channels, m(), anchor);
        for (int y = 0; y < size.height; ++y) {
            std::vector<uint8_t> expected(static_cast<size_t>(source.rowBytes()));
            if (byDefinition) {
                const uint8_t* corner = source.at(-anchor.x, y - anchor.y);
                for (int x = 0; x < source.rowBytes(); ++x)
                    expected[static_cast<size_t>(x)] = oracle::squareMedian(corner + x, source.step(), m(), channels);
            } else {
                expected = rowOf(filtered, y);
            }
            ASSERT_EQ(expected, rowOf(result, y)) << size.width << " x " << size.height << " row " << y << " anchor "
                                                  << anchor.x << ", " << anchor.y << " channels " << channels;
        }
    }
};

TEST_P(SquareMedian, FiltersLikeTheDefinition) {
    Random random(301);
    for (int width = 1; width <= 70; width += m() <= 7 ? 1 : 4)
        for (const int channels : {1, 3})
            ASSERT_NO_FATAL_FAILURE(filterAny(random, {width, random.between(1, m() <= 7 ? 4 : 2)}, channels, true));
}

TEST_P(SquareMedian, FiltersLikeOpenCV) {
    Random random(302);
    for (int width = 1; width <= 70; ++width)
        for (const int channels : {1, 3})
            ASSERT_NO_FATAL_FAILURE(filterAny(random, {width, random.between(1, 6)}, channels, false));
    for (int round = 0; round < 20; ++round)
        for (const int channels : {1, 3})
            ASSERT_NO_FATAL_FAILURE(
                filterAny(random, {random.between(71, 700), random.between(1, 12)}, channels, false));
    for (const int width : {512, 513, 1025, 2480, 2496, 2497, 4993})
        ASSERT_NO_FATAL_FAILURE(filterAny(random, {width, 3}, 1, false));
}

// The source ends with the last byte of a window, the destination with the last byte written; and both begin with the
// first.
TEST_P(SquareMedian, ReadsAndWritesNoByteTooMany) {
    Random random(303);
    for (const auto fence : {FencedMemory::Fence::kBehind, FencedMemory::Fence::kInFront})
        for (const int channels : {1, 3})
            for (int width = 1; width <= 200; width += width < 70 ? 3 : 29)
                for (int height = 1; height <= 3; ++height) {
                    const int step = (width + m() - 1 + 2) * channels;
                    const int windows = (width + m() - 1) * channels;
                    FencedMemory source(static_cast<size_t>(step * (height + m() - 2) + windows), fence);
                    random.fill(source.data(), source.size());
                    const int dstStep = (width + 2) * channels;
                    FencedMemory result(static_cast<size_t>(dstStep * (height - 1) + width * channels), fence);
                    ASSERT_EQ(ippiFilterMedian(source.data(), step, typeOf(channels), result.data(), dstStep,
                                               {width, height}, {m(), m()}, {0, 0}),
                              ippStsNoErr);
                    ASSERT_EQ(*result.data(), oracle::squareMedian(source.data(), step, m(), channels));
                    ASSERT_EQ(result.data()[result.size() - 1],
                              oracle::squareMedian(source.data() + step * (height - 1) + width * channels - 1, step,
                                                   m(), channels));
                }
}

TEST_P(SquareMedian, FiltersInPlace) {
    Random random(304);
    const IppiSize size = {50, 9};
    for (const int channels : {1, 3}) {
        GuardedImage image(random, size, GuardedImage::anyLayout(random, channels, kMargin));
        const IppiPoint centre = {m() / 2, m() / 2};
        const cv::Mat expected = openCVMedian(image, channels, m(), centre);
        ASSERT_EQ(ippiFilterMedian(image.data(), image.step(), typeOf(channels), image.data(), image.step(), size,
                                   {m(), m()}, centre),
                  ippStsNoErr);
        EXPECT_TRUE(image.untouchedOutsideRegion());
        for (int y = 0; y < size.height; ++y) EXPECT_EQ(rowOf(expected, y), rowOf(image, y)) << y;
    }
}

TEST_P(SquareMedian, OneSharedByteIsAnOverlap) {
    Random random(310);
    constexpr IppiSize kSize = {50, 7};
    for (const int channels : {1, 3}) {
        const int step = (kSize.width + m() - 1) * channels;
        const int dstStep = kSize.width * channels;
        expectSameWithOneSharedByte(random, ptrdiff_t{step} * (kSize.height + m() - 1),
                                    ptrdiff_t{dstStep} * kSize.height, [&](const uint8_t* first, uint8_t* dst) {
                                        return ippiFilterMedian(first, step, typeOf(channels), dst, dstStep, kSize,
                                                                {m(), m()}, {0, 0}) == ippStsNoErr;
                                    });
    }
}

// Rows are a whole number of pixels apart, for any step.
TEST_P(SquareMedian, DropsTheRemainderOfTheStep) {
    Random random(305);
    const IppiSize size = {11, 4};
    std::vector<uint8_t> source(3 * 64 * 32);
    random.fill(source.data(), source.size());
    for (const int srcRemainder : {0, 1, 2})
        for (const int dstRemainder : {0, 1, 2}) {
            const int srcPitch = 3 * (size.width + m() - 1 + 2);
            const int dstPitch = 3 * (size.width + 1);
            std::vector<uint8_t> result(static_cast<size_t>(dstPitch * size.height), 0);
            ASSERT_EQ(IPPShare_ippiFilterMedian_8u_C3R(source.data(), srcPitch + srcRemainder, result.data(),
                                                       dstPitch + dstRemainder, size, {m(), m()}, {0, 0}),
                      ippStsNoErr);
            std::vector<uint8_t> expected(result.size(), 0);
            for (int y = 0; y < size.height; ++y)
                for (int x = 0; x < 3 * size.width; ++x)
                    expected.data()[y * dstPitch + x] =
                        oracle::squareMedian(source.data() + y * srcPitch + x, srcPitch, m(), 3);
            ASSERT_EQ(result, expected);
        }
}

TEST_P(SquareMedian, RefusesBadRegions) {
    Random random(306);
    const IppiPoint centre = {m() / 2, m() / 2};
    const IppiSize mask = {m(), m()};
    for (const int channels : {1, 3}) {
        const IppiSize size = {10, 3};
        const GuardedImage source(random, size, {channels, m() / 2, 0, 0});
        GuardedImage result(random, size, {channels, 0, 0, 0});
        const auto call = [&](const void* src, int srcStep, void* dst, int dstStep, IppiSize roi) {
            const IppStatus status = ippiFilterMedian(src, srcStep, typeOf(channels), dst, dstStep, roi, mask, centre);
            EXPECT_TRUE(result.untouched());
            return status;
        };
        const int srcStep = source.step();
        const int dstStep = result.step();
        EXPECT_EQ(call(nullptr, srcStep, result.data(), dstStep, size), ippStsBadArgErr);
        EXPECT_EQ(call(source.data(), srcStep, nullptr, dstStep, size), ippStsBadArgErr);
        for (const IppiSize roi : {IppiSize{0, 3},
                                   {10, 0},
                                   {-1, 3},
                                   {10, -1},
                                   {-m(), 3},
                                   {10, -m()},
                                   {INT_MIN, 3},
                                   {10, INT_MIN},
                                   {INT_MAX, 3}})
            EXPECT_EQ(call(source.data(), srcStep, result.data(), dstStep, roi), ippStsBadArgErr)
                << roi.width << " x " << roi.height;
        EXPECT_EQ(call(source.data(), srcStep - 1, result.data(), dstStep, size), ippStsBadArgErr);
        EXPECT_EQ(call(source.data(), 0, result.data(), dstStep, size), ippStsBadArgErr);
        EXPECT_EQ(call(source.data(), -srcStep, result.data(), dstStep, size), ippStsBadArgErr);
        EXPECT_EQ(call(source.data(), srcStep, result.data(), dstStep - 1, size), ippStsBadArgErr);
        EXPECT_EQ(call(source.data(), srcStep, result.data(), 0, size), ippStsBadArgErr);
        EXPECT_EQ(call(source.data(), srcStep, result.data(), -dstStep, size), ippStsBadArgErr);

        EXPECT_EQ(
            ippiFilterMedian(source.data(), srcStep, typeOf(channels), result.data(), dstStep, size, mask, centre),
            ippStsNoErr);
        EXPECT_FALSE(result.untouched());
    }
}

INSTANTIATE_TEST_SUITE_P(Masks, SquareMedian, testing::Values(1, 3, 5, 7, 9, 11, 13, 15, 17, 31, 33),
                         [](const auto& info) { return "Mask" + std::to_string(info.param); });

TEST(SquareMedianMasks, MustBeOddSquares) {
    Random random(307);
    const GuardedImage source(random, {10, 10}, {1, 16, 0, 0});
    GuardedImage result(random, {10, 10}, {});
    for (const IppiSize mask : {IppiSize{3, 5},
                                {5, 3},
                                {4, 4},
                                {2, 2},
                                {0, 0},
                                {1, 0},
                                {0, 1},
                                {-1, -1},
                                {-3, -3},
                                {3, -3},
                                {INT_MIN, INT_MIN},
                                {INT_MAX, 3},
                                {INT_MAX, INT_MAX}})
        EXPECT_EQ(ippiFilterMedian(source.data(), source.step(), CV_8UC1, result.data(), result.step(), {10, 10}, mask,
                                   {0, 0}),
                  ippStsBadArgErr)
            << mask.width << " x " << mask.height;
    EXPECT_TRUE(result.untouched());
}

TEST(SquareMedianAnchor, PlacesTheWindow) {
    const std::array<uint8_t, 25> image = {90, 91, 92, 93, 94,    //
                                           95, 9,  2,  5,  96,    //
                                           97, 1,  8,  3,  98,    //
                                           99, 7,  4,  6,  80,    //
                                           81, 82, 83, 84, 85};
    uint8_t result = 0;
    EXPECT_EQ(IPPShare_ippiFilterMedian_8u_C1R(&image[12], 5, &result, 1, {1, 1}, {3, 3}, {1, 1}), ippStsNoErr);
    EXPECT_EQ(result, 5);
    // The pixel itself at the top left, or outside its window.
    EXPECT_EQ(IPPShare_ippiFilterMedian_8u_C1R(&image[6], 5, &result, 1, {1, 1}, {3, 3}, {0, 0}), ippStsNoErr);
    EXPECT_EQ(result, 5);
    EXPECT_EQ(IPPShare_ippiFilterMedian_8u_C1R(&image[0], 5, &result, 1, {1, 1}, {3, 3}, {-1, -1}), ippStsNoErr);
    EXPECT_EQ(result, 5);
    EXPECT_EQ(IPPShare_ippiFilterMedian_8u_C1R(&image[24], 5, &result, 1, {1, 1}, {3, 3}, {3, 3}), ippStsNoErr);
    EXPECT_EQ(result, 5);
    // Right and bottom are as near as left and top are far.
    EXPECT_EQ(IPPShare_ippiFilterMedian_8u_C1R(&image[8], 5, &result, 1, {1, 1}, {3, 3}, {2, 0}), ippStsNoErr);
    EXPECT_EQ(result, 5);
    EXPECT_EQ(IPPShare_ippiFilterMedian_8u_C1R(&image[16], 5, &result, 1, {1, 1}, {3, 3}, {0, 2}), ippStsNoErr);
    EXPECT_EQ(result, 5);
}

TEST(SquareMedianAnchor, ShiftsTheCopyOfAMaskOfOne) {
    Random random(308);
    const IppiSize size = {9, 4};
    const GuardedImage source(random, size, {1, 8, 3, 0});
    for (const IppiPoint anchor : {IppiPoint{0, 0}, {3, 0}, {0, 2}, {-5, 7}, {8, -8}}) {
        GuardedImage result(random, size, {});
        EXPECT_EQ(IPPMini_ippiFilterMedian_8u_C1R(source.data(), source.step(), result.data(), result.step(), size,
                                                  {1, 1}, anchor),
                  ippStsNoErr);
        for (int y = 0; y < size.height; ++y)
            EXPECT_EQ(std::vector<uint8_t>(source.at(-anchor.x, y - anchor.y),
                                           source.at(size.width - anchor.x, y - anchor.y)),
                      rowOf(result, y));
    }
}

TEST(SquareMedianEntryPoints, AgreeWithEachOther) {
    Random random(309);
    const IppiSize size = {33, 5};
    for (const int channels : {1, 3}) {
        const GuardedImage source(random, size, {channels, 4, 0, 0});
        GuardedImage generic(random, size, {channels, 0, 0, 0});
        GuardedImage share = generic;
        GuardedImage mini = generic;
        ASSERT_EQ(ippiFilterMedian(source.data(), source.step(), typeOf(channels), generic.data(), generic.step(), size,
                                   {5, 5}, {1, 3}),
                  ippStsNoErr);
        auto* const filter = channels == 1 ? IPPShare_ippiFilterMedian_8u_C1R : IPPShare_ippiFilterMedian_8u_C3R;
        ASSERT_EQ(filter(source.data(), source.step(), share.data(), share.step(), size, {5, 5}, {1, 3}), ippStsNoErr);
        ASSERT_EQ(IPPMini_ippiFilterMedian_8u_C1R(source.data(), source.step(), mini.data(), mini.step(), size, {5, 5},
                                                  {1, 3}),
                  ippStsNoErr);
        for (int y = 0; y < size.height; ++y) {
            EXPECT_EQ(rowOf(generic, y), rowOf(share, y));
            if (channels == 1) {
                EXPECT_EQ(rowOf(generic, y), rowOf(mini, y));
            }
        }
        for (auto* refused : {filter, IPPMini_ippiFilterMedian_8u_C1R})
            EXPECT_EQ(refused(source.data(), source.step(), share.data(), share.step(), size, {5, 3}, {1, 3}),
                      ippStsBadArgErr);
    }
}

// Pixel types that only OpenCV knows.
TEST(SquareMedianTypes, OtherTypesGoThroughOpenCV) {
    Random random(310);
    const IppiSize size = {20, 6};
    for (const int type : {CV_8UC4, CV_16SC1, CV_16UC3, CV_32FC1}) {
        const int pixelSize = static_cast<int>(CV_ELEM_SIZE(type));
        for (const int m : {3, 5}) {
            const GuardedImage source(random, size, {pixelSize, m / 2, 0, 0}, Random::Values::kFew);
            GuardedImage result(random, size, {pixelSize, 0, 2 * pixelSize, 0});
            ASSERT_EQ(ippiFilterMedian(source.data(), source.step(), type, result.data(), result.step(), size, {m, m},
                                       {m / 2, m / 2}),
                      ippStsNoErr);
            EXPECT_TRUE(result.untouchedOutsideRegion());
            const cv::Mat view(size.height + m - 1, size.width + m - 1, type,
                               const_cast<uint8_t*>(source.at(-(m / 2), -(m / 2))), static_cast<size_t>(source.step()));
            cv::Mat expected;
            cv::medianBlur(view.clone(), expected, m);
            for (int y = 0; y < size.height; ++y)
                EXPECT_EQ(rowOf(expected(cv::Rect(m / 2, m / 2, size.width, size.height)), y), rowOf(result, y));
        }
    }
}

TEST(SquareMedianTypes, UnsupportedTypesThrow) {
    Random random(311);
    const GuardedImage source(random, {10, 4}, {4, 4, 0, 0});
    GuardedImage result(random, {10, 4}, {4, 0, 0, 0});
    const IppiSize size = {10, 4};
    const IppiPoint centre = {1, 1};
    const auto call = [&](int type, int m, void* dst) {
        return ippiFilterMedian(source.data(), source.step(), type, dst, result.step(), size, {m, m}, centre);
    };
    EXPECT_THROW(call(CV_32SC1, 3, result.data()), cv::Exception);
    EXPECT_THROW(call(CV_16SC1, 7, result.data()), cv::Exception);
    // The filter runs before the destination is checked, but after the source is checked.
    EXPECT_THROW(call(CV_32SC1, 3, nullptr), cv::Exception);
    EXPECT_EQ(call(CV_32SC1, 4, nullptr), ippStsBadArgErr);
    EXPECT_TRUE(result.untouched());
}

}    // namespace
