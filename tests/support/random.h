// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Random numbers with a fixed seed, so that failures are reproducible. They are the same on every machine and with
// every standard library; the distributions of standard libraries differ.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>

class Random {
public:
    explicit Random(unsigned seed) : engine_(seed) {}

    // Both ends included.
    int between(int low, int high) {
        const auto count = static_cast<uint64_t>(int64_t{high} - low + 1);
        return static_cast<int>(low + static_cast<int64_t>((engine_() * count) >> 32U));
    }
    double real(double low, double high) {
        constexpr double kEngineValues = 4294967296.0;
        return low + (high - low) * (static_cast<double>(engine_()) / kEngineValues);
    }
    uint8_t byte() { return static_cast<uint8_t>(engine_() & 0xFFU); }
    bool chance(int percent) { return between(1, 100) <= percent; }

    // Uniform bytes, or bytes of few or extreme values, so that ties and saturation are common.
    enum class Values { kAny, kFew, kExtreme };
    Values anyValues() { return static_cast<Values>(between(0, 2)); }

    void fill(uint8_t* bytes, size_t count, Values values = Values::kAny) {
        const uint8_t base = byte();
        for (size_t i = 0; i < count; ++i) {
            const uint8_t any = byte();
            switch (values) {
                case Values::kAny: bytes[i] = any; break;
                case Values::kFew: bytes[i] = static_cast<uint8_t>(base + any % 3); break;
                case Values::kExtreme: bytes[i] = any & 1U ? 255 : 0; break;
            }
        }
    }

private:
    std::mt19937 engine_;
};
