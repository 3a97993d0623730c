// What the page routines need to know of a depth.
#pragma once

#include <opencv2/core.hpp>

struct PageFormat {
    int type = 0;        // OpenCV type code
    cv::Scalar white;    // fill of uncovered pixels where white is asked for
};

// False for a depth that the page routines refuse.
inline bool pageFormatOf(int depth, PageFormat& format) {
    switch (depth) {
        // Grey pages stay black where white is asked for: callers rely on it.
        case 8: format = {CV_8UC1, cv::Scalar::all(0)}; return true;
        case 24: format = {CV_8UC3, cv::Scalar(255, 255, 255, 0)}; return true;
        // The first byte of a four-byte pixel is no colour.
        case 32: format = {CV_8UC4, cv::Scalar(0, 255, 255, 255)}; return true;
        default: return false;
    }
}
