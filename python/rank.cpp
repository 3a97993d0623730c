// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Medians, minimum and maximum.
#include <pybind11/stl.h>

#include <vector>

#include "arrays.h"
#include "bindings.h"
#include "filter_task.h"

namespace binding {

namespace {

using namespace py::literals;

using MaskCells = py::array_t<bool, py::array::c_style | py::array::forcecast>;

py::array filterMedian(const py::array& src, int64_t size, const std::optional<Pair>& anchor, const Region& region,
                       const Output& out) {
    const char* function = "filter_median";
    const IppiSize mask = sizeOf({function, "size"}, {size, size});
    const IppiPoint cell = anchorOf(function, anchor, mask);
    const Task task = taskOf(function, src, kAnyPixels, region, under(mask, cell), out);
    const Image from = task.first();
    const Image& to = task.result.image;
    const bool bytes = from.depth == Depth::k8u;
    if (bytes && from.channels == 1)
        run("IPPShare_ippiFilterMedian_8u_C1R", [&] {
            return IPPShare_ippiFilterMedian_8u_C1R(from.data, from.step, to.data, to.step, to.size(), mask, cell);
        });
    else if (bytes && from.channels == 3)
        run("IPPShare_ippiFilterMedian_8u_C3R", [&] {
            return IPPShare_ippiFilterMedian_8u_C3R(from.data, from.step, to.data, to.step, to.size(), mask, cell);
        });
    else
        run("ippiFilterMedian", [&] {
            return ippiFilterMedian(from.data, from.step, from.type(), to.data, to.step, to.size(), mask, cell);
        });
    return task.result.array;
}

using FixedMedian = IppStatus (*)(const unsigned char*, int, unsigned char*, int, IppiSize, int);

py::array filterFixedMedian(const char* function, const char* libraryFunction, FixedMedian filter, const Form& form,
                            int reach, const py::array& src, int variant, const Region& region, const Output& out) {
    const Task task = taskApart(function, src, form, region, Margin::around(reach), out);
    const Image from = task.first();
    const Image& to = task.result.image;
    run(libraryFunction, [&] { return filter(from.data, from.step, to.data, to.step, to.size(), variant); });
    return task.result.array;
}

py::array filterMedianCross(const py::array& src, int mask, const Region& region, const Output& out) {
    return filterFixedMedian("filter_median_cross", "IPPShare_ippiFilterMedianCross_8u_C1R",
                             IPPShare_ippiFilterMedianCross_8u_C1R, kGrey, mask == 33 ? 1 : 2, src, mask, region, out);
}

py::array filterMedianWeightedCenter(const py::array& src, int weight, const Region& region, const Output& out) {
    return filterFixedMedian("filter_median_weighted_center", "IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R",
                             IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R, kGrey, 1, src, weight, region, out);
}

py::array filterMedianColor(const py::array& src, int mask, const Region& region, const Output& out) {
    return filterFixedMedian("filter_median_color", "IPPShare_ippiFilterMedianColor_8u_C3R",
                             IPPShare_ippiFilterMedianColor_8u_C3R, kColour, 1, src, mask, region, out);
}

using MaskFilter = IppStatus (*)(const unsigned char*, int, unsigned char*, int, IppiSize, const unsigned char*,
                                 IppiSize, IppiPoint);

py::array filterByMask(const char* function, const char* libraryFunction, MaskFilter filter, const py::array& src,
                       const MaskCells& mask, const std::optional<Pair>& anchor, const Region& region,
                       const Output& out) {
    const IppiSize size = shapeOf({function, "mask"}, mask);
    const std::vector<unsigned char> cells(mask.data(), mask.data() + mask.size());
    const IppiPoint cell = anchorOf(function, anchor, size);
    const Task task = taskOf(function, src, kGrey, region, underOdd(size, cell), out);
    const Image from = task.first();
    const Image& to = task.result.image;
    run(libraryFunction,
        [&] { return filter(from.data, from.step, to.data, to.step, to.size(), cells.data(), size, cell); });
    return task.result.array;
}

py::array dilate(const py::array& src, const MaskCells& mask, const std::optional<Pair>& anchor, const Region& region,
                 const Output& out) {
    return filterByMask("dilate", "IPPShare_ippiDilate_8u_C1R", IPPShare_ippiDilate_8u_C1R, src, mask, anchor, region,
                        out);
}

py::array erode(const py::array& src, const MaskCells& mask, const std::optional<Pair>& anchor, const Region& region,
                const Output& out) {
    return filterByMask("erode", "IPPShare_ippiErode_8u_C1R", IPPShare_ippiErode_8u_C1R, src, mask, anchor, region,
                        out);
}

using RectangleFilter = IppStatus (*)(const unsigned char*, int, unsigned char*, int, IppiSize, IppiSize, IppiPoint);

py::array filterByRectangle(const char* function, const char* libraryFunction, RectangleFilter filter,
                            const py::array& src, const Pair& size, const std::optional<Pair>& anchor,
                            const Region& region, const Output& out) {
    const IppiSize mask = sizeOf({function, "size"}, size);
    const IppiPoint cell = anchorOf(function, anchor, mask);
    const Task task = taskOf(function, src, kGrey, region, underOdd(mask, cell), out);
    const Image from = task.first();
    const Image& to = task.result.image;
    run(libraryFunction, [&] { return filter(from.data, from.step, to.data, to.step, to.size(), mask, cell); });
    return task.result.array;
}

py::array filterMax(const py::array& src, const Pair& size, const std::optional<Pair>& anchor, const Region& region,
                    const Output& out) {
    return filterByRectangle("filter_max", "IPPMini_ippiFilterMax_8u_C1R", IPPMini_ippiFilterMax_8u_C1R, src, size,
                             anchor, region, out);
}

py::array filterMin(const py::array& src, const Pair& size, const std::optional<Pair>& anchor, const Region& region,
                    const Output& out) {
    return filterByRectangle("filter_min", "IPPMini_ippiFilterMin_8u_C1R", IPPMini_ippiFilterMin_8u_C1R, src, size,
                             anchor, region, out);
}

}    // namespace

void addRankFilters(py::module_& module) {
    module.def("filter_median", filterMedian, "src"_a, "size"_a = 3, py::kw_only(), "anchor"_a = py::none(),
               "region"_a = py::none(), "out"_a = py::none(),
               R"(Median over a square of size x size pixels, for each channel separately.

`size` is odd. `anchor` is the cell (x, y) of the square that lies on the pixel, by default the centre. The margin is
the part of the square that extends beyond the region. `out` may overlap `src`.

Shapes: (height, width) or (height, width, channels) -> `size` - 1 rows and columns fewer; same dtype.

>>> page = np.zeros((3508, 2480), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.filter_median(page, 5).shape
(3504, 2476)

Calls `IPPShare_ippiFilterMedian_8u_C1R` (of which `IPPMini_ippiFilterMedian_8u_C1R` is a second name),
`IPPShare_ippiFilterMedian_8u_C3R` or, for other pixel types, `ippiFilterMedian`.)");
    module.def("filter_median_cross", filterMedianCross, "src"_a, "mask"_a = 33, py::kw_only(), "region"_a = py::none(),
               "out"_a = py::none(),
               R"(Median over a plus sign: the 5 pixels of a 3 x 3 cross (mask 33) or the 9 of a 5 x 5 cross (mask 55).

The margin is 1 or 2 pixels on each side. `out` must not overlap the pixels that are read.

Shapes: (height, width) -> (height - 2, width - 2), or 4 fewer with mask 55; uint8.

>>> page = np.zeros((3508, 2480), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.filter_median_cross(page).shape
(3506, 2478)

Calls `IPPShare_ippiFilterMedianCross_8u_C1R`, the checked form of `FilterMedianCross3x3_8u_C1R` and
`FilterMedianCross5x5_8u_C1R`.)");
    module.def("filter_median_weighted_center", filterMedianWeightedCenter, "src"_a, "weight"_a = 3, py::kw_only(),
               "region"_a = py::none(), "out"_a = py::none(),
               R"(3 x 3 median that counts the centre 3 or 5 times (`weight`), which preserves fine detail.

The margin is 1 pixel on each side. `out` must not overlap the pixels that are read.

Shapes: (height, width) -> (height - 2, width - 2); uint8.

>>> page = np.zeros((3508, 2480), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.filter_median_weighted_center(page, 5).shape
(3506, 2478)

Calls `IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R`, the checked form of `FilterMedianWeightedCenter3x3_3_8u_C1R`
and `FilterMedianWeightedCenter3x3_5_8u_C1R`.)");
    module.def("filter_median_color", filterMedianColor, "src"_a, "mask"_a = 33, py::kw_only(), "region"_a = py::none(),
               "out"_a = py::none(),
               R"(3 x 3 vector median of a colour image: the pixel closest to all others of its window. `mask` is 33.

The margin is 1 pixel on each side. `out` must not overlap the pixels that are read.

Shapes: (height, width, 3) -> (height - 2, width - 2, 3); uint8.

>>> page = np.zeros((3508, 2480, 3), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.filter_median_color(page).shape
(3506, 2478, 3)

Calls `IPPShare_ippiFilterMedianColor_8u_C3R`, the checked form of `FilterMedianColor3x3_8u_C3R`.)");
    module.def("dilate", dilate, "src"_a, "mask"_a, py::kw_only(), "anchor"_a = py::none(), "region"_a = py::none(),
               "out"_a = py::none(),
               R"(Largest pixel under a mask.

`mask` is a table; its cells that are not 0 select pixels. `anchor` is the cell (x, y) that lies on the pixel, by
default (width // 2, height // 2). The margin is the part of the mask that extends beyond the region, and one more
pixel to the right if its width is even and below if its height is even. `out` may overlap `src`.

Shapes: (height, width) -> (height - rows + 1, width - columns + 1) for a mask (rows, columns) of odd sides; uint8.

>>> page = np.zeros((3508, 2480), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.dilate(page, np.ones((3, 5))).shape
(3506, 2476)

Calls `IPPShare_ippiDilate_8u_C1R`.)");
    module.def("erode", erode, "src"_a, "mask"_a, py::kw_only(), "anchor"_a = py::none(), "region"_a = py::none(),
               "out"_a = py::none(),
               R"(Smallest pixel under a mask; otherwise like `dilate`.

Shapes: as for `dilate`.

>>> page = np.zeros((3508, 2480), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.erode(page, np.ones((3, 5))).shape
(3506, 2476)

Calls `IPPShare_ippiErode_8u_C1R`.)");
    module.def("filter_max", filterMax, "src"_a, "size"_a, py::kw_only(), "anchor"_a = py::none(),
               "region"_a = py::none(), "out"_a = py::none(),
               R"(Largest pixel under a rectangle of `size` (width, height); otherwise like `dilate`.

Shapes: as for `dilate` with a mask of that size.

>>> page = np.zeros((3508, 2480), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.filter_max(page, (5, 3)).shape
(3506, 2476)

Calls `IPPMini_ippiFilterMax_8u_C1R`.)");
    module.def("filter_min", filterMin, "src"_a, "size"_a, py::kw_only(), "anchor"_a = py::none(),
               "region"_a = py::none(), "out"_a = py::none(),
               R"(Smallest pixel under a rectangle of `size` (width, height); otherwise like `dilate`.

Shapes: as for `dilate` with a mask of that size.

>>> page = np.zeros((3508, 2480), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.filter_min(page, (5, 3)).shape
(3506, 2476)

Calls `IPPMini_ippiFilterMin_8u_C1R`.)");
}

}    // namespace binding
