// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Copies between packed images and planes.
#include "OPCV_dlib.h"
#include "pixel/views.h"

namespace opcv {
namespace {

OSErr toPlanes(const unsigned char* pSrc, int srcStep, unsigned char* const pDst[3], int dstStep, IppiSize roi) {
    PackedImage packed{};
    if (const OSErr err = viewPacked(pSrc, srcStep, roi, packed)) return err;
    PlanarImage planes{};
    if (const OSErr err = viewPlanes(pDst, dstStep, roi, planes)) return err;
    splitChannels(packed, planes, roi.width, roi.height);
    return noErr;
}

OSErr toPacked(const unsigned char* const pSrc[3], int srcStep, unsigned char* pDst, int dstStep, IppiSize roi) {
    PlanarImage planes{};
    if (const OSErr err = viewPlanes(pSrc, srcStep, roi, planes)) return err;
    PackedImage packed{};
    if (const OSErr err = viewPacked(pDst, dstStep, roi, packed)) return err;
    mergeChannels(planes, packed, roi.width, roi.height);
    return noErr;
}

}    // namespace
}    // namespace opcv

using namespace opcv;

IppStatus IPPMini_ippiCopy_8u_C3P3R(const unsigned char* pSrc, int srcStep, unsigned char* const pDst[3], int dstStep,
                                    IppiSize roiSize) {
    return Tools::OSErrToIppStatus(toPlanes(pSrc, srcStep, pDst, dstStep, roiSize));
}

IppStatus IPPMini_ippiCopy_8u_P3C3R(const unsigned char* const pSrc[3], int srcStep, unsigned char* pDst, int dstStep,
                                    IppiSize roiSize) {
    return Tools::OSErrToIppStatus(toPacked(pSrc, srcStep, pDst, dstStep, roiSize));
}
