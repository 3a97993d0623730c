// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Shared by the filters: the source, its margin and the destination.
#pragma once

#include <optional>

#include "arrays.h"

namespace binding {

// The source of a filter, the region in it, the rectangle that is read, and the destination.
struct Task {
    Image source;
    IppiRect region;
    Margin margin;
    Result result;

    Image first() const { return source.part(region); }
    Image read() const { return source.part(readRect(region, margin)); }
};

Task taskOf(const char* function, const py::array& src, const Form& form, const Region& region, const Margin& margin,
            const Output& out);

// The same for filters whose result must not overlap the pixels that are read.
Task taskApart(const char* function, const py::array& src, const Form& form, const Region& region, const Margin& margin,
               const Output& out);

// The anchor; by default the centre of the mask.
IppiPoint anchorOf(const char* function, const std::optional<Pair>& anchor, IppiSize size);

// The margin that a mask with its anchor reads.
Margin under(IppiSize mask, IppiPoint anchor);

// The same, where an even side counts as the next odd one.
Margin underOdd(IppiSize mask, IppiPoint anchor);

// The size of a two-dimensional table.
IppiSize shapeOf(const Argument& argument, const py::array& table);

// The result of a function that does not write the outermost pixels: a new one starts as a copy of the source.
Result ringResultOf(const char* function, const Image& source, const Output& out);

void checkInside(const char* function, const Image& image, int64_t ring);

}    // namespace binding
