// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "ink.h"

#include <array>
#include <cstring>

#include "paper.h"

namespace page_skew {

namespace {

constexpr int kPaperLevel = 200;        // pixels are scaled so that the paper has this level
constexpr int kLowestThreshold = 60;    // in that scale
constexpr int kHighestThreshold = 180;
constexpr int kSampledRows = 8;    // one row in so many is counted
constexpr int kSolid = 6;          // sides of a solid square, in squares of 4 pixels

using Histogram = std::array<int, kPaperLevel + 1>;

Histogram countLevels(const GreyImage& page, const Paper& paper) {
    Histogram counts{};
    std::vector<uint8_t> light(static_cast<size_t>(page.width));
    for (int y = kSampledRows / 2; y < page.height; y += kSampledRows) {
        paper.row(y, light.data());
        const uint8_t* from = page.row(y);
        for (size_t x = 0; x < light.size(); ++x)
            ++counts[static_cast<size_t>(std::min(kPaperLevel, from[x] * kPaperLevel / std::max<int>(1, light[x])))];
    }
    return counts;
}

struct Split {
    int threshold = kPaperLevel / 2;
    double contrast = 0;
};

// Otsu's threshold, and the distance of the means of the two classes.
Split splitOf(const Histogram& counts) {
    double count = 0;
    double sum = 0;
    for (size_t level = 0; level < counts.size(); ++level) {
        count += counts[level];
        sum += static_cast<double>(level) * counts[level];
    }
    Split split;
    double below = 0;
    double sumBelow = 0;
    double best = 0;
    for (size_t level = 0; level < counts.size(); ++level) {
        below += counts[level];
        sumBelow += static_cast<double>(level) * counts[level];
        if (below == 0 || below == count) continue;
        const double distance = (sum - sumBelow) / (count - below) - sumBelow / below;
        const double variance = below * (count - below) * distance * distance;
        if (variance <= best) continue;
        best = variance;
        split = {static_cast<int>(level), distance / kPaperLevel};
    }
    return split;
}

// Packs bytes of 0 or 1 into the words of Leptonica, which has the leftmost pixel in the top bit. The product moves the
// lowest bits of eight bytes into its top byte, the first one to the top.
void packRow(const uint8_t* bytes, int words, l_uint32* to) {
    for (int word = 0; word < words; ++word) {
        uint32_t packed = 0;
        for (int i = 0; i < 4; ++i, bytes += 8) {
            uint64_t eight;
            std::memcpy(&eight, bytes, sizeof(eight));
            packed = packed << 8 | static_cast<uint32_t>(eight * 0x8040201008040201U >> 56);
        }
        to[word] = packed;
    }
}

PixPtr darkerThanPaper(const GreyImage& page, const Paper& paper, int threshold) {
    PixPtr bits = owned(pixCreate(page.width, page.height, 1));
    const int words = pixGetWpl(bits.get());
    std::vector<uint8_t> light(static_cast<size_t>(page.width));
    std::vector<uint8_t> dark(static_cast<size_t>(words) * 32);
    for (int y = 0; y < page.height; ++y) {
        paper.row(y, light.data());
        const uint8_t* from = page.row(y);
        for (size_t x = 0; x < light.size(); ++x) dark[x] = from[x] * kPaperLevel < light[x] * threshold ? 1 : 0;
        packRow(dark.data(), words, pixGetData(bits.get()) + ptrdiff_t{y} * words);
    }
    return bits;
}

// Everything that is connected with a solid square.
PixPtr solidIn(PIX* bits) {
    const PixPtr full = owned(pixReduceRankBinaryCascade(bits, 4, 4, 0, 0));    // squares of 4 x 4 pixels of ink only
    const PixPtr squares = owned(pixOpenBrick(nullptr, full.get(), kSolid, kSolid));
    const PixPtr seeds = owned(pixExpandReplicate(squares.get(), 4));
    return owned(pixSeedfillBinary(nullptr, seeds.get(), bits, 8));
}

}    // namespace

Ink inkOf(const GreyImage& page) {
    const Paper paper(page);
    const Split split = splitOf(countLevels(page, paper));
    const int threshold = std::clamp(split.threshold, kLowestThreshold, kHighestThreshold);
    const PixPtr all = darkerThanPaper(page, paper, threshold);
    const PixPtr inside = owned(pixRemoveBorderConnComps(all.get(), 8));
    const PixPtr solid = solidIn(inside.get());
    return {owned(pixSubtract(nullptr, inside.get(), solid.get())), split.contrast};
}

}    // namespace page_skew
