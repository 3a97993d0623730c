// Views over packed images and planes of one region.
#pragma once

#include <array>

#include "core/Tools.h"

using Planes = std::array<cv::Mat, 3>;

inline OSErr viewPacked(const unsigned char* p, int step, IppiSize roi, cv::Mat& view) {
    return Tools::CreateAndCutImageMat(const_cast<unsigned char*>(p), step, cv::Rect(0, 0, roi.width, roi.height),
                                       CV_8UC3, view);
}

inline OSErr viewPlanes(const unsigned char* const p[3], int step, IppiSize roi, Planes& views) {
    for (size_t i = 0; i < views.size(); ++i)
        if (const OSErr err = Tools::CreateAndCutImageMat(const_cast<unsigned char*>(p[i]), step,
                                                          cv::Rect(0, 0, roi.width, roi.height), CV_8UC1, views[i]))
            return err;
    return noErr;
}
