// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Turns of pixels of 1, 3 or 4 bytes by multiples of 90 degrees. Arguments must have been checked; source and target
// must not overlap.
#pragma once

#include <cstddef>
#include <cstdint>

namespace opcv {

// A raster in the order in which a turn reads or writes it; with a negative step, upwards from its last row.
struct SourceRows {
    const uint8_t* first;
    ptrdiff_t step;
};
struct TargetRows {
    uint8_t* first;
    ptrdiff_t step;
};

// Source pixel (x, y) becomes target pixel (y, x).
void transpose(SourceRows from, TargetRows to, int sourceWidth, int sourceHeight, int pixelSize);

// Each row becomes its mirror image in the same row of the target.
void mirror(SourceRows from, TargetRows to, int width, int height, int pixelSize);

}    // namespace opcv
