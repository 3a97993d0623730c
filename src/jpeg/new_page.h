// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// A page that is read into a new block, which becomes the block of a record.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "core/ownership.h"
#include "core/pixel_memory.h"
#include "jpeg/decode.h"

struct NewPage {
    int width = 0;
    int height = 0;
    int channels = 0;    // packed rows of grey (1) or red, green, blue (3)
    opcv::PixelBlock pixels;

    NewPage() = default;
    explicit NewPage(const PageInfo& page) : width(page.width), height(page.height), channels(page.channels) {}

    int rowBytes() const { return width * channels; }
    size_t bytes() const { return static_cast<size_t>(rowBytes()) * static_cast<size_t>(height); }
    int depth() const { return 8 * channels; }

    // The block is allocated once the decoder has accepted the headers.
    Outcome read(const PageInfo& page, Decoder& decoder) {
        if (const Outcome opened = decoder.open(page); opened != Outcome::kDone) return opened;
        pixels.reset(static_cast<unsigned char*>(opcv::allocatePixels(bytes())));
        if (!pixels) return Outcome::kNoMemory;
        return decoder.read({pixels.get(), rowBytes(), channels});
    }

    // Null if allocating the record fails.
    KVIMG* release() {
        auto* const record = static_cast<KVIMG*>(std::malloc(sizeof(KVIMG)));
        if (record) *record = {pixels.release(), depth(), width, height, rowBytes(), static_cast<int32_t>(bytes())};
        return record;
    }
};
