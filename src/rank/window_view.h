// Views over the part of the caller's image that the windows of a region cover.
#pragma once

#include <opencv2/core.hpp>

#include "OPCV_dlib.h"

// The region, moved back by the anchor and larger by half the mask on each side, so that OpenCV's centred windows around
// its interior are the caller's.
OSErr viewOfWindows(const void* pSrc, int srcStep, int type, const IppiSize& roi, const IppiSize& mask,
                    const IppiPoint& anchor, cv::Mat& view);

// Whether two views may have a byte in common; views side by side in the rows of one image count as well.
bool mayOverlap(const cv::Mat& a, const cv::Mat& b);
