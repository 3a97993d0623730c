// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Bilinear resize directly into a rectangle of the scaled image, with the same bits as OpenCV.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace opcv {

struct BilinearJob {
    const uint8_t* source;
    ptrdiff_t sourceStep;
    int sourceWidth;    // pixels
    int sourceHeight;
    int channels;
    double xScale;    // source pixels per scaled pixel
    double yScale;
    int x;    // of the rectangle in the scaled image; only the rectangle is computed
    int y;
    int width;
    int height;
    uint8_t* target;    // receives the rectangle; must not overlap the source
    ptrdiff_t targetStep;
};

// The source bytes and weights of every four neighbouring results of a row, in the order in which vectors use them.
struct ColumnTable {
    std::vector<int32_t> firstBytes;    // of a block of source bytes
    std::vector<uint8_t> shuffles;      // of the block into pairs of 16-bit numbers
    std::vector<int16_t> weights;       // of the pairs
};

class BilinearResize {
public:
    // False if four results need more source bytes than a block holds, as in large reductions, or if rows are short.
    static bool canDo(const BilinearJob& job);

    explicit BilinearResize(const BilinearJob& job);

    // Computes some rows of the rectangle.
    void run(int firstRow, int rowCount) const;

private:
    BilinearJob job_;
    ColumnTable columns_;
};

}    // namespace opcv
