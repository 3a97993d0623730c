// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// From the bytes of a file to pixels. Each function throws if it finds no page.
#pragma once

#include "page.h"

struct DecodedPage {
    Record record;
    KVImageDescription description;    // as laid out by an orientation that the file states
    std::string damage;                // what is wrong with the file; empty: nothing
    bool isBilevel = false;            // black and white only, as the file states
};

// `assumedDpi` is the resolution of a page that states none.
DecodedPage decodeJpeg(const std::vector<uint8_t>& stream, int assumedDpi);
DecodedPage decodePng(const std::vector<uint8_t>& stream, int assumedDpi);
DecodedPage decodePnm(const std::vector<uint8_t>& stream, int assumedDpi);

// Throws unless these first bytes of a file hold the header of a page that a file of this size can hold.
void requirePnm(const std::vector<uint8_t>& start, size_t fileBytes);
