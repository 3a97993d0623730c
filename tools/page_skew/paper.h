// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// How light the paper is, everywhere on the page.
#pragma once

#include "grey_image.h"

namespace page_skew {

// Measured in tiles: the level below which three quarters of the tile lie, after small letters have been averaged away.
// Between the centres of the tiles it is interpolated.
class Paper {
public:
    explicit Paper(const GreyImage& page);

    // The level of the paper along row y, one value for each column of the page.
    void row(int y, uint8_t* to) const;

private:
    int width_;
    GreyImage tiles_;
};

}    // namespace page_skew
