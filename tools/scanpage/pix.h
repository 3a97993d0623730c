// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Owner of a Leptonica image.
#pragma once

#include <leptonica/allheaders.h>

#include <memory>

struct PixDeleter {
    void operator()(PIX* pix) const { pixDestroy(&pix); }
};
using PixPtr = std::unique_ptr<PIX, PixDeleter>;
