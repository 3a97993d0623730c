// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Decoding of a JPEG stream in memory, once inspectStream has found a page in it.
#pragma once

#include <csetjmp>
#include <cstddef>
#include <cstdint>
#include <cstdio>    // jpeglib.h needs it

#include <jpeglib.h>

#include "jpeg/page_info.h"

// The destination of a page: rows of grey (one channel) or red, green, blue (three). The step may be negative.
struct PageRows {
    unsigned char* data;
    ptrdiff_t step;
    int channels;
};

// Called between rows; a result other than 0 cancels.
struct Cancellation {
    int (*ask)(void* context) = nullptr;
    void* context = nullptr;
};

// One decompression by libjpeg: open(), then read(). They catch all of libjpeg's errors and throw nothing.
class Decoder {
public:
    Decoder(const unsigned char* stream, size_t length, const Cancellation& cancellation);
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;
    ~Decoder() { jpeg_destroy_decompress(&cinfo_); }

    // Reads the headers.
    Outcome open(const PageInfo& page);

    // Fills all rows. If the stream ends early, the last of its rows is repeated to the bottom.
    Outcome read(const PageRows& rows);

    // What the stream contained.
    int rowsDecoded() const { return rowsDecoded_; }    // of the stored image
    bool endSeen() const { return endSeen_; }
    int64_t warnings() const { return warnings_; }
    bool isDamaged() const {
        return rowsDecoded_ < page_.stored.height || !endSeen_ || warnings_ > 0 || lacksComponent_;
    }

private:
    template <class Calls>
    Outcome attempt(Calls calls);
    Outcome readHeader();
    Outcome readRows(const PageRows& page);
    Outcome readEnd();

    [[noreturn]] static void onError(j_common_ptr cinfo);
    static void onMessage(j_common_ptr cinfo, int level);
    static void onProgress(j_common_ptr cinfo) noexcept;

    jpeg_decompress_struct cinfo_{};
    jpeg_error_mgr errors_{};
    jpeg_source_mgr source_{};
    jpeg_progress_mgr progress_{};
    jmp_buf jumpBuffer_{};
    Cancellation cancellation_;
    PageInfo page_;
    int rowsDecoded_ = 0;
    bool endSeen_ = false;
    bool lacksComponent_ = false;
    bool cancelled_ = false;
    int64_t warnings_ = 0;
};
