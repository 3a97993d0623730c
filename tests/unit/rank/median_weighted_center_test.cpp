// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The medians with a weighted centre: the tests of every fixed window, and what the weight does.
#include <gtest/gtest.h>

#include "oracle/median.h"
#include "rank/fixed_window.h"

namespace {

const FixedWindowFilter kFilters[] = {
    {"Weight3", IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R, 3, FilterMedianWeightedCenter3x3_3_8u_C1R, 1, 1,
     [](const uint8_t* centre, int step, uint8_t* expected) { *expected = oracle::weightedMedian(centre, step, 3); }},
    {"Weight5", IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R, 5, FilterMedianWeightedCenter3x3_5_8u_C1R, 1, 1,
     [](const uint8_t* centre, int step, uint8_t* expected) { *expected = oracle::weightedMedian(centre, step, 5); }},
};

INSTANTIATE_TEST_SUITE_P(WeightedCenter, FixedWindow, testing::ValuesIn(kFilters),
                         [](const auto& info) { return info.param.name; });

TEST(MedianWeightedCenter, KeepsADotThatHasEnoughNeighbours) {
    auto* const filter = IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R;
    EXPECT_EQ(filterOnDark(filter, 3, {{0, 0}}), 0);
    EXPECT_EQ(filterOnDark(filter, 5, {{0, 0}}), 0);
    EXPECT_EQ(filterOnDark(filter, 5, {{0, 0}, {1, 0}}), 0);
    EXPECT_EQ(filterOnDark(filter, 3, {{0, 0}, {-1, -1}, {1, 0}}), 0);
    EXPECT_EQ(filterOnDark(filter, 5, {{0, 0}, {-1, -1}, {1, 0}}), 200);
    EXPECT_EQ(filterOnDark(filter, 3, {{0, 0}, {-1, -1}, {1, 0}, {0, 1}}), 200);
}

TEST(MedianWeightedCenter, RefusesTheCodesOfOtherFilters) {
    expectRefused(IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R, {33, 55});
}

}    // namespace
