// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// libpng leaves a function by longjmp. Nothing with a destructor lives between setjmp and its calls.
#include "sheet_png.h"

#include <csetjmp>

namespace {

// The nearest of 32 levels. In small pictures nobody sees it, and the file gets a third smaller.
uint8_t coarse(uint32_t value) {
    const uint32_t level = (value * 31 + 127) / 255;
    return static_cast<uint8_t>(level << 3 | level >> 2);
}

[[noreturn]] void leave(png_structp png, png_const_charp) { png_longjmp(png, 1); }
void ignore(png_structp, png_const_charp) {}

}    // namespace

SheetPng::SheetPng(int width, int height) {
    bytes_.reserve(static_cast<size_t>(width) * static_cast<size_t>(height));    // growth would take twice as much
    png_ = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, leave, ignore);
    if (png_) info_ = png_create_info_struct(png_);
    if (!info_ || !begin(width, height)) {
        png_destroy_write_struct(&png_, &info_);
        throw std::bad_alloc();
    }
}

SheetPng::~SheetPng() { png_destroy_write_struct(&png_, &info_); }

void SheetPng::writeBytes(png_structp png, png_bytep from, size_t size) {
    SheetPng& sheet = *static_cast<SheetPng*>(png_get_io_ptr(png));
    try {
        sheet.bytes_.insert(sheet.bytes_.end(), from, from + size);
    } catch (const std::bad_alloc&) {
        sheet.outOfMemory_ = true;
    }
}

bool SheetPng::begin(int width, int height) {
    if (setjmp(png_jmpbuf(png_)) != 0) return false;
    png_set_write_fn(png_, this, writeBytes, nullptr);
    png_set_IHDR(png_, info_, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height), 8, PNG_COLOR_TYPE_RGB,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_filter(png_, 0, PNG_FILTER_NONE | PNG_FILTER_UP);
    png_set_compression_level(png_, 4);
    png_write_info(png_, info_);
    return true;
}

void SheetPng::add(PIX* band) {
    std::vector<uint8_t> row(size_t{3} * static_cast<size_t>(pixGetWidth(band)));
    if (!writeRows(band, row.data()) || outOfMemory_) throw std::bad_alloc();
}

bool SheetPng::writeRows(PIX* band, uint8_t* row) {
    if (setjmp(png_jmpbuf(png_)) != 0) return false;
    for (int y = 0; y < pixGetHeight(band); ++y) {
        const uint32_t* from = pixGetData(band) + ptrdiff_t{y} * pixGetWpl(band);
        uint8_t* to = row;
        for (int x = 0; x < pixGetWidth(band); ++x)
            for (int shift = 24; shift > 0; shift -= 8) *to++ = coarse(from[x] >> shift & 255);
        png_write_row(png_, row);
    }
    return true;
}

bool SheetPng::end() {
    if (setjmp(png_jmpbuf(png_)) != 0) return false;
    png_write_end(png_, nullptr);
    return true;
}

std::vector<uint8_t> SheetPng::finish() {
    if (!end() || outOfMemory_) throw std::bad_alloc();
    return std::move(bytes_);
}
