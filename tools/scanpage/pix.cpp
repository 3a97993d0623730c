// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "pix.h"

namespace {

// Leptonica keeps the leftmost pixel in the top bits of a 32-bit word.
uint32_t word(const uint8_t* from) {
    return uint32_t{from[0]} << 24 | uint32_t{from[1]} << 16 | uint32_t{from[2]} << 8 | from[3];
}

uint32_t* rowOf(PIX* pix, int y) { return pixGetData(pix) + ptrdiff_t{y} * pixGetWpl(pix); }

void greyRow(const uint8_t* from, int width, uint32_t* to) {
    int x = 0;
    for (; x + 4 <= width; x += 4, from += 4) *to++ = word(from);
    for (; x < width; ++x) *to |= uint32_t{*from++} << (24 - 8 * (x & 3));
}

void colourRow(const uint8_t* from, int width, uint32_t* to) {
    for (int x = 0; x < width; ++x, from += 3)
        to[x] = uint32_t{from[0]} << 24 | uint32_t{from[1]} << 16 | uint32_t{from[2]} << 8;
}

void greyRow(const uint32_t* from, int width, uint8_t* to) {
    for (int x = 0; x < width; ++x) to[x] = static_cast<uint8_t>(from[x / 4] >> (24 - 8 * (x & 3)));
}

void colourRow(const uint32_t* from, int width, uint8_t* to) {
    for (int x = 0; x < width; ++x)
        for (int shift = 24; shift > 0; shift -= 8) *to++ = static_cast<uint8_t>(from[x] >> shift);
}

}    // namespace

// A set bit is black there.
PixPtr pixOf(const Bits& bits) {
    PixPtr pix = owned(pixCreate(bits.width, bits.height, 1));
    const uint8_t* from = bits.bytes.data();
    uint32_t* to = pixGetData(pix.get());
    for (size_t i = 0; i < bits.bytes.size(); i += 4, from += 4) *to++ = ~word(from);
    return pix;
}

PixPtr pixOf(const Grey& grey) {
    PixPtr pix = owned(pixCreate(grey.width, grey.height, 8));
    for (int y = 0; y < grey.height; ++y)
        greyRow(grey.pixels + ptrdiff_t{y} * grey.step, grey.width, rowOf(pix.get(), y));
    return pix;
}

PixPtr pixOf(const KVIMG& page) {
    if (page.depth == 8) return pixOf(greyOf(page));
    PixPtr pix = owned(pixCreate(page.width, page.height, 32));
    for (int y = 0; y < page.height; ++y)
        colourRow(page.data + ptrdiff_t{y} * page.rowBytes, page.width, rowOf(pix.get(), y));
    return pix;
}

Grey greyOf(PIX* pix) {
    Grey grey{pixGetWidth(pix), pixGetHeight(pix), pixGetWidth(pix), nullptr, {}};
    grey.own.resize(static_cast<size_t>(grey.width) * static_cast<size_t>(grey.height));
    for (int y = 0; y < grey.height; ++y)
        greyRow(rowOf(pix, y), grey.width, grey.own.data() + ptrdiff_t{y} * grey.width);
    grey.pixels = grey.own.data();
    return grey;
}

void copyPixels(PIX* pix, KVIMG& page) {
    for (int y = 0; y < page.height; ++y) {
        uint8_t* to = page.data + ptrdiff_t{y} * page.rowBytes;
        if (page.depth == 24)
            colourRow(rowOf(pix, y), page.width, to);
        else
            greyRow(rowOf(pix, y), page.width, to);
    }
}
