// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// JPEG streams: compression of pages and arrays.
#include <pybind11/stl.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "arrays.h"
#include "bindings.h"
#include "page.h"

namespace binding {

namespace {

using namespace py::literals;

constexpr int kLongestJpegSide = 65500;

// A stream that the library has allocated.
struct Stream {
    void* data = nullptr;
    unsigned size = 0;

    Stream() = default;
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;
    ~Stream() { std::free(data); }
    py::bytes bytes() const { return {static_cast<const char*>(data), size}; }
};

void checkJpegSides(const Argument& argument, int width, int height) {
    if (width > kLongestJpegSide || height > kLongestJpegSide)
        refuse(argument, "has a side above 65500 pixels, which JPEG cannot store");
}

py::bytes compressJpeg(const Page& page, int mode) {
    const Argument argument = {"compress_jpeg", "page"};
    checkJpegSides(argument, page.record().width, page.record().height);
    if (page.dpi().x != page.dpi().y)
        refuse(argument, "has different resolutions in x and y, but CompressJPEG stores one; use compress_jpeg_ex");
    Stream stream;
    run("CompressJPEG",
        [&] { return int{CompressJPEG(&page.record(), page.dpi().x, mode, &stream.data, &stream.size)}; });
    return stream.bytes();
}

using Compressor = OSErr (*)(const KVIMG*, KVImageDescriptionHandle, int, void**, unsigned*);

py::bytes compressDescribed(const char* function, const char* libraryFunction, Compressor compress, const Page& page,
                            int mode) {
    checkJpegSides({function, "page"}, page.record().width, page.record().height);
    KVImageDescription description = page.description();
    KVImageDescription* record = &description;
    Stream stream;
    run(libraryFunction, [&] { return int{compress(&page.record(), &record, mode, &stream.data, &stream.size)}; });
    return stream.bytes();
}

py::bytes compressJpegEx(const Page& page, int mode) {
    return compressDescribed("compress_jpeg_ex", "CompressJPEGEx", CompressJPEGEx, page, mode);
}

py::bytes compressJpegWithIPP(const Page& page, int mode) {
    return compressDescribed("compress_jpeg_with_ipp", "CompressJPEGWithIPP", CompressJPEGWithIPP, page, mode);
}

struct Raster {
    Image image;
    int quality;
    Dpi dpi;
};

Raster rasterOf(const char* function, const py::array& pixels, const Form& form, int quality, int64_t dpiX,
                const std::optional<int64_t>& dpiY) {
    constexpr int kBest = 100;
    const Image image = imageOf({function, "pixels"}, pixels, form);
    checkJpegSides({function, "pixels"}, image.width, image.height);
    if (quality < 1 || quality > kBest) refuse(Argument{function, "quality"}, "must be 1 to 100");
    return {image, quality, dpiOf(function, dpiX, dpiY)};
}

template <typename Call>
py::bytes compressed(const char* libraryFunction, Call call) {
    std::vector<unsigned char> out;
    bool done = false;
    run(libraryFunction, [&] {
        done = call(out);
        return 0;
    });
    if (!done) fail(libraryFunction, "the encoder failed");
    return {reinterpret_cast<const char*>(out.data()), out.size()};
}

py::bytes compressGray(const py::array& pixels, int quality, int64_t dpiX, const std::optional<int64_t>& dpiY,
                       bool customTables) {
    const Raster r = rasterOf("compress_gray", pixels, kGrey, quality, dpiX, dpiY);
    const Image& i = r.image;
    return compressed("CompressGray2Gray444", [&](std::vector<unsigned char>& out) {
        return CompressGray2Gray444(i.data, i.step, i.width, i.height, out, r.quality, r.dpi.y, r.dpi.x, customTables);
    });
}

py::bytes compressRGB444(const py::array& pixels, int quality, int64_t dpiX, const std::optional<int64_t>& dpiY,
                         bool customTables) {
    const Raster r = rasterOf("compress_rgb_444", pixels, kColour, quality, dpiX, dpiY);
    const Image& i = r.image;
    return compressed("CompressRGB2YCbCr444", [&](std::vector<unsigned char>& out) {
        return CompressRGB2YCbCr444(i.data, i.step, i.width, i.height, out, r.quality, r.dpi.y, r.dpi.x, customTables);
    });
}

py::bytes compressRGB411(const py::array& pixels, int quality, int64_t dpiX, const std::optional<int64_t>& dpiY) {
    const Raster r = rasterOf("compress_rgb_411", pixels, kColour, quality, dpiX, dpiY);
    const Image& i = r.image;
    return compressed("CompressRGB2YCbCr411", [&](std::vector<unsigned char>& out) {
        return CompressRGB2YCbCr411(i.data, i.step, i.width, i.height, out, r.quality, r.dpi.y, r.dpi.x);
    });
}

}    // namespace

void addJpeg(py::module_& module) {
    module.def("compress_jpeg", compressJpeg, "page"_a, "mode"_a,
               R"(Compresses a page of depth 8 or 24 with the library's own quantisation tables, without subsampling.

`mode` is 0, 286, 389, 450 or 788 (best). The page's resolution is stored; it must be the same in both directions.

>>> page = opcv_dlib.Page(np.zeros((3508, 2480), np.uint8))    # A4 at 300 dots per inch
>>> opcv_dlib.compress_jpeg(page, 450)[:2].hex()
'ffd8'

Calls `CompressJPEG`.)");
    module.def("compress_jpeg_ex", compressJpegEx, "page"_a, "mode"_a,
               R"(Compresses a page of depth 8 or 24 with libjpeg's quantisation tables; colour is subsampled 2 x 2.

`mode` is 0, 286, 389, 450 or 788 (best). The page's two resolutions are stored.

>>> page = opcv_dlib.Page(np.zeros((3508, 2480), np.uint8))    # A4 at 300 dots per inch
>>> opcv_dlib.compress_jpeg_ex(page, 450)[:2].hex()
'ffd8'

Calls `CompressJPEGEx`, of which `CompressJPEGWithIPPEx` is a second name.)");
    module.def("compress_jpeg_with_ipp", compressJpegWithIPP, "page"_a, "mode"_a,
               R"(`compress_jpeg_ex` with other qualities for the modes.

>>> page = opcv_dlib.Page(np.zeros((3508, 2480), np.uint8))    # A4 at 300 dots per inch
>>> opcv_dlib.compress_jpeg_with_ipp(page, 450)[:2].hex()
'ffd8'

Calls `CompressJPEGWithIPP`.)");
    module.def("compress_gray", compressGray, "pixels"_a, "quality"_a, py::kw_only(), "dpi_x"_a = kUsualDpi,
               "dpi_y"_a = py::none(), "custom_tables"_a = true,
               R"(Compresses a grey array with a quality of 1 to 100.

`custom_tables` selects the library's own quantisation table instead of libjpeg's.

Shapes: (height, width); uint8.

>>> page = np.zeros((3508, 2480), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.compress_gray(page, 90)[:2].hex()
'ffd8'

Calls `CompressGray2Gray444`.)");
    module.def("compress_rgb_444", compressRGB444, "pixels"_a, "quality"_a, py::kw_only(), "dpi_x"_a = kUsualDpi,
               "dpi_y"_a = py::none(), "custom_tables"_a = true,
               R"(Compresses a colour array without subsampling; otherwise like `compress_gray`.

Shapes: (height, width, 3); uint8.

>>> page = np.zeros((3508, 2480, 3), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.compress_rgb_444(page, 90)[:2].hex()
'ffd8'

Calls `CompressRGB2YCbCr444`.)");
    module.def(
        "compress_rgb_411", compressRGB411, "pixels"_a, "quality"_a, py::kw_only(), "dpi_x"_a = kUsualDpi,
        "dpi_y"_a = py::none(),
        R"(Compresses a colour array with chroma subsampled 2 x 2 and libjpeg's tables; otherwise like `compress_gray`.

Shapes: (height, width, 3); uint8.

>>> page = np.zeros((3508, 2480, 3), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.compress_rgb_411(page, 90)[:2].hex()
'ffd8'

Calls `CompressRGB2YCbCr411`.)");
}

}    // namespace binding
