// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The rotations, called with the arguments of their oracle.
#pragma once

#include "OPCV_dlib.h"
#include "oracle/rotation.h"

constexpr int kLinear = 2;

inline IppiRect wholeOf(const IppiSize& size) { return {0, 0, size.width, size.height}; }

inline IppStatus rotate(const oracle::Rotation& r, const IppiSize& srcSize, float xShift, float yShift,
                        int interpolation = kLinear) {
    return ippiRotate(r.src, srcSize, r.srcStep, r.srcRoi, r.dst, r.dstStep, r.dstRoi, r.angle, xShift, yShift,
                      interpolation, r.type, r.border);
}

inline IppStatus rotateAbout(const oracle::Rotation& r, const IppiSize& srcSize, double xCentre, double yCentre,
                             int interpolation = kLinear) {
    return ippiRotateCenter(r.src, srcSize, r.srcStep, r.srcRoi, r.dst, r.dstStep, r.dstRoi, r.angle, xCentre, yCentre,
                            interpolation, r.type, r.border);
}

// For one or three channels of 8 bits; the border is always black.
inline OSErr rotateOnBlack(const oracle::Rotation& r, const IppiSize& srcSize, double xShift, double yShift,
                           int interpolation = kLinear) {
    auto* const rotation = r.type == CV_8UC1 ? KVMac_ippiRotate_8u_C1R : KVMac_ippiRotate_8u_C3R;
    return rotation(r.src, srcSize, r.srcStep, r.srcRoi, r.dst, r.dstStep, r.dstRoi, r.angle, xShift, yShift,
                    interpolation);
}
