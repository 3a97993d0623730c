// Convolution of a whole packed 24-bit image with a square float kernel, one for all channels or one for each. The ring
// along the edges, where the kernel would leave the image, is left out.
#include <cstddef>
#include <cstdint>

#include "core/Tools.h"
#include "filters/colour_image.h"
#include "filters/views.h"

namespace {

// The part of an image on which a kernel of a radius stays inside it.
struct Inside {
    IppiSize roi;
    IppiSize kernel;
    IppiPoint anchor;

    size_t cells() const { return static_cast<size_t>(kernel.width) * static_cast<size_t>(kernel.height); }
};

// False if there is no such part.
bool findInside(IppiSize size, int radius, Inside& inside) {
    const int64_t side = 2 * int64_t{radius};
    if (radius < 0 || size.width <= side || size.height <= side) return false;
    inside.roi = {size.width - 2 * radius, size.height - 2 * radius};
    inside.kernel = {2 * radius + 1, 2 * radius + 1};
    inside.anchor = {radius, radius};
    return true;
}

}    // namespace

void Convolution24MonoFilter(const unsigned char* src, unsigned char* dst, IppiSize size, int radius,
                             const float* kernel) {
    Inside inside{};
    if (!src || !dst || !findInside(size, radius, inside)) return;
    const int64_t step = 3 * int64_t{size.width};
    if (step > INT32_MAX) return;
    const ptrdiff_t offset = radius * (step + 3);
    IPPMini_ippiFilter32f_8u_C3R(src + offset, static_cast<int>(step), dst + offset, static_cast<int>(step), inside.roi,
                                 kernel, inside.kernel, inside.anchor);
}

bool Convolution24(const unsigned char* src, unsigned char* dst, IppiSize size, int radius, const float* kernels) {
    Inside inside{};
    if (!src || !dst || !kernels || !filters::isColourImage(size) || !findInside(size, radius, inside)) return false;

    PixelBlock copy;
    const unsigned char* source =
        filters::sourceApart(src, dst, 3 * static_cast<size_t>(size.width) * static_cast<size_t>(size.height), copy);
    if (!source) return false;

    // The kernels come in the reverse order of the channels.
    const ptrdiff_t offset = radius * (ptrdiff_t{size.width} + 1);
    return filters::filterChannels(source, dst, size, [&](int channel, const unsigned char* from, unsigned char* to) {
               const float* kernel = kernels + static_cast<size_t>(2 - channel) * inside.cells();
               return Tools::IppStatusToOSErr(ippiFilter32f(from + offset, size.width, CV_8UC1, to + offset, size.width,
                                                            inside.roi, kernel, inside.kernel, inside.anchor));
           }) == noErr;
}
