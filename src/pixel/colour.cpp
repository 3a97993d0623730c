// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Conversion between RGB and YUV, packed and planar.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <opencv2/core.hpp>

#include "OPCV_dlib.h"
#include "core/ownership.h"
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

bool shareBytes(const PackedImage& packed, const PlanarImage& planes, IppiSize roi) {
    const ByteSpan bytes(packed.pixels, packed.step, 3 * ptrdiff_t{roi.width}, roi.height);
    return std::any_of(planes.planes.begin(), planes.planes.end(), [&](const uint8_t* plane) {
        return overlap(bytes, ByteSpan(plane, planes.step, roi.width, roi.height));
    });
}

// The packed image between the two steps, for a destination that overlaps the source.
struct Between {
    explicit Between(IppiSize roi)
        : step(static_cast<ptrdiff_t>(planeStep(roi.width, 3))),
          block(static_cast<unsigned char*>(allocatePixels(static_cast<size_t>(step * roi.height)))) {}
    PackedImage image() const { return {block.get(), step}; }

    ptrdiff_t step;
    PixelBlock block;
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
    if (!packed.block) return ippStsNoMemErr;
    runInBands<PackedImage, PackedImage>(convertRgbToYuv, rgb, packed.image(), roiSize);
    splitChannels(packed.image(), yuv, roiSize.width, roiSize.height);
    return ippStsNoErr;
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
    if (!packed.block) return ippStsNoMemErr;
    mergeChannels(yuv, packed.image(), roiSize.width, roiSize.height);
    runInBands<PackedImage, PackedImage>(convertYuvToRgb, packed.image(), rgb, roiSize);
    return ippStsNoErr;
}
