// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Convolution directly between the caller's rows.
#pragma once

#include <cstddef>
#include <cstdint>

namespace filters {

// Rows of a source and a destination that do not overlap; steps are in bytes, and `src` is the corner of the first
// window.
template <class Pixel>
struct ConvolvedRows {
    const Pixel* src;
    ptrdiff_t srcStep;
    Pixel* dst;
    ptrdiff_t dstStep;
    int width;    // in pixels
    int height;
    int channels;
};

// A kernel turned by 180 degrees, in raster order, for all channels. Or three kernels, one after the other, for the
// elements of pixels of three bytes.
struct TurnedKernel {
    const float* weights;
    int width;
    int height;
    bool ofChannels = false;

    size_t cells() const { return static_cast<size_t>(width) * static_cast<size_t>(height); }
};

// False if allocating scratch for a large kernel fails.
bool convolve8u(const ConvolvedRows<uint8_t>& rows, const TurnedKernel& kernel);
bool convolve16u(const ConvolvedRows<uint16_t>& rows, const TurnedKernel& kernel);
bool convolve16s(const ConvolvedRows<int16_t>& rows, const TurnedKernel& kernel);

}    // namespace filters
