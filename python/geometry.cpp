// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Rotation and resize of regions.
#include <pybind11/stl.h>

#include <climits>
#include <cmath>
#include <opencv2/core.hpp>
#include <variant>

#include "arrays.h"
#include "bindings.h"

namespace binding {

namespace {

using namespace py::literals;

using Border = std::variant<double, std::vector<double>>;
using Shift = std::tuple<double, double>;
using Size = std::optional<Pair>;

void checkFinite(const Argument& argument, double value) {
    if (!std::isfinite(value)) refuse(argument, "is not a finite number");
}

cv::Scalar scalarOf(const Argument& argument, const Border& border) {
    if (const auto* level = std::get_if<double>(&border)) return cv::Scalar::all(*level);
    const auto& levels = std::get<std::vector<double>>(border);
    if (levels.empty() || levels.size() > 4) refuse(argument, "must be a number or 1 to 4 numbers");
    cv::Scalar scalar;
    for (size_t i = 0; i < levels.size(); ++i) scalar[static_cast<int>(i)] = levels[i];
    return scalar;
}

// The caller's array, of any size, or a new one.
Result resultOfAnySize(const char* function, const Output& out, const Size& size, IppiSize usual, const Image& source,
                       Fresh fresh) {
    if (!out) {
        const IppiSize made = size ? sizeOf({function, "size"}, *size) : usual;
        return resultOf(function, out, made.width, made.height, source.channels, source.depth, fresh);
    }
    const Argument argument = {function, "out"};
    if (size) refuse(argument, "and size are not both allowed");
    const Image to = imageOf(argument, *out, kAnyPixels, Access::kWrite);
    return resultOf(function, out, to.width, to.height, source.channels, source.depth);
}

struct Turned {
    Image source;
    IppiRect region;
    Result result;
};

Turned turnedOf(const char* function, const py::array& src, const Form& form, double angle, const Region& region,
                const Size& size, const Output& out) {
    const Image source = imageOf({function, "src"}, src, form);
    checkFinite({function, "angle"}, angle);
    const IppiRect part = regionOf({function, "region"}, source, region);
    Turned turned = {source, part,
                     resultOfAnySize(function, out, size, {part.width, part.height}, source, Fresh::kAsItIs)};
    refuseOverlap({function, "out"}, turned.result.image, source);
    return turned;
}

py::array rotate(const py::array& src, double angle, const Shift& shift, const Border& border, const Size& size,
                 const Region& region, const Output& out) {
    const char* function = "rotate";
    const Turned t = turnedOf(function, src, kAnyPixels, angle, region, size, out);
    const cv::Scalar level = scalarOf({function, "border"}, border);
    run("ippiRotate", [&] {
        const TightRows tight(t.source);    // padding of rows would count as image
        const Image& from = tight.image();
        const Image& to = t.result.image;
        return ippiRotate(from.data, from.size(), from.step, t.region, to.data, to.step, to.rect(), angle,
                          static_cast<float>(std::get<0>(shift)), static_cast<float>(std::get<1>(shift)), 0,
                          from.type(), level);
    });
    return t.result.array;
}

py::array rotateOnBlack(const py::array& src, double angle, const Shift& shift, const Size& size, const Region& region,
                        const Output& out) {
    const Turned t = turnedOf("rotate_on_black", src, kGreyOrColour, angle, region, size, out);
    const bool grey = t.source.channels == 1;
    const auto turn = grey ? KVMac_ippiRotate_8u_C1R : KVMac_ippiRotate_8u_C3R;
    run(grey ? "KVMac_ippiRotate_8u_C1R" : "KVMac_ippiRotate_8u_C3R", [&] {
        const TightRows tight(t.source);
        const Image& from = tight.image();
        const Image& to = t.result.image;
        return int{turn(from.data, from.size(), from.step, t.region, to.data, to.step, to.rect(), angle,
                        std::get<0>(shift), std::get<1>(shift), 0)};
    });
    return t.result.array;
}

py::array rotateCenter(const py::array& src, double angle, const std::optional<Shift>& center, const Border& border,
                       const Region& region, const Output& out) {
    const char* function = "rotate_center";
    const Turned t = turnedOf(function, src, kAnyPixels, angle, region, Size(), out);
    const cv::Scalar level = scalarOf({function, "border"}, border);
    const Shift point = center.value_or(Shift((t.region.width - 1) * 0.5, (t.region.height - 1) * 0.5));
    checkFinite({function, "center"}, std::get<0>(point));
    checkFinite({function, "center"}, std::get<1>(point));
    run("ippiRotateCenter", [&] {
        const TightRows tight(t.source);
        const Image& from = tight.image();
        const Image& to = t.result.image;
        return ippiRotateCenter(from.data, from.size(), from.step, t.region, to.data, to.step, to.rect(), angle,
                                std::get<0>(point), std::get<1>(point), 0, from.type(), level);
    });
    return t.result.array;
}

Shift rotateShift(double xCenter, double yCenter, double angle) {
    double x = 0;
    double y = 0;
    KVMac_ippiGetRotateShift(xCenter, yCenter, angle, &x, &y);
    return {x, y};
}

int scaledSide(const Argument& argument, int side, double factor) {
    const double scaled = std::nearbyint(side * factor);
    if (!(factor > 0)) refuse(argument, "must be above 0");
    if (scaled > INT_MAX) refuse(argument, "gives a side above 2147483647");
    return scaled < 1 ? 1 : static_cast<int>(scaled);
}

py::array resizeSqrPixel(const py::array& src, double xFactor, double yFactor, const Shift& shift, const Size& size,
                         const Region& region, const Output& out) {
    const char* function = "resize_sqr_pixel";
    const Image from = imageOf({function, "src"}, src, kGrey);
    const IppiRect part = regionOf({function, "region"}, from, region);
    const IppiSize usual = {scaledSide({function, "x_factor"}, part.width, xFactor),
                            scaledSide({function, "y_factor"}, part.height, yFactor)};
    const Result result = resultOfAnySize(function, out, size, usual, from, Fresh::kZeros);
    const Image& to = result.image;
    run("OPCV_ippiResizeSqrPixel_8u_C1R", [&] {
        return OPCV_ippiResizeSqrPixel_8u_C1R(from.data, from.size(), from.step, part, to.data, to.step, to.rect(),
                                              xFactor, yFactor, std::get<0>(shift), std::get<1>(shift), 0, nullptr);
    });
    return result.array;
}

py::array resizeColor(const py::array& src, const Size& size, const Region& region, const Output& out) {
    const char* function = "resize_color";
    const Image from = imageOf({function, "src"}, src, kColour);
    const IppiRect part = regionOf({function, "region"}, from, region);
    if (!size && !out) refuse(function, "size or out must be given");
    const Result result = resultOfAnySize(function, out, size, {0, 0}, from, Fresh::kAsItIs);
    const Image& to = result.image;
    refuseOverlap({function, "out"}, to, from.part(part));
    run("IPPMini_ippiResize_8u_C3R", [&] {
        return IPPMini_ippiResize_8u_C3R(from.data, from.size(), from.step, part, to.data, to.step, to.size(), 0, 0, 0);
    });
    return result.array;
}

}    // namespace

void addGeometry(py::module_& module) {
    module.def("rotate", rotate, "src"_a, "angle"_a, "shift"_a = Shift(0, 0), py::kw_only(), "border"_a = 0.0,
               "size"_a = py::none(), "region"_a = py::none(), "out"_a = py::none(),
               R"(Turns a region about its top-left pixel and moves it by whole pixels.

`angle` is in degrees, counter-clockwise on screen. `shift` moves the turned region to the right and down and is
rounded to whole pixels. The result has the size of `out` or `size` (width, height), by default that of the region.
Where the result extends beyond the region, it shows the pixels of the image above, to the left and to the right of the
region, and otherwise `border`, one number or one per channel. `out` must not overlap `src`.

Shapes: (height, width) or (height, width, channels) -> the same, or as `size` or `out`; same dtype.

>>> page = np.zeros((3508, 2480), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.rotate(page, 1.5, size=(2600, 3600)).shape
(3600, 2600)

Calls `ippiRotate`.)");
    module.def("rotate_on_black", rotateOnBlack, "src"_a, "angle"_a, "shift"_a = Shift(0, 0), py::kw_only(),
               "size"_a = py::none(), "region"_a = py::none(), "out"_a = py::none(),
               R"(`rotate` of a grey or colour image with a black border.

Shapes: (height, width) or (height, width, 3) -> the same, or as `size` or `out`; uint8.

>>> page = np.zeros((3508, 2480), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.rotate_on_black(page, 1.5).shape
(3508, 2480)

Calls `KVMac_ippiRotate_8u_C1R` or `KVMac_ippiRotate_8u_C3R`.)");
    module.def("rotate_center", rotateCenter, "src"_a, "angle"_a, "center"_a = py::none(), py::kw_only(),
               "border"_a = 0.0, "region"_a = py::none(), "out"_a = py::none(),
               R"(Turns a region about a point (x, y) in it, by default its exact centre.

`angle` is in degrees, counter-clockwise on screen. The result has the size of the region; the rest of a larger `out` is
unchanged. Pixels from outside the region are `border`, one number or one per channel. `out` must not overlap `src`.

Shapes: (height, width) or (height, width, channels) -> the same; same dtype.

>>> page = np.zeros((3508, 2480), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.rotate_center(page, 1.5, border=255).shape
(3508, 2480)

Calls `ippiRotateCenter`.)");
    module.def("get_rotate_shift", rotateShift, "x_center"_a, "y_center"_a, "angle"_a,
               R"(Returns the shift (x, y) that makes `rotate` turn about a point.

>>> opcv_dlib.get_rotate_shift(1239.5, 1753.5, 180)    # the centre of A4 at 300 dots per inch
(2479.0, 3507.0)

Calls `KVMac_ippiGetRotateShift`.)");
    module.def("resize_sqr_pixel", resizeSqrPixel, "src"_a, "x_factor"_a, "y_factor"_a, "shift"_a = Shift(0, 0),
               py::kw_only(), "size"_a = py::none(), "region"_a = py::none(), "out"_a = py::none(),
               R"(Scales a region of a grey image by two factors and moves the result by whole pixels.

The result has the size of `out` or `size` (width, height), by default that of the scaled region. Pixels that the moved
image does not cover are unchanged in `out` and 0 in a new result. `out` may overlap `src`.

Shapes: (height, width) -> (height * y_factor, width * x_factor), rounded; uint8.

>>> page = np.zeros((3508, 2480), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.resize_sqr_pixel(page, 0.5, 0.5).shape
(1754, 1240)

Calls `OPCV_ippiResizeSqrPixel_8u_C1R`.)");
    module.def("resize_color", resizeColor, "src"_a, "size"_a = py::none(), py::kw_only(), "region"_a = py::none(),
               "out"_a = py::none(),
               R"(Scales a region of a colour image to `size` (width, height) or to the size of `out`.

`out` must not overlap the region.

Shapes: (height, width, 3) -> (size[1], size[0], 3); uint8.

>>> page = np.zeros((3508, 2480, 3), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.resize_color(page, (1240, 1754)).shape
(1754, 1240, 3)

Calls `IPPMini_ippiResize_8u_C3R`.)");
}

}    // namespace binding
