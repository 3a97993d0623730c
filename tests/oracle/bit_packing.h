// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Bit packing by its definition, one pixel at a time.
#pragma once

#include <cstdint>

namespace oracle {

inline bool bitAt(const uint8_t* row, int position) { return row[position / 8] >> (7 - position % 8) & 1; }

inline void setBit(uint8_t* row, int position, bool value) {
    const auto mask = static_cast<uint8_t>(1U << (7 - position % 8));
    row[position / 8] = static_cast<uint8_t>(value ? row[position / 8] | mask : row[position / 8] & ~mask);
}

inline void expandRow(const uint8_t* bits, int offset, uint8_t* grey, int width) {
    for (int x = 0; x < width; ++x) grey[x] = bitAt(bits, offset + x) ? 255 : 0;
}

inline void packRow(const uint8_t* grey, uint8_t* bits, int offset, int width, int threshold) {
    for (int x = 0; x < width; ++x) setBit(bits, offset + x, grey[x] > threshold);
    if (threshold < 255) return;
    const int end = (offset + width + 7) / 8 * 8;
    for (int x = 0; x < offset; ++x) setBit(bits, x, false);
    for (int x = offset + width; x < end; ++x) setBit(bits, x, false);
}

}    // namespace oracle
