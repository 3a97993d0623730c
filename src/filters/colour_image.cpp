#include "filters/colour_image.h"

#include <cstdlib>
#include <cstring>
#include <opencv2/core.hpp>

#include "core/Tools.h"
#include "core/pixel_memory.h"
#include "core/region.h"

namespace filters {

bool isColourImage(IppiSize size) { return !opcv::isEmpty(size) && planeFits(size.width, size.height, 3); }

const unsigned char* sourceApart(const unsigned char* src, const unsigned char* dst, size_t bytes, PixelBlock& copy) {
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

OSErr filterChannels(const unsigned char* src, unsigned char* dst, IppiSize size,
                     const std::function<OSErr(int channel, const unsigned char* from, unsigned char* to)>& filter) {
    cv::Mat source;
    cv::Mat target;
    if (const OSErr err =
            Tools::CreateImageMat(const_cast<unsigned char*>(src), 3 * size.width, size.height, CV_8UC3, source))
        return err;
    if (const OSErr err = Tools::CreateImageMat(dst, 3 * size.width, size.height, CV_8UC3, target)) return err;

    // Merged after all channels are complete, so that a failure leaves the target unchanged.
    const size_t planeBytes = source.total();
    const PixelBlock from(static_cast<unsigned char*>(std::malloc(planeBytes)));
    const PixelBlock to(static_cast<unsigned char*>(std::malloc(3 * planeBytes)));
    if (!from || !to) return memFullErr;
    cv::Mat fromPlane(size.height, size.width, CV_8UC1, from.get());
    for (int channel = 0; channel < 3; ++channel) {
        unsigned char* plane = to.get() + static_cast<size_t>(channel) * planeBytes;
        cv::extractChannel(source, fromPlane, channel);
        std::memcpy(plane, from.get(), planeBytes);
        if (const OSErr err = filter(channel, from.get(), plane)) return err;
    }
    for (int channel = 0; channel < 3; ++channel) {
        unsigned char* plane = to.get() + static_cast<size_t>(channel) * planeBytes;
        cv::insertChannel(cv::Mat(size.height, size.width, CV_8UC1, plane), target, channel);
    }
    return noErr;
}

}    // namespace filters
