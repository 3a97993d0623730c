// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "ink.h"

#include <array>

#include "paper.h"

namespace page_skew {

namespace {

constexpr int kPaperLevel = 200;        // pixels are scaled so that the paper has this level
constexpr int kLowestThreshold = 60;    // in that scale
constexpr int kHighestThreshold = 180;
constexpr int kSampledRows = 8;    // one row in so many is counted

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

Shapes darkerThanPaper(const GreyImage& page, const Paper& paper, int threshold) {
    Shapes shapes(page.width, page.height);
    std::vector<uint8_t> light(static_cast<size_t>(page.width));
    std::vector<uint8_t> dark(light.size());
    for (int y = 0; y < page.height; ++y) {
        paper.row(y, light.data());
        const uint8_t* from = page.row(y);
        for (size_t x = 0; x < light.size(); ++x) dark[x] = from[x] * kPaperLevel < light[x] * threshold ? 1 : 0;
        shapes.addRow(dark.data());
    }
    return shapes;
}

}    // namespace

Ink inkOf(const GreyImage& page) {
    const Paper paper(page);
    const Split split = splitOf(countLevels(page, paper));
    Ink ink{darkerThanPaper(page, paper, std::clamp(split.threshold, kLowestThreshold, kHighestThreshold)),
            split.contrast};
    ink.shapes.removeBorderAndSolids();
    return ink;
}

}    // namespace page_skew
