// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Square medians of larger windows, directly from the caller's rows.
#pragma once

#include <cstddef>
#include <cstdint>

namespace opcv {

// Whether `countingMedian` filters with m x m windows.
bool hasCountingMedian(int m);

// Arguments and contract are those of `squareMedian`.
void countingMedian(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep, ptrdiff_t width,
                    ptrdiff_t height, int m, int channels);

}    // namespace opcv
