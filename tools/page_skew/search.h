// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The angle at which the lines of a page are most distinct, and how clear the case is.
#pragma once

#include "strips.h"

namespace page_skew {

struct Peak {
    double angle = 0;        // degrees
    double height = 1;       // the sharpness at the angle, relative to the median of all angles
    double rival = 1;        // the largest sharpness at another angle, relative to that at the angle
    double steps = 1;        // like height, of a measure to which a few long lines add little
    double rows = 0;         // how many rows carry the sharpness
    double agreement = 0;    // the part of the ink whose window is sharpest at the angle, too
};

// Looks within 15 degrees to either side.
Peak findPeak(const Strips& strips);

}    // namespace page_skew
