// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Convolutions whose results are known without computing them.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <limits>
#include <opencv2/core.hpp>
#include <type_traits>
#include <vector>

#include "OPCV_dlib.h"
#include "filters/convolution_call.h"
#include "oracle/filters.h"
#include "support/guarded_image.h"
#include "support/random.h"

namespace {

TEST(Convolution, ASingleCellCopiesOrShifts) {
    Random random(606);
    const std::vector<int> centre = {0, 0, 0, 0, 1, 0, 0, 0, 0};
    const GuardedImage src(random, {50, 4}, {1, 3, 0, 0});
    GuardedImage dst(random, {50, 4}, {});
    ASSERT_EQ(filter(k8uC1, src, dst, Kernel<int>{{3, 3}, {1, 1}, centre}, 1), ippStsNoErr);
    EXPECT_TRUE(sameRegion(dst, src));
    ASSERT_EQ(filter(k8uC1, src, dst, Kernel<int>{{3, 3}, {0, 0}, centre}, 1), ippStsNoErr);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 50; ++x) ASSERT_EQ(*dst.at(x, y), *src.at(x - 1, y - 1));
}

TEST(Convolution, OnesOverNineGiveTheRoundedMean) {
    Random random(607);
    const GuardedImage src(random, {64, 4}, {1, 3, 0, 0});
    GuardedImage dst(random, {64, 4}, {});
    ASSERT_EQ(filter(k8uC1, src, dst, Kernel<int>{{3, 3}, {1, 1}, std::vector<int>(9, 1)}, 9), ippStsNoErr);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 64; ++x) {
            const auto at = [&](int column, int row) { return *src.at(column, row); };
            ASSERT_EQ(*dst.at(x, y), (oracle::boxSum(at, x, y, {3, 3}, {1, 1}) + 4) / 9);
        }
}

TEST(Convolution, HalvesAreRoundedToEven) {
    std::array<uint8_t, 8> src = {0, 1, 2, 3, 4, 5, 6, 7};
    std::array<uint8_t, 8> dst{};
    const int one = 1;
    ASSERT_EQ(filterByType({src.data(), 8, CV_8UC1, dst.data(), 8, {8, 1}}, &one, {1, 1}, {0, 0}, 2), ippStsNoErr);
    EXPECT_EQ(dst, (std::array<uint8_t, 8>{0, 0, 1, 2, 2, 2, 3, 4}));
}

TEST(Convolution, SaturatesAtBothEnds) {
    const std::array<short, 4> src = {30000, -30000, 20000, -16384};
    std::array<short, 4> dst{};
    const std::array<int, 2> cells = {2, -2};
    ASSERT_EQ(filterByType({src.data(), 8, CV_16SC1, dst.data(), 8, {4, 1}}, cells.data(), {1, 1}, {0, 0}, 1),
              ippStsNoErr);
    EXPECT_EQ(dst, (std::array<short, 4>{32767, -32768, 32767, -32768}));
    ASSERT_EQ(filterByType({src.data(), 8, CV_16SC1, dst.data(), 8, {4, 1}}, &cells[1], {1, 1}, {0, 0}, 1),
              ippStsNoErr);
    EXPECT_EQ(dst, (std::array<short, 4>{-32768, 32767, -32768, 32767}));

    const std::array<uint8_t, 3> grey = {0, 100, 200};
    std::array<uint8_t, 3> filtered{};
    ASSERT_EQ(filterByType({grey.data(), 3, CV_8UC1, filtered.data(), 3, {3, 1}}, cells.data(), {1, 1}, {0, 0}, 1),
              ippStsNoErr);
    EXPECT_EQ(filtered, (std::array<uint8_t, 3>{0, 200, 255}));
    ASSERT_EQ(filterByType({grey.data(), 3, CV_8UC1, filtered.data(), 3, {3, 1}}, cells.data(), {1, 1}, {0, 0}, -1),
              ippStsNoErr);
    EXPECT_EQ(filtered, (std::array<uint8_t, 3>{0, 0, 0}));
}

// Sums that no int holds, apart from the source and in place.
template <class Pixel>
void expectSaturated(int type, int width, int side, int weight) {
    const size_t margin = static_cast<size_t>(side / 2);
    const size_t rowPixels = static_cast<size_t>(width) + 2 * margin;
    std::vector<Pixel> src(rowPixels * (2 * margin + 1));
    for (size_t i = 0; i < src.size(); ++i)
        src[i] = static_cast<Pixel>(i % 3 == 0 ? 4000 : std::is_signed_v<Pixel> ? -4000 : 8000);
    std::vector<int> cells(static_cast<size_t>(side * side));
    cells[cells.size() / 2] = weight;
    const Pixel* first = src.data() + margin * rowPixels + margin;
    std::vector<Pixel> expected(static_cast<size_t>(width));
    for (size_t x = 0; x < expected.size(); ++x)
        expected[x] =
            static_cast<Pixel>(std::clamp(double{1} * first[x] * weight, double{std::numeric_limits<Pixel>::min()},
                                          double{std::numeric_limits<Pixel>::max()}));
    const auto step = static_cast<int>(rowPixels * sizeof(Pixel));
    const auto run = [&](Pixel* dst) {
        return filterAnyType({first, step, type, dst, step, {width, 1}}, cells.data(), {side, side},
                             {side / 2, side / 2}, 1);
    };
    std::vector<Pixel> apart(expected.size());
    ASSERT_EQ(run(apart.data()), ippStsNoErr);
    EXPECT_EQ(apart, expected) << "type " << type << " width " << width << " side " << side << " weight " << weight;
    Pixel* inPlace = src.data() + margin * rowPixels + margin;
    ASSERT_EQ(run(inPlace), ippStsNoErr);
    EXPECT_EQ(std::vector<Pixel>(inPlace, inPlace + width), expected)
        << "in place, type " << type << " width " << width << " side " << side << " weight " << weight;
}

TEST(Convolution, SumsBeyondAnIntSaturate) {
    for (const int width : {1, 7, 64})
        for (const int side : {1, 3, 11})
            for (const int weight : {1 << 20, -(1 << 20), 1 << 24, -(1 << 24), INT_MAX, INT_MIN}) {
                expectSaturated<uint8_t>(CV_8UC1, width, side, weight);
                expectSaturated<short>(CV_16SC1, width, side, weight);
                expectSaturated<unsigned short>(CV_16UC1, width, side, weight);
            }
}

// Sums of up to 16 bits of 8-bit pixels, and 22 of 16-bit pixels, are rounded with fewer steps than larger ones.
TEST(Convolution, SumsOfAnySizeSaturate) {
    for (int weight = 1; weight <= 65536; weight = weight * 5 / 4 + 1)
        for (const int sign : {1, -1}) {
            expectSaturated<uint8_t>(CV_8UC1, 100, 3, sign * weight);
            expectSaturated<short>(CV_16SC1, 100, 3, sign * weight);
            expectSaturated<unsigned short>(CV_16UC1, 100, 3, sign * weight);
        }
}

// The same with cells of both signs, all of one size: the sum of the weights is small, that of their sizes is not.
TEST(Convolution, SumsThatCancelSaturate) {
    for (int weight = 1; weight <= 4096; weight *= 2) {
        std::vector<int> cells(9, weight);
        for (size_t i = 1; i < cells.size(); i += 2) cells[i] = -weight;
        std::array<uint8_t, 9> src{};
        for (size_t i = 0; i < src.size(); i += 2) src[i] = 255;
        uint8_t dst = 0;
        ASSERT_EQ(filterByType({&src[4], 3, CV_8UC1, &dst, 1, {1, 1}}, cells.data(), {3, 3}, {1, 1}, 1), ippStsNoErr);
        EXPECT_EQ(dst, 255) << weight;
        ASSERT_EQ(filterByType({&src[4], 3, CV_8UC1, &dst, 1, {1, 1}}, cells.data(), {3, 3}, {1, 1}, -1), ippStsNoErr);
        EXPECT_EQ(dst, 0) << weight;
    }
}

// Weights that are no numbers, or make sums that are none: NaN gives the least value of the type, infinity its end.
template <class Pixel>
void expectOfWeight(int type, float weight, Pixel pixel, Pixel expected) {
    const std::vector<Pixel> src(70, pixel);
    std::vector<Pixel> dst(70);
    const auto step = static_cast<int>(70 * sizeof(Pixel));
    ASSERT_EQ(filterAnyType({src.data(), step, type, dst.data(), step, {70, 1}}, &weight, {1, 1}, {0, 0}), ippStsNoErr);
    EXPECT_EQ(dst, std::vector<Pixel>(70, expected)) << "type " << type << " weight " << weight << " pixel " << pixel;
}

TEST(Convolution, WeightsThatAreNoNumbersHaveDefinedResults) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    for (const float nan : {kNan, -kNan}) {
        expectOfWeight<uint8_t>(CV_8UC1, nan, 9, 0);
        expectOfWeight<unsigned short>(CV_16UC1, nan, 9, 0);
        expectOfWeight<short>(CV_16SC1, nan, 9, SHRT_MIN);
    }
    for (const float infinity : {kInfinity, -kInfinity}) {
        expectOfWeight<uint8_t>(CV_8UC1, infinity, 9, infinity > 0 ? 255 : 0);
        expectOfWeight<unsigned short>(CV_16UC1, infinity, 9, infinity > 0 ? 65535 : 0);
        expectOfWeight<short>(CV_16SC1, infinity, 9, infinity > 0 ? SHRT_MAX : SHRT_MIN);
        expectOfWeight<short>(CV_16SC1, infinity, -9, infinity > 0 ? SHRT_MIN : SHRT_MAX);
        // 0 times infinity is NaN.
        expectOfWeight<uint8_t>(CV_8UC1, infinity, 0, 0);
        expectOfWeight<short>(CV_16SC1, infinity, 0, SHRT_MIN);
    }
}

TEST(Convolution, AKernelOfZerosGivesZero) {
    Random random(608);
    const GuardedImage src(random, {33, 3}, {3, 2, 0, 0});
    GuardedImage dst(random, {33, 3}, {3, 0, 0, 0});
    ASSERT_EQ(filter(k8uC3, src, dst, Kernel<float>{{3, 3}, {1, 1}, std::vector<float>(9)}, 1), ippStsNoErr);
    for (int y = 0; y < 3; ++y) EXPECT_TRUE(std::all_of(dst.at(0, y), dst.at(33, y), [](int v) { return v == 0; }));
}

}    // namespace
