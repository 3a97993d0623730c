// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// A PNG that is written band by band, so that no more than a band of it is in memory uncompressed.
#pragma once

#include <png.h>

#include "pix.h"

class SheetPng {
public:
    SheetPng(int width, int height);
    ~SheetPng();
    SheetPng(const SheetPng&) = delete;
    SheetPng& operator=(const SheetPng&) = delete;

    void add(PIX* band);    // of 32 bits and the width of the sheet

    std::vector<uint8_t> finish();

private:
    bool begin(int width, int height);
    bool writeRows(PIX* band, uint8_t* row);
    bool end();

    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    std::vector<uint8_t> bytes_;
    bool outOfMemory_ = false;

    static void writeBytes(png_structp png, png_bytep from, size_t size);
};
