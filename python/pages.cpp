// Pages: image records with their dots per inch, their deskew, turns and scaling, and JPEG.
#include <pybind11/stl.h>

#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "arrays.h"
#include "bindings.h"

namespace binding {

namespace {

using namespace py::literals;

constexpr int kUsualDpi = 300;
constexpr int kHighestDpi = 65535;    // a JPEG stream stores 16 bits
constexpr int kLongestJpegSide = 65500;

struct RecordDeleter {
    void operator()(KVIMG* record) const { DisposeKVIMG(record); }
};
using RecordPtr = std::unique_ptr<KVIMG, RecordDeleter>;

struct Dpi {
    int x = kUsualDpi;
    int y = kUsualDpi;
};

int dpiOf(const Argument& argument, int64_t value) {
    if (value < 1 || value > kHighestDpi) refuse(argument, "must be 1 to 65535, not " + std::to_string(value));
    return static_cast<int>(value);
}

Dpi dpiOf(const char* function, int64_t x, const std::optional<int64_t>& y) {
    return {dpiOf({function, "dpi_x"}, x), dpiOf({function, "dpi_y"}, y.value_or(x))};
}

// A record and its resolution. The record is never changed once it is made; its pixels belong to Python.
class Page {
public:
    Page(RecordPtr record, Dpi dpi) : record_(std::move(record)), dpi_(dpi) {}

    const KVIMG& record() const { return *record_; }
    Dpi dpi() const { return dpi_; }
    void setDpiX(int64_t value) { dpi_.x = dpiOf({"Page", "dpi_x"}, value); }
    void setDpiY(int64_t value) { dpi_.y = dpiOf({"Page", "dpi_y"}, value); }

    KVImageDescription description() const {
        KVImageDescription d{};
        d.width = record_->width;
        d.height = record_->height;
        d.horizontalResolution = dpi_.x;
        d.verticalResolution = dpi_.y;
        d.depth = static_cast<int16_t>(record_->depth);
        return d;
    }

private:
    RecordPtr record_;
    Dpi dpi_;
};

using PagePtr = std::unique_ptr<Page>;

PagePtr pageOf(KVIMG* record, Dpi dpi) { return std::make_unique<Page>(RecordPtr(record), dpi); }

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

// The array lies in the record and keeps the page alive.
py::array pixelsOf(const py::object& self) {
    const KVIMG& record = self.cast<const Page&>().record();
    constexpr int kBits = 8;
    const py::ssize_t width = record.depth == 1 ? (int64_t{record.width} + kBits - 1) / kBits : record.width;
    const int channels = record.depth == 24 || record.depth == 32 ? record.depth / kBits : 1;
    std::vector<py::ssize_t> shape = {record.height, width};
    std::vector<py::ssize_t> strides = {record.rowBytes, channels};
    if (channels > 1) {
        shape.push_back(channels);
        strides.push_back(1);
    }
    return py::array(dtypeOf(Depth::k8u), shape, strides, record.data, self);
}

std::string wordsOf(const Page& page) {
    const KVIMG& r = page.record();
    return "<opcv_dlib.Page of " + std::to_string(r.width) + " x " + std::to_string(r.height) + " pixels, depth " +
           std::to_string(r.depth) + ", " + std::to_string(page.dpi().x) + " x " + std::to_string(page.dpi().y) +
           " dots per inch>";
}

// Runs a function that makes a new record from a page and its description.
template <typename Call>
PagePtr made(const Page& page, const char* libraryFunction, Dpi dpi, Call call) {
    KVImageDescription description = page.description();
    KVImageDescription* record = &description;
    KVIMG* result = nullptr;
    run(libraryFunction, [&] { return int{call(&page.record(), &record, &result)}; });
    return pageOf(result, dpi);
}

void checkAngle(const char* function, double angle) {
    if (!std::isfinite(angle)) refuse(Argument{function, "angle"}, "is not a finite number");
}

PagePtr deskew(const Page& page, double angle, bool whiteFill) {
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

PagePtr deskewCrop(const Page& page, double angle, const std::tuple<int64_t, int64_t, int64_t, int64_t>& crop,
                   bool whiteFill) {
    const char* function = "deskew_crop";
    checkAngle(function, angle);
    const Argument argument = {function, "crop"};
    const auto [left, top, width, height] = crop;
    KVRect rect = rectOf(argument, intOf(argument, left), intOf(argument, top), width, height);
    return made(page, "DeskewImageWithIPPEx", page.dpi(), [&](const KVIMG* src, auto description, KVIMG** dst) {
        return DeskewImageWithIPPEx(src, description, dst, 0, whiteFill, &rect, angle);
    });
}

PagePtr deskewAbout(const Page& page, double angle, const Pair& point, const Pair& size, bool whiteFill) {
    const char* function = "deskew_about";
    checkAngle(function, angle);
    KVRect rect = rectOf({function, "size"}, 0, 0, std::get<0>(size), std::get<1>(size));
    return made(page, "DeskewImageWithIPPExWithShirftPoint", page.dpi(),
                [&](const KVIMG* src, auto description, KVIMG** dst) {
                    return DeskewImageWithIPPExWithShirftPoint(src, description, dst, 0, whiteFill, &rect,
                                                               std::get<0>(point), std::get<1>(point), angle);
                });
}

PagePtr rotatePage(const Page& page, double angle) {
    checkAngle("rotate_page", angle);
    const bool upright = std::fmod(std::trunc(angle), 180) == 0;
    const Dpi dpi = upright ? page.dpi() : Dpi{page.dpi().y, page.dpi().x};
    return made(page, "RotateImageWithIPP", dpi, [&](const KVIMG* src, auto description, KVIMG** dst) {
        return RotateImageWithIPP(src, description, dst, angle);
    });
}

// Rows come as many whole pixels apart as their step holds; the record wants them a step apart.
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

int scaledDpi(int dpi, double scale) {
    const double scaled = std::round(dpi * scale);
    return static_cast<int>(std::min<double>(std::max<double>(scaled, 1), kHighestDpi));
}

PagePtr resize(const Page& page, double numerator, double denominator) {
    const char* function = "resize";
    if (!std::isfinite(numerator) || numerator <= 0) refuse(Argument{function, "numerator"}, "must be above 0");
    if (!std::isfinite(denominator) || denominator <= 0) refuse(Argument{function, "denominator"}, "must be above 0");
    const double scale = numerator / denominator;
    KVIMG* result = nullptr;
    run("ResizeImageWithIPPEx",
        [&] { return int{ResizeImageWithIPPEx(&page.record(), &result, denominator, numerator)}; });
    return pageOf(result, {scaledDpi(page.dpi().x, scale), scaledDpi(page.dpi().y, scale)});
}

// A stream that the library hands over.
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
        refuse(argument, "has a side above 65500 pixels, which JPEG does not hold");
}

py::bytes compressJpeg(const Page& page, int mode) {
    const Argument argument = {"compress_jpeg", "page"};
    checkJpegSides(argument, page.record().width, page.record().height);
    if (page.dpi().x != page.dpi().y)
        refuse(argument, "has two resolutions, of which CompressJPEG stores one; see compress_jpeg_ex");
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

// The bytes of an object, which cannot be resized meanwhile.
class Bytes {
public:
    Bytes(const Argument& argument, const py::object& object) {
        if (PyObject_GetBuffer(object.ptr(), &view_, PyBUF_SIMPLE) != 0) throw py::error_already_set();
        if (view_.len > 0 && static_cast<uint64_t>(view_.len) <= UINT_MAX) return;
        PyBuffer_Release(&view_);
        refuse(argument, "is empty or has 2^32 bytes or more");
    }
    Bytes(const Bytes&) = delete;
    Bytes& operator=(const Bytes&) = delete;
    ~Bytes() { PyBuffer_Release(&view_); }

    const unsigned char* data() const { return static_cast<const unsigned char*>(view_.buf); }
    unsigned size() const { return static_cast<unsigned>(view_.len); }

private:
    Py_buffer view_{};
};

// What the headers in front of the first scan say.
struct Headers {
    bool known = false;
    Dpi dpi;
    int width = 0;
    int height = 0;
};

class HeaderReader {
public:
    HeaderReader(const unsigned char* data, size_t size) : data_(data), size_(size) {}

    Headers read() const {
        Headers headers;
        for (size_t at = 2; at + 4 <= size_ && data_[at] == 0xFF;) {
            const int marker = data_[at + 1];
            if (marker == 0xFF) {    // fill byte
                ++at;
                continue;
            }
            if (marker == kStartOfScan) break;
            const auto length = static_cast<size_t>(word(at + 2));
            if (length < 2 || at + 2 + length > size_) break;
            readSegment(marker, at + 4, length - 2, headers);
            at += 2 + length;
        }
        return headers;
    }

private:
    static constexpr int kStartOfScan = 0xDA;
    static constexpr int kApp0 = 0xE0;

    int word(size_t at) const { return data_[at] << 8 | data_[at + 1]; }

    static bool isFrame(int marker) {
        constexpr int kHuffmanTables = 0xC4;
        constexpr int kReserved = 0xC8;
        constexpr int kArithmetic = 0xCC;
        return marker >= 0xC0 && marker <= 0xCF && marker != kHuffmanTables && marker != kReserved &&
               marker != kArithmetic;
    }

    void readSegment(int marker, size_t at, size_t length, Headers& headers) const {
        if (marker == kApp0 && length >= 12 && std::memcmp(data_ + at, "JFIF", 5) == 0) readDensity(at + 7, headers);
        if (isFrame(marker) && length >= 5) {
            headers.height = word(at + 1);
            headers.width = word(at + 3);
        }
    }

    void readDensity(size_t at, Headers& headers) const {
        constexpr int kPerInch = 1;
        constexpr int kPerCentimetre = 2;
        constexpr double kCentimetresOfInch = 2.54;
        const int unit = data_[at];
        const double scale = unit == kPerCentimetre ? kCentimetresOfInch : 1;
        headers.dpi = {scaledDpi(word(at + 1), scale), scaledDpi(word(at + 3), scale)};
        headers.known = (unit == kPerInch || unit == kPerCentimetre) && word(at + 1) != 0 && word(at + 3) != 0;
    }

    const unsigned char* data_;
    size_t size_;
};

// What a stream says of its resolution, in the directions of the page, which may have been turned by its orientation.
Dpi resolutionOf(const Bytes& stream, const KVIMG& page, int otherwise) {
    const Headers headers = HeaderReader(stream.data(), stream.size()).read();
    if (!headers.known) return {otherwise, otherwise};
    const bool turned = headers.width != headers.height && headers.width == page.height && headers.height == page.width;
    return turned ? Dpi{headers.dpi.y, headers.dpi.x} : headers.dpi;
}

PagePtr readJpeg(const py::object& data, int64_t defaultDpi) {
    const char* function = "read_jpeg";
    const Bytes stream({function, "data"}, data);
    const int otherwise = dpiOf({function, "default_dpi"}, defaultDpi);
    KVIMG* image = nullptr;
    run("ReadJPEG", [&] {
        KVImageDescription description{};
        KVImageDescription* record = &description;
        KVImageDescriptionHandle handle = &record;
        return int{ReadJPEG(stream.data(), stream.size(), &handle, &image)};
    });
    PagePtr page = pageOf(image, {});
    const Dpi dpi = resolutionOf(stream, *image, otherwise);
    page->setDpiX(dpi.x);
    page->setDpiY(dpi.y);
    return page;
}

PagePtr readSplitJpeg(const py::object& data, const Pair& size, int64_t defaultDpi) {
    const char* function = "read_split_jpeg";
    const Bytes stream({function, "data"}, data);
    const IppiSize stated = sizeOf({function, "size"}, size);
    const int otherwise = dpiOf({function, "default_dpi"}, defaultDpi);
    KVIMG* image = nullptr;
    run("ReadSplitJPEG", [&] {
        KVImageDescription description{};
        description.width = stated.width;
        description.height = stated.height;
        KVImageDescription* record = &description;
        return int{ReadSplitJPEG(stream.data(), stream.size(), &record, &image)};
    });
    PagePtr page = pageOf(image, {});
    const Dpi dpi = resolutionOf(stream, *image, otherwise);
    page->setDpiX(dpi.x);
    page->setDpiY(dpi.y);
    return page;
}

void addPageType(py::module_& module) {
    py::class_<Page>(module, "Page",
                     R"(A page in an image record of the library, with its resolution.

Page(pixels) copies an array of the shape (height, width), (height, width, 3) or (height, width, 4). The record is a
`KVIMG`, made by `CreateNewKVIMGPtr` and released by `DisposeKVIMG`.)")
        .def(py::init(&pageOfPixels), "pixels"_a, "dpi_x"_a = kUsualDpi, "dpi_y"_a = py::none())
        .def_static("empty", emptyPage, "width"_a, "height"_a, "depth"_a = 8, "dpi_x"_a = kUsualDpi,
                    "dpi_y"_a = py::none(), py::kw_only(), "for_unite"_a = false,
                    R"(A page of 1, 8, 24, 32 or 40 bits a pixel (40 is laid out like 8) whose pixels are undefined.

With `for_unite` rows of 24 bits are padded to a multiple of 4 bytes.

Calls `KVSetRect` and `CreateNewKVIMGPtr` or `CreateNewKVIMGPtrForUnite`.)")
        .def_property_readonly("pixels", pixelsOf,
                               "The pixels: an array in the page's own memory, which it keeps alive. At 1 bit its "
                               "bytes are packed pixels.")
        .def_property_readonly(
            "width", [](const Page& p) { return p.record().width; }, "Pixels a row.")
        .def_property_readonly(
            "height", [](const Page& p) { return p.record().height; }, "Rows.")
        .def_property_readonly(
            "depth", [](const Page& p) { return p.record().depth; }, "Bits a pixel.")
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
               R"(Turns a page about its exact centre; the new page has its size and resolution.

`angle` is in degrees, counter-clockwise on screen. Corners from outside the page are black; with `white_fill` they are
white at 24 bits, and at 32 bits but for the first byte, which is 0.

Calls `DeskewImageWithIPP`.)");
    module.def(
        "deskew_crop", deskewCrop, "page"_a, "angle"_a, "crop"_a, py::kw_only(), "white_fill"_a = false,
        R"(Turns a page about its centre and cuts the rectangle `crop` (left, top, width, height) out of the result.

The rectangle may reach outside the page. Otherwise as `deskew`.

Calls `DeskewImageWithIPPEx`.)");
    module.def(
        "deskew_about", deskewAbout, "page"_a, "angle"_a, "point"_a, "size"_a, py::kw_only(), "white_fill"_a = false,
        R"(Turns a page about a point (x, y), which becomes the top-left pixel of a new page of `size` (width, height).

Otherwise as `deskew`.

Calls `DeskewImageWithIPPExWithShirftPoint`.)");
    module.def("rotate_page", rotatePage, "page"_a, "angle"_a,
               R"(Turns a page by 90, 180 or 270 degrees, **clockwise** on screen, or by their negatives.

The fraction of the angle is dropped. With quarter turns the two sides and the two resolutions change places.

Calls `RotateImageWithIPP`.)");
    module.def(
        "rotate90", [](const Page& p) { return rotatePage(p, 90); }, "page"_a,
        "`rotate_page` by 90 degrees, clockwise on screen.\n\nCalls `RotateImageWithIPP`.");
    module.def(
        "rotate180", [](const Page& p) { return rotatePage(p, 180); }, "page"_a,
        "`rotate_page` by 180 degrees.\n\nCalls `RotateImageWithIPP`.");
    module.def(
        "rotate270", [](const Page& p) { return rotatePage(p, 270); }, "page"_a,
        "`rotate_page` by 270 degrees, clockwise on screen.\n\nCalls `RotateImageWithIPP`.");
    module.def("unite_rotate", uniteRotate, "src"_a, "size"_a, "angle"_a, py::kw_only(), "dpi_x"_a = kUsualDpi,
               "dpi_y"_a = py::none(),
               R"(Turns an image about its centre and centres it on a new page of `size` (width, height).

`angle` is in degrees, **clockwise** on screen. Uncovered pixels are white at 24 bits and, but for the first byte, at 32;
black at 8. Rows of 24 bits are padded to a multiple of 4 bytes.

Calls `UniteImageIplRotateImage`.)");
    module.def("resize", resize, "page"_a, "numerator"_a, "denominator"_a,
               R"(Scales a page by numerator / denominator, for instance from one resolution to another.

Both sides are truncated to whole pixels. The resolution is scaled as well: the page's size in inches stays.

Calls `ResizeImageWithIPPEx`.)");
}

void addJpeg(py::module_& module) {
    module.def("read_jpeg", readJpeg, "data"_a, py::kw_only(), "default_dpi"_a = kUsualDpi,
               R"(Reads a JPEG stream (bytes or another buffer): a page of depth 8 if it is grey, otherwise 24.

The resolution is what the JFIF header says, or `default_dpi`.

Calls `ReadJPEG`, of which `ReadJPEGWithIPP` is a second name.)");
    module.def("read_split_jpeg", readSplitJpeg, "data"_a, "size"_a, py::kw_only(), "default_dpi"_a = kUsualDpi,
               R"(Reads a JPEG stream of known size (width, height), always into 24 bits; otherwise as `read_jpeg`.

Calls `ReadSplitJPEG`.)");
    module.def("compress_jpeg", compressJpeg, "page"_a, "mode"_a,
               R"(Compresses a page of depth 8 or 24 with the library's own quantisation tables, without subsampling.

`mode` is 0, 286, 389, 450 or 788 (best). The page's resolution is stored; it must be the same in both directions.

Calls `CompressJPEG`.)");
    module.def("compress_jpeg_ex", compressJpegEx, "page"_a, "mode"_a,
               R"(Compresses a page of depth 8 or 24 with libjpeg's quantisation tables; colour is subsampled 2 x 2.

`mode` is 0, 286, 389, 450 or 788 (best). The page's two resolutions are stored.

Calls `CompressJPEGEx`, of which `CompressJPEGWithIPPEx` is a second name.)");
    module.def("compress_jpeg_with_ipp", compressJpegWithIPP, "page"_a, "mode"_a,
               R"(`compress_jpeg_ex` with a scale of qualities of its own.

Calls `CompressJPEGWithIPP`.)");
    module.def("compress_gray", compressGray, "pixels"_a, "quality"_a, py::kw_only(), "dpi_x"_a = kUsualDpi,
               "dpi_y"_a = py::none(), "custom_tables"_a = true,
               R"(Compresses a grey array with a quality of 1 to 100.

`custom_tables`: the library's own quantisation table instead of libjpeg's.

Calls `CompressGray2Gray444`.)");
    module.def("compress_rgb_444", compressRGB444, "pixels"_a, "quality"_a, py::kw_only(), "dpi_x"_a = kUsualDpi,
               "dpi_y"_a = py::none(), "custom_tables"_a = true,
               R"(Compresses a colour array without subsampling; otherwise as `compress_gray`.

Calls `CompressRGB2YCbCr444`.)");
    module.def(
        "compress_rgb_411", compressRGB411, "pixels"_a, "quality"_a, py::kw_only(), "dpi_x"_a = kUsualDpi,
        "dpi_y"_a = py::none(),
        R"(Compresses a colour array with chroma subsampled 2 x 2 and libjpeg's tables; otherwise as `compress_gray`.

Calls `CompressRGB2YCbCr411`.)");
}

}    // namespace

void addPages(py::module_& module) {
    addPageType(module);
    addPageGeometry(module);
    addJpeg(module);
}

}    // namespace binding
