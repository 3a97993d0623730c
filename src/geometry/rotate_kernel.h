// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Bilinear rotation of 8-bit pixels directly into the target. Arguments must have been checked.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "geometry/affine_map.h"

namespace opcv {

struct RotationJob {
    static constexpr int kMaxChannels = 4;

    AffineMap map;                      // from target pixels to source positions
    const uint8_t* source = nullptr;    // all pixels that count as image; outside them is the border colour
    ptrdiff_t sourceStep = 0;
    int sourceWidth = 0;
    int sourceHeight = 0;
    uint8_t* target = nullptr;    // must not overlap the source
    ptrdiff_t targetStep = 0;
    int targetWidth = 0;
    int channels = 1;    // 1, 3 or 4
    std::array<uint8_t, kMaxChannels> border{};
};

// Fills the target's rows from `firstRow` to `endRow`, exclusive, in groups of neighbouring bytes. At steep angles,
// returns false with nothing written.
bool rotateInGroups(const RotationJob& job, int firstRow, int endRow);

// The same at any angle, with the taps of each pixel loaded on their own.
void rotateByPixel(const RotationJob& job, int firstRow, int endRow);

inline void rotateRows(const RotationJob& job, int firstRow, int endRow) {
    if (!rotateInGroups(job, firstRow, endRow)) rotateByPixel(job, firstRow, endRow);
}

}    // namespace opcv
