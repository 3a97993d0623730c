// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Linear filters by their definition, one value at a time. `at(x, y)` returns a source value, counted from the region.
#pragma once

#include <cmath>
#include <cstdint>

#include "OPCV_dlib.h"

namespace oracle {

// Sum over the kernel's cells, not yet divided.
template <typename T, typename At>
double convolutionSum(const At& at, int x, int y, const T* kernel, IppiSize size, IppiPoint anchor) {
    double sum = 0;
    for (int j = 0; j < size.height; ++j)
        for (int i = 0; i < size.width; ++i)
            sum += static_cast<double>(kernel[j * size.width + i]) * at(x + anchor.x - i, y + anchor.y - j);
    return sum;
}

// The distance of an integer from a value saturated to a range; rounding is correct if it is 0.5 or less.
inline double roundingError(int result, double exact, int low, int high) {
    if (exact <= low) return result - low;
    if (exact >= high) return high - result;
    return std::abs(result - exact);
}

template <typename At>
int64_t boxSum(const At& at, int x, int y, IppiSize mask, IppiPoint anchor) {
    int64_t sum = 0;
    for (int j = 0; j < mask.height; ++j)
        for (int i = 0; i < mask.width; ++i) sum += at(x - anchor.x + i, y - anchor.y + j);
    return sum;
}

// Weighted mean of the pixels within half a side.
template <typename At>
double bilateralMean(const At& at, int x, int y, int side, double colorSquareSigma, double spaceSquareSigma) {
    const int radius = side / 2;
    double sum = 0;
    double weights = 0;
    for (int j = -radius; j <= radius; ++j)
        for (int i = -radius; i <= radius; ++i) {
            const double squareDistance = i * i + j * j;
            if (squareDistance > radius * radius) continue;
            const double difference = at(x + i, y + j) - at(x, y);
            const double weight = std::exp(-difference * difference / (2 * colorSquareSigma)) *
                                  std::exp(-squareDistance / (2 * spaceSquareSigma));
            sum += weight * at(x + i, y + j);
            weights += weight;
        }
    return sum / weights;
}

// Orthonormal cosine transform of `n` values, by the formula of the direction.
inline double cosineTransformAt(const double* values, int n, bool inverse, int position) {
    const double pi = std::acos(-1.0);
    const auto scale = [n](int k) { return std::sqrt((k == 0 ? 1.0 : 2.0) / n); };
    double sum = 0;
    for (int i = 0; i < n; ++i) {
        const int k = inverse ? i : position;
        const int j = inverse ? position : i;
        sum += scale(k) * values[i] * std::cos(pi * k * (2.0 * j + 1) / (2.0 * n));
    }
    return sum;
}

}    // namespace oracle
