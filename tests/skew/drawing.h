// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Pages drawn without OpenCV, and calls of the finder.
#pragma once

#include <OPCV_dlib_skew.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

// A grey page: bars for words on lines that fall by `slope` rows in a column.
struct DrawnPage {
    explicit DrawnPage(int columns, int rows, double slope, int leading = 24)
        : width(columns), height(rows), pixels(static_cast<size_t>(columns) * static_cast<size_t>(rows), 235) {
        std::mt19937 random(7);
        for (int line = 3; line < rows / leading - 3; ++line)
            for (int x = columns / 12; x < columns * 11 / 12;) {
                const int letter = 5 + static_cast<int>(random() % 5);
                drawLetter(x, line * leading, letter, slope, leading);
                x += letter + (random() % 6 == 0 ? 11 : 3);
            }
    }

    KVIMG record() { return {pixels.data(), 8, width, height, width, width * height}; }

    int width, height;
    std::vector<uint8_t> pixels;

private:
    void drawLetter(int left, int top, int letter, double slope, int leading) {
        for (int x = left; x < left + letter; ++x)
            for (int y = 0; y < leading / 2; ++y) {
                const int row = top + y + static_cast<int>(std::lround(slope * (x - width / 2)));
                if (row >= 0 && row < height && x < width)
                    pixels[static_cast<size_t>(row) * static_cast<size_t>(width) + static_cast<size_t>(x)] = 40;
            }
    }
};

inline double degreesOf(double slope) { return std::atan(slope) * 180 / 3.14159265358979323846; }

struct Finding {
    OSErr status;
    opcv_skew skew;
};

inline Finding find(const KVIMG& page) {
    Finding finding{};
    finding.skew.struct_size = sizeof(opcv_skew);
    finding.status = opcv_find_skew(&page, &finding.skew);
    return finding;
}
