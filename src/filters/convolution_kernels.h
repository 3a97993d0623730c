// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Convolution directly between the caller's rows.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "filters/small_buffer.h"

namespace filters {

// One cell of a turned kernel: the row and element that it reads, counted from the first of the window, and its weight
// for the three elements of a pixel (or for any three adjacent elements, if all have the same weight).
struct Tap {
    int row;
    int element;
    std::array<float, 3> weights;
};

// The cells of a kernel that are not 0, in raster order.
struct Taps {
    explicit Taps(size_t cells) : taps(cells) {}

    int rows = 1;     // of the window
    int reach = 0;    // elements of a window's row after its first
    int count = 0;
    bool alike = true;    // all elements have the same weight; otherwise they are pixels of three
    SmallBuffer<Tap, 129> taps;
};

struct Shape {
    int elements;    // per row
    int rows;
};

// Steps are in bytes; source and destination must not overlap. False if allocating scratch for a large kernel fails.
bool convolve8u(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep, Shape region, Taps& taps);
bool convolve16u(const uint16_t* src, ptrdiff_t srcStep, uint16_t* dst, ptrdiff_t dstStep, Shape region, Taps& taps);
bool convolve16s(const int16_t* src, ptrdiff_t srcStep, int16_t* dst, ptrdiff_t dstStep, Shape region, Taps& taps);

}    // namespace filters
