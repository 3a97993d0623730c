// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// JPEG streams: reading into pages and arrays.
#include <OPCV_dlib_read.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <climits>
#include <string>

#include "arrays.h"
#include "bindings.h"
#include "jpeg_resolution.h"
#include "page.h"

namespace binding {

namespace {

using namespace py::literals;

// The bytes of an object, which cannot be resized while this exists.
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
    bool meets(const Image& image) const {
        const auto begin = reinterpret_cast<uintptr_t>(data());
        const auto other = reinterpret_cast<uintptr_t>(image.data);
        const int64_t otherSize = int64_t{image.step} * (image.height - 1) + image.rowBytes();
        return begin < other + static_cast<uintptr_t>(otherSize) && other < begin + size();
    }

private:
    Py_buffer view_{};
};

// A page of the record that was read and the resolution in the stream.
PagePtr pageRead(KVIMG* image, const Bytes& stream, int otherwise) {
    PagePtr page = pageOf(image, {});
    const Dpi dpi = resolutionOf(stream.data(), stream.size(), *image, otherwise);
    page->setDpiX(dpi.x);
    page->setDpiY(dpi.y);
    return page;
}

std::string nameOfReading(int status) {
    switch (status) {
        case OPCV_READ_BAD_ARGUMENT: return "OPCV_READ_BAD_ARGUMENT";
        case OPCV_READ_UNREADABLE: return "OPCV_READ_UNREADABLE";
        case OPCV_READ_OVER_LIMIT: return "OPCV_READ_OVER_LIMIT";
        case OPCV_READ_NO_MEMORY: return "OPCV_READ_NO_MEMORY";
        case OPCV_READ_CANCELLED: return "OPCV_READ_CANCELLED";
        case OPCV_READ_WRONG_SIZE: return "OPCV_READ_WRONG_SIZE";
        default: return "status";
    }
}

void checkType(const Argument& argument, const py::object& value, const char* type) {
    if (value.is_none() || py::isinstance(value, py::module_::import("opcv_dlib._reading").attr(type))) return;
    throw py::type_error(std::string(argument.function) + ": " + argument.name + " must be a " + type + " or None");
}

// 0 if there is no limit.
int64_t limitOf(const char* function, const py::object& limits, const char* name) {
    if (limits.is_none()) return 0;
    const py::object value = limits.attr(name);
    if (value.is_none()) return 0;
    const auto number = py::reinterpret_steal<py::object>(PyNumber_Index(value.ptr()));
    if (!number) throw py::error_already_set();
    int overflow = 0;
    const int64_t limit = PyLong_AsLongLongAndOverflow(number.ptr(), &overflow);
    if (overflow > 0) return INT64_MAX;
    if (overflow < 0 || limit < 1) refuse(function, std::string("limits.") + name + " must be 1 or more, or None");
    return limit;
}

opcv_read_options optionsOf(const char* function, const py::object& limits) {
    checkType({function, "limits"}, limits, "ReadLimits");
    opcv_read_options options{};
    options.struct_size = sizeof options;
    options.max_bytes = static_cast<size_t>(limitOf(function, limits, "bytes"));
    options.max_pixels = limitOf(function, limits, "pixels");
    options.max_memory = limitOf(function, limits, "memory");
    options.max_scans = static_cast<int32_t>(std::min<int64_t>(limitOf(function, limits, "scans"), INT32_MAX));
    return options;
}

void write(const opcv_read_report& from, const py::object& to) {
    if (to.is_none()) return;
    to.attr("width") = from.width;
    to.attr("height") = from.height;
    to.attr("channels") = from.channels;
    to.attr("components") = from.components;
    to.attr("progressive") = from.progressive != 0;
    to.attr("arithmetic") = from.arithmetic != 0;
    to.attr("scans") = from.scans;
    to.attr("orientation") = from.orientation;
    to.attr("dpi_x") = from.dpi_x;
    to.attr("dpi_y") = from.dpi_y;
    to.attr("memory") = from.memory;
    to.attr("warnings") = from.warnings;
    to.attr("rows") = from.rows;
    to.attr("rows_decoded") = from.rows_decoded;
    to.attr("end_marker_seen") = from.end_marker_seen != 0;
    to.attr("damaged") = from.damaged != 0;
}

// Calls one of the functions with a report. The caller's report is filled in even if the call fails.
template <typename Call>
void runReading(const char* libraryFunction, const py::object& report, Call call) {
    opcv_read_report found{};
    found.struct_size = sizeof found;
    try {
        run(
            libraryFunction, [&] { return int{call(&found)}; }, nameOfReading);
    } catch (const py::error_already_set&) {
        write(found, report);
        throw;
    }
    write(found, report);
}

void readInto(const Bytes& stream, const opcv_read_options& options, const py::object& report, const py::array& out) {
    const Argument argument = {"read_jpeg", "out"};
    const Image image = imageOf(argument, out, kGreyOrColour, Access::kWrite);
    if (stream.meets(image)) refuse(argument, "overlaps data");
    const opcv_rows rows = {image.data, image.step, image.width, image.height, image.channels};
    opcv_read_report page{};
    bool fits = true;
    runReading("opcv_read_rows", report, [&](opcv_read_report* found) {
        const opcv_read_status status = opcv_read_rows(stream.data(), stream.size(), &options, &rows, found);
        page = *found;
        fits = status != OPCV_READ_WRONG_SIZE;
        return fits ? status : OPCV_READ_OK;
    });
    if (fits) return;
    const std::string side = std::to_string(page.height) + ", " + std::to_string(page.width);
    const std::string grey = page.channels == 1 ? "(" + side + ") or " : "";
    refuse(argument,
           "must have the shape " + grey + "(" + side + ", 3), not " + py::str(out.attr("shape")).cast<std::string>());
}

PagePtr readLimited(const Bytes& stream, const opcv_read_options& options, const py::object& report, int otherwise) {
    RecordPtr image;
    runReading("opcv_read_page", report, [&](opcv_read_report* found) {
        KVIMG* made = nullptr;
        const opcv_read_status status = opcv_read_page(stream.data(), stream.size(), &options, &made, found);
        image.reset(made);
        return status;
    });
    return pageRead(image.release(), stream, otherwise);
}

py::object readJpeg(const py::object& data, int64_t defaultDpi, const py::object& limits, const py::object& report,
                    const Output& out) {
    const char* function = "read_jpeg";
    const Bytes stream({function, "data"}, data);
    const int otherwise = dpiOf({function, "default_dpi"}, defaultDpi);
    const opcv_read_options options = optionsOf(function, limits);
    checkType({function, "report"}, report, "ReadReport");
    if (out) {
        readInto(stream, options, report, *out);
        return *out;
    }
    if (!limits.is_none() || !report.is_none()) return py::cast(readLimited(stream, options, report, otherwise));
    KVIMG* image = nullptr;
    run("ReadJPEG", [&] {
        KVImageDescription description{};
        KVImageDescription* record = &description;
        KVImageDescriptionHandle handle = &record;
        return int{ReadJPEG(stream.data(), stream.size(), &handle, &image)};
    });
    return py::cast(pageRead(image, stream, otherwise));
}

py::object readJpegInfo(const py::object& data, const py::object& limits) {
    const char* function = "read_jpeg_info";
    const Bytes stream({function, "data"}, data);
    const opcv_read_options options = optionsOf(function, limits);
    py::object report = py::module_::import("opcv_dlib._reading").attr("ReadReport")();
    runReading("opcv_read_info", report,
               [&](opcv_read_report* found) { return opcv_read_info(stream.data(), stream.size(), &options, found); });
    return report;
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
    return pageRead(image, stream, otherwise);
}

}    // namespace

void addJpegReading(py::module_& module) {
    module.def("read_jpeg", readJpeg, "data"_a, py::kw_only(), "default_dpi"_a = kUsualDpi, "limits"_a = py::none(),
               "report"_a = py::none(), "out"_a = py::none(),
               R"(Reads a JPEG stream (bytes or another buffer) into a page of depth 8 if it is grey, otherwise 24.

The resolution of the page is that of the JFIF header, or `default_dpi` if there is none.

`limits` is a `ReadLimits`. A stream that exceeds one of them is rejected before anything is decoded.

`report` is a `ReadReport`, which is filled in even if the stream is rejected. Without it, a damaged page looks like a
whole one.

`out` is an array of uint8 that receives the pixels instead of a page, without a copy; it is also returned. Its shape is
(height, width, 3), or (height, width) if the page is grey; `read_jpeg_info` tells the size. If decoding fails, some of
its rows may have been written.

>>> data = opcv_dlib.compress_gray(np.zeros((3508, 2480), np.uint8), 90)    # A4 at 300 dots per inch
>>> opcv_dlib.read_jpeg(data)
<opcv_dlib.Page of 2480 x 3508 pixels, depth 8, 300 x 300 dots per inch>
>>> opcv_dlib.read_jpeg(data).pixels.shape
(3508, 2480)

Calls `ReadJPEG`, of which `ReadJPEGWithIPP` is a second name; `opcv_read_rows` if there is `out`, otherwise
`opcv_read_page` if there are `limits` or a `report`.)");
    module.def("read_jpeg_info", readJpegInfo, "data"_a, py::kw_only(), "limits"_a = py::none(),
               R"(Returns a `ReadReport` with what the headers of a JPEG stream say. Nothing is decoded.

`data` is the whole stream, because its scans are counted. A stream that `read_jpeg` would reject is rejected. In the
report, `warnings`, `rows_decoded`, `end_marker_seen` and `damaged` stay 0 or false.

>>> data = opcv_dlib.compress_gray(np.zeros((3508, 2480), np.uint8), 90)    # A4 at 300 dots per inch
>>> opcv_dlib.read_jpeg_info(data).width
2480

Calls `opcv_read_info`.)");
    module.def(
        "read_split_jpeg", readSplitJpeg, "data"_a, "size"_a, py::kw_only(), "default_dpi"_a = kUsualDpi,
        R"(Reads a JPEG stream of known size (width, height), always into 24 bits; the resolution is that of `read_jpeg`.

>>> data = opcv_dlib.compress_gray(np.zeros((3508, 2480), np.uint8), 90)    # A4 at 300 dots per inch
>>> opcv_dlib.read_split_jpeg(data, (2480, 3508)).pixels.shape
(3508, 2480, 3)

Calls `ReadSplitJPEG`.)");
}

}    // namespace binding
