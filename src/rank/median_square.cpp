// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Square medians of any odd size: small masks by the library's kernels, others by OpenCV.
#include "rank/median_square.h"

#include <opencv2/imgproc.hpp>

#include "OPCV_dlib.h"
#include "core/Tools.h"
#include "core/region.h"
#include "core/result_matrix.h"
#include "rank/median_counting.h"

namespace opcv {
namespace {

bool isOddSquare(const IppiSize& mask) { return mask.width > 0 && mask.width % 2 == 1 && mask.height == mask.width; }

// Null if there is no kernel.
decltype(&squareMedian) kernelOf(int type, int m) {
    if (type != CV_8UC1 && type != CV_8UC3) return nullptr;
    return hasSquareMedian(m) ? squareMedian : hasCountingMedian(m) ? countingMedian : nullptr;
}

OSErr filterMedian(const void* pSrc, int srcStep, int type, void* pDst, int dstStep, const IppiSize& roi,
                   const IppiSize& mask, const IppiPoint& anchor) {
    if (!pSrc || !isOddSquare(mask)) return paramErr;
    const int m = mask.width;
    cv::Mat source;
    if (const OSErr err = Region(pSrc, srcStep, type, roi).underMask(mask, anchor).view(source)) return err;

    if (const auto kernel = kernelOf(type, m)) {
        cv::Mat target;
        if (const OSErr err = viewOf(pDst, dstStep, type, roi, target)) return err;
        if (!overlap(source, target)) {
            const int channels = target.channels();
            kernel(source.data, static_cast<ptrdiff_t>(source.step), target.data, static_cast<ptrdiff_t>(target.step),
                   ptrdiff_t{roi.width} * channels, roi.height, m, channels);
            return noErr;
        }
    }

    ResultMatrix filtered;
    cv::medianBlur(source, filtered, m);
    if (!filtered.data) return memFullErr;
    return Tools::CopyImageMatData(filtered, cv::Point(m / 2, m / 2), pDst, dstStep, cv::Point(0, 0),
                                   cv::Size(roi.width, roi.height));
}

}    // namespace
}    // namespace opcv

using namespace opcv;

IppStatus ippiFilterMedian(const void* pSrc, int srcStep, int type, void* pDst, int dstStep, const IppiSize& roiSize,
                           const IppiSize& maskSize, const IppiPoint& anchor) {
    return Tools::OSErrToIppStatus(filterMedian(pSrc, srcStep, type, pDst, dstStep, roiSize, maskSize, anchor));
}

IppStatus IPPShare_ippiFilterMedian_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst, int dstStep,
                                           IppiSize dstRoiSize, IppiSize maskSize, IppiPoint anchor) {
    return ippiFilterMedian(pSrc, srcStep, CV_8UC1, pDst, dstStep, dstRoiSize, maskSize, anchor);
}

IppStatus IPPShare_ippiFilterMedian_8u_C3R(const unsigned char* pSrc, int srcStep, unsigned char* pDst, int dstStep,
                                           IppiSize dstRoiSize, IppiSize maskSize, IppiPoint anchor) {
    return ippiFilterMedian(pSrc, srcStep, CV_8UC3, pDst, dstStep, dstRoiSize, maskSize, anchor);
}

IppStatus IPPMini_ippiFilterMedian_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst, int dstStep,
                                          IppiSize dstRoiSize, IppiSize maskSize, IppiPoint anchor) {
    return IPPShare_ippiFilterMedian_8u_C1R(pSrc, srcStep, pDst, dstStep, dstRoiSize, maskSize, anchor);
}
