// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Conversion between RGB and analog YUV, one pixel at a time: by the definition in 14-bit fixed point, and by the plain
// formula in double precision.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace oracle {

using Triple = std::array<uint8_t, 3>;
using RealTriple = std::array<double, 3>;

inline uint8_t byteOf(int value) { return static_cast<uint8_t>(std::clamp(value, 0, 255)); }

// Rounds a value in 14-bit fixed point to the nearest integer, halves up.
inline int whole14(int value) { return (value + (1 << 13)) >> 14; }

inline Triple yuvOf(const uint8_t* rgb) {
    const int y = whole14(4899 * rgb[0] + 9617 * rgb[1] + 1868 * rgb[2]);
    return {byteOf(y), byteOf(128 + whole14(8061 * (rgb[2] - y))), byteOf(128 + whole14(14369 * (rgb[0] - y)))};
}

inline Triple rgbOf(const uint8_t* yuv) {
    const int y = yuv[0];
    const int u = yuv[1] - 128;
    const int v = yuv[2] - 128;
    return {byteOf(y + whole14(18678 * v)), byteOf(y + whole14(-6472 * u - 9519 * v)), byteOf(y + whole14(33292 * u))};
}

inline double inByte(double value) { return std::clamp(value, 0.0, 255.0); }

inline RealTriple realYuvOf(const uint8_t* rgb) {
    const double y = 0.299 * rgb[0] + 0.587 * rgb[1] + 0.114 * rgb[2];
    return {y, inByte(128 + 0.492 * (rgb[2] - y)), inByte(128 + 0.877 * (rgb[0] - y))};
}

inline RealTriple realRgbOf(const uint8_t* yuv) {
    const double u = yuv[1] - 128.0;
    const double v = yuv[2] - 128.0;
    return {inByte(yuv[0] + 1.140 * v), inByte(yuv[0] - 0.395 * u - 0.581 * v), inByte(yuv[0] + 2.032 * u)};
}

inline bool withinOneLevel(const uint8_t* bytes, const RealTriple& real) {
    for (size_t c = 0; c < real.size(); ++c)
        if (std::abs(bytes[c] - real[c]) > 1) return false;
    return true;
}

}    // namespace oracle
