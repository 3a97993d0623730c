// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The orientation and resolution in an EXIF block.
#pragma once

#include <cstddef>

// How a stored image becomes the page: transposed first (columns become rows), then mirrored.
struct Orientation {
    bool transposed = false;
    bool mirrored = false;      // left and right, of the stored image
    bool upsideDown = false;    // top and bottom, of the stored image
};

// The orientation tag in the payload of an APP1 segment, 1 to 8. 1, which leaves the page as stored, if the block has
// no orientation or is broken before it.
int exifOrientationTag(const unsigned char* payload, size_t length);

Orientation orientationOf(int tag);

struct Resolution {
    double x = 0;    // dots per inch; 0 if not stated
    double y = 0;
};

// The two resolutions of the stored image in the same block; either both or none.
Resolution exifResolution(const unsigned char* payload, size_t length);
