// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "blank.h"

#include <algorithm>

#include "background.h"

namespace {

constexpr int kDpi = 100;                // of the small image that is looked at
constexpr int kFaintest = 160;           // ink is darker, after flattening
constexpr int kSpeck = 8;                // pixels of the largest one
constexpr double kLetter = 30;           // pixels of a letter of 10 points
constexpr double kShadowWidth = 0.05;    // of the page

// The mean of each square of `factor` pixels.
Grey shrunk(const Grey& grey, int factor) {
    Grey small{grey.width / factor, grey.height / factor, grey.width / factor, nullptr, {}};
    small.own.reserve(static_cast<size_t>(small.width) * static_cast<size_t>(small.height));
    std::vector<int> sums(static_cast<size_t>(small.width));
    for (int y = 0; y < small.height; ++y) {
        std::fill(sums.begin(), sums.end(), 0);
        for (int i = 0; i < factor; ++i) {
            const uint8_t* from = grey.pixels + ptrdiff_t{y * factor + i} * grey.step;
            for (int& sum : sums)
                for (int j = 0; j < factor; ++j) sum += *from++;
        }
        for (const int sum : sums) small.own.push_back(static_cast<uint8_t>(sum / (factor * factor)));
    }
    small.pixels = small.own.data();
    return small;
}

// Thin and dark along the edges, as a scanner sees beyond the page.
bool isShadow(const IppiRect& box, int pixels, int width, int height) {
    const bool atEdge = box.x == 0 || box.y == 0 || box.x + box.width == width || box.y + box.height == height;
    return atEdge && pixels < kShadowWidth * std::min(width, height) * (box.width + box.height);
}

struct BoxaDeleter {
    void operator()(BOXA* boxes) const { boxaDestroy(&boxes); }
};
struct PixaDeleter {
    void operator()(PIXA* parts) const { pixaDestroy(&parts); }
};

}    // namespace

double blankScore(const Grey& grey, int dpi) {
    const Grey small = shrunk(grey, std::max(1, (dpi + kDpi / 2) / kDpi));
    if (small.own.empty()) return 1;
    const PixPtr ink = owned(pixThresholdToBinary(flattened(pixOf(small)).get(), kFaintest));
    PIXA* found = nullptr;
    const std::unique_ptr<BOXA, BoxaDeleter> boxes(pixConnComp(ink.get(), &found, 8));
    const std::unique_ptr<PIXA, PixaDeleter> parts(found);
    if (!boxes) throw std::bad_alloc();
    double marks = 0;
    for (int i = 0; i < boxaGetCount(boxes.get()); ++i) {
        int pixels = 0;
        pixCountPixels(owned(pixaGetPix(parts.get(), i, L_CLONE)).get(), &pixels, nullptr);
        IppiRect box{};
        boxaGetBoxGeometry(boxes.get(), i, &box.x, &box.y, &box.width, &box.height);
        if (pixels > kSpeck && !isShadow(box, pixels, pixGetWidth(ink.get()), pixGetHeight(ink.get())))
            marks += pixels / kLetter;
    }
    return 1 / (1 + marks);
}
