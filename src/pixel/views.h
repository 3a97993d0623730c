// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Checked views of the caller's three-channel images, for the kernels.
#pragma once

#include <opencv2/core.hpp>

#include "core/Tools.h"
#include "core/region.h"
#include "pixel/channel_kernels.h"

namespace opcv {

// The pitch of a view is a whole number of pixels; the step need not be.
inline OSErr viewRegion(const unsigned char* p, int step, IppiSize roi, int type, uint8_t*& first, ptrdiff_t& pitch) {
    cv::Mat view;
    if (const OSErr err = viewOf(p, step, type, roi, view)) return err;
    first = view.data;
    pitch = static_cast<ptrdiff_t>(view.step[0]);
    return noErr;
}

inline OSErr viewPacked(const unsigned char* p, int step, IppiSize roi, PackedImage& image) {
    return viewRegion(p, step, roi, CV_8UC3, image.pixels, image.step);
}

inline OSErr viewPlanes(const unsigned char* const p[3], int step, IppiSize roi, PlanarImage& image) {
    if (!p) return paramErr;
    for (size_t i = 0; i < image.planes.size(); ++i)
        if (const OSErr err = viewRegion(p[i], step, roi, CV_8UC1, image.planes[i], image.step)) return err;
    return noErr;
}

}    // namespace opcv
