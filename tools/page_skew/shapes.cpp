// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "shapes.h"

#include <algorithm>
#include <cstring>

namespace page_skew {

namespace {

constexpr int kBlock = 4;    // pixels
constexpr int kSolid = 6;    // blocks: no stroke of a letter is as wide, at about 150 dots per inch

const uint8_t* findByte(const uint8_t* from, const uint8_t* end, int value) {
    const void* found = from < end ? std::memchr(from, value, static_cast<size_t>(end - from)) : nullptr;
    return found ? static_cast<const uint8_t*>(found) : end;
}

}    // namespace

Shapes::Shapes(int width, int height)
    : width_(width), height_(height), rows_{0}, full_(static_cast<size_t>(width / kBlock)), fullAbove_(full_.size()) {
    rows_.reserve(static_cast<size_t>(height) + 1);
}

void Shapes::addRow(const uint8_t* row) {
    const int y = static_cast<int>(rows_.size()) - 1;
    const uint8_t* const end = row + width_;
    for (const uint8_t* at = findByte(row, end, 1); at < end;) {
        const uint8_t* const stop = findByte(at, end, 0);
        runs_.push_back({static_cast<int>(at - row), static_cast<int>(stop - row)});
        parents_.push_back(parents_.size());
        at = findByte(stop, end, 1);
    }
    rows_.push_back(runs_.size());
    if (y > 0) joinWithRowAbove(y);

    if (y % kBlock == 0) std::fill(full_.begin(), full_.end(), uint8_t{1});
    for (size_t block = 0; block < full_.size(); ++block, row += kBlock)
        full_[block] &= row[0] & row[1] & row[2] & row[3];
    if (y % kBlock == kBlock - 1) countSolids(y);
}

size_t Shapes::rootOf(size_t run) {
    while (parents_[run] != run) {
        parents_[run] = parents_[parents_[run]];
        run = parents_[run];
    }
    return run;
}

void Shapes::join(size_t a, size_t b) {
    a = rootOf(a);
    b = rootOf(b);
    parents_[std::max(a, b)] = std::min(a, b);
}

// Runs that overlap or touch at a corner belong together.
void Shapes::joinWithRowAbove(int y) {
    size_t above = rows_[static_cast<size_t>(y) - 1];
    const size_t endAbove = rows_[static_cast<size_t>(y)];
    for (size_t run = endAbove; run < runs_.size(); ++run) {
        while (above < endAbove && runs_[above].end < runs_[run].start) ++above;
        for (size_t i = above; i < endAbove && runs_[i].start <= runs_[run].end; ++i) join(i, run);
    }
}

// A solid square ends at row y where kSolid blocks in a row have as many full blocks above one another.
void Shapes::countSolids(int y) {
    int wide = 0;
    for (size_t block = 0; block < full_.size(); ++block) {
        fullAbove_[block] = full_[block] != 0 ? fullAbove_[block] + 1 : 0;
        wide = fullAbove_[block] >= kSolid ? wide + 1 : 0;
        if (wide == kSolid) solids_.push_back({static_cast<int>(block) * kBlock, y});
    }
}

void Shapes::markSolid(int x, int y) {
    const Run* run = std::upper_bound(begin(y), end(y), x, [](int column, const Run& r) { return column < r.end; });
    removed_[rootOf(static_cast<size_t>(run - runs_.data()))] = true;
}

void Shapes::removeBorderAndSolids() {
    removed_.assign(runs_.size(), false);
    for (const Run& solid : solids_) markSolid(solid.start, solid.end);
    for (int y = 0; y < height_; ++y)
        for (const Run* run = begin(y); run < end(y); ++run)
            if (run->start == 0 || run->end == width_ || y == 0 || y == height_ - 1)
                removed_[rootOf(static_cast<size_t>(run - runs_.data()))] = true;

    std::vector<size_t> shapeOf(runs_.size());    // of roots: the place in shapes_, from 1
    size_t kept = 0;
    for (size_t y = 0, run = 0; y < static_cast<size_t>(height_); ++y) {
        const size_t stop = rows_[y + 1];
        const int row = static_cast<int>(y);
        for (; run < stop; ++run) {
            const size_t root = rootOf(run);
            if (removed_[root]) continue;
            const Run here = runs_[run];
            if (shapeOf[root] == 0) {
                shapes_.push_back({here.start, row, here.end, row + 1});
                shapeOf[root] = shapes_.size();
            }
            Shape& shape = shapes_[shapeOf[root] - 1];
            shape = {std::min(shape.left, here.start), shape.top, std::max(shape.right, here.end), row + 1};
            runs_[kept++] = here;
        }
        rows_[y + 1] = kept;
    }
    runs_.resize(kept);
}

int64_t Shapes::area() const {
    int64_t sum = 0;
    for (const Run& run : runs_) sum += run.end - run.start;
    return sum;
}

}    // namespace page_skew
