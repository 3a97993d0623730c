// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Medians by their definition, one pixel at a time.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace oracle {

// The middle one of an odd number of values.
inline uint8_t middleOf(std::vector<uint8_t> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// `reach` is 1 for a 3x3 cross and 2 for a 5x5 one.
inline uint8_t crossMedian(const uint8_t* centre, int step, int reach) {
    std::vector<uint8_t> values = {*centre};
    for (int i = 1; i <= reach; ++i)
        values.insert(values.end(), {centre[-i], centre[i], centre[-ptrdiff_t{i} * step], centre[ptrdiff_t{i} * step]});
    return middleOf(values);
}

inline uint8_t weightedMedian(const uint8_t* centre, int step, int weight) {
    std::vector<uint8_t> values(static_cast<size_t>(weight - 1), *centre);
    for (int j = -1; j <= 1; ++j)
        for (int i = -1; i <= 1; ++i) values.push_back(centre[ptrdiff_t{j} * step + i]);
    return middleOf(values);
}

// Median of the m x m samples from `corner` on; `pixelSize` bytes apart.
inline uint8_t squareMedian(const uint8_t* corner, int step, int m, int pixelSize) {
    std::vector<uint8_t> values;
    for (int j = 0; j < m; ++j)
        for (int i = 0; i < m; ++i) values.push_back(corner[ptrdiff_t{j} * step + ptrdiff_t{i} * pixelSize]);
    return middleOf(values);
}

// Scores of the nine candidates of a colour median, in raster order.
struct ColorWindow {
    ColorWindow(const uint8_t* centre, int step) {
        for (int k = 0; k < 9; ++k) pixel[k] = centre + ptrdiff_t{k / 3 - 1} * step + 3 * (k % 3 - 1);
        for (int k = 0; k < 9; ++k)
            for (const uint8_t* other : pixel)
                for (int c = 0; c < 3; ++c) score[k] += std::abs(pixel[k][c] - other[c]);
    }
    const uint8_t* winner() const { return pixel[std::min_element(score, score + 9) - score]; }

    const uint8_t* pixel[9];
    int score[9] = {};
};

}    // namespace oracle
