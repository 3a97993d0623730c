// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "jpeg/block_destination.h"

#include <cstdlib>
#include <utility>

namespace {

constexpr size_t kFirstRoom = 32768;

}    // namespace

BlockDestination::BlockDestination() {
    pub_.init_destination = nothing;
    pub_.empty_output_buffer = onFull;
    pub_.term_destination = nothing;
    makeRoom();
}

void BlockDestination::writeTo(unsigned char* bytes, size_t count) {
    pub_.next_output_byte = bytes;
    pub_.free_in_buffer = room_ = count;
}

void BlockDestination::makeRoom() {
    const size_t more = kFirstRoom + counted_ / 8;
    auto* grown = givenUp_ ? nullptr : static_cast<unsigned char*>(std::realloc(block_.get(), counted_ + more));
    if (grown) {
        static_cast<void>(block_.release());    // realloc has freed or moved it
        block_.reset(grown);
        writeTo(grown + counted_, more);
    } else {
        givenUp_ = true;
        block_.reset();
        writeTo(spare_.data(), spare_.size());
    }
}

// libjpeg calls this when its buffer is full; free_in_buffer is not reliable then.
boolean BlockDestination::onFull(j_compress_ptr cinfo) {
    auto& destination = *reinterpret_cast<BlockDestination*>(cinfo->dest);
    destination.counted_ += destination.room_;
    destination.makeRoom();
    return TRUE;
}

opcv::PixelBlock BlockDestination::take() {
    if (auto* trimmed = static_cast<unsigned char*>(block_ ? std::realloc(block_.get(), length()) : nullptr)) {
        static_cast<void>(block_.release());
        block_.reset(trimmed);
    }
    return std::move(block_);
}
