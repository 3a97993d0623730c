// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Bilateral filter of 8-bit channels by its definition, bit for bit. Weights and sums are floats. The cells of a window
// are those within half its side of the centre, in raster order.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "OPCV_dlib.h"
#include "oracle/plain_filters.h"

namespace oracle {

// The weight of a difference or a distance. Sigmas of 0 and less count as 1.
inline float gaussian(double distance, double sigma) {
    const double coefficient = -0.5 / (sigma <= 0 ? 1 : sigma * sigma);
    return static_cast<float>(std::exp(distance * distance * coefficient));
}

struct WeightedPixel {
    float value;
    float weight;
};

inline uint8_t weightedMean(const std::vector<WeightedPixel>& cells, bool inFours) {
    float sum = 0;
    float weights = 0;
    size_t done = 0;
    for (; inFours && done + 4 <= cells.size(); done += 4) {
        const WeightedPixel* c = &cells[done];
        const auto product = [&](int i) { return c[i].value * c[i].weight; };
        sum += (product(0) + product(2)) + (product(1) + product(3));
        weights += (c[0].weight + c[2].weight) + (c[1].weight + c[3].weight);
    }
    for (; done < cells.size(); ++done) {
        sum = std::fma(cells[done].value, cells[done].weight, sum);
        weights += cells[done].weight;
    }
    const float mean = sum / weights;
    return std::isnan(mean) ? 0 : static_cast<uint8_t>(std::lrint(mean));
}

// The view is the region and half a side around it. Its columns are summed one cell at a time in whole groups of eight,
// and four cells at a time in the columns after them.
inline void bilateral(const uint8_t* src, int srcStep, uint8_t* dst, int dstStep, IppiSize roi, int side,
                      float colorSquareSigma, float spaceSquareSigma) {
    const double sigmaColor = std::sqrt(double{colorSquareSigma});
    const double sigmaSpace = std::sqrt(double{spaceSquareSigma});
    const int half = side / 2;
    const int firstInFours = (roi.width + 2 * half) / 8 * 8 - half;
    float colorWeights[256];
    for (int difference = 0; difference < 256; ++difference)
        colorWeights[difference] = gaussian(difference, sigmaColor);
    std::vector<WeightedPixel> cells;
    for (int y = 0; y < roi.height; ++y)
        for (int x = 0; x < roi.width; ++x) {
            const uint8_t* centre = src + ptrdiff_t{y} * srcStep + x;
            cells.clear();
            for (int j = -half; j <= half; ++j)
                for (int i = -half; i <= half; ++i) {
                    const double distance = std::sqrt(double{1} * i * i + j * j);
                    if (distance > half) continue;
                    const int value = centre[ptrdiff_t{j} * srcStep + i];
                    cells.push_back({static_cast<float>(value),
                                     gaussian(distance, sigmaSpace) * colorWeights[std::abs(value - *centre)]});
                }
            dst[ptrdiff_t{y} * dstStep + x] = weightedMean(cells, x >= firstInFours);
        }
}

// Each channel on its own. The ring along the edges holds the source's pixels.
inline void noiseReduction24(const uint8_t* src, uint8_t* dst, IppiSize size, int side, float squareSigma) {
    filterPlanes(src, dst, size, side / 2, [&](int, const uint8_t* from, uint8_t* to, IppiSize roi) {
        bilateral(from, size.width, to, size.width, roi, side, squareSigma, squareSigma);
    });
}

}    // namespace oracle
