// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// From the bytes of a JPEG file to pixels.
#pragma once

#include "page.h"

struct DecodedPage {
    Record record;
    KVImageDescription description;    // as laid out by an EXIF orientation
    std::string damage;                // what is wrong with the stream; empty: nothing
};

DecodedPage decode(const std::vector<uint8_t>& stream);
