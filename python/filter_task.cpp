// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "filter_task.h"

#include <climits>
#include <cstring>
#include <string>

namespace binding {

Task taskOf(const char* function, const py::array& src, const Form& form, const Region& region, const Margin& margin,
            const Output& out) {
    const Image source = imageOf({function, "src"}, src, form);
    const IppiRect r = regionOf({function, "region"}, source, region, margin);
    return {source, r, margin, resultOf(function, out, r.width, r.height, source.channels, source.depth)};
}

Task taskApart(const char* function, const py::array& src, const Form& form, const Region& region, const Margin& margin,
               const Output& out) {
    Task task = taskOf(function, src, form, region, margin, out);
    refuseOverlap({function, "out"}, task.result.image, task.read());
    return task;
}

IppiPoint anchorOf(const char* function, const std::optional<Pair>& anchor, IppiSize size) {
    return anchor ? pointOf({function, "anchor"}, *anchor) : IppiPoint{size.width / 2, size.height / 2};
}

Margin under(IppiSize mask, IppiPoint anchor) {
    return {anchor.x, anchor.y, int64_t{mask.width} - 1 - anchor.x, int64_t{mask.height} - 1 - anchor.y};
}

Margin underOdd(IppiSize mask, IppiPoint anchor) {
    return {anchor.x, anchor.y, 2 * int64_t{mask.width / 2} - anchor.x, 2 * int64_t{mask.height / 2} - anchor.y};
}

IppiSize shapeOf(const Argument& argument, const py::array& table) {
    if (table.ndim() != 2 || table.size() == 0 || table.shape(0) > INT_MAX || table.shape(1) > INT_MAX)
        refuse(argument, "must have two dimensions and not be empty");
    return {static_cast<int>(table.shape(1)), static_cast<int>(table.shape(0))};
}

Result ringResultOf(const char* function, const Image& source, const Output& out) {
    Result result = resultOf(function, out, source.width, source.height, source.channels, source.depth);
    if (!out) std::memcpy(result.image.data, source.data, static_cast<size_t>(source.rowBytes() * source.height));
    if (result.image.step != source.step) refuse(Argument{function, "out"}, "has gaps between its rows");
    return result;
}

void checkInside(const char* function, const Image& image, int64_t ring) {
    if (image.width <= 2 * ring || image.height <= 2 * ring)
        refuse(Argument{function, "src"}, "must have sides above " + std::to_string(2 * ring));
}

}    // namespace binding
