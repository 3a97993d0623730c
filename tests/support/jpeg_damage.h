// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Streams that were cut or have a bit flipped, and what their reading says about it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "support/jpeg_corpus.h"
#include "support/jpeg_report.h"

// Where the coded data of the first scan begins.
inline size_t firstScanData(const std::vector<uint8_t>& stream) {
    size_t at = 2;
    for (;;) {
        const size_t length = 2 + (size_t{stream.at(at + 2)} << 8 | stream.at(at + 3));
        const bool isScan = stream[at + 1] == 0xDA;
        at += length;
        if (isScan) return at;
    }
}

// What became of the single-bit flips of some bytes of a stream.
struct FlipCount {
    int flips = 0;
    int refused = 0;       // no page
    int warned = 0;        // a page, with warnings of libjpeg's
    int reported = 0;      // a page that the report calls damaged, for whatever reason
    int harmless = 0;      // the page as it was, and not called damaged
    int undetected = 0;    // another page, and not called damaged

    int changed() const { return flips - harmless; }
    double byWarnings() const { return 1.0 * (refused + warned) / changed(); }
    double byReport() const { return 1.0 * (refused + reported) / changed(); }
};

inline FlipCount countFlips(const std::vector<uint8_t>& whole, size_t from, size_t to) {
    const PageReading good = readPage(whole);
    const std::vector<uint8_t> pixels = good.pixels();
    std::vector<uint8_t> stream = whole;
    FlipCount count;
    for (size_t i = from; i < to; ++i)
        for (int bit = 0; bit < 8; ++bit) {
            stream[i] = static_cast<uint8_t>(whole[i] ^ 1 << bit);
            const PageReading r = readPage(stream);
            ++count.flips;
            if (r.status != OPCV_READ_OK) {
                ++count.refused;
            } else if (r.report.damaged != 0) {
                ++count.reported;
                count.warned += r.report.warnings > 0 ? 1 : 0;
            } else if (r.image->width == good.image->width && r.image->height == good.image->height &&
                       r.pixels() == pixels) {
                ++count.harmless;
            } else {
                ++count.undetected;
            }
            stream[i] = whole[i];
        }
    return count;
}
