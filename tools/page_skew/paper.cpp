// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "paper.h"

#include <array>

namespace page_skew {

namespace {

constexpr int kTile = 32;    // pixels; more than the distance of two lines of text
constexpr int kBlock = 4;    // pixels that are averaged first, against noise
constexpr int kBlocks = kTile / kBlock;

int tilesAlong(int length) { return (length + kTile - 1) / kTile; }

// The sums of kBlock by kBlock pixels below row `top`: to[y][x].
void sumBlocks(const GreyImage& page, int top, int rows, std::array<std::vector<uint16_t>, kBlocks>& to) {
    for (int y = 0; y < rows; ++y) {
        std::vector<uint16_t>& sums = to[static_cast<size_t>(y)];
        std::fill(sums.begin(), sums.end(), uint16_t{0});
        for (int i = 0; i < kBlock; ++i) {
            const uint8_t* from = page.row(top + y * kBlock + i);
            for (uint16_t& sum : sums) {
                sum = static_cast<uint16_t>(sum + from[0] + from[1] + from[2] + from[3]);
                from += kBlock;
            }
        }
    }
}

// The last tile of a row or a column is moved back into the page, so that it is a whole one.
GreyImage measureTiles(const GreyImage& page) {
    GreyImage tiles(tilesAlong(page.width), tilesAlong(page.height));
    const int columns = page.width / kBlock;
    const int rows = std::min(kBlocks, page.height / kBlock);
    std::array<std::vector<uint16_t>, kBlocks> sums;
    for (std::vector<uint16_t>& row : sums) row.resize(static_cast<size_t>(columns));
    std::vector<uint16_t> blocks;
    for (int y = 0; y < tiles.height; ++y) {
        sumBlocks(page, std::min(y * kTile, std::max(0, page.height - kTile)), rows, sums);
        for (int x = 0; x < tiles.width; ++x) {
            const int left = std::min(x * kBlocks, std::max(0, columns - kBlocks));
            const int right = std::min(columns, left + kBlocks);
            blocks.clear();
            for (int i = 0; i < rows; ++i)
                blocks.insert(blocks.end(), sums[static_cast<size_t>(i)].begin() + left,
                              sums[static_cast<size_t>(i)].begin() + right);
            const auto upper = blocks.begin() + static_cast<ptrdiff_t>(blocks.size() * 3 / 4);
            std::nth_element(blocks.begin(), upper, blocks.end());
            tiles.row(y)[x] = static_cast<uint8_t>((*upper + kBlock * kBlock / 2) / (kBlock * kBlock));
        }
    }
    return tiles;
}

// The median of each tile and its neighbours: a tile full of ink takes the level of the paper around it.
GreyImage smoothed(const GreyImage& tiles) {
    GreyImage result(tiles.width, tiles.height);
    std::array<uint8_t, 9> window{};
    for (int y = 0; y < tiles.height; ++y)
        for (int x = 0; x < tiles.width; ++x) {
            size_t i = 0;
            for (int dy = -1; dy <= 1; ++dy)
                for (int dx = -1; dx <= 1; ++dx) window[i++] = tiles.at(x + dx, y + dy);
            std::nth_element(window.begin(), window.begin() + 5, window.end());
            result.row(y)[x] = window[5];
        }
    return result;
}

}    // namespace

Paper::Paper(const GreyImage& page) : width_(page.width), tiles_(smoothed(measureTiles(page))) {}

void Paper::row(int y, uint8_t* to) const {
    constexpr int kHalf = kTile / 2;
    const int above = (y + kHalf) / kTile - 1;
    const int lower = (y + kHalf) % kTile;    // the weight of the tiles below
    for (int tile = -1; tile < tiles_.width; ++tile) {
        const int left = tiles_.at(tile, above) * (kTile - lower) + tiles_.at(tile, above + 1) * lower;
        const int right = tiles_.at(tile + 1, above) * (kTile - lower) + tiles_.at(tile + 1, above + 1) * lower;
        const int start = tile * kTile + kHalf;
        const int end = std::min(kTile, width_ - start);
        for (int i = std::max(0, -start); i < end; ++i)
            to[start + i] = static_cast<uint8_t>((left * (kTile - i) + right * i) / (kTile * kTile));
    }
}

}    // namespace page_skew
