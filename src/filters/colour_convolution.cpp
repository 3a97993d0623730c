// Convolution of a whole packed 24-bit image with a square float kernel, one for all channels or one for each. The
// outermost pixels, where the kernel would extend beyond the image, are not filtered.
//
// Three kernels are applied to the packed pixels in one pass. Large ones, for which OpenCV may use a Fourier transform,
// are applied channel by channel.
#include <cstddef>
#include <cstdint>
#include <optional>

#include "core/Tools.h"
#include "filters/colour_image.h"
#include "filters/convolution_kernels.h"
#include "filters/fused_sums.h"

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

constexpr int kLargestDirectRadius = 3;    // 49 cells; from 50 on OpenCV may take a Fourier transform

// The kernels, turned by 180 degrees. They are in the reverse order of the channels.
filters::Taps tapsOf(const float* kernels, const Inside& inside) {
    const size_t cells = inside.cells();
    filters::Taps taps;
    taps.rows = inside.kernel.height;
    taps.reach = 3 * (inside.kernel.width - 1);
    taps.alike = false;
    for (int row = 0; row < inside.kernel.height; ++row)
        for (int column = 0; column < inside.kernel.width; ++column) {
            const size_t cell = cells - 1 - static_cast<size_t>(row * inside.kernel.width + column);
            filters::Tap& tap = taps.taps[static_cast<size_t>(taps.count++)];
            tap = {row, 3 * column, {kernels[2 * cells + cell], kernels[cells + cell], kernels[cell]}};
        }
    return taps;
}

OSErr filterChannelByChannel(const unsigned char* src, unsigned char* dst, IppiSize size, const float* kernels,
                             const Inside& inside) {
    const ptrdiff_t offset = inside.anchor.x * (ptrdiff_t{size.width} + 1);
    return filters::filterChannels(src, dst, size, [&](int channel, const unsigned char* from, unsigned char* to) {
        const float* kernel = kernels + static_cast<size_t>(2 - channel) * inside.cells();
        return Tools::IppStatusToOSErr(ippiFilter32f(from + offset, size.width, CV_8UC1, to + offset, size.width,
                                                     inside.roi, kernel, inside.kernel, inside.anchor));
    });
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
    PixelBlock copy;
    const unsigned char* source = filters::sourceApart(src, dst, static_cast<size_t>(step * size.height), copy);
    if (!source) return false;

    if (radius > kLargestDirectRadius || !filters::sumsAsOpenCVDoes())
        return filterChannelByChannel(source, dst, size, kernels, *inside) == noErr;
    filters::copyRing(source, dst, size, radius);
    filters::convolve8u(source, step, dst + radius * (step + 3), step, {3 * inside->roi.width, inside->roi.height},
                        tapsOf(kernels, *inside));
    return true;
}
