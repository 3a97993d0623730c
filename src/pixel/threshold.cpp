// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Thresholds and the fill.
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "OPCV_dlib.h"
#include "core/region.h"
#include "pixel/threshold_kernels.h"

namespace opcv {
namespace {

// Deliberately compared as unsigned: a negative step counts as very long, so that the rows of 16-bit images may go
// upwards.
bool fits16Bit(int width, int step) {
    return static_cast<uint64_t>(2 * int64_t{width}) <= static_cast<uint64_t>(int64_t{step});
}

}    // namespace
}    // namespace opcv

using namespace opcv;

void Threshold_LTVal_8u_C1IR(unsigned char* p, int step, int width, int height, unsigned char threshold,
                             unsigned char value) {
    thresholdBytes(p, step, width, height, threshold, value);
}

void Threshold_LTVal_16s_C1IR(short* p, int step, int width, int height, short threshold, short value) {
    thresholdSamples(p, step, width, height, threshold, value);
}

IppStatus IPPShare_ippiThreshold_LTVal_8u_C1IR(unsigned char* pSrcDst, int srcDstStep, IppiSize roiSize,
                                               unsigned char threshold, unsigned char value) {
    if (!pSrcDst || roiSize.width > srcDstStep || isEmpty(roiSize)) return ippStsBadArgErr;
    Threshold_LTVal_8u_C1IR(pSrcDst, srcDstStep, roiSize.width, roiSize.height, threshold, value);
    return ippStsNoErr;
}

IppStatus IPPShare_ippiThreshold_LTVal_16s_C1IR(short* pSrcDst, int srcDstStep, IppiSize roiSize, short threshold,
                                                short value) {
    if (!pSrcDst || isEmpty(roiSize) || !fits16Bit(roiSize.width, srcDstStep)) return ippStsBadArgErr;
    Threshold_LTVal_16s_C1IR(pSrcDst, srcDstStep, roiSize.width, roiSize.height, threshold, value);
    return ippStsNoErr;
}

IppStatus IPPShare_ippiSet_8u_C1R(unsigned char value, unsigned char* pDst, int dstStep, IppiSize roiSize) {
    if (!pDst || roiSize.width > dstStep || isEmpty(roiSize)) return ippStsBadArgErr;
    for (int y = 0; y < roiSize.height; ++y, pDst += dstStep)
        std::memset(pDst, value, static_cast<size_t>(roiSize.width));
    return ippStsNoErr;
}
