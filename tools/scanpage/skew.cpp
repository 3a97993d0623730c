// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "skew.h"

#include "pix.h"

namespace {

constexpr float kLeastConfidence = 2.5F;    // below it the page has no lines of text to measure

// Leptonica keeps the leftmost pixel in the top bit of a 32-bit word, and a set bit is black there.
PixPtr pixOf(const Bits& bits) {
    PixPtr pix(pixCreate(bits.width, bits.height, 1));
    if (!pix) throw std::bad_alloc();
    const uint8_t* from = bits.bytes.data();
    uint32_t* to = pixGetData(pix.get());
    for (size_t i = 0; i < bits.bytes.size(); i += 4, from += 4)
        *to++ = ~(uint32_t{from[0]} << 24 | uint32_t{from[1]} << 16 | uint32_t{from[2]} << 8 | from[3]);
    return pix;
}

}    // namespace

std::optional<double> findSkew(const Bits& bits) {
    const PixPtr pix = pixOf(bits);
    float clockwise = 0;
    float confidence = 0;
    if (pixFindSkew(pix.get(), &clockwise, &confidence) != 0 || confidence < kLeastConfidence) return std::nullopt;
    return -static_cast<double>(clockwise);
}
