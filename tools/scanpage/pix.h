// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Owner of a Leptonica image, and the way of pages to it and back.
#pragma once

#include <leptonica/allheaders.h>

#include "grey.h"

struct PixDeleter {
    void operator()(PIX* pix) const { pixDestroy(&pix); }
};
using PixPtr = std::unique_ptr<PIX, PixDeleter>;

// Leptonica returns null if memory runs out.
inline PixPtr owned(PIX* pix) {
    if (!pix) throw std::bad_alloc();
    return PixPtr(pix);
}

PixPtr pixOf(const Bits& bits);
PixPtr pixOf(const Grey& grey);
PixPtr pixOf(const KVIMG& page);    // of 8 or 24 bits

Grey greyOf(PIX* pix);    // of 8 bits
void copyPixels(PIX* pix, KVIMG& page);
