// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// What is printed on a page, without what cannot be text.
#pragma once

#include "grey_image.h"
#include "shapes.h"

namespace page_skew {

struct Ink {
    Shapes shapes;
    double contrast;    // of ink and paper: 0 to 1
};

// What is clearly darker than the paper around it. What touches the border (edges of the scan, the neighbouring page) and
// what is solid (pictures, ornaments) is left out.
Ink inkOf(const GreyImage& page);

}    // namespace page_skew
