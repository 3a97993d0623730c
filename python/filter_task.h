// What the filters share: where a filter reads and where its result goes.
#pragma once

#include <optional>

#include "arrays.h"

namespace binding {

// A filter's source and where it begins in it, what it reads, and where its result goes.
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

// The same where the result must not overlap what is read.
Task taskApart(const char* function, const py::array& src, const Form& form, const Region& region, const Margin& margin,
               const Output& out);

// The centre of the mask if none is given.
IppiPoint anchorOf(const char* function, const std::optional<Pair>& anchor, IppiSize size);

// What a mask with its anchor reads.
Margin under(IppiSize mask, IppiPoint anchor);

// The same where sides of an even number count as the next odd one.
Margin underOdd(IppiSize mask, IppiPoint anchor);

// Of a table with two dimensions.
IppiSize shapeOf(const Argument& argument, const py::array& table);

// Results of functions that leave the ring along the edges alone: a new one begins as a copy.
Result ringResultOf(const char* function, const Image& source, const Output& out);

void checkInside(const char* function, const Image& image, int64_t ring);

}    // namespace binding
