// What the page routines need to know of a depth.
#pragma once

#include <opencv2/core.hpp>
#include <optional>

struct PageFormat {
    int type = 0;        // OpenCV type code
    cv::Scalar white;    // fill of uncovered pixels where white is asked for
};

// Nothing for a depth that the page routines reject.
inline std::optional<PageFormat> pageFormatOf(int depth) {
    switch (depth) {
        // Grey pages stay black where white is asked for: callers rely on it.
        case 8: return PageFormat{CV_8UC1, cv::Scalar::all(0)};
        case 24: return PageFormat{CV_8UC3, cv::Scalar(255, 255, 255, 0)};
        // The first byte of a four-byte pixel is no colour.
        case 32: return PageFormat{CV_8UC4, cv::Scalar(0, 255, 255, 255)};
        default: return std::nullopt;
    }
}
