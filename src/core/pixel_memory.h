// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Heap blocks for whole images.
#pragma once

#include <climits>
#include <cstddef>
#include <cstdint>

namespace opcv {

// malloc. Large blocks request huge pages, if the kernel grants them on request: thousands of page faults per image,
// each of which costs as much as filling the page, become a few.
void* allocatePixels(size_t bytes);

// Bytes from one row to the next in planes that the library allocates: a multiple of 64.
constexpr int64_t planeStep(int64_t width, int pixelSize) { return (width * pixelSize + 63) & ~int64_t{63}; }

// Whether a plane with both sides above 0 has at most 2^31 - 1 bytes.
constexpr bool planeFits(int64_t width, int64_t height, int pixelSize) {
    const int64_t step = planeStep(width, pixelSize);
    return step <= INT_MAX && step * height <= INT_MAX;
}

}    // namespace opcv
