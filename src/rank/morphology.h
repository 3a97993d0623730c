// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Largest and smallest pixels under a mask, directly from the caller's rows.
#pragma once

#include <cstddef>
#include <cstdint>

#include "OPCV_dlib.h"

namespace opcv {

enum class Extremum { kMax, kMin };

// Bytes of a source and a destination that do not overlap; `src` is the corner of the first window.
struct WindowRows {
    const uint8_t* src;
    ptrdiff_t srcStep;
    uint8_t* dst;
    ptrdiff_t dstStep;
    ptrdiff_t width;
    ptrdiff_t height;
};

constexpr int kLargestRectangleSide = 64;
constexpr int kMostMaskCells = 256;

// Under a rectangle with sides up to kLargestRectangleSide. Reads only bytes of the windows.
void filterUnderRectangle(const WindowRows& rows, IppiSize rectangle, Extremum extremum);

// Under up to kMostMaskCells cells, given by their distance in bytes from the window's corner; at least one. Reads only
// bytes that cells select.
void filterUnderCells(const WindowRows& rows, const ptrdiff_t* cells, int count, Extremum extremum);

}    // namespace opcv
