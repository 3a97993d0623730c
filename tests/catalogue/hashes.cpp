// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "catalogue/hashes.h"

#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

class Fnv1a {
public:
    void add(uint8_t byte) { hash_ = (hash_ ^ byte) * 0x100000001B3U; }
    void add(int value) {
        for (unsigned shift = 0; shift < 32; shift += 8)
            add(static_cast<uint8_t>(static_cast<unsigned>(value) >> shift));
    }
    void add(const std::string& text) {
        for (const char c : text) add(static_cast<uint8_t>(c));
    }
    uint64_t value() const { return hash_; }

private:
    uint64_t hash_ = 0xCBF29CE484222325U;
};

struct Result {
    int status;
    Bytes output;
};

Result resultOf(const Entry& entry, const Case::Setting& setting) {
    Heap heap;
    Case c(setting, heap);
    entry.prepare(c);
    c.restore();
    const int status = c.run();
    return {status, c.takeOutput()};
}

template <class T>
void project(const Bytes& output, Random& weights, Projection& onto) {
    for (size_t i = 0; i + sizeof(T) <= output.size(); i += sizeof(T)) {
        T value;
        std::memcpy(&value, output.data() + i, sizeof(value));
        const double weighted = weights.between(-1000, 1000) * double{value};
        onto.sum += weighted;
        onto.norm += weighted * weighted;
    }
}

}    // namespace

// The seed depends on the function's name, not on its position in the catalogue.
Case::Setting settingOf(const Entry& entry, int batch, int call) {
    Fnv1a seed;
    seed.add(entry.name);
    seed.add(batch * kCallsInBatch + call);
    Case::Setting setting;
    setting.seed = static_cast<unsigned>(seed.value() >> 32U);
    Random random(setting.seed);
    setting.variant = random.between(0, entry.variants - 1);
    const bool large = random.chance(6);
    setting.size = {random.between(1, large ? 400 : 90), random.between(1, large ? 60 : 20)};
    return setting;
}

uint64_t hashOf(const Entry& entry, int batch) {
    Fnv1a hash;
    for (int call = 0; call < kCallsInBatch; ++call) {
        const Result result = resultOf(entry, settingOf(entry, batch, call));
        hash.add(result.status);
        hash.add(static_cast<int>(result.output.size()));
        for (const uint8_t byte : result.output) hash.add(byte);
    }
    return hash.value();
}

Projection projectionOf(const Entry& entry, int batch) {
    Projection projection;
    Random weights(static_cast<unsigned>(batch));
    for (int call = 0; call < kCallsInBatch; ++call) {
        const Result result = resultOf(entry, settingOf(entry, batch, call));
        if (entry.output == Entry::Output::kFloats)
            project<float>(result.output, weights, projection);
        else
            project<double>(result.output, weights, projection);
    }
    projection.norm = std::sqrt(projection.norm);
    return projection;
}

std::string lineOf(const Entry& entry) {
    std::string line = entry.name;
    std::array<char, 40> text{};
    for (int batch = 0; batch < kBatches; ++batch) {
        if (entry.output == Entry::Output::kExact)
            std::snprintf(text.data(), text.size(), " %016llx", static_cast<unsigned long long>(hashOf(entry, batch)));
        else
            std::snprintf(text.data(), text.size(), " %.17g", projectionOf(entry, batch).sum);
        line += text.data();
    }
    return line;
}
