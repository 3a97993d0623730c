// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Arguments that are rejected, and sizes at the limits.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>

#include "drawing.h"

namespace {

TEST(Arguments, ThatAreInvalidAreRejectedAndNothingIsWritten) {
    DrawnPage drawn(300, 400, 0);
    const std::vector<std::function<void(KVIMG&, opcv_skew&)>> faults = {
        [](KVIMG& page, opcv_skew&) { page.data = nullptr; },
        [](KVIMG& page, opcv_skew&) { page.width = 0; },
        [](KVIMG& page, opcv_skew&) { page.width = -300; },
        [](KVIMG& page, opcv_skew&) { page.height = 0; },
        [](KVIMG& page, opcv_skew&) { page.height = -1; },
        [](KVIMG& page, opcv_skew&) { page.depth = 0; },
        [](KVIMG& page, opcv_skew&) { page.depth = 16; },
        [](KVIMG& page, opcv_skew&) { page.depth = 40; },
        [](KVIMG& page, opcv_skew&) { page.depth = -8; },
        [](KVIMG& page, opcv_skew&) { page.rowBytes = 299; },
        [](KVIMG& page, opcv_skew&) { page.rowBytes = -300; },
        [](KVIMG& page, opcv_skew&) { page.depth = 24; },    // its rows would be longer than rowBytes
        [](KVIMG& page, opcv_skew&) { page.width = 1 << 30, page.rowBytes = 300; },
        [](KVIMG&, opcv_skew& skew) { skew.struct_size = 0; },
        [](KVIMG&, opcv_skew& skew) { skew.struct_size = sizeof(opcv_skew) + 8; },
    };
    for (size_t i = 0; i < faults.size(); ++i) {
        KVIMG page = drawn.record();
        opcv_skew skew;
        std::memset(&skew, 0x5A, sizeof(skew));
        skew.struct_size = sizeof(skew);
        faults[i](page, skew);
        const opcv_skew before = skew;
        EXPECT_EQ(opcv_find_skew(&page, &skew), paramErr) << i;
        EXPECT_EQ(std::memcmp(&skew, &before, sizeof(skew)), 0) << i;
    }
    opcv_skew skew{};
    skew.struct_size = sizeof(skew);
    EXPECT_EQ(opcv_find_skew(nullptr, &skew), paramErr);
    const KVIMG page = drawn.record();
    EXPECT_EQ(opcv_find_skew(&page, nullptr), paramErr);
}

TEST(Arguments, OfTinyAndThinPagesAreTaken) {
    for (const auto& [width, height] : {std::pair{1, 1},
                                        {1, 5000},
                                        {5000, 1},
                                        {3, 3},
                                        {31, 31},
                                        {32, 32},
                                        {33, 65},
                                        {64, 64},
                                        {65, 4000},
                                        {30000, 40},
                                        {40, 30000},
                                        {100000, 3},
                                        {2, 2000000}}) {
        std::vector<uint8_t> pixels(static_cast<size_t>(width) * static_cast<size_t>(height));
        std::mt19937 random(3);
        for (uint8_t& pixel : pixels) pixel = static_cast<uint8_t>(random());
        const Finding found = find({pixels.data(), 8, width, height, width, 0});
        EXPECT_EQ(found.status, noErr) << width << " x " << height;
        EXPECT_NE(found.skew.outcome, OPCV_SKEW_FOUND) << width << " x " << height;
    }
}

// The last row may end where the memory ends: the vector has not one byte more than the page.
TEST(Arguments, AreReadNoFurtherThanThePage) {
    for (const int width : {701, 702, 703, 704})
        for (const int height : {901, 902, 903}) {
            DrawnPage drawn(width, height, 0.02);
            drawn.pixels.shrink_to_fit();
            EXPECT_NEAR(find(drawn.record()).skew.angle, degreesOf(0.02), 0.05) << width << " x " << height;
        }
}

}    // namespace
