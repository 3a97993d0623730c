// Decoding of a JPEG stream in memory.
#pragma once

#include <cstddef>

#include "core/ownership.h"

// Packed rows of grey (one channel) or red, green, blue (three). When memory runs out the size is known but there are
// no pixels.
struct DecodedImage {
    int width = 0;
    int height = 0;
    int channels = 0;
    PixelBlock pixels;

    int rowBytes() const { return width * channels; }
    size_t bytes() const { return static_cast<size_t>(rowBytes()) * static_cast<size_t>(height); }
    int depth() const { return 8 * channels; }
};

enum class Channels { kAsStored, kThree };

// Says whether the caller wants an image of this size, before its pixels are decoded.
struct WantedSize {
    bool any = true;
    int width = 0;
    int height = 0;

    bool admits(int w, int h) const { return any || (w == width && h == height); }
};

// noErr, paramErr (no JPEG stream, not decodable, or not the wanted size) or memFullErr. Throws nothing.
OSErr decodeJpeg(const unsigned char* stream, size_t length, Channels channels, const WantedSize& wanted,
                 DecodedImage& image);
