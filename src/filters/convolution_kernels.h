// Convolution straight from the caller's rows into the caller's rows.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace filters {

// One cell of a turned kernel: what it reads, counted from the window's first row and element, and its weight for the
// three elements of a pixel (or of any three in a row, if all elements are weighed alike).
struct Tap {
    int row = 0;
    int element = 0;
    std::array<float, 3> weights{};
};

// The cells of a kernel that are not 0, in raster order.
struct Taps {
    static constexpr int kMost = 129;

    int rows = 1;     // of the window
    int reach = 0;    // elements of a window's row behind its first
    int count = 0;
    bool alike = true;    // all elements are weighed alike; otherwise they are pixels of three
    std::array<Tap, kMost> taps;
};

struct Shape {
    int elements;    // a row
    int rows;
};

// Steps are in bytes; source and destination share no byte.
void convolve8u(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep, Shape region, const Taps& taps);
void convolve16s(const int16_t* src, ptrdiff_t srcStep, int16_t* dst, ptrdiff_t dstStep, Shape region,
                 const Taps& taps);

}    // namespace filters
