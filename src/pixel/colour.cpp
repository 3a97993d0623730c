// Conversion between RGB and YUV, packed and planar.
#include <algorithm>
#include <cstdint>
#include <memory>
#include <opencv2/core.hpp>

#include "OPCV_dlib.h"
#include "core/pixel_memory.h"
#include "core/region.h"
#include "core/row_bands.h"
#include "pixel/views.h"

namespace opcv {
namespace {

template <class From, class To>
using Conversion = void (*)(const From&, const To&, int width, int height);

template <class From, class To>
void runInBands(Conversion<From, To> convert, const From& from, const To& to, IppiSize roi) {
    forEachBand(roi.height, double{1} * roi.width * roi.height, [&](int firstRow, int endRow) {
        convert(from.below(firstRow), to.below(firstRow), roi.width, endRow - firstRow);
    });
}

OSErr convertPacked(Conversion<PackedImage, PackedImage> convert, const unsigned char* pSrc, int srcStep,
                    unsigned char* pDst, int dstStep, IppiSize roi) {
    PackedImage from{};
    if (const OSErr err = viewPacked(pSrc, srcStep, roi, from)) return err;
    PackedImage to{};
    if (const OSErr err = viewPacked(pDst, dstStep, roi, to)) return err;
    runInBands(convert, from, to, roi);
    return noErr;
}

// By contract, a planar conversion has two steps with a packed image between them. One pass does both without that
// image, but the conversion still reports out of memory if the image would be too large.
bool packedImageFits(IppiSize roi) { return !isEmpty(roi) && planeFits(roi.width, roi.height, 3); }

// The steps return an IppStatus, which is translated as if it were an OSErr: every failure in them is reported as a bad
// argument. Callers rely on it.
IppStatus statusOfSteps(IppStatus status) { return Tools::OSErrToIppStatus(static_cast<OSErr>(status)); }

bool shareBytes(const PackedImage& packed, const PlanarImage& planes, IppiSize roi) {
    const ByteSpan bytes(packed.pixels, packed.step, 3 * ptrdiff_t{roi.width}, roi.height);
    return std::any_of(planes.planes.begin(), planes.planes.end(), [&](const uint8_t* plane) {
        return overlap(bytes, ByteSpan(plane, planes.step, roi.width, roi.height));
    });
}

struct PackedDeleter {
    void operator()(unsigned char* p) const { IPPMini_ippiFree(p); }
};

// The packed image between the two steps, for a destination that overlaps the source.
struct Between {
    explicit Between(IppiSize roi) { pixels.reset(IPPMini_ippiMalloc_8u_C3(roi.width, roi.height, &step)); }

    int step = 0;
    std::unique_ptr<unsigned char, PackedDeleter> pixels;
};

}    // namespace
}    // namespace opcv

using namespace opcv;

IppStatus IPPShare_ippiRGBToYUV_8u_C3R(const unsigned char* pSrc, int srcStep, unsigned char* pDst, int dstStep,
                                       IppiSize roiSize) {
    return Tools::OSErrToIppStatus(convertPacked(convertRgbToYuv, pSrc, srcStep, pDst, dstStep, roiSize));
}

IppStatus IPPShare_ippiYUVToRGB_8u_C3R(const unsigned char* pSrc, int srcStep, unsigned char* pDst, int dstStep,
                                       IppiSize roiSize) {
    return Tools::OSErrToIppStatus(convertPacked(convertYuvToRgb, pSrc, srcStep, pDst, dstStep, roiSize));
}

IppStatus IPPMini_ippiRGBToYUV_8u_C3P3R(const unsigned char* pSrc, int srcStep, unsigned char* const pDst[3],
                                        int dstStep, IppiSize roiSize) {
    if (!packedImageFits(roiSize)) return ippStsNoMemErr;
    PackedImage rgb{};
    PlanarImage yuv{};
    if (viewPacked(pSrc, srcStep, roiSize, rgb) || viewPlanes(pDst, dstStep, roiSize, yuv)) return ippStsBadArgErr;
    if (!shareBytes(rgb, yuv, roiSize)) {
        runInBands<PackedImage, PlanarImage>(convertRgbToYuv, rgb, yuv, roiSize);
        return ippStsNoErr;
    }
    const Between packed(roiSize);
    if (!packed.pixels) return ippStsNoMemErr;
    IppStatus status = IPPShare_ippiRGBToYUV_8u_C3R(pSrc, srcStep, packed.pixels.get(), packed.step, roiSize);
    if (status == ippStsNoErr)
        status = IPPMini_ippiCopy_8u_C3P3R(packed.pixels.get(), packed.step, pDst, dstStep, roiSize);
    return statusOfSteps(status);
}

IppStatus IPPMini_ippiYUVToRGB_8u_P3C3R(const unsigned char* const pSrc[3], int srcStep, unsigned char* pDst,
                                        int dstStep, IppiSize roiSize) {
    if (!packedImageFits(roiSize)) return ippStsNoMemErr;
    PlanarImage yuv{};
    PackedImage rgb{};
    if (viewPlanes(pSrc, srcStep, roiSize, yuv) || viewPacked(pDst, dstStep, roiSize, rgb)) return ippStsBadArgErr;
    if (!shareBytes(rgb, yuv, roiSize)) {
        runInBands<PlanarImage, PackedImage>(convertYuvToRgb, yuv, rgb, roiSize);
        return ippStsNoErr;
    }
    const Between packed(roiSize);
    if (!packed.pixels) return ippStsNoMemErr;
    IppStatus status = IPPMini_ippiCopy_8u_P3C3R(pSrc, srcStep, packed.pixels.get(), packed.step, roiSize);
    if (status == ippStsNoErr)
        status = IPPShare_ippiYUVToRGB_8u_C3R(packed.pixels.get(), packed.step, pDst, dstStep, roiSize);
    return statusOfSteps(status);
}
