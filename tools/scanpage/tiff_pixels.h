// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The pixels of the current directory of a TIFF file.
#pragma once

#include <tiffio.h>

#include "page.h"

struct TiffPixels {
    Record record;
    int rows = 0;    // that are there; the others are white
    bool isBilevel = false;
};

// Throws if it is no page, or not even its first row can be read. `fileBytes` bounds what it can hold.
TiffPixels readPixels(TIFF* tiff, size_t fileBytes);
