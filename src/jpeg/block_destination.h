// A libjpeg destination that writes straight into the block that is handed out.
#pragma once

#include <array>
#include <cstddef>
#include <cstdio>    // jpeglib.h needs it

#include <jpeglib.h>

#include "core/ownership.h"

// The block grows by an eighth and a little, so that it is never much larger than the stream, and is trimmed when it is
// taken. When it cannot grow it is given up, and what follows of the stream is only counted: its length is still told.
class BlockDestination {
public:
    BlockDestination();
    BlockDestination(const BlockDestination&) = delete;
    BlockDestination& operator=(const BlockDestination&) = delete;
    ~BlockDestination() = default;

    void attachTo(j_compress_ptr cinfo) { cinfo->dest = &pub_; }

    size_t length() const { return counted_ + room_ - pub_.free_in_buffer; }

    // Null if the block was given up.
    PixelBlock take();

private:
    static void nothing(j_compress_ptr /*cinfo*/) {}
    static boolean onFull(j_compress_ptr cinfo);

    void makeRoom();
    void writeTo(unsigned char* bytes, size_t count);

    jpeg_destination_mgr pub_{};    // first, so that libjpeg's pointer leads here
    PixelBlock block_;
    size_t counted_ = 0;    // bytes before the room that libjpeg is writing to
    size_t room_ = 0;
    bool givenUp_ = false;
    std::array<unsigned char, 256> spare_{};    // for a stream that is only counted
};
