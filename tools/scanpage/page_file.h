// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// A file with pages: JPEG, PNG or PNM with one, TIFF with any number. Its content tells which, not its name.
#pragma once

#include <optional>

#include "decode.h"
#include "input_file.h"
#include "tiff_file.h"

// Whether these first bytes of a file are those of a JPEG, PNG or TIFF. PNM begins with too few letters to tell.
constexpr size_t kSignature = 16;    // as many bytes as it takes
bool beginsLikePage(const std::vector<uint8_t>& bytes);

// By its ending, as PNM cannot be told by its first bytes.
bool isNamedLikePage(const std::string& name);

class PageFile {
public:
    // Throws if the file cannot be read or is none of them. Reading stops at the first bytes that cannot belong to a page,
    // so a large file of another kind costs nothing.
    explicit PageFile(InputFile file);
    PageFile(const PageFile&) = delete;
    PageFile& operator=(const PageFile&) = delete;

    size_t bytes() const { return file_.size(); }
    size_t pages() const { return tiff_ ? tiff_->pages() : 1; }

    // Of the bytes of the file, and of the number of the page if there are several.
    uint64_t sumOf(size_t page) const;

    // May be called once for each page.
    DecodedPage decode(size_t page, int assumedDpi);

private:
    void readSum();

    InputFile file_;
    std::vector<uint8_t> stream_;    // the whole file, unless it is a TIFF; released when it is decoded
    std::optional<TiffFile> tiff_;
    DecodedPage (*decodeStream_)(const std::vector<uint8_t>&, int) = nullptr;
    uint64_t sum_ = 0;
};
