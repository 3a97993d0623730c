// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Bilateral filter over 3x3 or 5x5 pixels, directly between the caller's rows.
#pragma once

#include <cstddef>
#include <cstdint>

#include "simd/float_table.h"

namespace filters {

// Weight of a neighbour by its grey difference, for the three distances in 5x5 pixels.
struct BilateralWeights {
    enum Distance { kOne, kRootOfTwo, kTwo, kDistances };

    // A sigma of 0 or less counts as 1, as in OpenCV. With NaN every result is 0.
    BilateralWeights(double sigmaColor, double sigmaSpace);

    opcv::simd::FloatTable at[kDistances];
};

struct BilateralRegion {
    const uint8_t* src;    // first pixel; `radius` pixels around the region are read
    ptrdiff_t srcStep;     // bytes
    uint8_t* dst;          // must not overlap the source
    ptrdiff_t dstStep;
    int width;       // pixels
    int height;      // rows
    int channels;    // 1 or 3 interleaved ones, each filtered on its own
    int radius;      // 1 or 2
};

// Large regions are filtered in bands of rows on OpenCV's threads.
void filterBilateral(const BilateralRegion& region, const BilateralWeights& weights);

}    // namespace filters
