// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Convolution by its definition, bit for bit: float sums over the turned kernel's cells in raster order, each product added
// fused, rounded to the nearest integer (halves to even), saturated; NaN becomes the type's least value.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <opencv2/core.hpp>

#include "OPCV_dlib.h"
#include "oracle/plain_filters.h"

namespace oracle {

template <typename T>
T saturated(float sum) {
    using Limits = std::numeric_limits<T>;
    if (std::isnan(sum)) return Limits::min();
    return static_cast<T>(std::clamp(std::nearbyint(sum), float{Limits::min()}, float{Limits::max()}));
}

// One region of T; `at(element, row)` reads the source, counted in elements and rows from the region's first.
template <typename T>
void convolveElements(const uint8_t* src, ptrdiff_t srcStep, int channels, uint8_t* dst, ptrdiff_t dstStep,
                      IppiSize roi, const cv::Mat& turned, IppiPoint anchor) {
    const int left = anchor.x - turned.cols / 2 * 2;
    const int top = anchor.y - turned.rows / 2 * 2;
    for (int y = 0; y < roi.height; ++y)
        for (int x = 0; x < roi.width * channels; ++x) {
            float sum = 0;
            for (int j = 0; j < turned.rows; ++j)
                for (int i = 0; i < turned.cols; ++i) {
                    const auto weight = turned.at<float>(j, i);
                    if (weight == 0) continue;
                    const ptrdiff_t element = x + ptrdiff_t{left + i} * channels;
                    T value = 0;
                    std::memcpy(&value, src + (y + top + j) * srcStep + element * static_cast<ptrdiff_t>(sizeof(T)),
                                sizeof(T));
                    sum = std::fma(static_cast<float>(value), weight, sum);
                }
            const T result = saturated<T>(sum);
            std::memcpy(dst + y * dstStep + x * static_cast<ptrdiff_t>(sizeof(T)), &result, sizeof(T));
        }
}

// A step that is no multiple of the pixel size counts without its remainder.
inline void convolve(const uint8_t* src, int srcStep, int type, uint8_t* dst, int dstStep, IppiSize roi,
                     const cv::Mat& turned, IppiPoint anchor) {
    const auto pixel = static_cast<int>(CV_ELEM_SIZE(type));
    const int from = srcStep / pixel * pixel;
    const int to = dstStep / pixel * pixel;
    // The view's first pixel is found with the whole step, the rows below it with the shortened one.
    const int top = anchor.y - turned.rows / 2 * 2;
    const uint8_t* first = src + ptrdiff_t{top} * (srcStep - from);
    const int channels = CV_MAT_CN(type);
    switch (CV_MAT_DEPTH(type)) {
        case CV_8U: return convolveElements<uint8_t>(first, from, channels, dst, to, roi, turned, anchor);
        case CV_16U: return convolveElements<uint16_t>(first, from, channels, dst, to, roi, turned, anchor);
        case CV_16S: return convolveElements<int16_t>(first, from, channels, dst, to, roi, turned, anchor);
        default: CV_Error(cv::Error::StsUnsupportedFormat, "an integer type is needed");
    }
}

inline void convolve(const uint8_t* src, int srcStep, int type, uint8_t* dst, int dstStep, IppiSize roi,
                     const int* kernel, IppiSize size, IppiPoint anchor, int divisor) {
    cv::Mat turned = turnedKernel(kernel, size, CV_32S);
    cv::Mat weights(turned.size(), CV_32F);
    const auto scale = static_cast<float>(1.0 / divisor);
    for (int j = 0; j < turned.rows; ++j)
        for (int i = 0; i < turned.cols; ++i)
            weights.at<float>(j, i) = static_cast<float>(turned.at<int>(j, i)) * scale;
    convolve(src, srcStep, type, dst, dstStep, roi, weights, anchor);
}

inline void convolve32f(const uint8_t* src, int srcStep, int type, uint8_t* dst, int dstStep, IppiSize roi,
                        const float* kernel, IppiSize size, IppiPoint anchor) {
    convolve(src, srcStep, type, dst, dstStep, roi, turnedKernel(kernel, size, CV_32F), anchor);
}

// Three kernels, in the reverse order of the channels. The ring along the edges holds the source's pixels.
inline void convolve24(const uint8_t* src, uint8_t* dst, IppiSize size, int radius, const float* kernels) {
    const int side = 2 * radius + 1;
    filterPlanes(src, dst, size, radius, [&](int k, const uint8_t* from, uint8_t* to, IppiSize roi) {
        convolve32f(from, size.width, CV_8UC1, to, size.width, roi, kernels + (2 - k) * side * side, {side, side},
                    {radius, radius});
    });
}

}    // namespace oracle
