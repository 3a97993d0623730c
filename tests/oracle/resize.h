// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Bilinear resize, one pixel at a time: by the definition in 11-bit fixed point, and by the plain formula in double
// precision.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace oracle {

struct Raster {
    const uint8_t* pixels;
    ptrdiff_t step;
    int width;
    int height;
    int channels;

    int at(int x, int y, int c) const { return pixels[step * y + ptrdiff_t{channels} * x + c]; }
    int clamped(int x, int y, int c) const { return at(std::clamp(x, 0, width - 1), std::clamp(y, 0, height - 1), c); }
};

// Two neighbours and their weights for one position of the scaled image.
struct Taps {
    int first;
    int weightOfFirst;
    int weightOfSecond;
};

inline Taps tapsAt(int position, double scale) {
    float fraction = static_cast<float>((position + 0.5) * scale - 0.5);
    const auto first = static_cast<int>(std::floor(fraction));
    fraction -= static_cast<float>(first);
    const auto weight = [](float f) { return static_cast<int>(std::nearbyint(f * 2048.0F)); };
    return {first, weight(1.0F - fraction), weight(fraction)};
}

inline int acrossRow(const Raster& source, const Taps& taps, int y, int c) {
    if (taps.first < 0) return 2048 * source.clamped(0, y, c);
    if (taps.first >= source.width - 1) return 2048 * source.clamped(source.width - 1, y, c);
    return taps.weightOfFirst * source.clamped(taps.first, y, c) +
           taps.weightOfSecond * source.clamped(taps.first + 1, y, c);
}

// Mean of the 2 x 2 pixels, halves up; of those that exist at an odd edge, halves to even.
inline uint8_t meanOfFour(const Raster& source, int x, int y, int c) {
    int sum = 0;
    int count = 0;
    for (int row = 2 * y; row < std::min(2 * y + 2, source.height); ++row)
        for (int column = 2 * x; column < std::min(2 * x + 2, source.width); ++column, ++count)
            sum += source.at(column, row, c);
    if (count == 4) return static_cast<uint8_t>((sum + 2) / 4);
    return static_cast<uint8_t>(std::nearbyint(1.0 * sum / count));
}

// `xScale` and `yScale` are source pixels per destination pixel.
inline uint8_t resizedAt(const Raster& source, double xScale, double yScale, int x, int y, int c) {
    if (xScale == 2 && yScale == 2) return meanOfFour(source, x, y, c);
    const Taps columns = tapsAt(x, xScale);
    const Taps rows = tapsAt(y, yScale);
    const int above = acrossRow(source, columns, rows.first, c) / 16;
    const int below = acrossRow(source, columns, rows.first + 1, c) / 16;
    return static_cast<uint8_t>((rows.weightOfFirst * above / 65536 + rows.weightOfSecond * below / 65536 + 2) / 4);
}

inline double realResizedAt(const Raster& source, double xScale, double yScale, int x, int y, int c) {
    const double column = std::clamp((x + 0.5) * xScale - 0.5, 0.0, source.width - 1.0);
    const double row = std::clamp((y + 0.5) * yScale - 0.5, 0.0, source.height - 1.0);
    const auto left = static_cast<int>(column);
    const auto top = static_cast<int>(row);
    const double right = column - left;
    const double down = row - top;
    return (1 - down) * ((1 - right) * source.clamped(left, top, c) + right * source.clamped(left + 1, top, c)) +
           down * ((1 - right) * source.clamped(left, top + 1, c) + right * source.clamped(left + 1, top + 1, c));
}

}    // namespace oracle
