// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// A libjpeg destination that writes directly into the block that the caller receives.
#pragma once

#include <array>
#include <cstddef>
#include <cstdio>    // jpeglib.h needs it

#include <jpeglib.h>

#include "core/ownership.h"

// The block grows by slightly more than an eighth, so that it is never much larger than the stream, and is trimmed at
// the end. If it cannot grow, it is freed, and the rest of the stream is only counted, so that its length is still
// known.
class BlockDestination {
public:
    BlockDestination();
    BlockDestination(const BlockDestination&) = delete;
    BlockDestination& operator=(const BlockDestination&) = delete;
    ~BlockDestination() = default;

    void attachTo(j_compress_ptr cinfo) { cinfo->dest = &pub_; }

    size_t length() const { return counted_ + room_ - pub_.free_in_buffer; }

    // Null if the block could not grow.
    opcv::PixelBlock take();

private:
    static void nothing(j_compress_ptr /*cinfo*/) {}
    static boolean onFull(j_compress_ptr cinfo);

    void makeRoom();
    void writeTo(unsigned char* bytes, size_t count);

    jpeg_destination_mgr pub_{};    // first, so that libjpeg's pointer also points to this object
    opcv::PixelBlock block_;
    size_t counted_ = 0;    // bytes before the buffer that libjpeg is writing to
    size_t room_ = 0;
    bool givenUp_ = false;
    std::array<unsigned char, 256> spare_{};    // for a stream that is only counted
};
