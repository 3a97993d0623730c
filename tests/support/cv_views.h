// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// OpenCV views of test images, for comparison with direct OpenCV calls.
#pragma once

#include <cstring>
#include <opencv2/core.hpp>

#include "support/guarded_image.h"

// The view never writes to a const image.
inline cv::Mat viewOf(const GuardedImage& image, int type) {
    return {image.size().height, image.size().width, type, const_cast<uint8_t*>(image.data()),
            static_cast<size_t>(image.step())};
}

// First row in which the region differs from a matrix of the same size, or -1.
inline int firstDifferentRow(const GuardedImage& image, const cv::Mat& expected) {
    for (int y = 0; y < expected.rows; ++y)
        if (std::memcmp(image.at(0, y), expected.ptr(y), static_cast<size_t>(image.rowBytes())) != 0) return y;
    return -1;
}
