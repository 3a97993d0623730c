// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "background.h"

namespace {

constexpr int kTileWidth = 10;
constexpr int kTileHeight = 15;
constexpr int kDarkestPaper = 60;    // darker pixels count as ink
constexpr int kLeastPaper = 40;      // pixels of a tile; tiles with less take it from their neighbours
constexpr int kPaper = 230;          // what paper becomes
constexpr int kSmoothing = 2;        // tiles to each side
constexpr int kLeastSide = 4 * kTileHeight;

}    // namespace

PixPtr flattened(PixPtr pix) {
    if (pixGetWidth(pix.get()) < kLeastSide || pixGetHeight(pix.get()) < kLeastSide) return pix;
    PixPtr flat(pixBackgroundNorm(pix.get(), nullptr, nullptr, kTileWidth, kTileHeight, kDarkestPaper, kLeastPaper,
                                  kPaper, kSmoothing, kSmoothing));
    return flat ? std::move(flat) : std::move(pix);    // it finds no paper
}

void flatten(KVIMG& page) { copyPixels(flattened(pixOf(page)).get(), page); }
