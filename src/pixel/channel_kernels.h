// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Copies and conversions of images of three 8-bit channels, packed or planar, optionally between RGB and YUV. Regions
// must not be empty.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace opcv {

struct PackedImage {
    uint8_t* pixels;
    ptrdiff_t step;

    PackedImage below(ptrdiff_t row) const { return {pixels + row * step, step}; }
};

struct PlanarImage {
    std::array<uint8_t*, 3> planes;
    ptrdiff_t step;

    PlanarImage below(ptrdiff_t row) const {
        return {{planes[0] + row * step, planes[1] + row * step, planes[2] + row * step}, step};
    }
};

// The destination may be the source, with the same step.
void convertRgbToYuv(const PackedImage& rgb, const PackedImage& yuv, int width, int height);
void convertYuvToRgb(const PackedImage& yuv, const PackedImage& rgb, int width, int height);

// The destination must not overlap the source.
void convertRgbToYuv(const PackedImage& rgb, const PlanarImage& yuv, int width, int height);
void convertYuvToRgb(const PlanarImage& yuv, const PackedImage& rgb, int width, int height);
void splitChannels(const PackedImage& packed, const PlanarImage& planes, int width, int height);
void mergeChannels(const PlanarImage& planes, const PackedImage& packed, int width, int height);

}    // namespace opcv
