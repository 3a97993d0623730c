// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// A page like a scanned one: dark strokes on light paper with slow shading and noise of a few levels.
#pragma once

#include <cstddef>
#include <cstdint>

#include "support/random.h"

inline void drawPage(uint8_t* bytes, size_t count, int step, int pixelSize) {
    Random random(7);
    for (size_t i = 0; i < count; ++i) {
        const int x = static_cast<int>(i % static_cast<size_t>(step)) / pixelSize;
        const int y = static_cast<int>(i / static_cast<size_t>(step));
        const bool ink =
            y % 48 < 30 && x % 24 < 15 && (x / 24 * 7 + y / 48 * 13) % 5 != 0 && (x % 24 < 4 || y % 12 < 4);
        bytes[i] = static_cast<uint8_t>((ink ? 40 : 225) + x / 200 + random.byte() % 12);
    }
}
