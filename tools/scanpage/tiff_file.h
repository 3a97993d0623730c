// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The pages of a TIFF file, read from disk as they are needed.
#pragma once

#include <tiffio.h>

#include "decode.h"
#include "input_file.h"

class TiffFile {
public:
    // Finds the pages; thumbnails and masks among them are left out. Throws if there is none.
    explicit TiffFile(InputFile& file);
    TiffFile(const TiffFile&) = delete;    // libtiff keeps its address
    TiffFile& operator=(const TiffFile&) = delete;

    size_t pages() const { return directories_.size(); }
    DecodedPage decode(size_t page, int assumedDpi);

private:
    void findPages();
    DecodedPage decodeDirectory(int assumedDpi);

    // What libtiff calls back.
    struct Source {
        InputFile& file;
        uint64_t place = 0;
        bool complaint = false;    // of the data
    };
    static tmsize_t readBytes(thandle_t handle, void* to, tmsize_t size);
    static tmsize_t writeBytes(thandle_t handle, void* from, tmsize_t size);
    static toff_t seek(thandle_t handle, toff_t offset, int whence);
    static int closeFile(thandle_t handle);
    static toff_t sizeOfFile(thandle_t handle);
    static int complain(TIFF* tiff, void* source, const char* module, const char* format, va_list arguments);

    Source source_;
    std::unique_ptr<TIFF, void (*)(TIFF*)> tiff_;
    std::vector<uint64_t> directories_;
    bool chainIsBroken_ = false;    // pages behind the last one cannot be found
};
