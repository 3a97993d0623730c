// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// What the convolution kernels prepare once a call: the taps of a kernel, and their scratch memory.
#pragma once

#include <cstddef>

#include "filters/convolution_kernels.h"
#include "filters/small_buffer.h"

namespace filters {

constexpr size_t kMostBlock = 96;      // columns that are filtered together
constexpr size_t kMostTogether = 4;    // rows that are filtered together

// What a cell of a kernel reads: a row, counted from the first of the window, and an element.
struct Tap {
    int row;
    int element;
};

// The cells of a kernel in raster order: those that are not 0, or all, for windows of kMostTogether rows.
struct Taps {
    const Tap* taps;
    const float* weights;    // `count` for each kernel
    ptrdiff_t count;         // of a window
    ptrdiff_t perRow;        // of a window that has all cells
    bool hasAllCells;
    bool isSmall;    // sums of 8-bit pixels have at most 15 bits and a sign, sums of 16-bit pixels at most 22
    bool isExact;    // doubles hold the sum of a product and a sum of floats
};

struct Scratch {
    float* ring;
    size_t ringFloats;
    const float** rows;    // of the ring, for the window of the rows that are filtered
    Tap* taps;
    float* weights;
};

// Columns of a kernel are `elements` apart.
Taps prepareTaps(const TurnedKernel& kernel, int elements, const Scratch& scratch);

// Kernels of usual sizes need no heap.
class ScratchMemory {
public:
    ScratchMemory(const TurnedKernel& kernel, int elements);

    // All pointers are null if allocating a part fails.
    Scratch scratch();

private:
    // Holds whole rows of an A4 page for most kernels; narrower strips cost time.
    static constexpr size_t kRingFloats = 24576;
    static constexpr size_t kCells = 129;

    size_t ringFloats_;
    SmallBuffer<float, kRingFloats> ring_;
    SmallBuffer<const float*, kCells + kMostTogether> rows_;
    SmallBuffer<Tap, kMostTogether * kCells> taps_;
    SmallBuffer<float, 3 * kCells> weights_;
};

}    // namespace filters
