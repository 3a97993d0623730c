// Quarter turns by where each pixel goes.
#pragma once

#include "OPCV_dlib.h"

namespace oracle {

// Where the pixel that a clockwise turn by a multiple of 90 degrees brings to (x, y) stands in a page of the given size.
inline IppiPoint beforeQuarterTurn(int x, int y, int degreesClockwise, IppiSize page) {
    switch (degreesClockwise) {
        case 90: return {y, page.height - 1 - x};
        case 180: return {page.width - 1 - x, page.height - 1 - y};
        default: return {page.width - 1 - y, x};    // 270
    }
}

}    // namespace oracle
