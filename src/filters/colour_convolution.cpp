// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Convolution of a whole packed 24-bit image with a square float kernel, one for all channels or one for each. The
// outermost pixels, where the kernel would extend beyond the image, are not filtered.
// Three kernels are applied to the packed pixels in one pass.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "core/Tools.h"
#include "filters/colour_image.h"
#include "filters/convolution_kernels.h"
#include "filters/small_buffer.h"

namespace {

// The part of an image on which a kernel of a radius stays inside it.
struct Inside {
    IppiSize roi;
    IppiSize kernel;
    IppiPoint anchor;

    size_t cells() const { return static_cast<size_t>(kernel.width) * static_cast<size_t>(kernel.height); }
};

std::optional<Inside> insideOf(IppiSize size, int radius) {
    const int64_t side = 2 * int64_t{radius};
    if (radius < 0 || size.width <= side || size.height <= side) return std::nullopt;
    return Inside{
        {size.width - 2 * radius, size.height - 2 * radius}, {2 * radius + 1, 2 * radius + 1}, {radius, radius}};
}

}    // namespace

void Convolution24MonoFilter(const unsigned char* src, unsigned char* dst, IppiSize size, int radius,
                             const float* kernel) {
    const std::optional<Inside> inside = insideOf(size, radius);
    if (!src || !dst || !inside) return;
    const int64_t step = 3 * int64_t{size.width};
    if (step > INT32_MAX) return;
    const ptrdiff_t offset = radius * (step + 3);
    IPPMini_ippiFilter32f_8u_C3R(src + offset, static_cast<int>(step), dst + offset, static_cast<int>(step),
                                 inside->roi, kernel, inside->kernel, inside->anchor);
}

bool Convolution24(const unsigned char* src, unsigned char* dst, IppiSize size, int radius, const float* kernels) {
    const std::optional<Inside> inside = insideOf(size, radius);
    if (!src || !dst || !kernels || !inside || !filters::isColourImage(size)) return false;

    const ptrdiff_t step = 3 * ptrdiff_t{size.width};
    opcv::PixelBlock copy;
    const unsigned char* source = filters::sourceApart(src, dst, static_cast<size_t>(step * size.height), copy);
    if (!source) return false;

    // Turned by 180 degrees, the kernels are in the order of the channels.
    const size_t weights = 3 * inside->cells();
    filters::SmallBuffer<float, 3 * 129> turned(weights);
    if (!turned.get()) return false;
    std::reverse_copy(kernels, kernels + weights, turned.get());
    const filters::TurnedKernel kernel = {turned.get(), inside->kernel.width, inside->kernel.height, true};
    if (!filters::convolve8u({source, step, dst + radius * (step + 3), step, inside->roi.width, inside->roi.height, 3},
                             kernel))
        return false;
    filters::copyRing(source, dst, size, radius);
    return true;
}
