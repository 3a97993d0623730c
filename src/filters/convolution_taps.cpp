// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "filters/convolution_taps.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace filters {
namespace {

size_t kernelsOf(const TurnedKernel& kernel) { return kernel.ofChannels ? 3 : 1; }

// The rows that the windows of all rows that are filtered together reach.
size_t rowsOf(const TurnedKernel& kernel) { return static_cast<size_t>(kernel.height) + kMostTogether - 1; }

// Room for a row that is shorter than a block, and at least some blocks of a longer one.
size_t leastRingOf(const TurnedKernel& kernel, int elements) {
    constexpr size_t kLeastBlocks = 5;
    constexpr size_t kRounding = 32;    // to whole vectors
    const size_t reach = static_cast<size_t>(kernel.width - 1) * static_cast<size_t>(elements);
    return kernelsOf(kernel) * rowsOf(kernel) * (reach + kLeastBlocks * kMostBlock + kRounding);
}

bool isUsed(const TurnedKernel& kernel, size_t cell) {
    for (size_t k = 0; k < kernelsOf(kernel); ++k)
        if (kernel.weights[k * kernel.cells() + cell] != 0) return true;
    return false;
}

// Sums to which all cells are added take about two thirds of the time that each cell takes in a row of its own.
bool takesAllCells(const TurnedKernel& kernel) {
    if (static_cast<size_t>(kernel.height) < kMostTogether - 1) return false;
    size_t used = 0;
    for (size_t cell = 0; cell < kernel.cells(); ++cell) used += isUsed(kernel, cell) ? 1 : 0;
    return 3 * used >= 2 * kernel.cells();
}

// Largest sum of a pixel's products with the weights, for pixels of 1, and the least weight that is not 0.
struct Magnitudes {
    double sum = 0;
    float least = std::numeric_limits<float>::infinity();
};

Magnitudes magnitudesOf(const TurnedKernel& kernel) {
    Magnitudes magnitudes;
    for (size_t i = 0; i < kernelsOf(kernel) * kernel.cells(); ++i) {
        const float weight = std::abs(kernel.weights[i]);
        magnitudes.sum += double{weight};
        if (weight > 0) magnitudes.least = std::min(magnitudes.least, weight);
    }
    return magnitudes;
}

// 255 times less than this is below 2^15, 65535 times below 2^22. The factors of 4 and 2 that remain are for rounding.
bool isSmall(const Magnitudes& magnitudes) { return magnitudes.sum < 32; }

// All products, and all sums that are rounded to floats, are multiples of the last bit of the least weight. So doubles hold a
// sum of them without rounding if it has at most 53 bits from there on; one of them is for the rounding of earlier sums.
bool isExact(const Magnitudes& magnitudes) {
    constexpr double kPixels = 65536;
    constexpr int kBits = 52;
    if (!std::isfinite(magnitudes.sum) || magnitudes.sum == 0) return false;
    const int lastBit = std::max(std::ilogb(magnitudes.least), -126) - 23;
    return magnitudes.sum * kPixels < std::ldexp(1.0, lastBit + kBits);
}

}    // namespace

Taps prepareTaps(const TurnedKernel& kernel, int elements, const Scratch& scratch) {
    const bool all = takesAllCells(kernel);
    const auto width = static_cast<size_t>(kernel.width);
    ptrdiff_t count = 0;
    ptrdiff_t countOfAll = 0;
    for (size_t cell = 0; cell < (all ? rowsOf(kernel) * width : kernel.cells()); ++cell) {
        if (!all && !isUsed(kernel, cell)) continue;
        scratch.taps[countOfAll++] = {static_cast<int>(cell / width), static_cast<int>(cell % width) * elements};
        if (cell < kernel.cells()) count = countOfAll;
    }
    float* weight = scratch.weights;
    for (size_t k = 0; k < kernelsOf(kernel); ++k)
        for (size_t cell = 0; cell < kernel.cells(); ++cell)
            if (all || isUsed(kernel, cell)) *weight++ = kernel.weights[k * kernel.cells() + cell];
    const Magnitudes magnitudes = magnitudesOf(kernel);
    return {scratch.taps,        scratch.weights,    count, all ? kernel.width : 0, all,
            isSmall(magnitudes), isExact(magnitudes)};
}

ScratchMemory::ScratchMemory(const TurnedKernel& kernel, int elements)
    : ringFloats_(std::max(kRingFloats, leastRingOf(kernel, elements))),
      ring_(ringFloats_),
      rows_(rowsOf(kernel)),
      taps_(rowsOf(kernel) * static_cast<size_t>(kernel.width)),
      weights_(kernelsOf(kernel) * kernel.cells()) {}

Scratch ScratchMemory::scratch() {
    if (!ring_.get() || !rows_.get() || !taps_.get() || !weights_.get()) return {};
    return {ring_.get(), ringFloats_, rows_.get(), taps_.get(), weights_.get()};
}

}    // namespace filters
