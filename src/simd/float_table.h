// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// A float for each value of a byte. table_lookup-inl.h looks them up.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace opcv::simd {

struct FloatTable {
    static constexpr size_t kValues = 256;

    // Sets the floats from `of(byte)`.
    template <class Of>
    void fill(const Of& of) {
        for (size_t byte = 0; byte < kValues; ++byte) {
            values[byte] = of(byte);
            uint32_t bits = 0;
            std::memcpy(&bits, &values[byte], sizeof(bits));
            for (size_t plane = 0; plane < sizeof(bits); ++plane)
                planes[plane][byte] = static_cast<uint8_t>(bits >> (8 * plane));
        }
    }

    alignas(64) float values[kValues];
    alignas(64) uint8_t planes[sizeof(float)][kValues];    // the bytes of all floats, the lowest ones first
};

}    // namespace opcv::simd
