// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Packed 24-bit images that are filtered as a whole image.
#pragma once

#include <cstddef>

#include "core/ownership.h"

namespace filters {

// Whether the library allocates three-channel planes of the size: both sides are above 0 and, with rows of a multiple of 64 bytes, at
// most 2^31 - 1 bytes. Products of its sides then cannot overflow.
bool isColourImage(IppiSize size);

// The source, or a copy of it if the destination overlaps it. Null if allocating the copy fails.
const unsigned char* sourceApart(const unsigned char* src, const unsigned char* dst, size_t bytes,
                                 opcv::PixelBlock& copy);

// Copies the outermost `width` pixels at each edge, which the filters do not write.
void copyRing(const unsigned char* src, unsigned char* dst, IppiSize size, int width);

}    // namespace filters
