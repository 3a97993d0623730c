// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "grey.h"

#include <array>

Grey greyOf(const KVIMG& page) {
    Grey grey{page.width, page.height, page.rowBytes, page.data, {}};
    if (page.depth == 8) return grey;
    grey.step = page.width;
    grey.own.resize(static_cast<size_t>(page.width) * static_cast<size_t>(page.height));
    uint8_t* to = grey.own.data();
    for (int y = 0; y < page.height; ++y) {
        const uint8_t* from = page.data + ptrdiff_t{y} * page.rowBytes;
        for (int x = 0; x < page.width; ++x, from += 3)
            *to++ = static_cast<uint8_t>((77 * from[0] + 150 * from[1] + 29 * from[2] + 128) >> 8);
    }
    grey.pixels = grey.own.data();
    return grey;
}

int otsuThreshold(const Grey& grey) {
    std::array<double, 256> histogram{};
    double sum = 0;
    for (int y = 0; y < grey.height; ++y)
        for (int x = 0; x < grey.width; ++x) {
            const uint8_t level = grey.pixels[ptrdiff_t{y} * grey.step + x];
            histogram[level] += 1;
            sum += level;
        }
    const double count = static_cast<double>(grey.width) * grey.height;
    double below = 0;
    double sumBelow = 0;
    double best = -1;
    int threshold = 127;
    for (int level = 0; level < 255; ++level) {
        below += histogram[static_cast<size_t>(level)];
        sumBelow += level * histogram[static_cast<size_t>(level)];
        if (below == 0 || below == count) continue;
        const double distance = sumBelow / below - (sum - sumBelow) / (count - below);
        const double variance = below * (count - below) * distance * distance;
        if (variance > best) {
            best = variance;
            threshold = level;
        }
    }
    return threshold;
}

Bits reduced(const Grey& grey, int threshold) {
    Bits bits{grey.width, grey.height, (grey.width + 31) / 32 * 4, {}};
    bits.bytes.assign(static_cast<size_t>(bits.step) * static_cast<size_t>(bits.height), 0xFF);
    require(IPPShare_ippiReduceBits_8u1u_C1R(grey.pixels, grey.step, bits.bytes.data(), bits.step, 0,
                                             {grey.width, grey.height}, 0, 0, 0, static_cast<uint8_t>(threshold)),
            "reducing to 1 bit");
    return bits;
}
