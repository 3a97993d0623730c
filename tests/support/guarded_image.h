// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// An image with a canary in every byte around the region: random bytes before it, in the margin, in the row padding and
// after it, which are compared with a copy.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "OPCV_dlib.h"
#include "support/image_layout.h"
#include "support/random.h"

class GuardedImage {
public:
    struct Layout {
        int pixelSize = 1;       // bytes
        int margin = 0;          // pixels on each side of the region that belong to the image
        int padding = 0;         // bytes after each row
        int misalignment = 0;    // bytes by which the first row is moved off alignment
    };

    GuardedImage(Random& random, IppiSize size, Layout layout, Random::Values values = Random::Values::kAny)
        : layout_{size, layout.pixelSize, Margin::all(layout.margin), layout.padding},
          first_(kGuard + static_cast<size_t>(layout.misalignment)),
          bytes_(first_ + layout_.bytes() + static_cast<size_t>(layout.padding) + kGuard) {
        random.fill(bytes_.data(), bytes_.size(), values);
        remember();
    }

    // Random padding, of whole pixels, and misalignment.
    static Layout anyLayout(Random& random, int pixelSize, int margin = 0) {
        return {pixelSize, margin, pixelSize * random.between(0, 5), random.between(0, 31)};
    }

    uint8_t* data() { return at(0, 0); }
    const uint8_t* data() const { return at(0, 0); }
    int step() const { return layout_.step(); }
    IppiSize size() const { return layout_.region; }
    int rowBytes() const { return layout_.rowBytes(); }

    // First byte of a pixel; pixels of the margin have negative or large coordinates.
    uint8_t* at(int x, int y) { return bytes_.data() + offsetOf(x, y); }
    const uint8_t* at(int x, int y) const { return bytes_.data() + offsetOf(x, y); }

    // The current contents become the expected ones.
    void remember() { before_ = bytes_; }

    bool untouched() const { return bytes_ == before_; }

    // Whether no byte has changed outside a rectangle of `rowBytes` by `rows` whose corner is `firstByte` bytes into
    // row `firstRow`.
    bool untouchedOutside(int firstByte, int firstRow, int rowBytes, int rows) const {
        std::vector<uint8_t> expected = before_;
        for (int y = firstRow; y < firstRow + rows; ++y)
            for (int x = firstByte; x < firstByte + rowBytes; ++x) {
                const size_t i = offsetOf(0, y) + static_cast<size_t>(x);
                expected[i] = bytes_[i];
            }
        return expected == bytes_;
    }
    bool untouchedOutsideRegion() const { return untouchedOutside(0, 0, rowBytes(), size().height); }

private:
    static constexpr size_t kGuard = 64;

    size_t offsetOf(int x, int y) const {
        return static_cast<size_t>(static_cast<ptrdiff_t>(first_) + layout_.offsetOf(x, y));
    }

    ImageLayout layout_;
    size_t first_;    // byte of the margin
    std::vector<uint8_t> bytes_;
    std::vector<uint8_t> before_;
};
