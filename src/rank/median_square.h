// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Square medians, directly from the caller's rows.
#pragma once

#include <cstddef>
#include <cstdint>

namespace opcv {

// Whether there is a kernel for m x m windows.
bool hasSquareMedian(int m);

// Medians of `height` rows of `width` bytes; `src` is the corner of the first window. A window's columns lie `channels`
// bytes apart. Reads only bytes of the windows. Source and destination must not overlap.
void squareMedian(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep, ptrdiff_t width,
                  ptrdiff_t height, int m, int channels);

}    // namespace opcv
