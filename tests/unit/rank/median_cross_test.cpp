// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The cross medians: the tests of every fixed window, and what only a cross does.
#include <gtest/gtest.h>

#include <vector>

#include "oracle/median.h"
#include "rank/fixed_window.h"
#include "support/fenced_memory.h"

namespace {

const FixedWindowFilter kFilters[] = {
    {"Cross3x3", IPPShare_ippiFilterMedianCross_8u_C1R, 33, FilterMedianCross3x3_8u_C1R, 1, 1,
     [](const uint8_t* centre, int step, uint8_t* expected) { *expected = oracle::crossMedian(centre, step, 1); }},
    {"Cross5x5", IPPShare_ippiFilterMedianCross_8u_C1R, 55, FilterMedianCross5x5_8u_C1R, 1, 2,
     [](const uint8_t* centre, int step, uint8_t* expected) { *expected = oracle::crossMedian(centre, step, 2); }},
};

INSTANTIATE_TEST_SUITE_P(Cross, FixedWindow, testing::ValuesIn(kFilters),
                         [](const auto& info) { return info.param.name; });

// A cross needs no corner: the row above ends with the last column, and the image with the row below's.
TEST(MedianCross, ReadsNoCorner) {
    for (const int reach : {1, 2})
        for (int width = 1; width <= 100; ++width) {
            const int step = width + 2 * reach;
            const int from = reach;                                // the first row's first needed byte
            const int end = step * (2 * reach) + reach + width;    // one past the last byte of the last row
            FencedMemory behind(static_cast<size_t>(end), FencedMemory::Fence::kBehind);
            FencedMemory inFront(static_cast<size_t>(end - from), FencedMemory::Fence::kInFront);
            std::vector<uint8_t> result(static_cast<size_t>(width));
            auto* const kernel = reach == 1 ? FilterMedianCross3x3_8u_C1R : FilterMedianCross5x5_8u_C1R;
            const ptrdiff_t first = ptrdiff_t{step} * reach + reach;
            kernel(behind.data() + first, step, result.data(), width, width, 1);
            kernel(inFront.data() + first - from, step, result.data(), width, width, 1);
            EXPECT_EQ(result, std::vector<uint8_t>(static_cast<size_t>(width), 0));
        }
}

TEST(MedianCross, RemovesADotAndKeepsALine) {
    for (const int mask : {33, 55}) {
        auto* const filter = IPPShare_ippiFilterMedianCross_8u_C1R;
        EXPECT_EQ(filterOnDark(filter, mask, {{0, 0}}), 0);
        EXPECT_EQ(filterOnDark(filter, mask, {{-3, 0}, {-2, 0}, {-1, 0}, {0, 0}, {1, 0}, {2, 0}, {3, 0}}), 200);
        EXPECT_EQ(filterOnDark(filter, mask, {{0, -3}, {0, -2}, {0, -1}, {0, 0}, {0, 1}, {0, 2}, {0, 3}}), 200);
    }
}

TEST(MedianCross, RefusesTheCodesOfOtherFilters) { expectRefused(IPPShare_ippiFilterMedianCross_8u_C1R, {3, 5}); }

}    // namespace
