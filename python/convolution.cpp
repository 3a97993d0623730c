// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Convolution with kernels of integers and of floats.
#include <pybind11/stl.h>

#include <algorithm>
#include <new>
#include <vector>

#include "arrays.h"
#include "bindings.h"
#include "filter_task.h"

namespace binding {

namespace {

using namespace py::literals;

using Integers = py::array_t<int64_t, py::array::c_style | py::array::forcecast>;
using FloatKernel = py::array_t<float, py::array::c_style | py::array::forcecast>;

// A convolution reads from anchor - 2 half to anchor, one more than it needs if the side is even.
Margin underKernel(IppiSize kernel, IppiPoint anchor) {
    return {2 * int64_t{kernel.width / 2} - anchor.x, 2 * int64_t{kernel.height / 2} - anchor.y, anchor.x, anchor.y};
}

// The image that a convolution reads. With 50 cells or more, OpenCV also reads half a kernel's width of pixels after
// each row, which an array need not have, and sums differently if there are none. Such kernels filter a copy with
// longer rows.
class Convolved {
public:
    Convolved(const Task& task, IppiSize kernel) : rows_(task.read(), spareFor(kernel)), first_(rows_.image()) {
        first_.data += task.margin.top * first_.step + task.margin.left * first_.pixelSize();
    }
    const Image& first() const { return first_; }

private:
    static int spareFor(IppiSize kernel) { return std::max(kernel.width / 2, 1); }

    TightRows rows_;
    Image first_;
};

bool needsLongerRows(IppiSize kernel) {
    constexpr int64_t kFewestCells = 50;
    return int64_t{kernel.width | 1} * (kernel.height | 1) >= kFewestCells;
}

template <typename Filter>
int convolve(const Task& task, IppiSize kernel, Filter filter) {
    if (!needsLongerRows(kernel)) return filter(task.first());
    const Convolved copy(task, kernel);
    return filter(copy.first());
}

// A table of integers of any type; each must fit in 32 bits.
Integers integersOf(const Argument& argument, const py::object& table) {
    const py::array given = py::array::ensure(table);
    if (!given) refuse(argument, "is not an array");
    const char kind = given.dtype().kind();
    const bool fits = kind == 'b' || kind == 'i' || (kind == 'u' && given.itemsize() < py::ssize_t{sizeof(int64_t)});
    if (!fits) refuse(argument, "must hold integers of at most 32 bits");
    return given;
}

std::vector<int> cellsOf(const Argument& argument, const Integers& table) {
    std::vector<int> cells;
    cells.reserve(static_cast<size_t>(table.size()));
    for (py::ssize_t i = 0; i < table.size(); ++i) cells.push_back(intOf(argument, table.data()[i]));
    return cells;
}

py::array convolveInt(const py::array& src, const py::object& kernel, int divisor, const std::optional<Pair>& anchor,
                      const Region& region, const Output& out) {
    const char* function = "convolve";
    const Integers table = integersOf({function, "kernel"}, kernel);
    const IppiSize size = shapeOf({function, "kernel"}, table);
    const std::vector<int> cells = cellsOf({function, "kernel"}, table);
    const IppiPoint cell = anchorOf(function, anchor, size);
    const Task task = taskOf(function, src, kAnyPixels, region, underKernel(size, cell), out);
    const Image& to = task.result.image;
    const auto runOn = [&](const char* libraryFunction, auto call) {
        run(libraryFunction, [&] { return convolve(task, size, call); });
    };
    if (to.depth == Depth::k8u && to.channels == 1)
        runOn("IPPShare_ippiFilter_8u_C1R", [&](const Image& from) {
            return IPPShare_ippiFilter_8u_C1R(from.data, from.step, to.data, to.step, to.size(), cells.data(), size,
                                              cell, divisor);
        });
    else if (to.depth == Depth::k8u && to.channels == 3)
        runOn("IPPShare_ippiFilter_8u_C3R", [&](const Image& from) {
            return IPPShare_ippiFilter_8u_C3R(from.data, from.step, to.data, to.step, to.size(), cells.data(), size,
                                              cell, divisor);
        });
    else if (to.depth == Depth::k16s && to.channels == 1)
        runOn("IPPShare_ippiFilter_16s_C1R", [&](const Image& from) {
            return IPPShare_ippiFilter_16s_C1R(reinterpret_cast<const short*>(from.data), from.step,
                                               reinterpret_cast<short*>(to.data), to.step, to.size(), cells.data(),
                                               size, cell, divisor);
        });
    else
        runOn("ippiFilter", [&](const Image& from) {
            return ippiFilter(from.data, from.step, from.type(), to.data, to.step, to.size(), cells.data(), size, cell,
                              divisor);
        });
    return task.result.array;
}

py::array convolveFloat(const py::array& src, const FloatKernel& kernel, const std::optional<Pair>& anchor,
                        const Region& region, const Output& out) {
    const char* function = "convolve_float";
    const IppiSize size = shapeOf({function, "kernel"}, kernel);
    const float* cells = kernel.data();
    const IppiPoint cell = anchorOf(function, anchor, size);
    const Task task = taskOf(function, src, kAnyPixels, region, underKernel(size, cell), out);
    const Image& to = task.result.image;
    if (to.depth == Depth::k8u && to.channels == 3)
        run("IPPMini_ippiFilter32f_8u_C3R", [&] {
            return convolve(task, size, [&](const Image& from) {
                return IPPMini_ippiFilter32f_8u_C3R(from.data, from.step, to.data, to.step, to.size(), cells, size,
                                                    cell);
            });
        });
    else
        run("ippiFilter32f", [&] {
            return convolve(task, size, [&](const Image& from) {
                return ippiFilter32f(from.data, from.step, from.type(), to.data, to.step, to.size(), cells, size, cell);
            });
        });
    return task.result.array;
}

int radiusOf(const Argument& argument, py::ssize_t height, py::ssize_t width) {
    if (height != width || width % 2 == 0) refuse(argument, "must be square with an odd side");
    return intOf(argument, (width - 1) / 2);
}

py::array convolution24Mono(const py::array& src, const FloatKernel& kernel, const Output& out) {
    const char* function = "convolution24_mono";
    const Image from = packedImageOf({function, "src"}, src, kColour);
    const IppiSize size = shapeOf({function, "kernel"}, kernel);
    const int radius = radiusOf({function, "kernel"}, size.height, size.width);
    checkInside(function, from, radius);
    const Result result = ringResultOf(function, from, out);
    const float* cells = kernel.data();
    run("Convolution24MonoFilter", [&] {
        Convolution24MonoFilter(from.data, result.image.data, from.size(), radius, cells);
        return 0;
    });
    return result.array;
}

py::array convolution24(const py::array& src, const FloatKernel& kernels, const Output& out) {
    const char* function = "convolution24";
    const Argument argument = {function, "kernels"};
    const Image from = packedImageOf({function, "src"}, src, kColour);
    if (kernels.ndim() != 3 || kernels.shape(0) != 3) refuse(argument, "must have the shape (3, side, side)");
    const int radius = radiusOf(argument, kernels.shape(1), kernels.shape(2));
    checkInside(function, from, radius);
    const Result result = ringResultOf(function, from, out);
    const float* cells = kernels.data();
    // All arguments have been checked, so it can only fail for lack of memory.
    run("Convolution24", [&] {
        if (!Convolution24(from.data, result.image.data, from.size(), radius, cells)) throw std::bad_alloc();
        return 0;
    });
    return result.array;
}

}    // namespace

void addConvolutions(py::module_& module) {
    module.def("convolve", convolveInt, "src"_a, "kernel"_a, "divisor"_a = 1, py::kw_only(), "anchor"_a = py::none(),
               "region"_a = py::none(), "out"_a = py::none(),
               R"(Convolution with a table of integers, divided by `divisor`, rounded and saturated.

result(x, y) is the sum over the cells (column i, row j) of kernel[j][i] x src(x + ax - i, y + ay - j), with the anchor
(ax, ay), by default (width // 2, height // 2). With h = width // 2, the margin is 2 h - ax pixels to the left and ax to
the right, and likewise above and below. `out` may overlap `src`. With kernels of 50 cells or more, the source pixels
are copied first.

Shapes: (height, width) or (height, width, channels) -> (height - rows + 1, width - columns + 1, ...) for a kernel
(rows, columns) of odd sides; same dtype.

>>> page = np.zeros((3508, 2480), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.convolve(page, np.ones((3, 3), int), 9).shape
(3506, 2478)

Calls `IPPShare_ippiFilter_8u_C1R`, `IPPShare_ippiFilter_8u_C3R`, `IPPShare_ippiFilter_16s_C1R` or, for other pixel
types, `ippiFilter`.)");
    module.def("convolve_float", convolveFloat, "src"_a, "kernel"_a, py::kw_only(), "anchor"_a = py::none(),
               "region"_a = py::none(), "out"_a = py::none(),
               R"(`convolve` with a table of 32-bit floats and without a divisor.

Shapes: as for `convolve`.

>>> page = np.zeros((3508, 2480), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.convolve_float(page, np.ones((3, 3)) / 9).shape
(3506, 2478)

Calls `IPPMini_ippiFilter32f_8u_C3R` or, for pixel types other than colour, `ippiFilter32f`.)");
    module.def("convolution24_mono", convolution24Mono, "src"_a, "kernel"_a, py::kw_only(), "out"_a = py::none(),
               R"(Convolution of a whole colour image with one square kernel of floats for all channels.

The rows of the image must have no gaps. Half a kernel side of pixels at each edge is not written; in a new result these
hold the pixels of the source. `out` may be `src`.

Shapes: (height, width, 3) and a kernel (side, side) -> (height, width, 3); uint8.

>>> page = np.zeros((3508, 2480, 3), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.convolution24_mono(page, np.ones((3, 3)) / 9).shape
(3508, 2480, 3)

Calls `Convolution24MonoFilter`.)");
    module.def("convolution24", convolution24, "src"_a, "kernels"_a, py::kw_only(), "out"_a = py::none(),
               R"(Convolution of a whole colour image with one square kernel of floats per channel.

The rows of the image must have no gaps. `kernels` has the shape (3, side, side), in the **reverse** order of the
channels: the first is for blue, the third for red. Half a kernel side of pixels at each edge is not filtered and holds
the pixels of the source. `out` may be `src`.

Shapes: (height, width, 3) -> (height, width, 3); uint8.

>>> page = np.zeros((3508, 2480, 3), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.convolution24(page, np.ones((3, 3, 3)) / 9).shape
(3508, 2480, 3)

Calls `Convolution24`.)");
}

}    // namespace binding
