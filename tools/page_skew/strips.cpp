// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "strips.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace page_skew {

namespace {

constexpr int kStripColumns = 8;

int stripsIn(int length) { return (length + kStripColumns - 1) / kStripColumns; }

}    // namespace

Strips::Strips(int columns, int rows, int count, int height)
    : columns_(columns),
      rows_(rows),
      count_(count),
      height_(height),
      ink_(static_cast<size_t>(count) * static_cast<size_t>(height)) {}

Strips Strips::along(const Shapes& ink) {
    Strips strips(kStripColumns, 1, stripsIn(ink.width()), ink.height());
    for (int y = 0; y < ink.height(); ++y)
        for (const Run* run = ink.begin(y); run < ink.end(y); ++run)
            for (int x = run->start; x < run->end;) {
                const int end = std::min(run->end, (x / kStripColumns + 1) * kStripColumns);
                uint8_t& count = strips.strip(x / kStripColumns)[y];
                count = static_cast<uint8_t>(count + end - x);
                x = end;
            }
    return strips;
}

Strips Strips::across(const Shapes& ink) {
    Strips strips(kStripColumns, 1, stripsIn(ink.height()), ink.width());
    for (int y = 0; y < ink.height(); ++y) {
        uint8_t* strip = strips.strip((ink.height() - 1 - y) / kStripColumns);
        for (const Run* run = ink.begin(y); run < ink.end(y); ++run)
            for (int x = run->start; x < run->end; ++x) ++strip[x];
    }
    return strips;
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
    profile.assign(static_cast<size_t>(height_), 0);
    for (int i = first; i < last; ++i) {
        const int shift = static_cast<int>(std::lround(slope * (i + 0.5 - count_ * 0.5)));
        const int start = std::clamp(-shift, 0, height_);
        const int end = std::clamp(height_ - shift, start, height_);
        const uint8_t* from = strip(i) + start + shift;
        uint16_t* to = profile.data() + start;
        for (int y = 0; y < end - start; ++y) to[y] = static_cast<uint16_t>(to[y] + from[y]);
    }
}

Sharpness Strips::sharpnessAt(double slope, Profiles& profiles) const {
    auto& [left, right] = profiles;
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
