// Packed 24-bit images that are filtered as a whole.
#pragma once

#include <cstddef>
#include <functional>

#include "core/ownership.h"

namespace filters {

// Whether an image is one that `IPPMini_ippiMalloc_8u_C3` would make: both sides above 0 and, with rows of a multiple
// of 64 bytes, within 31 bits of bytes. No product of its sides overflows then.
bool isColourImage(IppiSize size);

// The source, or a copy of it if the destination shares bytes with it. Null if there is no memory for the copy.
const unsigned char* sourceApart(const unsigned char* src, const unsigned char* dst, size_t bytes, PixelBlock& copy);

// Copies the ring of `width` pixels along the edges, which no filter fills.
void copyRing(const unsigned char* src, unsigned char* dst, IppiSize size, int width);

// Runs a filter on each channel as a plane of its own, whose rows are as long as the image is wide. The filter writes
// to a second plane, which holds the same pixels before. The first failure ends it; its channel is not written.
OSErr filterChannels(const unsigned char* src, unsigned char* dst, IppiSize size,
                     const std::function<OSErr(int channel, const unsigned char* from, unsigned char* to)>& filter);

}    // namespace filters
