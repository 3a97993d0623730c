// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The layout of an image in its block of memory, shared by the guarded images of the unit tests, the cases of the
// catalogue and the blocks of the fuzz programs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "OPCV_dlib.h"

// Pixels around a region that a function reads. Negative if the function does not read all of the region, as with an
// anchor outside its mask.
struct Margin {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    static constexpr Margin all(int pixels) { return {pixels, pixels, pixels, pixels}; }
};

struct ImageLayout {
    IppiSize region = {0, 0};
    int pixelSize = 1;    // bytes
    Margin margin = {};
    int padding = 0;    // bytes after each row but the last

    int rowBytes() const { return region.width * pixelSize; }
    int usedRow() const { return (margin.left + region.width + margin.right) * pixelSize; }    // with both margins
    int step() const { return usedRow() + padding; }
    int rows() const { return margin.top + region.height + margin.bottom; }
    size_t bytes() const { return static_cast<size_t>(ptrdiff_t{step()} * rows() - padding); }

    // Offset of the first byte of a pixel; pixels of the margin have negative or large coordinates.
    ptrdiff_t offsetOf(int x, int y) const {
        return ptrdiff_t{step()} * (y + margin.top) + ptrdiff_t{pixelSize} * (x + margin.left);
    }

    // Calls `use(offset)` with the first byte of each row of the region.
    template <class Use>
    void forEachRow(Use use) const {
        for (int y = 0; y < region.height; ++y) use(offsetOf(0, y));
    }

    // Whether two states of the block are equal outside the region.
    bool sameAroundRegion(const uint8_t* now, const std::vector<uint8_t>& before) const {
        std::vector<uint8_t> expected = before;
        forEachRow(
            [&](ptrdiff_t row) { std::memcpy(expected.data() + row, now + row, static_cast<size_t>(rowBytes())); });
        return std::memcmp(now, expected.data(), expected.size()) == 0;
    }

    // The region, row after row without gaps.
    std::vector<uint8_t> regionOf(const uint8_t* block) const {
        std::vector<uint8_t> pixels;
        forEachRow([&](ptrdiff_t row) { pixels.insert(pixels.end(), block + row, block + row + rowBytes()); });
        return pixels;
    }
};
