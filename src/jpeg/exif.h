// The orientation that an EXIF block gives to a JPEG page.
#pragma once

#include <cstddef>

// How a stored image becomes the page: transposed first (columns become rows), then mirrored.
struct Orientation {
    bool transposed = false;
    bool mirrored = false;      // left and right, of the stored image
    bool upsideDown = false;    // top and bottom, of the stored image
};

// The orientation tag in the payload of an APP1 segment, 1 to 8. A block that names no orientation, or is broken in front
// of it, gives 1, which leaves the page as it is stored.
int exifOrientationTag(const unsigned char* payload, size_t length);

Orientation orientationOf(int tag);

struct Resolution {
    double x = 0;    // dots per inch; 0 where nothing is stated
    double y = 0;
};

// The two resolutions of the same block, of the stored image. Both are stated or none.
Resolution exifResolution(const unsigned char* payload, size_t length);
