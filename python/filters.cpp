// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Box and bilateral filter, noise reduction, matrix product and cosine transform.
#include <pybind11/stl.h>

#include <string>
#include <vector>

#include "arrays.h"
#include "bindings.h"
#include "filter_task.h"

namespace binding {

namespace {

using namespace py::literals;

py::array filterBox(const py::array& image, const Pair& size, const std::optional<Pair>& anchor, const Region& region) {
    const char* function = "filter_box";
    const IppiSize mask = sizeOf({function, "size"}, size);
    const IppiPoint cell = anchorOf(function, anchor, mask);
    const Image whole = imageOf({function, "image"}, image, kColour, Access::kWrite);
    const Image part = whole.part(regionOf({function, "region"}, whole, region, underOdd(mask, cell)));
    run("IPPMini_ippiFilterBox_8u_C3IR",
        [&] { return IPPMini_ippiFilterBox_8u_C3IR(part.data, part.step, part.size(), mask, cell); });
    return image;
}

py::array filterBilateral(const py::array& src, int64_t size, float colorSquareSigma, float spaceSquareSigma,
                          const Region& region, const Output& out) {
    const char* function = "filter_bilateral";
    const IppiSize kernel = sizeOf({function, "size"}, {size, size});
    const Task task = taskOf(function, src, kGrey, region, Margin::around(kernel.width / 2), out);
    const Image& to = task.result.image;
    const auto filter = [&](const Image& from) {
        return OPCV_ippiFilterBilateral_8u_C1R(from.data, from.step, to.data, to.step, to.size(), kernel,
                                               colorSquareSigma, spaceSquareSigma);
    };
    // With a side of 1, OpenCV reads one pixel after each row, which need not exist.
    run("OPCV_ippiFilterBilateral_8u_C1R",
        [&] { return kernel.width == 1 ? filter(TightRows(task.first()).image()) : filter(task.first()); });
    return task.result.array;
}

py::array reduceNoise(const py::array& src, int mode, int strength, const Output& out) {
    const char* function = "reduce_noise";
    constexpr int kStrongest = 10;
    const Image from = packedImageOf({function, "src"}, src, kGrey);
    checkInside(function, from, mode == 2 ? 2 : 1);
    if (strength < 0 || strength > kStrongest) refuse(Argument{function, "strength"}, "must be 0 to 10");
    const Result result = ringResultOf(function, from, out);
    run("DeosNr", [&] {
        DeosNr(from.data, result.image.data, from.size(), mode, strength);
        return 0;
    });
    return result.array;
}

py::array reduceNoiseRGB(const py::array& src, int mode, int strength, const Output& out) {
    const char* function = "reduce_noise_rgb";
    const Image from = packedImageOf({function, "src"}, src, kColour);
    const Result result = ringResultOf(function, from, out);
    run("DeosNrRGB", [&] { return DeosNrRGB(from.data, result.image.data, from.width, from.height, mode, strength); });
    return result.array;
}

py::array sgemm(const py::array& a, const py::array& b, const Output& c, float alpha, float beta, bool transA,
                bool transB) {
    const char* function = "sgemm";
    constexpr int kRowMajor = 101;
    constexpr int kAsItIs = 111;
    constexpr int kTransposed = 112;
    const Image left = imageOf({function, "a"}, a, kFloats);
    const Image right = imageOf({function, "b"}, b, kFloats);
    const int rows = transA ? left.width : left.height;
    const int inner = transA ? left.height : left.width;
    const int innerOfB = transB ? right.width : right.height;
    const int columns = transB ? right.height : right.width;
    if (inner != innerOfB)
        refuse(Argument{function, "b"},
               "does not match a: inner sizes " + std::to_string(innerOfB) + " and " + std::to_string(inner));
    if (!c && beta != 0) refuse(Argument{function, "c"}, "must be given if beta is not 0");

    const Result result = resultOf(function, c, columns, rows, 1, Depth::k32f);
    refuseOverlap({function, "c"}, result.image, left);
    refuseOverlap({function, "c"}, result.image, right);
    const auto floats = [](const Image& image) { return reinterpret_cast<float*>(image.data); };
    const auto leading = [](const Image& image) { return image.step / image.pixelSize(); };
    run("OPCV_cblas_sgemm", [&] {
        OPCV_cblas_sgemm(kRowMajor, transA ? kTransposed : kAsItIs, transB ? kTransposed : kAsItIs, rows, columns,
                         inner, alpha, floats(left), leading(left), floats(right), leading(right), beta,
                         floats(result.image), leading(result.image));
        return 0;
    });
    return result.array;
}

py::array ddctInPlace(const py::array& table, bool inverse) {
    const Argument argument = {"ddct", "table"};
    constexpr int kLongestSide = 46340;
    const Image image = imageOf(argument, table, kDoubles, Access::kWrite);
    if (image.width != image.height || image.width > kLongestSide)
        refuse(argument, "must be square with sides of at most 46340");
    run("ddct", [&] {
        std::vector<double*> rows(static_cast<size_t>(image.height));
        for (int y = 0; y < image.height; ++y)
            rows[static_cast<size_t>(y)] = reinterpret_cast<double*>(image.data + int64_t{y} * image.step);
        ddct(inverse ? -1 : 0, rows.data(), image.width);
        return 0;
    });
    return table;
}

}    // namespace

void addFilters(py::module_& module) {
    module.def("filter_box", filterBox, "image"_a, "size"_a, py::kw_only(), "anchor"_a = py::none(),
               "region"_a = py::none(),
               R"(Mean over a rectangle of `size` (width, height), in place on a colour image; the image is returned.

The top left pixel of the rectangle is (x - ax, y - ay) with the anchor (ax, ay), by default (width // 2, height // 2).
With h = width // 2, the margin is ax pixels to the left and 2 h - ax to the right, and likewise above and below.

Shapes: (height, width, 3); uint8.

>>> page = np.zeros((3508, 2480, 3), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.filter_box(page, (5, 5)) is page
True

Calls `IPPMini_ippiFilterBox_8u_C3IR`.)");
    module.def("filter_bilateral", filterBilateral, "src"_a, "size"_a, "color_square_sigma"_a, "space_square_sigma"_a,
               py::kw_only(), "region"_a = py::none(), "out"_a = py::none(),
               R"(Bilateral filter of a grey image over size x size pixels, `size` odd.

The arguments are the squares of the sigmas, in grey levels and in pixels. The margin is size // 2 pixels on each side.
`out` may overlap `src`. A size of 1 filters over 3 x 3 pixels and mirrors the region at its edges.

Shapes: (height, width) -> (height - size + 1, width - size + 1); uint8.

>>> page = np.zeros((3508, 2480), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.filter_bilateral(page, 3, 400, 4).shape
(3506, 2478)

Calls `OPCV_ippiFilterBilateral_8u_C1R`.)");
    module.def("reduce_noise", reduceNoise, "src"_a, "mode"_a = 1, "strength"_a = 5, py::kw_only(),
               "out"_a = py::none(),
               R"(Noise reduction of a whole grey image, whose rows must have no gaps.

`mode` 2 filters over 5 x 5 pixels, any other mode over 3 x 3; `strength` is 0 to 10. The outermost 2 or 1 pixels are
not written; in a new result they hold the pixels of the source. `out` may be `src`.

Shapes: (height, width) -> (height, width); uint8.

>>> page = np.zeros((3508, 2480), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.reduce_noise(page, 2, 7).shape
(3508, 2480)

Calls `DeosNr`.)");
    module.def("reduce_noise_rgb", reduceNoiseRGB, "src"_a, "mode"_a = 1, "strength"_a = 5, py::kw_only(),
               "out"_a = py::none(),
               R"(Noise reduction of a whole colour image, whose rows must have no gaps and a multiple of 4 pixels.

`mode` 0 and 1 filter over 3 x 3 pixels, 2 over 5 x 5; `strength` is 0 to 10. The status of the error is 1 for another
mode, 2 for another strength, 3 for another width. The outermost pixels hold those of the source. `out` may be `src`.

Shapes: (height, width, 3) -> (height, width, 3); uint8.

>>> page = np.zeros((3508, 2480, 3), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.reduce_noise_rgb(page, 2, 7).shape
(3508, 2480, 3)

Calls `DeosNrRGB`.)");
    module.def("sgemm", sgemm, "a"_a, "b"_a, "c"_a = py::none(), py::kw_only(), "alpha"_a = 1.0F, "beta"_a = 0.0F,
               "trans_a"_a = false, "trans_b"_a = false,
               R"(Product of two matrices of float32: c = alpha op(a) op(b) + beta c.

`trans_a` and `trans_b` select whether op transposes. If `c` is given, it receives the result and must not overlap `a`
or `b`. The result is returned.

Shapes: op(a) (rows, inner), op(b) (inner, columns) -> (rows, columns); float32.

>>> colours = np.zeros((3508, 3), np.float32)
>>> opcv_dlib.sgemm(colours, np.eye(3, dtype=np.float32)).shape
(3508, 3)

Calls `OPCV_cblas_sgemm`, row-major.)");
    module.def("ddct", ddctInPlace, "table"_a, py::kw_only(), "inverse"_a = false,
               R"(Orthonormal cosine transform of a square table of float64, in place; the table is returned.

This is one transform (type II) of length n x n over the rows, one after the other, not a two-dimensional transform. Odd
sides take n^4 steps.

Shapes: (side, side); float64.

>>> table = np.zeros((64, 64))
>>> opcv_dlib.ddct(table) is table
True

Calls `ddct`.)");
}

}    // namespace binding
