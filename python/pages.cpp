// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Pages: deskew, rotation and scaling.
#include <pybind11/stl.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "arrays.h"
#include "bindings.h"
#include "page.h"

namespace binding {

namespace {

using namespace py::literals;

PagePtr emptyPage(int64_t width, int64_t height, int depth, int64_t dpiX, const std::optional<int64_t>& dpiY,
                  bool forUnite) {
    const char* function = "Page.empty";
    const IppiSize size = sizeOf({function, "size"}, {width, height});
    const Dpi dpi = dpiOf(function, dpiX, dpiY);
    if (depth != 1 && depth != 8 && depth != 24 && depth != 32 && depth != 40)
        refuse(Argument{function, "depth"}, "must be 1, 8, 24, 32 or 40");
    KVRect rect;
    KVSetRect(&rect, 0, 0, size.width, size.height);
    KVIMG* record = nullptr;
    run(forUnite ? "CreateNewKVIMGPtrForUnite" : "CreateNewKVIMGPtr", [&] {
        const auto make = forUnite ? CreateNewKVIMGPtrForUnite : CreateNewKVIMGPtr;
        return int{make(&record, &rect, static_cast<unsigned char>(depth))};
    });
    return pageOf(record, dpi);
}

PagePtr pageOfPixels(const py::array& pixels, int64_t dpiX, const std::optional<int64_t>& dpiY) {
    const Image from = imageOf({"Page", "pixels"}, pixels, kPagePixels);
    PagePtr page = emptyPage(from.width, from.height, 8 * from.channels, dpiX, dpiY, false);
    const KVIMG& to = page->record();
    const py::gil_scoped_release unlocked;
    for (int y = 0; y < from.height; ++y)
        std::memcpy(to.data + int64_t{y} * to.rowBytes, from.data + int64_t{y} * from.step,
                    static_cast<size_t>(from.rowBytes()));
    return page;
}

std::string wordsOf(const Page& page) {
    const KVIMG& r = page.record();
    return "<opcv_dlib.Page of " + std::to_string(r.width) + " x " + std::to_string(r.height) + " pixels, depth " +
           std::to_string(r.depth) + ", " + std::to_string(page.dpi().x) + " x " + std::to_string(page.dpi().y) +
           " dots per inch>";
}

// Calls a function that creates a new record from a page and its description.
template <typename Call>
py::object made(const PageView& page, const char* libraryFunction, Dpi dpi, Call call) {
    KVImageDescription description = page.description();
    KVImageDescription* record = &description;
    KVIMG* result = nullptr;
    run(libraryFunction, [&] { return int{call(&page.record(), &record, &result)}; });
    return page.resultOf(pageOf(result, dpi));
}

void checkAngle(const char* function, double angle) {
    if (!std::isfinite(angle)) refuse(Argument{function, "angle"}, "is not a finite number");
}

py::object deskew(const PageOrPixels& given, double angle, bool whiteFill) {
    const PageView page("deskew", given);
    checkAngle("deskew", angle);
    return made(page, "DeskewImageWithIPP", page.dpi(), [&](const KVIMG* src, auto description, KVIMG** dst) {
        return DeskewImageWithIPP(src, description, dst, 0, whiteFill, angle);
    });
}

KVRect rectOf(const Argument& argument, int64_t left, int64_t top, int64_t width, int64_t height) {
    sizeOf(argument, {width, height});
    KVRect rect;
    KVSetRect(&rect, intOf(argument, left), intOf(argument, top), intOf(argument, left + width),
              intOf(argument, top + height));
    return rect;
}

py::object deskewCrop(const PageOrPixels& given, double angle,
                      const std::tuple<int64_t, int64_t, int64_t, int64_t>& crop, bool whiteFill) {
    const char* function = "deskew_crop";
    const PageView page(function, given);
    checkAngle(function, angle);
    const Argument argument = {function, "crop"};
    const auto [left, top, width, height] = crop;
    KVRect rect = rectOf(argument, intOf(argument, left), intOf(argument, top), width, height);
    return made(page, "DeskewImageWithIPPEx", page.dpi(), [&](const KVIMG* src, auto description, KVIMG** dst) {
        return DeskewImageWithIPPEx(src, description, dst, 0, whiteFill, &rect, angle);
    });
}

py::object deskewAbout(const PageOrPixels& given, double angle, const Pair& point, const Pair& size, bool whiteFill) {
    const char* function = "deskew_about";
    const PageView page(function, given);
    checkAngle(function, angle);
    KVRect rect = rectOf({function, "size"}, 0, 0, std::get<0>(size), std::get<1>(size));
    return made(page, "DeskewImageWithIPPExWithShirftPoint", page.dpi(),
                [&](const KVIMG* src, auto description, KVIMG** dst) {
                    return DeskewImageWithIPPExWithShirftPoint(src, description, dst, 0, whiteFill, &rect,
                                                               std::get<0>(point), std::get<1>(point), angle);
                });
}

py::object rotatePage(const char* function, const PageOrPixels& given, double angle) {
    const PageView page(function, given);
    checkAngle(function, angle);
    const bool upright = std::fmod(std::trunc(angle), 180) == 0;
    const Dpi dpi = upright ? page.dpi() : Dpi{page.dpi().y, page.dpi().x};
    return made(page, "RotateImageWithIPP", dpi, [&](const KVIMG* src, auto description, KVIMG** dst) {
        return RotateImageWithIPP(src, description, dst, angle);
    });
}

// The library writes rows at a distance of step / 3 whole pixels; this moves them to the step of the record.
void spread(const KVIMG& record, int row, int pitch) {
    for (int y = record.height - 1; y > 0; --y)
        std::memmove(record.data + int64_t{y} * record.rowBytes, record.data + int64_t{y} * pitch,
                     static_cast<size_t>(row));
}

PagePtr uniteRotate(const py::array& src, const Pair& size, double angle, int64_t dpiX,
                    const std::optional<int64_t>& dpiY) {
    const char* function = "unite_rotate";
    checkAngle(function, angle);
    const Image image = imageOf({function, "src"}, src, kPagePixels);
    const IppiSize canvas = sizeOf({function, "size"}, size);
    const Dpi dpi = dpiOf(function, dpiX, dpiY);
    constexpr int kLongestRow = INT_MAX - 16;
    if (canvas.width > kLongestRow / image.channels)
        refuse(Argument{function, "size"}, "has rows of 2^31 bytes or more");
    const int multiple = image.channels == 3 ? 4 : 16;
    KVIMG* united = nullptr;
    run("UniteImageIplRotateImage", [&] {
        const TightRows tight(image);
        const Image& from = tight.image();
        const KVImageHeader source = {from.data, 0, 8 * from.channels, from.width, from.height, from.step};
        const int row = canvas.width * from.channels;
        const int step = (row + multiple - 1) / multiple * multiple;
        KVImageHeader header = {nullptr, 0, source.depth, canvas.width, canvas.height, step};
        const int status = UniteImageIplRotateImage(&header, &source, &united, angle);
        if (status == noErr) spread(*united, row, step / from.channels * from.channels);
        return status;
    });
    return pageOf(united, dpi);
}

py::object resize(const PageOrPixels& given, double numerator, double denominator) {
    const char* function = "resize";
    const PageView page(function, given);
    if (!std::isfinite(numerator) || numerator <= 0) refuse(Argument{function, "numerator"}, "must be above 0");
    if (!std::isfinite(denominator) || denominator <= 0) refuse(Argument{function, "denominator"}, "must be above 0");
    const double scale = numerator / denominator;
    KVIMG* result = nullptr;
    run("ResizeImageWithIPPEx",
        [&] { return int{ResizeImageWithIPPEx(&page.record(), &result, denominator, numerator)}; });
    return page.resultOf(pageOf(result, {scaledDpi(page.dpi().x, scale), scaledDpi(page.dpi().y, scale)}));
}

void addPageType(py::module_& module) {
    py::class_<Page>(module, "Page",
                     R"(A page in an image record of the library, with its resolution.

Page(pixels) copies an array of the shape (height, width), (height, width, 3) or (height, width, 4). The record is a
`KVIMG`, created by `CreateNewKVIMGPtr` and released by `DisposeKVIMG`.)")
        .def(py::init(&pageOfPixels), "pixels"_a, "dpi_x"_a = kUsualDpi, "dpi_y"_a = py::none())
        .def_static(
            "empty", emptyPage, "width"_a, "height"_a, "depth"_a = 8, "dpi_x"_a = kUsualDpi, "dpi_y"_a = py::none(),
            py::kw_only(), "for_unite"_a = false,
            R"(Creates a page of 1, 8, 24, 32 or 40 bits per pixel (40 is laid out like 8) with undefined pixels.

With `for_unite`, rows of 24 bits are padded to a multiple of 4 bytes.

Calls `KVSetRect` and `CreateNewKVIMGPtr` or `CreateNewKVIMGPtrForUnite`.)")
        .def_property_readonly("pixels", pixelsOf,
                               "The pixels: an array that refers to the page's memory and keeps the page alive. At "
                               "1 bit, its bytes are packed pixels.")
        .def_property_readonly(
            "width", [](const Page& p) { return p.record().width; }, "Pixels per row.")
        .def_property_readonly(
            "height", [](const Page& p) { return p.record().height; }, "Rows.")
        .def_property_readonly(
            "depth", [](const Page& p) { return p.record().depth; }, "Bits per pixel.")
        .def_property_readonly(
            "row_bytes", [](const Page& p) { return p.record().rowBytes; }, "Bytes from one row to the next.")
        .def_property(
            "dpi_x", [](const Page& p) { return p.dpi().x; }, &Page::setDpiX, "Dots per inch along a row.")
        .def_property(
            "dpi_y", [](const Page& p) { return p.dpi().y; }, &Page::setDpiY, "Dots per inch down a column.")
        .def("__repr__", wordsOf);
}

void addPageGeometry(py::module_& module) {
    module.def("deskew", deskew, "page"_a, "angle"_a, py::kw_only(), "white_fill"_a = false,
               R"(Turns a page about its exact centre; the new page has the same size and resolution.

`page` is a Page or an array of its pixels; the result is of the same kind. `angle` is in degrees, counter-clockwise on
screen. Corners from outside the page are black. With `white_fill`, they are white at 24 bits; at 32 bits the first byte
is 0 and the others are 255; at 8 bits they stay black.

Shapes of arrays: (height, width), (height, width, 3) or (height, width, 4) -> the same; uint8.

>>> page = np.zeros((3508, 2480), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.deskew(page, 1.5).shape
(3508, 2480)
>>> opcv_dlib.deskew(opcv_dlib.Page(page), 1.5)
<opcv_dlib.Page of 2480 x 3508 pixels, depth 8, 300 x 300 dots per inch>

Calls `DeskewImageWithIPP`.)");
    module.def(
        "deskew_crop", deskewCrop, "page"_a, "angle"_a, "crop"_a, py::kw_only(), "white_fill"_a = false,
        R"(Turns a page about its centre and cuts the rectangle `crop` (left, top, width, height) out of the result.

The rectangle may extend outside the page. Otherwise like `deskew`.

Shapes of arrays: (height, width, ...) -> (crop[3], crop[2], ...); uint8.

>>> page = np.zeros((3508, 2480), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.deskew_crop(page, 1.5, (100, 50, 2280, 3408)).shape
(3408, 2280)

Calls `DeskewImageWithIPPEx`.)");
    module.def(
        "deskew_about", deskewAbout, "page"_a, "angle"_a, "point"_a, "size"_a, py::kw_only(), "white_fill"_a = false,
        R"(Turns a page about a point (x, y), which becomes the top-left pixel of a new page of `size` (width, height).

Otherwise like `deskew`.

Shapes of arrays: (height, width, ...) -> (size[1], size[0], ...); uint8.

>>> page = np.zeros((3508, 2480), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.deskew_about(page, 1.5, (100, 50), (2280, 3408)).shape
(3408, 2280)

Calls `DeskewImageWithIPPExWithShirftPoint`.)");
    module.def(
        "rotate_page", [](const PageOrPixels& p, double angle) { return rotatePage("rotate_page", p, angle); },
        "page"_a, "angle"_a,
        R"(Turns a page by 90, 180 or 270 degrees, **clockwise** on screen, or by their negatives.

`page` is a Page or an array of its pixels; the result is of the same kind. The fraction of the angle is dropped. Turns
by 90 and 270 degrees swap the two sides and the two resolutions.

Shapes of arrays: (height, width, ...) -> (width, height, ...), or the same for a half turn; uint8.

>>> page = np.zeros((3508, 2480), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.rotate_page(page, 90).shape
(2480, 3508)

Calls `RotateImageWithIPP`.)");
    module.def(
        "rotate90", [](const PageOrPixels& p) { return rotatePage("rotate90", p, 90); }, "page"_a,
        R"(`rotate_page` by 90 degrees, clockwise on screen.

Shapes of arrays: (height, width, ...) -> (width, height, ...); uint8.

>>> page = np.zeros((3508, 2480), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.rotate90(page).shape
(2480, 3508)

Calls `RotateImageWithIPP`.)");
    module.def(
        "rotate180", [](const PageOrPixels& p) { return rotatePage("rotate180", p, 180); }, "page"_a,
        R"(`rotate_page` by 180 degrees.

Shapes of arrays: (height, width, ...) -> the same; uint8.

>>> page = np.zeros((3508, 2480), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.rotate180(page).shape
(3508, 2480)

Calls `RotateImageWithIPP`.)");
    module.def(
        "rotate270", [](const PageOrPixels& p) { return rotatePage("rotate270", p, 270); }, "page"_a,
        R"(`rotate_page` by 270 degrees, clockwise on screen.

Shapes of arrays: (height, width, ...) -> (width, height, ...); uint8.

>>> page = np.zeros((3508, 2480), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.rotate270(page).shape
(2480, 3508)

Calls `RotateImageWithIPP`.)");
    module.def("unite_rotate", uniteRotate, "src"_a, "size"_a, "angle"_a, py::kw_only(), "dpi_x"_a = kUsualDpi,
               "dpi_y"_a = py::none(),
               R"(Turns an image about its centre and centres it on a new page of `size` (width, height).

`angle` is in degrees, **clockwise** on screen. Uncovered pixels are white at 24 bits, 0 255 255 255 at
32 bits and black at 8. Rows of 24 bits are padded to a multiple of 4 bytes.

Shapes: (height, width), (height, width, 3) or (height, width, 4); uint8.

>>> page = np.zeros((3508, 2480), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.unite_rotate(page, (2600, 3600), 1.5)
<opcv_dlib.Page of 2600 x 3600 pixels, depth 8, 300 x 300 dots per inch>

Calls `UniteImageIplRotateImage`.)");
    module.def("resize", resize, "page"_a, "numerator"_a, "denominator"_a,
               R"(Scales a page by numerator / denominator, for example from one resolution to another.

`page` is a Page or an array of its pixels; the result is of the same kind. Both sides are truncated to whole pixels.
The resolution is scaled as well, so that the size in inches is kept.

Shapes of arrays: (height, width, ...) -> (height * numerator // denominator, ...); uint8.

>>> page = np.zeros((3508, 2480), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.resize(page, 150, 300).shape
(1754, 1240)

Calls `ResizeImageWithIPPEx`.)");
}

}    // namespace

void addPages(py::module_& module) {
    addPageType(module);
    addPageGeometry(module);
}

}    // namespace binding
