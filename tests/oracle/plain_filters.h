// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The linear filters by plain OpenCV: a view of the source with its margin, the OpenCV call into a new matrix, a copy
// of the region. The library must write the same bytes.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "OPCV_dlib.h"

namespace oracle {

inline cv::Mat viewOfRegion(const uint8_t* src, int step, int type, int x, int y, int width, int height) {
    const auto pixel = static_cast<int>(CV_ELEM_SIZE(type));
    uint8_t* first = const_cast<uint8_t*>(src) + ptrdiff_t{y} * step + ptrdiff_t{x} * pixel;
    return cv::Mat(height, step / pixel, type, first)(cv::Rect(0, 0, width, height));
}

inline void copyRegion(const cv::Mat& result, int x, int y, uint8_t* dst, int step, IppiSize roi) {
    cv::Mat target = viewOfRegion(dst, step, result.type(), 0, 0, roi.width, roi.height);
    result(cv::Rect(x, y, roi.width, roi.height)).copyTo(target);
}

// A kernel turned by 180 degrees, after zeros that make its sides odd.
template <typename T>
cv::Mat turnedKernel(const T* kernel, IppiSize size, int depth) {
    cv::Mat turned = cv::Mat::zeros(size.height | 1, size.width | 1, depth);
    for (int j = 0; j < size.height; ++j)
        for (int i = 0; i < size.width; ++i)
            turned.at<T>(turned.rows - 1 - j, turned.cols - 1 - i) = kernel[j * size.width + i];
    return turned;
}

inline void plainFilter(const uint8_t* src, int srcStep, int type, uint8_t* dst, int dstStep, IppiSize roi,
                        const cv::Mat& turned, IppiPoint anchor) {
    const int halfWidth = turned.cols / 2;
    const int halfHeight = turned.rows / 2;
    const cv::Mat view = viewOfRegion(src, srcStep, type, anchor.x - 2 * halfWidth, anchor.y - 2 * halfHeight,
                                      roi.width + 2 * halfWidth, roi.height + 2 * halfHeight);
    cv::Mat result;
    cv::filter2D(view, result, -1, turned, cv::Point(-1, -1), 0, cv::BORDER_REFLECT_101);
    copyRegion(result, halfWidth, halfHeight, dst, dstStep, roi);
}

inline void plainFilter(const uint8_t* src, int srcStep, int type, uint8_t* dst, int dstStep, IppiSize roi,
                        const int* kernel, IppiSize size, IppiPoint anchor, int divisor) {
    cv::Mat weights;
    turnedKernel(kernel, size, CV_32S).convertTo(weights, CV_32F);
    weights.convertTo(weights, CV_32F, 1.0 / divisor);
    plainFilter(src, srcStep, type, dst, dstStep, roi, weights, anchor);
}

inline void plainFilter32f(const uint8_t* src, int srcStep, int type, uint8_t* dst, int dstStep, IppiSize roi,
                           const float* kernel, IppiSize size, IppiPoint anchor) {
    plainFilter(src, srcStep, type, dst, dstStep, roi, turnedKernel(kernel, size, CV_32F), anchor);
}

inline void plainBox(uint8_t* srcDst, int step, IppiSize roi, IppiSize mask, IppiPoint anchor) {
    const int halfWidth = mask.width / 2;
    const int halfHeight = mask.height / 2;
    const cv::Mat view = viewOfRegion(srcDst, step, CV_8UC3, -anchor.x, -anchor.y, roi.width + 2 * halfWidth,
                                      roi.height + 2 * halfHeight);
    cv::Mat result;
    cv::boxFilter(view, result, -1, cv::Size(mask.width, mask.height), cv::Point(-1, -1), true, cv::BORDER_REFLECT_101);
    copyRegion(result, halfWidth, halfHeight, srcDst, step, roi);
}

inline void plainBilateral(const uint8_t* src, int srcStep, uint8_t* dst, int dstStep, IppiSize roi, int side,
                           float colorSquareSigma, float spaceSquareSigma) {
    const int half = side / 2;
    const cv::Mat view = viewOfRegion(src, srcStep, CV_8UC1, -half, -half, roi.width + 2 * half, roi.height + 2 * half);
    cv::Mat result;
    cv::bilateralFilter(view, result, side, std::sqrt(double{colorSquareSigma}), std::sqrt(double{spaceSquareSigma}),
                        cv::BORDER_REFLECT_101);
    copyRegion(result, half, half, dst, dstStep, roi);
}

inline std::vector<cv::Mat> viewsOf(std::vector<uint8_t>& planes, IppiSize size) {
    const ptrdiff_t plane = ptrdiff_t{size.width} * size.height;
    const auto view = [&](ptrdiff_t k) { return cv::Mat(size.height, size.width, CV_8UC1, planes.data() + k * plane); };
    return {view(0), view(1), view(2)};
}

// Converts a packed 24-bit image to three planes, one after the other, and back.
inline std::vector<uint8_t> splitPlanes(const uint8_t* src, IppiSize size) {
    std::vector<uint8_t> planes(3 * static_cast<size_t>(size.width) * static_cast<size_t>(size.height));
    std::vector<cv::Mat> views = viewsOf(planes, size);
    cv::split(cv::Mat(size.height, size.width, CV_8UC3, const_cast<uint8_t*>(src)), views);
    return planes;
}

inline void mergePlanes(std::vector<uint8_t>& planes, uint8_t* dst, IppiSize size) {
    const std::vector<cv::Mat> views = viewsOf(planes, size);
    cv::Mat packed(size.height, size.width, CV_8UC3, dst);
    cv::merge(views, packed);
}

// Calls `filter(channel, from, to, roi)` for the inside of each plane of a packed image. The ring of `margin` pixels along
// the edges holds the source's pixels.
template <typename Filter>
void filterPlanes(const uint8_t* src, uint8_t* dst, IppiSize size, int margin, const Filter& filter) {
    const std::vector<uint8_t> from = splitPlanes(src, size);
    std::vector<uint8_t> to = from;
    const IppiSize roi = {size.width - 2 * margin, size.height - 2 * margin};
    for (int k = 0; k < 3; ++k) {
        const int first = k * size.width * size.height + margin * (size.width + 1);
        filter(k, from.data() + first, to.data() + first, roi);
    }
    mergePlanes(to, dst, size);
}

// Three kernels, in the reverse order of the channels.
inline void plainConvolution24(const uint8_t* src, uint8_t* dst, IppiSize size, int radius, const float* kernels) {
    const int side = 2 * radius + 1;
    filterPlanes(src, dst, size, radius, [&](int k, const uint8_t* from, uint8_t* to, IppiSize roi) {
        plainFilter32f(from, size.width, CV_8UC1, to, size.width, roi, kernels + (2 - k) * side * side, {side, side},
                       {radius, radius});
    });
}

inline void plainNoiseReduction24(const uint8_t* src, uint8_t* dst, IppiSize size, int side, float squareSigma) {
    filterPlanes(src, dst, size, side / 2, [&](int, const uint8_t* from, uint8_t* to, IppiSize roi) {
        plainBilateral(from, size.width, to, size.width, roi, side, squareSigma, squareSigma);
    });
}

}    // namespace oracle
