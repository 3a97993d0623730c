// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "filters/convolution_taps.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace {

// The taps of a kernel of one row or of squares, with the memory that they lie in.
struct Prepared {
    Prepared(const std::vector<float>& weights, int width, int height, int elements = 1, bool ofChannels = false)
        : memory({weights.data(), width, height, ofChannels}, elements),
          taps(filters::prepareTaps({weights.data(), width, height, ofChannels}, elements, memory.scratch())) {}

    filters::ScratchMemory memory;
    filters::Taps taps;
};

bool isExact(const std::vector<float>& weights) {
    return Prepared(weights, static_cast<int>(weights.size()), 1).taps.isExact;
}

bool isSmall(const std::vector<float>& weights) {
    return Prepared(weights, static_cast<int>(weights.size()), 1).taps.isSmall;
}

TEST(ConvolutionTaps, ADenseKernelHasThoseOfAllRowsThatAreFilteredTogether) {
    const Prepared square(std::vector<float>(9, 1.0F), 3, 3, 4);
    EXPECT_TRUE(square.taps.hasAllCells);
    EXPECT_EQ(square.taps.count, 9);
    EXPECT_EQ(square.taps.perRow, 3);
    for (int i = 0; i < 18; ++i) {
        EXPECT_EQ(square.taps.taps[i].row, i / 3);
        EXPECT_EQ(square.taps.taps[i].element, i % 3 * 4);
    }
}

TEST(ConvolutionTaps, ASparseKernelHasThoseThatAreNot0) {
    const Prepared cross({0, 1, 0, 2, 3, 4, 0, 5, 0}, 3, 3);
    EXPECT_FALSE(cross.taps.hasAllCells);
    ASSERT_EQ(cross.taps.count, 5);
    const std::vector<int> cells = {1, 3, 4, 5, 7};
    for (size_t i = 0; i < cells.size(); ++i) {
        EXPECT_EQ(cross.taps.taps[i].row * 3 + cross.taps.taps[i].element, cells[i]);
        EXPECT_EQ(cross.taps.weights[i], static_cast<float>(i + 1));
    }
}

TEST(ConvolutionTaps, ACellOfAnyChannelCounts) {
    std::vector<float> weights(27);
    weights[0] = 1;
    weights[9 + 4] = 2;
    weights[18 + 8] = 3;
    const Prepared kernels(weights, 3, 3, 1, true);
    EXPECT_FALSE(kernels.taps.hasAllCells);
    ASSERT_EQ(kernels.taps.count, 3);
    const std::vector<float> expected = {1, 0, 0, 0, 2, 0, 0, 0, 3};
    for (size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(kernels.taps.weights[i], expected[i]);
}

TEST(ConvolutionTaps, ARowIsNotFilteredWithOthers) {
    EXPECT_FALSE(Prepared(std::vector<float>(7, 1.0F), 7, 1).taps.hasAllCells);
    EXPECT_EQ(Prepared(std::vector<float>(7, 1.0F), 7, 1).taps.count, 7);
}

TEST(ConvolutionTaps, SumsAreSmallBelow32) {
    EXPECT_TRUE(isSmall({10, -10, 11.9F}));
    EXPECT_FALSE(isSmall({10, -11, 11}));
    EXPECT_FALSE(isSmall({1, std::numeric_limits<float>::infinity()}));
    EXPECT_FALSE(isSmall({1, std::numeric_limits<float>::quiet_NaN()}));
}

// The last bit of a weight of 2^-k is 2^(-k - 23); the sum of 65535 pixels, 2^16, may have 2^52 of them.
TEST(ConvolutionTaps, SumsAreExactIfTheWeightsAreAlike) {
    EXPECT_TRUE(isExact({1, 1}));
    EXPECT_TRUE(isExact({1, std::ldexp(1.0F, -11)}));
    EXPECT_TRUE(isExact({-1, 0, std::ldexp(-1.0F, -11)}));
    EXPECT_FALSE(isExact({1, std::ldexp(1.0F, -13)}));
    EXPECT_FALSE(isExact({1, std::ldexp(1.0F, -60)}));
    EXPECT_TRUE(isExact({std::numeric_limits<float>::denorm_min(), std::ldexp(1.0F, -140)}));
    EXPECT_FALSE(isExact({1, std::numeric_limits<float>::denorm_min()}));
    EXPECT_FALSE(isExact({1, std::numeric_limits<float>::infinity()}));
    EXPECT_FALSE(isExact({1, std::numeric_limits<float>::quiet_NaN()}));
    EXPECT_FALSE(isExact({0, 0}));
}

}    // namespace
