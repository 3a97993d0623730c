// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "reference.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>

namespace bench {

double referenceSeconds() {
    constexpr size_t kBytes = 16384;
    constexpr int kRepeats = 40;
    static std::array<uint8_t, kBytes> block{};
    const auto start = std::chrono::steady_clock::now();
    uint32_t sum = 0;
    for (int i = 0; i < kRepeats; ++i) {
        for (uint8_t& byte : block) byte = static_cast<uint8_t>(byte > 100 ? byte - 7 : byte + 13);
        for (size_t k = 0; k < kBytes; k += 32) sum = (sum ^ block[k]) * 2654435761U;
        asm volatile("" : "+r"(sum) : "r"(block.data()) : "memory");
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

}    // namespace bench
