// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// SHA-256 of bytes that arrive in pieces.
#pragma once

#include <nettle/sha2.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

class Sha256 {
public:
    Sha256() { sha256_init(&state_); }

    void add(const void* data, size_t size) { sha256_update(&state_, size, static_cast<const uint8_t*>(data)); }

    // In hexadecimal digits. May be called once.
    std::string digits() {
        std::array<uint8_t, SHA256_DIGEST_SIZE> sum{};
        sha256_digest(&state_, sum.size(), sum.data());
        std::string text;
        for (const uint8_t byte : sum)
            for (const int digit : {byte >> 4, byte & 15}) text += "0123456789abcdef"[digit];
        return text;
    }

private:
    sha256_ctx state_{};
};

template <class Bytes>
std::string sha256Of(const Bytes& bytes) {
    Sha256 sum;
    sum.add(bytes.data(), bytes.size());
    return sum.digits();
}

// Of a file from its start. Throws std::system_error.
std::string sha256OfFile(int descriptor);
