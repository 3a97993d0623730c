// The orientation that an EXIF block gives to a JPEG page.
#pragma once

#include <cstddef>

// How a stored image becomes the page: transposed first (columns become rows), then mirrored.
struct Orientation {
    bool transposed = false;
    bool mirrored = false;      // left and right, of the stored image
    bool upsideDown = false;    // top and bottom, of the stored image
};

// Reads the payload of an APP1 segment. A block that names no orientation, or is broken in front of it, leaves the page
// as it is stored.
Orientation exifOrientation(const unsigned char* payload, size_t length);
