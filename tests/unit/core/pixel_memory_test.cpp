// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "core/pixel_memory.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <cstring>

namespace {

TEST(PixelMemory, IsWritableToTheLastByteAndFreedByFree) {
    for (const size_t bytes : {size_t{1}, (size_t{4} << 20) - 1, size_t{4} << 20, (size_t{9} << 20) + 5}) {
        auto* const block = static_cast<unsigned char*>(opcv::allocatePixels(bytes));
        ASSERT_NE(block, nullptr);
        std::memset(block, 0x5A, bytes);
        EXPECT_EQ(block[0], 0x5A);
        EXPECT_EQ(block[bytes - 1], 0x5A);
        std::free(block);
    }
}

TEST(PixelMemory, PlanesHaveRowsOfMultiplesOf64Bytes) {
    EXPECT_EQ(opcv::planeStep(1, 1), 64);
    EXPECT_EQ(opcv::planeStep(64, 1), 64);
    EXPECT_EQ(opcv::planeStep(65, 1), 128);
    EXPECT_EQ(opcv::planeStep(22, 3), 128);
    EXPECT_TRUE(opcv::planeFits(1, (INT_MAX / 64), 3));
    EXPECT_FALSE(opcv::planeFits(1, (INT_MAX / 64) + 1, 3));
    EXPECT_FALSE(opcv::planeFits(INT_MAX, 1, 3));
    EXPECT_FALSE(opcv::planeFits(INT_MAX, 1, 1));
    EXPECT_TRUE(opcv::planeFits(INT_MAX - 63, 1, 1));
}

}    // namespace
