// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Conversion between 8-bit and 16-bit signed pixels.
#include "OPCV_dlib.h"
#include "core/Tools.h"
#include "core/region.h"

namespace opcv {
namespace {

OSErr convertDepth(const void* pSrc, int srcStep, int srcType, void* pDst, int dstStep, int dstType, IppiSize roi) {
    cv::Mat from;
    if (const OSErr err = viewOf(pSrc, srcStep, srcType, roi, from)) return err;
    cv::Mat to;
    if (const OSErr err = viewOf(pDst, dstStep, dstType, roi, to)) return err;
    from.convertTo(to, dstType);
    return noErr;
}

}    // namespace
}    // namespace opcv

using namespace opcv;

IppStatus IPPShare_ippiConvert_8u16s_C1R(const unsigned char* pSrc, int srcStep, short* pDst, int dstStep,
                                         IppiSize roiSize) {
    return Tools::OSErrToIppStatus(convertDepth(pSrc, srcStep, CV_8UC1, pDst, dstStep, CV_16SC1, roiSize));
}

IppStatus IPPShare_ippiConvert_16s8u_C1R(const short* pSrc, int srcStep, unsigned char* pDst, int dstStep,
                                         IppiSize roiSize) {
    return Tools::OSErrToIppStatus(convertDepth(pSrc, srcStep, CV_16SC1, pDst, dstStep, CV_8UC1, roiSize));
}
