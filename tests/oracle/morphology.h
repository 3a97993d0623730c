// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Dilation and erosion by their definition, one pixel at a time.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace oracle {

// Largest (or smallest) of the pixels from `corner` on that the cells of a mask select. The mask must select one.
inline uint8_t extremeUnder(const uint8_t* corner, int step, const uint8_t* mask, int width, int height, bool largest) {
    int extreme = largest ? -1 : 256;
    for (int j = 0; j < height; ++j)
        for (int i = 0; i < width; ++i) {
            if (!mask[ptrdiff_t{j} * width + i]) continue;
            const int pixel = corner[ptrdiff_t{j} * step + i];
            extreme = largest ? std::max(extreme, pixel) : std::min(extreme, pixel);
        }
    return static_cast<uint8_t>(extreme);
}

}    // namespace oracle
