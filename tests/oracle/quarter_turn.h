// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Quarter turns by the position of each pixel.
#pragma once

#include "OPCV_dlib.h"

namespace oracle {

// The position, in a page of the given size, of the pixel that a clockwise turn by a multiple of 90 degrees moves to
// (x, y).
inline IppiPoint beforeQuarterTurn(int x, int y, int degreesClockwise, IppiSize page) {
    switch (degreesClockwise) {
        case 90: return {y, page.height - 1 - x};
        case 180: return {page.width - 1 - x, page.height - 1 - y};
        default: return {page.width - 1 - y, x};    // 270
    }
}

}    // namespace oracle
