// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <malloc.h>

#include <climits>
#include <cstring>

#include "OPCV_dlib.h"

namespace {

constexpr int kUnwritten = -77;

TEST(Planes, StepsAreMultiplesOf64) {
    for (int width = 1; width < 200; ++width) {
        int step = 0;
        short* samples = IPPShare_ippiMalloc_16s_C1(width, 3, &step);
        ASSERT_NE(samples, nullptr);
        EXPECT_EQ(step, (2 * width + 63) / 64 * 64);
        std::memset(samples, 1, static_cast<size_t>(step) * 3);
        IPPShare_ippiFree(samples);

        unsigned char* pixels = IPPMini_ippiMalloc_8u_C3(width, 3, &step);
        ASSERT_NE(pixels, nullptr);
        EXPECT_EQ(step, (3 * width + 63) / 64 * 64);
        std::memset(pixels, 1, static_cast<size_t>(step) * 3);
        IPPMini_ippiFree(pixels);
    }
}

TEST(Planes, KnownSteps) {
    int step = 0;
    short* samples = IPPShare_ippiMalloc_16s_C1(33, 2, &step);
    EXPECT_EQ(step, 128);
    EXPECT_GE(malloc_usable_size(samples), 256U);
    IPPMini_ippiFree(samples);
    unsigned char* pixels = IPPMini_ippiMalloc_8u_C3(22, 1, &step);
    EXPECT_EQ(step, 128);
    EXPECT_GE(malloc_usable_size(pixels), 128U);
    IPPShare_ippiFree(pixels);
}

TEST(Planes, RefusedArgumentsLeaveTheStepUnwritten) {
    for (const auto& [width, height] : {std::pair{0, 1}, {1, 0}, {-1, 1}, {1, -1}, {INT_MIN, INT_MIN}}) {
        int step = kUnwritten;
        EXPECT_EQ(IPPShare_ippiMalloc_16s_C1(width, height, &step), nullptr);
        EXPECT_EQ(IPPMini_ippiMalloc_8u_C3(width, height, &step), nullptr);
        EXPECT_EQ(step, kUnwritten);
    }
    EXPECT_EQ(IPPShare_ippiMalloc_16s_C1(1, 1, nullptr), nullptr);
    EXPECT_EQ(IPPMini_ippiMalloc_8u_C3(1, 1, nullptr), nullptr);
}

// The true size never wraps to a small block; the step is told where it can be.
TEST(Planes, SizesOver31BitsReturnNull) {
    int step = kUnwritten;
    EXPECT_EQ(IPPShare_ippiMalloc_16s_C1(1 << 16, 1 << 15, &step), nullptr);
    EXPECT_EQ(step, 1 << 17);
    EXPECT_EQ(IPPMini_ippiMalloc_8u_C3(1 << 16, 1 << 14, &step), nullptr);
    EXPECT_EQ(step, 3 << 16);
    step = kUnwritten;
    EXPECT_EQ(IPPShare_ippiMalloc_16s_C1(INT_MAX, 1, &step), nullptr);
    EXPECT_EQ(IPPShare_ippiMalloc_16s_C1(1 << 30, 1, &step), nullptr);    // a row of 2^31 bytes
    EXPECT_EQ(IPPMini_ippiMalloc_8u_C3(INT_MAX, 1, &step), nullptr);
    EXPECT_EQ(step, kUnwritten);
}

TEST(Planes, FreeTakesNull) {
    IPPMini_ippiFree(nullptr);
    IPPShare_ippiFree(nullptr);
}

}    // namespace
