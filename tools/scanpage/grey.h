// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Grey pages and pages of one bit per pixel.
#pragma once

#include "page.h"

// One byte a pixel: the page itself if it is grey, else the luma of its red, green and blue.
struct Grey {
    int width, height, step;
    const uint8_t* pixels;
    std::vector<uint8_t> own;
};
Grey greyOf(const KVIMG& page);

// Otsu's threshold: the level that parts the histogram into the two most distinct classes.
int otsuThreshold(const Grey& grey);

Bits reduced(const Grey& grey, int threshold);
