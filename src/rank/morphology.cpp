// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Dilation, erosion, maximum and minimum: small masks by the library's kernels, others by OpenCV.
#include "rank/morphology.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <opencv2/imgproc.hpp>

#include "OPCV_dlib.h"
#include "core/Tools.h"
#include "core/region.h"
#include "core/result_matrix.h"

namespace opcv {
namespace {

struct Source {
    const unsigned char* pixels;
    int step;
};

struct Target {
    unsigned char* pixels;
    int step;
    IppiSize size;
};

// Filters with a kernel if there is one; returns whether it did.
bool filterDirectly(const WindowRows& rows, const cv::Mat& mask, Extremum extremum) {
    constexpr int kFewCells = 4;    // each one takes less time than the intermediate rows of a rectangle
    const int area = mask.rows * mask.cols;
    if (area > kFewCells && std::max(mask.rows, mask.cols) <= kLargestRectangleSide && cv::countNonZero(mask) == area) {
        filterUnderRectangle(rows, {mask.cols, mask.rows}, extremum);
        return true;
    }
    std::array<ptrdiff_t, kMostMaskCells> cells;
    int count = 0;
    for (int j = 0; j < mask.rows; ++j)
        for (int i = 0; i < mask.cols; ++i) {
            if (mask.at<unsigned char>(j, i) == 0) continue;
            if (count == kMostMaskCells) return false;
            cells[static_cast<size_t>(count++)] = j * rows.srcStep + i;
        }
    if (count == 0) return false;
    filterUnderCells(rows, cells.data(), count, extremum);
    return true;
}

// The view's header extends beyond the view; with BORDER_ISOLATED, OpenCV does not read there. Its neutral border does
// not reach the interior.
void filterByOpenCV(const cv::Mat& source, const cv::Mat& mask, Extremum extremum, cv::Mat& filtered) {
    const auto morph = extremum == Extremum::kMax ? cv::dilate : cv::erode;
    morph(source, filtered, mask, cv::Point(-1, -1), 1, cv::BORDER_CONSTANT | cv::BORDER_ISOLATED,
          cv::morphologyDefaultBorderValue());
}

OSErr filter(const Source& src, const Target& dst, const cv::Mat& mask, IppiPoint anchor, Extremum extremum) {
    cv::Mat source;
    const Region region(src.pixels, src.step, CV_8UC1, dst.size);
    if (const OSErr err = region.underMask({mask.cols, mask.rows}, anchor).view(source)) return err;
    cv::Mat target;
    if (const OSErr err = viewOf(dst.pixels, dst.step, CV_8UC1, dst.size, target)) return err;
    const WindowRows rows = {source.data,    static_cast<ptrdiff_t>(source.step),
                             target.data,    static_cast<ptrdiff_t>(target.step),
                             dst.size.width, dst.size.height};
    // The view of an even mask has a column and a row that no window reaches.
    const ByteSpan windows(rows.src, rows.srcStep, rows.width + mask.cols - 1, rows.height + mask.rows - 1);
    if (!overlap(windows, ByteSpan(target)) && filterDirectly(rows, mask, extremum)) return noErr;

    ResultMatrix filtered;
    filterByOpenCV(source, mask, extremum, filtered);
    if (!filtered.data) return memFullErr;
    return Tools::CopyImageMatData(filtered, cv::Point(mask.cols / 2, mask.rows / 2), dst.pixels, dst.step,
                                   cv::Point(0, 0), target.size());
}

OSErr filterUnderMask(const Source& src, const Target& dst, const unsigned char* pMask, IppiSize maskSize,
                      IppiPoint anchor, Extremum extremum) {
    if (!src.pixels) return paramErr;
    cv::Mat mask;
    if (const OSErr err = Tools::CreateKernelMat(const_cast<unsigned char*>(pMask), maskSize, CV_8UC1, mask))
        return err;
    return filter(src, dst, mask, anchor, extremum);
}

OSErr filterUnderRectangle(const Source& src, const Target& dst, IppiSize maskSize, IppiPoint anchor,
                           Extremum extremum) {
    if (maskSize.height < 1 || maskSize.width < 1 || !src.pixels) return paramErr;
    ResultMatrix mask;
    mask.create(maskSize.height, maskSize.width, CV_8UC1);
    mask.setTo(1);
    return filter(src, dst, mask, anchor, extremum);
}

}    // namespace
}    // namespace opcv

using namespace opcv;

IppStatus IPPShare_ippiDilate_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst, int dstStep,
                                     IppiSize dstRoiSize, const unsigned char* pMask, IppiSize maskSize,
                                     IppiPoint anchor) {
    return Tools::OSErrToIppStatus(
        filterUnderMask({pSrc, srcStep}, {pDst, dstStep, dstRoiSize}, pMask, maskSize, anchor, Extremum::kMax));
}

IppStatus IPPShare_ippiErode_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst, int dstStep,
                                    IppiSize dstRoiSize, const unsigned char* pMask, IppiSize maskSize,
                                    IppiPoint anchor) {
    return Tools::OSErrToIppStatus(
        filterUnderMask({pSrc, srcStep}, {pDst, dstStep, dstRoiSize}, pMask, maskSize, anchor, Extremum::kMin));
}

IppStatus IPPMini_ippiFilterMax_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst, int dstStep,
                                       IppiSize dstRoiSize, IppiSize maskSize, IppiPoint anchor) {
    return Tools::OSErrToIppStatus(
        filterUnderRectangle({pSrc, srcStep}, {pDst, dstStep, dstRoiSize}, maskSize, anchor, Extremum::kMax));
}

IppStatus IPPMini_ippiFilterMin_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst, int dstStep,
                                       IppiSize dstRoiSize, IppiSize maskSize, IppiPoint anchor) {
    return Tools::OSErrToIppStatus(
        filterUnderRectangle({pSrc, srcStep}, {pDst, dstStep, dstRoiSize}, maskSize, anchor, Extremum::kMin));
}
