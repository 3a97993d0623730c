// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Images for which the result of a bilateral filter depends on the order of its sums.
#pragma once

#include <cstdint>
#include <vector>

// Neighbourhoods whose mean falls to the other side of a half when it is summed up in raster order instead of four
// cells at a time, as happens in the last columns of a view: about one in a hundred thousand does.
struct Neighbourhood {
    int radius;
    int strength;
    std::vector<int> cells;    // within the radius, in raster order
};

inline const std::vector<Neighbourhood> kNeighbourhoods = {
    {1, 2, {199, 190, 180, 199, 192}},
    {1, 2, {118, 113, 129, 106, 132}},
    {1, 2, {198, 207, 188, 207, 200}},
    {1, 2, {180, 154, 177, 161, 166}},
    {2, 7, {159, 145, 142, 160, 163, 152, 143, 158, 163, 155, 145, 158, 164}},
    {2, 7, {156, 148, 153, 150, 143, 146, 146, 163, 148, 146, 171, 153, 144}},
    {2, 7, {178, 176, 191, 170, 166, 171, 170, 184, 171, 165, 180, 170, 184}},
    {2, 7, {199, 189, 186, 187, 189, 176, 182, 187, 176, 202, 196, 204, 188}},
};

// Rows just high enough for one row of results, grey but for the neighbourhood.
inline std::vector<uint8_t> imageOf(const Neighbourhood& neighbourhood, int width, int column) {
    const int radius = neighbourhood.radius;
    std::vector<uint8_t> image(static_cast<size_t>(width * (2 * radius + 1)), 150);
    size_t cell = 0;
    for (int j = -radius; j <= radius; ++j)
        for (int i = -radius; i <= radius; ++i)
            if (i * i + j * j <= radius * radius)
                image.data()[(radius + j) * width + column + i] = static_cast<uint8_t>(neighbourhood.cells[cell++]);
    return image;
}
