// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Bit packing, with and without checks.
#include <cstdint>

#include "OPCV_dlib.h"
#include "core/region.h"
#include "pixel/bit_packing_kernels.h"

namespace opcv {
namespace {

bool isBitOffset(int offset) { return offset >= 0 && offset <= 7; }

bool bitsFit(int offset, int width, int step) { return int64_t{offset} + width <= 8 * int64_t{step}; }

}    // namespace
}    // namespace opcv

using namespace opcv;

void Convert_1u8u_C1R(const unsigned char* src, int srcStep, int bitOffset, unsigned char* dst, int dstStep, int width,
                      int height) {
    expandBits(src, srcStep, bitOffset, dst, dstStep, width, height);
}

void Convert_8u1u_C1R(const unsigned char* src, int srcStep, unsigned char* dst, int dstStep, int bitOffset, int width,
                      int height, unsigned char threshold) {
    packBits(src, srcStep, dst, dstStep, bitOffset, width, height, threshold);
}

IppStatus IPPShare_ippiConvert_1u8u_C1R(const unsigned char* pSrc, int srcStep, int srcBitOffset, unsigned char* pDst,
                                        int dstStep, IppiSize roiSize) {
    if (!pSrc || !pDst || !isBitOffset(srcBitOffset) || isEmpty(roiSize)) return ippStsBadArgErr;
    if (!bitsFit(srcBitOffset, roiSize.width, srcStep) || roiSize.width > dstStep) return ippStsBadArgErr;
    Convert_1u8u_C1R(pSrc, srcStep, srcBitOffset, pDst, dstStep, roiSize.width, roiSize.height);
    return ippStsNoErr;
}

IppStatus IPPShare_ippiReduceBits_8u1u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst, int dstStep,
                                           int dstBitOffset, IppiSize roiSize, int /*noise*/, int /*seed*/,
                                           int /*ditherType*/, unsigned char threshold) {
    if (!pSrc || !pDst || !isBitOffset(dstBitOffset) || isEmpty(roiSize)) return ippStsBadArgErr;
    if (roiSize.width > srcStep || !bitsFit(dstBitOffset, roiSize.width, dstStep)) return ippStsBadArgErr;
    Convert_8u1u_C1R(pSrc, srcStep, pDst, dstStep, dstBitOffset, roiSize.width, roiSize.height, threshold);
    return ippStsNoErr;
}
