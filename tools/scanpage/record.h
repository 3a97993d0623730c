// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// New page records, and what every format tells about a page.
#pragma once

#include <string>

#include "page.h"

// The pixels are not set. `channels` is 1 or 3.
Record newRecord(int width, int height, int channels);

// Throws if a page cannot have this size, or if a file of so many bytes cannot hold even a part of it that is worth
// reading. `raster` is the size of its pixels as the format packs them, and `mostRatio` the best compression there is.
void requirePageSize(uint64_t width, uint64_t height);
void requirePlausible(uint64_t fileBytes, uint64_t raster, uint64_t mostRatio);

// The resolution is in dots per inch; 0 if the file states none. Then it is that of the other axis, or the assumed one.
struct Resolution {
    double x = 0, y = 0;
};
KVImageDescription describe(const KVIMG& page, Resolution resolution, int assumedDpi);

// What to say of a page that lacks rows.
std::string rowsMissing(int rows, int height);

// Whitens the rows from this one on.
void whitenRows(KVIMG& page, int from);
