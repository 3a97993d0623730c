// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The page in grey, at the size that the search works on.
#pragma once

#include <OPCV_dlib.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace page_skew {

// One byte a pixel, rows without gaps.
struct GreyImage {
    GreyImage(int columns, int rows)
        : width(columns), height(rows), pixels(static_cast<size_t>(columns) * static_cast<size_t>(rows)) {}

    uint8_t* row(int y) { return pixels.data() + ptrdiff_t{y} * width; }
    const uint8_t* row(int y) const { return pixels.data() + ptrdiff_t{y} * width; }

    // The pixel, or the nearest one if it is outside.
    uint8_t at(int x, int y) const { return row(std::clamp(y, 0, height - 1))[std::clamp(x, 0, width - 1)]; }

    int width, height;
    std::vector<uint8_t> pixels;
};

// About 1240 x 1754 pixels: large pages are reduced, small ones enlarged.
GreyImage workingImageOf(const KVIMG& page);

}    // namespace page_skew
