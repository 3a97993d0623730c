// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "grey_image.h"

#include <cmath>

namespace page_skew {

namespace {

constexpr double kWorkingPixels = 1240.0 * 1754.0;    // an A4 page at 150 dots per inch
constexpr double kSmallPage = 640.0 * 905.0;          // A4 at 77: letters are 3 pixels high, too few to binarise
constexpr int kRedWeight = 77;                        // BT.601 in 8 bits
constexpr int kGreenWeight = 150;
constexpr int kBlueWeight = 29;

void readBits(const uint8_t* from, int width, uint8_t* to) {
    for (int x = 0; x < width; ++x) to[x] = (from[x >> 3] & 0x80 >> (x & 7)) != 0 ? 255 : 0;
}

template <int kBytes>
void readColour(const uint8_t* from, int width, uint8_t* to) {
    for (int x = 0; x < width; ++x, from += kBytes)
        to[x] =
            static_cast<uint8_t>((kRedWeight * from[0] + kGreenWeight * from[1] + kBlueWeight * from[2] + 128) >> 8);
}

// The rows of a page in grey.
class GreyRows {
public:
    explicit GreyRows(const KVIMG& page) : page_(page), grey_(page.depth == 8 ? 0 : static_cast<size_t>(page.width)) {}

    // Valid until the next call.
    const uint8_t* row(int y) {
        const uint8_t* from = page_.data + ptrdiff_t{y} * page_.rowBytes;
        switch (page_.depth) {
            case 1: readBits(from, page_.width, grey_.data()); break;
            case 24: readColour<3>(from, page_.width, grey_.data()); break;
            case 32: readColour<4>(from, page_.width, grey_.data()); break;
            default: return from;
        }
        return grey_.data();
    }

private:
    const KVIMG& page_;
    std::vector<uint8_t> grey_;
};

// to[x]: the mean of `factor` columns from `factor` rows, whose sums these are.
template <int kFactor>
void reduceColumns(const uint16_t* sums, int factor, int width, uint8_t* to) {
    const int columns = kFactor > 0 ? kFactor : factor;
    const float scale = 1.0F / static_cast<float>(columns * columns);
    for (int x = 0; x < width; ++x, sums += columns) {
        int total = 0;
        for (int i = 0; i < columns; ++i) total += sums[i];
        to[x] = static_cast<uint8_t>(static_cast<float>(total) * scale + 0.5F);
    }
}

// The mean of each square of `factor` by `factor` pixels; what is left over at the right and the bottom is dropped.
GreyImage reduced(const KVIMG& page, int factor) {
    GreyImage small(page.width / factor, page.height / factor);
    GreyRows rows(page);
    std::vector<uint16_t> sums(static_cast<size_t>(page.width));
    for (int y = 0; y < small.height; ++y) {
        std::fill(sums.begin(), sums.end(), uint16_t{0});
        for (int i = 0; i < factor; ++i) {
            const uint8_t* from = rows.row(y * factor + i);
            for (size_t x = 0; x < sums.size(); ++x) sums[x] = static_cast<uint16_t>(sums[x] + from[x]);
        }
        (factor == 2 ? reduceColumns<2> : reduceColumns<0>)(sums.data(), factor, small.width, small.row(y));
    }
    return small;
}

// Twice as wide and high; between two pixels comes their mean.
GreyImage doubled(const GreyImage& small) {
    GreyImage large(small.width * 2, small.height * 2);
    for (int y = 0; y < large.height; ++y) {
        uint8_t* to = large.row(y);
        const int above = y / 2;
        const int below = above + y % 2;
        for (int x = 0; x < small.width; ++x) {
            const int left = small.at(x, above) + small.at(x, below);
            const int right = small.at(x + 1, above) + small.at(x + 1, below);
            to[2 * x] = static_cast<uint8_t>((left + 1) / 2);
            to[2 * x + 1] = static_cast<uint8_t>((left + right + 2) / 4);
        }
    }
    return large;
}

}    // namespace

GreyImage workingImageOf(const KVIMG& page) {
    const double pixels = static_cast<double>(page.width) * page.height;
    const int wanted = static_cast<int>(std::lround(std::sqrt(pixels / kWorkingPixels)));
    const int factor = std::max(1, std::min({wanted, page.width, page.height}));
    GreyImage image = reduced(page, factor);
    return pixels < kSmallPage ? doubled(image) : image;
}

}    // namespace page_skew
