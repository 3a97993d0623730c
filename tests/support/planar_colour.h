// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The planar conversions of a whole image.
#pragma once

#include "OPCV_dlib.h"

inline IppStatus toYuvPlanes(const unsigned char* rgb, int rgbStep, unsigned char* const* planes, int planeStep,
                             IppiSize size) {
    return IPPMini_ippiRGBToYUV_8u_C3P3R(rgb, rgbStep, planes, planeStep, size);
}

inline IppStatus fromYuvPlanes(const unsigned char* const* planes, int planeStep, unsigned char* rgb, int rgbStep,
                               IppiSize size) {
    return IPPMini_ippiYUVToRGB_8u_P3C3R(planes, planeStep, rgb, rgbStep, size);
}
