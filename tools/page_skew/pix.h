// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Owners of Leptonica's objects.
#pragma once

#include <leptonica/allheaders.h>

#include <memory>
#include <new>

namespace page_skew {

struct PixDeleter {
    void operator()(PIX* pix) const { pixDestroy(&pix); }
};
using PixPtr = std::unique_ptr<PIX, PixDeleter>;

// Takes ownership. The calls of this library have valid arguments, so a null pointer means that memory ran out.
inline PixPtr owned(PIX* pix) {
    if (!pix) throw std::bad_alloc();
    return PixPtr(pix);
}

}    // namespace page_skew
