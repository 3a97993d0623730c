// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "filters/colour_image.h"

#include <cstdlib>
#include <cstring>

#include "core/pixel_memory.h"
#include "core/region.h"

namespace filters {

bool isColourImage(IppiSize size) { return !opcv::isEmpty(size) && opcv::planeFits(size.width, size.height, 3); }

const unsigned char* sourceApart(const unsigned char* src, const unsigned char* dst, size_t bytes,
                                 opcv::PixelBlock& copy) {
    if (!opcv::overlap(opcv::ByteSpan(src, src + bytes), opcv::ByteSpan(dst, dst + bytes))) return src;
    copy.reset(static_cast<unsigned char*>(std::malloc(bytes)));
    if (copy) std::memcpy(copy.get(), src, bytes);
    return copy.get();
}

void copyRing(const unsigned char* src, unsigned char* dst, IppiSize size, int width) {
    const ptrdiff_t step = 3 * ptrdiff_t{size.width};
    for (int y = 0; y < size.height; ++y, src += step, dst += step) {
        const bool whole = y < width || y >= size.height - width || 2 * width >= size.width;
        const ptrdiff_t bytes = whole ? step : 3 * ptrdiff_t{width};
        std::memcpy(dst, src, static_cast<size_t>(bytes));
        std::memcpy(dst + step - bytes, src + step - bytes, static_cast<size_t>(bytes));
    }
}

}    // namespace filters
