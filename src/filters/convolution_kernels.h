// Convolution directly between the caller's rows.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace filters {

// One cell of a turned kernel: the row and element that it reads, counted from the first of the window, and its weight
// for the three elements of a pixel (or for any three adjacent elements, if all have the same weight).
struct Tap {
    int row = 0;
    int element = 0;
    std::array<float, 3> weights{};
};

// The cells of a kernel that are not 0, in raster order.
struct Taps {
    static constexpr int kMost = 129;

    int rows = 1;     // of the window
    int reach = 0;    // elements of a window's row after its first
    int count = 0;
    bool alike = true;    // all elements have the same weight; otherwise three per pixel
    std::array<Tap, kMost> taps;
};

struct Shape {
    int elements;    // a row
    int rows;
};

// Steps are in bytes. Source and destination must not overlap.
void convolve8u(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep, Shape region, const Taps& taps);
void convolve16s(const int16_t* src, ptrdiff_t srcStep, int16_t* dst, ptrdiff_t dstStep, Shape region,
                 const Taps& taps);

}    // namespace filters
