// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Bilateral filter of one 8-bit channel. The library's kernels filter 3x3 and 5x5 pixels, from a copy of the
// source if the destination overlaps it. OpenCV filters other sizes.
#include <cmath>
#include <opencv2/imgproc.hpp>

#include "core/Tools.h"
#include "core/region.h"
#include "core/result_matrix.h"
#include "core/row_bands.h"
#include "filters/bilateral_kernels.h"
#include "filters/source_apart.h"

namespace {

OSErr filterBilateral(const unsigned char* src, int srcStep, unsigned char* dst, int dstStep, const IppiSize& roi,
                      const IppiSize& kernel, float colorSquareSigma, float spaceSquareSigma) {
    if (!src) return paramErr;
    if (kernel.width != kernel.height || kernel.width < 1 || kernel.width % 2 == 0) return paramErr;

    const IppiSize half = opcv::halfOf(kernel);
    cv::Mat view;
    if (const OSErr err = opcv::Region(src, srcStep, CV_8UC1, roi).withMargin(half).view(view)) return err;

    cv::Mat region;
    if (const OSErr err = opcv::viewOf(dst, dstStep, CV_8UC1, roi, region)) return err;

    const double sigmaColor = std::sqrt(double{colorSquareSigma});
    const double sigmaSpace = std::sqrt(double{spaceSquareSigma});
    if (kernel.width == 3 || kernel.width == 5) {
        const filters::SourceApart apart(view, region);
        if (!apart.rows()) return memFullErr;
        filters::filterBilateral({apart.rows() + half.width * (apart.step() + 1), apart.step(), region.data,
                                  static_cast<ptrdiff_t>(region.step), roi.width, roi.height, 1, half.width},
                                 filters::BilateralWeights(sigmaColor, sigmaSpace));
        return noErr;
    }

    // BORDER_ISOLATED: OpenCV must not read the pixels around the view, which do not affect the region. A side of 1 is
    // the exception: it filters over 3x3 pixels, with the result of the plain border mode.
    const int border = kernel.width == 1 ? cv::BORDER_REFLECT_101 : cv::BORDER_REFLECT_101 | cv::BORDER_ISOLATED;
    opcv::ResultMatrix filtered;
    opcv::withOpenCVThreads([&] { cv::bilateralFilter(view, filtered, kernel.width, sigmaColor, sigmaSpace, border); });
    if (!filtered.data) return memFullErr;
    return Tools::CopyImageMatData(filtered, cv::Point(half.width, half.height), dst, dstStep, cv::Point(0, 0),
                                   cv::Size(roi.width, roi.height));
}

}    // namespace

IppStatus OPCV_ippiFilterBilateral_8u_C1R(const unsigned char* src, int srcStep, unsigned char* dst, int dstStep,
                                          IppiSize roi, IppiSize kernelSize, float colorSquareSigma,
                                          float spaceSquareSigma) {
    return Tools::OSErrToIppStatus(
        filterBilateral(src, srcStep, dst, dstStep, roi, kernelSize, colorSquareSigma, spaceSquareSigma));
}
