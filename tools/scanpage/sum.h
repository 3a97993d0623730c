// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Checksum of bytes that arrive in pieces: FNV-1a, 64 bits.
#pragma once

#include <cstddef>
#include <cstdint>

class Sum {
public:
    void add(const void* data, size_t size) {
        const auto* bytes = static_cast<const uint8_t*>(data);
        for (size_t i = 0; i < size; ++i) value_ = (value_ ^ bytes[i]) * 1099511628211U;
    }

    uint64_t value() const { return value_; }

private:
    uint64_t value_ = 14695981039346656037U;
};
