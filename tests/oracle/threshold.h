// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Thresholds and depth conversion by their definitions, one pixel at a time. Rows may be unaligned.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace oracle {

template <typename T>
T pixelAt(const uint8_t* image, ptrdiff_t step, int x, int y) {
    T pixel;
    std::memcpy(&pixel, image + step * y + static_cast<ptrdiff_t>(sizeof(T)) * x, sizeof(T));
    return pixel;
}

template <typename T>
void setPixel(uint8_t* image, ptrdiff_t step, int x, int y, T pixel) {
    std::memcpy(image + step * y + static_cast<ptrdiff_t>(sizeof(T)) * x, &pixel, sizeof(T));
}

template <typename T>
void threshold(uint8_t* image, ptrdiff_t step, int width, int height, T level, T value) {
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            if (pixelAt<T>(image, step, x, y) <= level) setPixel(image, step, x, y, value);
}

inline uint8_t saturated(int value) { return static_cast<uint8_t>(std::clamp(value, 0, 255)); }

}    // namespace oracle
