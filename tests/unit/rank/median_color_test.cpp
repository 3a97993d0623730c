// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The vector median of colour pixels: the tests of every fixed window, and the choice among nine pixels.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <vector>

#include "oracle/median.h"
#include "rank/fixed_window.h"
#include "support/random.h"

namespace {

const FixedWindowFilter kFilters[] = {
    {"Color3x3", IPPShare_ippiFilterMedianColor_8u_C3R, 33, FilterMedianColor3x3_8u_C3R, 3, 1,
     [](const uint8_t* centre, int step, uint8_t* expected) {
         std::copy_n(oracle::ColorWindow(centre, step).winner(), 3, expected);
     }},
};

INSTANTIATE_TEST_SUITE_P(Color, FixedWindow, testing::ValuesIn(kFilters),
                         [](const auto& info) { return info.param.name; });

using Color = std::array<uint8_t, 3>;

Color colorMedianOf(const std::array<Color, 9>& window) {
    std::array<uint8_t, 27> bytes{};
    for (size_t k = 0; k < window.size(); ++k) std::copy(window[k].begin(), window[k].end(), &bytes[3 * k]);
    Color result{};
    EXPECT_EQ(IPPShare_ippiFilterMedianColor_8u_C3R(&bytes[12], 9, result.data(), 3, {1, 1}, 33), ippStsNoErr);
    return result;
}

TEST(MedianColor, TakesTheMajorityOfTwoColors) {
    const Color dark = {10, 10, 10};
    const Color light = {200, 200, 200};
    EXPECT_EQ(colorMedianOf({dark, light, dark, light, dark, light, dark, light, dark}), dark);
    EXPECT_EQ(colorMedianOf({light, light, light, light, dark, dark, dark, dark, dark}), dark);
    EXPECT_EQ(colorMedianOf({light, light, dark, light, dark, light, dark, light, dark}), light);
}

TEST(MedianColor, TakesTheMiddleOfARamp) {
    std::array<Color, 9> ramp{};
    for (size_t k = 0; k < 9; ++k) ramp[k].fill(static_cast<uint8_t>(10 * k));
    EXPECT_EQ(colorMedianOf(ramp), (Color{40, 40, 40}));
}

TEST(MedianColor, TakesTheFirstOfEqualSumsInRasterOrder) {
    const std::array<Color, 9> thirdAndCentre = {{{0, 20, 30},
                                                  {30, 10, 0},
                                                  {10, 0, 20},
                                                  {20, 0, 10},
                                                  {10, 10, 30},
                                                  {20, 10, 30},
                                                  {10, 0, 10},
                                                  {0, 0, 0},
                                                  {30, 20, 30}}};
    EXPECT_EQ(colorMedianOf(thirdAndCentre), thirdAndCentre[2]);
    const std::array<Color, 9> lastTwo = {{{10, 30, 30},
                                           {30, 30, 20},
                                           {10, 10, 20},
                                           {0, 0, 0},
                                           {20, 30, 0},
                                           {30, 0, 0},
                                           {30, 10, 30},
                                           {20, 30, 20},
                                           {20, 10, 0}}};
    EXPECT_EQ(colorMedianOf(lastTwo), lastTwo[7]);

    // On images of few colours ties are common; each of them must have been met by the tests above.
    Random random(208);
    int ties[9][9] = {};
    for (int round = 0; round < 20000; ++round) {
        std::array<uint8_t, 27> bytes{};
        random.fill(bytes.data(), bytes.size(), Random::Values::kFew);
        const oracle::ColorWindow window(&bytes[12], 9);
        const int* best = std::min_element(window.score, window.score + 9);
        Color result{};
        FilterMedianColor3x3_8u_C3R(&bytes[12], 9, result.data(), 3, 1, 1);
        ASSERT_TRUE(std::equal(result.begin(), result.end(), window.winner()));
        for (int k = 0; k < 9; ++k)
            if (window.score[k] == *best && !std::equal(result.begin(), result.end(), window.pixel[k]))
                ++ties[best - window.score][k];
    }
    for (int first = 0; first < 9; ++first)
        for (int k = first + 1; k < 9; ++k) EXPECT_GT(ties[first][k], 0) << first << " and " << k;
}

TEST(MedianColor, RefusesRowsShorterThanTheRegion) {
    const std::vector<uint8_t> source(600, 9);
    std::vector<uint8_t> result(12, 1);
    auto* const filter = IPPShare_ippiFilterMedianColor_8u_C3R;
    EXPECT_EQ(filter(&source[300], 60, result.data(), 11, {4, 1}, 33), ippStsBadArgErr);
    EXPECT_EQ(result, std::vector<uint8_t>(12, 1));
    EXPECT_EQ(filter(&source[300], 60, result.data(), 12, {4, 1}, 33), ippStsNoErr);
    EXPECT_EQ(result, std::vector<uint8_t>(12, 9));
}

TEST(MedianColor, RefusesTheCodesOfOtherFilters) { expectRefused(IPPShare_ippiFilterMedianColor_8u_C3R, {3, 5, 55}); }

}    // namespace
