// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "strips.h"

#include <algorithm>
#include <bitset>
#include <cmath>

namespace page_skew {

namespace {

constexpr int kStripColumns = 8;    // one byte of a row of bits

}    // namespace

Strips::Strips(int columns, int rows, int count, int height)
    : columns_(columns),
      rows_(rows),
      count_(count),
      height_(height),
      ink_(static_cast<size_t>(count) * static_cast<size_t>(height)) {}

Strips::Strips(PIX* ink)
    : Strips(kStripColumns, 1, (pixGetWidth(ink) + kStripColumns - 1) / kStripColumns, pixGetHeight(ink)) {
    for (int y = 0; y < height_; ++y) {
        const l_uint32* line = pixGetData(ink) + ptrdiff_t{y} * pixGetWpl(ink);
        for (int i = 0; i < count_; ++i)
            strip(i)[y] = static_cast<uint8_t>(std::bitset<kStripColumns>(GET_DATA_BYTE(line, i)).count());
    }
}

Strips Strips::halved() const {
    Strips half(columns_ * 2, rows_ * 2, (count_ + 1) / 2, height_ / 2);
    for (int i = 0; i < count_; ++i) {
        const uint8_t* from = strip(i);
        uint8_t* to = half.strip(i / 2);
        for (int y = 0; y < half.height_; ++y) to[y] = static_cast<uint8_t>(to[y] + from[2 * y] + from[2 * y + 1]);
    }
    return half;
}

// Adds the strips to the profile, each moved so that the lines through the middle of the page stay where they are.
void Strips::addUp(int first, int last, double slope, std::vector<uint16_t>& profile) const {
    std::fill(profile.begin(), profile.end(), uint16_t{0});
    for (int i = first; i < last; ++i) {
        const int shift = static_cast<int>(std::lround(slope * (i + 0.5 - count_ * 0.5)));
        const int start = std::clamp(-shift, 0, height_);
        const int end = std::clamp(height_ - shift, start, height_);
        const uint8_t* from = strip(i) + start + shift;
        uint16_t* to = profile.data() + start;
        for (int y = 0; y < end - start; ++y) to[y] = static_cast<uint16_t>(to[y] + from[y]);
    }
}

Sharpness Strips::sharpnessAt(double slope) const {
    std::vector<uint16_t> left(static_cast<size_t>(height_));
    std::vector<uint16_t> right(static_cast<size_t>(height_));
    addUp(0, count_ / 2, slope, left);
    addUp(count_ / 2, count_, slope, right);
    Sharpness sharpness;
    for (int row = 0; row < kWindowRows; ++row) {
        const int end = height_ * (row + 1) / kWindowRows;
        int64_t ofLeft = 0;
        int64_t ofRight = 0;
        int64_t ofBoth = 0;
        int64_t steps = 0;
        for (int y = std::max(1, height_ * row / kWindowRows); y < end; ++y) {
            const auto i = static_cast<size_t>(y);
            const int32_t l = left[i] - left[i - 1];
            const int32_t r = right[i] - right[i - 1];
            ofLeft += l * l;
            ofRight += r * r;
            ofBoth += (l + r) * (l + r);
            steps += std::abs(l + r);
        }
        sharpness.page += static_cast<double>(ofBoth);
        sharpness.steps += static_cast<double>(steps);
        sharpness.windows[static_cast<size_t>(row) * kWindowColumns] = static_cast<double>(ofLeft);
        sharpness.windows[static_cast<size_t>(row) * kWindowColumns + 1] = static_cast<double>(ofRight);
    }
    return sharpness;
}

}    // namespace page_skew
