// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The connected shapes of ink on a page.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace page_skew {

// Columns of one row that are ink, `end` excluded.
struct Run {
    int start, end;
};

// A shape and the box around it, `right` and `bottom` excluded.
struct Shape {
    int left, top, right, bottom;
};

class Shapes {
public:
    Shapes(int width, int height);

    // The next row, one byte a pixel: 1 for ink, 0 for paper. All rows of the page must be added.
    void addRow(const uint8_t* row);

    // Removes the shapes that touch the border, and those that contain a solid square.
    void removeBorderAndSolids();

    int width() const { return width_; }
    int height() const { return height_; }
    const Run* begin(int y) const { return runs_.data() + rows_[static_cast<size_t>(y)]; }
    const Run* end(int y) const { return runs_.data() + rows_[static_cast<size_t>(y) + 1]; }

    // Those that are left, after the removal.
    const std::vector<Shape>& shapes() const { return shapes_; }

    int64_t area() const;

private:
    size_t rootOf(size_t run);
    void join(size_t a, size_t b);
    void joinWithRowAbove(int y);
    void countSolids(int y);
    void markSolid(int x, int y);

    int width_, height_;
    std::vector<Run> runs_;          // row by row
    std::vector<size_t> rows_;       // the first run of each row, and the end
    std::vector<size_t> parents_;    // runs of one shape form a tree (union-find)
    std::vector<bool> removed_;      // of roots
    std::vector<uint8_t> full_;      // of the blocks of a band of rows: 1 if all of its pixels are ink so far
    std::vector<int> fullAbove_;     // how many blocks above one another are full
    std::vector<Run> solids_;        // start: column, end: row of a pixel in a solid square
    std::vector<Shape> shapes_;
};

}    // namespace page_skew
