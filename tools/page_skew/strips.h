// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The ink of a page, counted in narrow strips, and its profiles along lines of any slope.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "shapes.h"

namespace page_skew {

// The page is also looked at in two columns and three rows of windows.
constexpr int kWindowColumns = 2;
constexpr int kWindowRows = 3;
constexpr int kWindows = kWindowColumns * kWindowRows;

// How distinct lines and the paper between them are.
struct Sharpness {
    double page = 0;     // squared differences of neighbouring rows, added up
    double steps = 0;    // the differences themselves, added up: long lines count less
    std::array<double, kWindows> windows{};
};

// The ink of each row, of both halves of the page. Kept from call to call, so that a search allocates them once.
struct Profiles {
    std::vector<uint16_t> left, right;
};

class Strips {
public:
    // Strips of 8 columns of the page, or of the page turned by a quarter to the right.
    static Strips along(const Shapes& ink);
    static Strips across(const Shapes& ink);

    // Two strips and two rows each become one.
    Strips halved() const;

    // How many rows a line that falls by one pixel for each pixel to the right falls from one strip to the next.
    double aspect() const { return static_cast<double>(columns_) / rows_; }

    // Along lines that fall by `slope` rows from one strip to the next.
    Sharpness sharpnessAt(double slope, Profiles& profiles) const;

private:
    Strips(int columns, int rows, int count, int height);

    uint8_t* strip(int i) { return ink_.data() + ptrdiff_t{i} * height_; }
    const uint8_t* strip(int i) const { return ink_.data() + ptrdiff_t{i} * height_; }
    void addUp(int first, int last, double slope, std::vector<uint16_t>& profile) const;

    int columns_, rows_;    // pixels of the page that are counted together
    int count_, height_;
    std::vector<uint8_t> ink_;    // one strip after the other
};

}    // namespace page_skew
