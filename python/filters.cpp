// Medians, minimum and maximum, convolution, noise reduction, matrix product and cosine transform.
#include <pybind11/stl.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <new>
#include <optional>
#include <vector>

#include "arrays.h"
#include "bindings.h"

namespace binding {

namespace {

using namespace py::literals;

using Integers = py::array_t<int64_t, py::array::c_style | py::array::forcecast>;
using FloatKernel = py::array_t<float, py::array::c_style | py::array::forcecast>;
using MaskCells = py::array_t<bool, py::array::c_style | py::array::forcecast>;

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

// What a mask with its anchor reads.
Margin under(IppiSize mask, IppiPoint anchor) {
    return {anchor.x, anchor.y, int64_t{mask.width} - 1 - anchor.x, int64_t{mask.height} - 1 - anchor.y};
}

// The same where sides of an even number count as the next odd one.
Margin underOdd(IppiSize mask, IppiPoint anchor) {
    return {anchor.x, anchor.y, 2 * int64_t{mask.width / 2} - anchor.x, 2 * int64_t{mask.height / 2} - anchor.y};
}

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

IppiSize shapeOf(const Argument& argument, const py::array& table) {
    if (table.ndim() != 2 || table.size() == 0 || table.shape(0) > INT_MAX || table.shape(1) > INT_MAX)
        refuse(argument, "must have two dimensions and not be empty");
    return {static_cast<int>(table.shape(1)), static_cast<int>(table.shape(0))};
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

// A convolution reads from anchor - 2 half to anchor, which is one more than needed where a side is even.
Margin underKernel(IppiSize kernel, IppiPoint anchor) {
    return {2 * int64_t{kernel.width / 2} - anchor.x, 2 * int64_t{kernel.height / 2} - anchor.y, anchor.x, anchor.y};
}

// What a convolution reads. From 50 cells on OpenCV also looks at half a kernel's width of pixels behind each row, which
// an array need not have, and has another way of summing for rows without anything behind them; so those filter a copy
// with longer rows.
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

// A table of integers of any type, which must fit in 32 bits.
Integers integersOf(const Argument& argument, const py::object& table) {
    const py::array given = py::array::ensure(table);
    if (!given) refuse(argument, "is no table");
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
    // A side of 1 looks one pixel behind each row, which need not be there.
    run("OPCV_ippiFilterBilateral_8u_C1R",
        [&] { return kernel.width == 1 ? filter(TightRows(task.first()).image()) : filter(task.first()); });
    return task.result.array;
}

// Results of functions that leave the ring along the edges alone: a new one begins as a copy.
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
    // All that it could refuse has been checked: only memory is left.
    run("Convolution24", [&] {
        if (!Convolution24(from.data, result.image.data, from.size(), radius, cells)) throw std::bad_alloc();
        return 0;
    });
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
               "does not fit a: " + std::to_string(innerOfB) + " against " + std::to_string(inner));
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
    module.def("filter_median", filterMedian, "src"_a, "size"_a = 3, py::kw_only(), "anchor"_a = py::none(),
               "region"_a = py::none(), "out"_a = py::none(),
               R"(Median over a square of size x size pixels, each channel by itself.

`size` is odd. `anchor` is the cell (x, y) of the square that lies over the pixel; the centre if it is not given. The
margin is what the square covers around the region. `out` may overlap `src`.

Calls `IPPShare_ippiFilterMedian_8u_C1R` (of which `IPPMini_ippiFilterMedian_8u_C1R` is a second name),
`IPPShare_ippiFilterMedian_8u_C3R` or, for other pixel types, `ippiFilterMedian`.)");
    module.def("filter_median_cross", filterMedianCross, "src"_a, "mask"_a = 33, py::kw_only(), "region"_a = py::none(),
               "out"_a = py::none(),
               R"(Median over a plus sign: the 5 pixels of a 3 x 3 cross (mask 33) or the 9 of a 5 x 5 cross (mask 55).

The margin is 1 or 2 pixels on each side. `out` must not overlap what is read.

Calls `IPPShare_ippiFilterMedianCross_8u_C1R`, the checked form of `FilterMedianCross3x3_8u_C1R` and
`FilterMedianCross5x5_8u_C1R`.)");
    module.def("filter_median_weighted_center", filterMedianWeightedCenter, "src"_a, "weight"_a = 3, py::kw_only(),
               "region"_a = py::none(), "out"_a = py::none(),
               R"(3 x 3 median in which the centre counts 3 or 5 times (`weight`), so that fine detail survives.

The margin is 1 pixel on each side. `out` must not overlap what is read.

Calls `IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R`, the checked form of `FilterMedianWeightedCenter3x3_3_8u_C1R`
and `FilterMedianWeightedCenter3x3_5_8u_C1R`.)");
    module.def("filter_median_color", filterMedianColor, "src"_a, "mask"_a = 33, py::kw_only(), "region"_a = py::none(),
               "out"_a = py::none(),
               R"(3 x 3 vector median of a colour image: the pixel that is closest to all others. `mask` is 33.

The margin is 1 pixel on each side. `out` must not overlap what is read.

Calls `IPPShare_ippiFilterMedianColor_8u_C3R`, the checked form of `FilterMedianColor3x3_8u_C3R`.)");
    module.def("dilate", dilate, "src"_a, "mask"_a, py::kw_only(), "anchor"_a = py::none(), "region"_a = py::none(),
               "out"_a = py::none(),
               R"(Largest pixel under a mask.

`mask` is a table whose cells that are not 0 select pixels. `anchor` is the cell (x, y) that lies over the pixel; (width
// 2, height // 2) if it is not given. The margin is what the mask covers around the region, and one more pixel to the
right (below) if its width (height) is even. `out` may overlap `src`.

Calls `IPPShare_ippiDilate_8u_C1R`.)");
    module.def("erode", erode, "src"_a, "mask"_a, py::kw_only(), "anchor"_a = py::none(), "region"_a = py::none(),
               "out"_a = py::none(),
               R"(Smallest pixel under a mask; otherwise as `dilate`.

Calls `IPPShare_ippiErode_8u_C1R`.)");
    module.def("filter_max", filterMax, "src"_a, "size"_a, py::kw_only(), "anchor"_a = py::none(),
               "region"_a = py::none(), "out"_a = py::none(),
               R"(Largest pixel under a rectangle of `size` (width, height); otherwise as `dilate`.

Calls `IPPMini_ippiFilterMax_8u_C1R`.)");
    module.def("filter_min", filterMin, "src"_a, "size"_a, py::kw_only(), "anchor"_a = py::none(),
               "region"_a = py::none(), "out"_a = py::none(),
               R"(Smallest pixel under a rectangle of `size` (width, height); otherwise as `dilate`.

Calls `IPPMini_ippiFilterMin_8u_C1R`.)");
    module.def("convolve", convolveInt, "src"_a, "kernel"_a, "divisor"_a = 1, py::kw_only(), "anchor"_a = py::none(),
               "region"_a = py::none(), "out"_a = py::none(),
               R"(Convolution with a table of integers, divided by `divisor`, rounded and saturated.

result(x, y) is the sum over the cells (column i, row j) of kernel[j][i] x src(x + ax - i, y + ay - j), with the anchor
(ax, ay), which is (width // 2, height // 2) if it is not given. With h = width // 2 the margin is 2 h - ax pixels to the
left and ax to the right; rows likewise. `out` may overlap `src`. Kernels of 50 cells and more filter a copy of what
they read.

Calls `IPPShare_ippiFilter_8u_C1R`, `IPPShare_ippiFilter_8u_C3R`, `IPPShare_ippiFilter_16s_C1R` or, for other pixel
types, `ippiFilter`.)");
    module.def("convolve_float", convolveFloat, "src"_a, "kernel"_a, py::kw_only(), "anchor"_a = py::none(),
               "region"_a = py::none(), "out"_a = py::none(),
               R"(`convolve` with a table of 32-bit floats and without a divisor.

Calls `IPPMini_ippiFilter32f_8u_C3R` or, for other pixel types than colour, `ippiFilter32f`.)");
    module.def("filter_box", filterBox, "image"_a, "size"_a, py::kw_only(), "anchor"_a = py::none(),
               "region"_a = py::none(),
               R"(Mean over a rectangle of `size` (width, height), in place on a colour image, which is returned.

The top left pixel of the rectangle is (x - ax, y - ay) with the anchor (ax, ay), which is (width // 2, height // 2) if
it is not given. With h = width // 2 the margin is ax pixels to the left and 2 h - ax to the right; rows likewise.

Calls `IPPMini_ippiFilterBox_8u_C3IR`.)");
    module.def("filter_bilateral", filterBilateral, "src"_a, "size"_a, "color_square_sigma"_a, "space_square_sigma"_a,
               py::kw_only(), "region"_a = py::none(), "out"_a = py::none(),
               R"(Bilateral filter of a grey image over size x size pixels, `size` odd.

The sigmas are given as their squares, in grey levels and in pixels. The margin is size // 2 pixels on each side. `out`
may overlap `src`. A size of 1 filters with 3 x 3 pixels and mirrors the region at its edges.

Calls `OPCV_ippiFilterBilateral_8u_C1R`.)");
    module.def("reduce_noise", reduceNoise, "src"_a, "mode"_a = 1, "strength"_a = 5, py::kw_only(),
               "out"_a = py::none(),
               R"(Noise reduction of a whole grey image, whose rows must have no gaps.

`mode` 2 looks at 5 x 5 pixels, every other at 3 x 3; `strength` is 0 to 10. The ring of 2 or 1 pixels along the edges is
not written: in a new result it holds the source's pixels. `out` may be `src`.

Calls `DeosNr`.)");
    module.def("reduce_noise_rgb", reduceNoiseRGB, "src"_a, "mode"_a = 1, "strength"_a = 5, py::kw_only(),
               "out"_a = py::none(),
               R"(Noise reduction of a whole colour image, whose rows must have no gaps and a multiple of 4 pixels.

`mode` 0 and 1 look at 3 x 3 pixels, 2 at 5 x 5; `strength` is 0 to 10. The status of the error is 1 for another mode, 2
for another strength, 3 for another width. The ring along the edges holds the source's pixels. `out` may be `src`.

Calls `DeosNrRGB`.)");
    module.def("convolution24_mono", convolution24Mono, "src"_a, "kernel"_a, py::kw_only(), "out"_a = py::none(),
               R"(Convolution of a whole colour image, whose rows must have no gaps, with one square kernel of floats.

The ring of half the kernel's side along the edges is not written: in a new result it holds the source's pixels. `out`
may be `src`.

Calls `Convolution24MonoFilter`.)");
    module.def(
        "convolution24", convolution24, "src"_a, "kernels"_a, py::kw_only(), "out"_a = py::none(),
        R"(Convolution of a whole colour image, whose rows must have no gaps, with a square kernel of floats a channel.

`kernels` has the shape (3, side, side), in the **reverse** order of the channels: the first is for blue, the third for
red. The ring of half the kernel's side along the edges holds the source's pixels. `out` may be `src`.

Calls `Convolution24`.)");
    module.def("sgemm", sgemm, "a"_a, "b"_a, "c"_a = py::none(), py::kw_only(), "alpha"_a = 1.0F, "beta"_a = 0.0F,
               "trans_a"_a = false, "trans_b"_a = false,
               R"(Product of two matrices of float32: c = alpha op(a) op(b) + beta c, where op transposes if asked to.

`c` receives the result, if it is given, and must not overlap `a` and `b`; it is returned.

Calls `OPCV_cblas_sgemm`, row-major.)");
    module.def("ddct", ddctInPlace, "table"_a, py::kw_only(), "inverse"_a = false,
               R"(Orthonormal cosine transform of a square table of float64, in place; the table is returned.

It is one transform of type II of length n x n over the rows, one behind the other, not one in two dimensions. Odd sides
take n^4 steps.

Calls `ddct`.)");
}

}    // namespace binding
