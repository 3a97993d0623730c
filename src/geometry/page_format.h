// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Properties of a page depth.
#pragma once

#include <opencv2/core.hpp>
#include <optional>

namespace opcv {

struct PageFormat {
    int type = 0;        // OpenCV type code
    cv::Scalar white;    // value of uncovered pixels with white fill
};

// Nothing for a depth that the page routines reject.
inline std::optional<PageFormat> pageFormatOf(int depth) {
    switch (depth) {
        // Grey pages stay black with white fill: callers rely on it.
        case 8: return PageFormat{CV_8UC1, cv::Scalar::all(0)};
        case 24: return PageFormat{CV_8UC3, cv::Scalar(255, 255, 255, 0)};
        // The first byte of a four-byte pixel is not a colour.
        case 32: return PageFormat{CV_8UC4, cv::Scalar(0, 255, 255, 255)};
        default: return std::nullopt;
    }
}

}    // namespace opcv
