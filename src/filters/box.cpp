// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Box filter in place: each pixel becomes the mean of the pixels under the mask.
#include <opencv2/imgproc.hpp>

#include "core/Tools.h"
#include "core/region.h"
#include "core/result_matrix.h"
#include "filters/box_kernels.h"

namespace {

// Each row is read completely before it is overwritten, from the top down. This does not work for a mask that ends
// above or to the left of its pixel, nor for a step that is not a multiple of the pixel size.
bool canFilterInPlace(int step, const IppiSize& mask, const IppiPoint& anchor) {
    return anchor.x < mask.width && anchor.y < mask.height && step % 3 == 0;
}

OSErr filterBox(unsigned char* srcDst, int step, const IppiSize& roi, const IppiSize& mask, const IppiPoint& anchor) {
    if (mask.width < 1 || mask.height < 1 || !srcDst) return paramErr;

    // Unlike in a convolution, the view begins at minus the anchor.
    const IppiSize half = opcv::halfOf(mask);
    cv::Mat view;
    if (const OSErr err = opcv::Region(srcDst, step, CV_8UC3, roi).underMask(mask, anchor).view(view)) return err;
    cv::Mat region;
    if (const OSErr err = opcv::viewOf(srcDst, step, CV_8UC3, roi, region)) return err;

    constexpr int kWidestDirect = 16;    // OpenCV's running sums do not grow with the width
    const std::optional<filters::MeanRule> rule = filters::meanRuleOf(int64_t{mask.width} * mask.height);
    if (mask.width <= kWidestDirect && canFilterInPlace(step, mask, anchor) && rule)
        return filters::filterBox24({view.data, srcDst, step, 3 * roi.width, roi.height}, mask, *rule) ? noErr
                                                                                                       : memFullErr;

    // BORDER_ISOLATED: OpenCV must not read the pixels around the view, which do not affect the region.
    opcv::ResultMatrix filtered;
    const cv::Point centre(-1, -1);
    const bool mean = true;
    cv::boxFilter(view, filtered, -1, cv::Size(mask.width, mask.height), centre, mean,
                  cv::BORDER_REFLECT_101 | cv::BORDER_ISOLATED);
    if (!filtered.data) return memFullErr;
    return Tools::CopyImageMatData(filtered, cv::Point(half.width, half.height), srcDst, step, cv::Point(0, 0),
                                   cv::Size(roi.width, roi.height));
}

}    // namespace

IppStatus IPPMini_ippiFilterBox_8u_C3IR(unsigned char* srcDst, int srcDstStep, IppiSize roi, IppiSize maskSize,
                                        IppiPoint anchor) {
    return Tools::OSErrToIppStatus(filterBox(srcDst, srcDstStep, roi, maskSize, anchor));
}
