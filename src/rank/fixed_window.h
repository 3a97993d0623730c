// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The checks that all medians with a fixed window share.
#pragma once

#include <cstdint>

#include "OPCV_dlib.h"

namespace opcv {

using FixedWindowKernel = void (*)(const unsigned char*, int, unsigned char*, int, int, int);

// Without a kernel the arguments are refused. Any source step is accepted: a kernel reads the pixels of the windows,
// wherever the caller's rows are.
inline IppStatus filterFixedWindow(FixedWindowKernel kernel, const unsigned char* pSrc, int srcStep,
                                   unsigned char* pDst, int dstStep, IppiSize size, int pixelSize) {
    if (!kernel || !pSrc || !pDst || size.width <= 0 || size.height <= 0) return ippStsBadArgErr;
    if (int64_t{pixelSize} * size.width > dstStep) return ippStsBadArgErr;
    kernel(pSrc, srcStep, pDst, dstStep, size.width, size.height);
    return ippStsNoErr;
}

}    // namespace opcv
