// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Box filter in place, directly on the caller's rows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "OPCV_dlib.h"

namespace filters {

// Divides the sums of a mask as OpenCV does.
struct MeanRule {
    uint16_t addend = 0;        // to the sum
    uint16_t multiplier = 0;    // of which product the upper half
    int shift = 0;              // is shifted
};

// Nothing if no 16-bit multiplier gives OpenCV's means for masks of this many pixels; so for 1, 2 and more than 256.
std::optional<MeanRule> meanRuleOf(int64_t area);

struct BoxRegion {
    const uint8_t* window;    // first element of the first row under the mask
    uint8_t* pixels;          // first element of the region; no row below a window is written before it is read
    ptrdiff_t step;           // bytes
    int elements;             // per row, three per pixel
    int rows;
};

// False, with nothing written, if allocating the rows of a mask fails.
bool filterBox24(const BoxRegion& region, IppiSize mask, const MeanRule& rule);

}    // namespace filters
