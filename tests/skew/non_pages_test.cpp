// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// What has no lines of text keeps its angle.
#include <gtest/gtest.h>

#include "drawing.h"
#include "pagegen/non_pages.h"

namespace {

TEST(NonPages, AreNotTurned) {
    for (const NonPage& drawn : drawNonPages()) {
        const cv::Mat& image = drawn.image;
        const KVIMG page = {image.data, 8, image.cols, image.rows, image.cols, 0};
        const Finding found = find(page);
        EXPECT_EQ(found.status, noErr);
        EXPECT_NE(found.skew.outcome, OPCV_SKEW_FOUND) << drawn.name << " is measured as " << found.skew.angle;
        EXPECT_EQ(found.skew.angle, 0) << drawn.name;
        EXPECT_LT(found.skew.confidence, 0.5) << drawn.name;
    }
}

// The reasons are those that a person would give.
TEST(NonPages, HaveTheirReason) {
    for (const NonPage& drawn : drawNonPages()) {
        const cv::Mat& image = drawn.image;
        const int32_t outcome = find({image.data, 8, image.cols, image.rows, image.cols, 0}).skew.outcome;
        const auto is = [&](const char* kind) { return drawn.name.rfind(kind, 0) == 0; };
        if (is("blank") || is("edges")) {
            EXPECT_EQ(outcome, OPCV_SKEW_BLANK) << drawn.name;
        } else if (is("photograph") || is("specks") || is("hatching")) {
            EXPECT_EQ(outcome, OPCV_SKEW_PICTURE) << drawn.name;
        }
    }
}

// Evenly filled, black, and white: nothing to divide by.
TEST(NonPages, OfOneLevelAreBlank) {
    for (const int level : {0, 1, 128, 255}) {
        std::vector<uint8_t> pixels(500 * 700, static_cast<uint8_t>(level));
        const Finding found = find({pixels.data(), 8, 500, 700, 500, 0});
        EXPECT_EQ(found.skew.outcome, OPCV_SKEW_BLANK) << level;
        EXPECT_EQ(found.skew.confidence, 0) << level;
    }
}

// Graph paper is as distinct across as along; that its lines are not square shows that they are no table.
TEST(NonPages, CrossedByOtherLinesAreUnsure) {
    DrawnPage page(1000, 1400, 0, 40);
    std::fill(page.pixels.begin(), page.pixels.end(), uint8_t{230});
    for (int y = 0; y < page.height; ++y)
        for (int x = 0; x < page.width; ++x) {
            const int along = y - x * 3 / 100;
            const int across = x - y * 8 / 100;
            const bool gap = x % 23 < 4 || y % 19 < 4;    // printed in dots
            if (!gap && x > 100 && x < 800 && y > 300 && y < 1000 &&
                ((along + 400) % 40 < 3 || (across + 400) % 40 < 3))
                page.pixels[static_cast<size_t>(y * page.width + x)] = 40;
        }
    const Finding found = find(page.record());
    EXPECT_EQ(found.skew.outcome, OPCV_SKEW_UNSURE) << found.skew.angle << ' ' << found.skew.confidence;
}

}    // namespace
