// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "arrays.h"

#include <pybind11/stl.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <new>
#include <opencv2/core.hpp>

namespace binding {

namespace {

std::string shapeOf(const py::array& array) { return py::str(array.attr("shape")).cast<std::string>(); }

std::string described(const py::array& array) {
    return py::str(array.attr("dtype")).cast<std::string>() + " of shape " + shapeOf(array);
}

// An object that is not an array, and how to make it one.
std::string described(const py::object& object) {
    const auto name = py::str(py::type::handle_of(object).attr("__name__")).cast<std::string>();
    const bool holdsPixels = py::hasattr(object, "__array_interface__") || py::isinstance<py::list>(object) ||
                             py::isinstance<py::tuple>(object);
    return name + (holdsPixels ? " (numpy.asarray converts it)" : "");
}

// Arrays in the other byte order do not match any of these.
std::optional<Depth> depthOf(const py::array& array) {
    if (py::isinstance<py::array_t<uint8_t>>(array)) return Depth::k8u;
    if (py::isinstance<py::array_t<int8_t>>(array)) return Depth::k8s;
    if (py::isinstance<py::array_t<uint16_t>>(array)) return Depth::k16u;
    if (py::isinstance<py::array_t<int16_t>>(array)) return Depth::k16s;
    if (py::isinstance<py::array_t<int32_t>>(array)) return Depth::k32s;
    if (py::isinstance<py::array_t<float>>(array)) return Depth::k32f;
    if (py::isinstance<py::array_t<double>>(array)) return Depth::k64f;
    return std::nullopt;
}

constexpr int kMostChannels = 4;

bool takesDepth(const Form& form, const std::optional<Depth>& depth) {
    for (int channels = 1; depth && channels <= kMostChannels; ++channels)
        if (form.takes(*depth, channels)) return true;
    return false;
}

// NumPy gives an arbitrary stride to a dimension of one element, so it is not checked.
void checkInnerStrides(const Argument& argument, const py::array& array, const Image& image) {
    const int element = bytesOf(image.depth);
    if (array.ndim() == 3 && image.channels > 1 && array.strides(2) != element)
        refuse(argument, "has gaps between the channels: its stride there must be " + std::to_string(element) +
                             ", not " + std::to_string(array.strides(2)));
    if (image.width > 1 && array.strides(1) != image.pixelSize())
        refuse(argument, "has gaps between the pixels: its stride there must be " + std::to_string(image.pixelSize()) +
                             ", not " + std::to_string(array.strides(1)));
}

int stepOf(const Argument& argument, const py::array& array, const Image& image) {
    const int64_t stride = image.height > 1 ? array.strides(0) : image.rowBytes();
    if (stride < image.rowBytes())
        refuse(argument, "has a row stride of " + std::to_string(stride) + " bytes, which is shorter than a row of " +
                             std::to_string(image.rowBytes()));
    if (stride % image.pixelSize() != 0)
        refuse(argument, "has a row stride of " + std::to_string(stride) +
                             " bytes, which is not a multiple of the pixel size, " + std::to_string(image.pixelSize()));
    if (stride > INT_MAX) refuse(argument, "has rows of more than 2147483647 bytes");
    return static_cast<int>(stride);
}

void checkSides(const Argument& argument, const py::array& array) {
    if (array.size() == 0) refuse(argument, "is empty: its shape is " + shapeOf(array));
    if (array.shape(0) > INT_MAX || array.shape(1) > INT_MAX) refuse(argument, "has a side above 2147483647");
}

int64_t floorDivide(int64_t a, int64_t b) { return a / b - (a % b < 0 ? 1 : 0); }

// Whether rows of b, whose first row has this offset from a, overlap rows of a.
bool rowsMeet(const Image& a, const Image& b) {
    const int64_t distance = reinterpret_cast<intptr_t>(b.data) - reinterpret_cast<intptr_t>(a.data);
    const int64_t above = floorDivide(distance, a.step);
    for (int64_t row = above; row <= above + 1; ++row) {
        const bool isRow = row > -b.height && row < a.height;
        const int64_t shift = distance - row * a.step;
        if (isRow && shift < a.rowBytes() && -shift < b.rowBytes()) return true;
    }
    return false;
}

bool rangesMeet(const Image& a, const Image& b) {
    const auto begin = [](const Image& i) { return reinterpret_cast<intptr_t>(i.data); };
    const auto end = [&](const Image& i) { return begin(i) + int64_t{i.step} * (i.height - 1) + i.rowBytes(); };
    return begin(a) < end(b) && begin(b) < end(a);
}

// The outcome of a call that ran without the interpreter's lock.
struct Outcome {
    int status = 0;
    bool outOfMemory = false;
    std::optional<std::string> thrown;
};

Outcome outcomeOf(const std::function<int()>& call) {
    Outcome outcome;
    const py::gil_scoped_release unlocked;
    try {
        outcome.status = call();
        outcome.outOfMemory = outcome.status == ippStsNoMemErr || outcome.status == memFullErr;
    } catch (const cv::Exception& e) {
        outcome.thrown = e.what();
        outcome.outOfMemory = e.code == cv::Error::StsNoMem;
    } catch (const std::bad_alloc&) {
        outcome.thrown = "out of memory";
        outcome.outOfMemory = true;
    } catch (const std::exception& e) {
        outcome.thrown = e.what();
    }
    return outcome;
}

[[noreturn]] void raise(const char* kind, const char* libraryFunction, const py::object& status,
                        const std::string& why) {
    const py::object type = py::module_::import("opcv_dlib._errors").attr(kind);
    const py::object error = type(libraryFunction, status, why);
    PyErr_SetObject(type.ptr(), error.ptr());
    throw py::error_already_set();
}

}    // namespace

void refuse(const char* function, const std::string& why) { throw py::value_error(std::string(function) + ": " + why); }

void refuse(const Argument& argument, const std::string& why) {
    refuse(argument.function, std::string(argument.name) + " " + why);
}

void refuseType(const Argument& argument, const std::string& why) {
    throw py::type_error(std::string(argument.function) + ": " + argument.name + " " + why);
}

int bytesOf(Depth depth) {
    switch (depth) {
        case Depth::k8u:
        case Depth::k8s: return 1;
        case Depth::k16u:
        case Depth::k16s: return 2;
        case Depth::k32s:
        case Depth::k32f: return 4;
        case Depth::k64f: break;
    }
    return 8;
}

py::dtype dtypeOf(Depth depth) {
    switch (depth) {
        case Depth::k8u: return py::dtype::of<uint8_t>();
        case Depth::k8s: return py::dtype::of<int8_t>();
        case Depth::k16u: return py::dtype::of<uint16_t>();
        case Depth::k16s: return py::dtype::of<int16_t>();
        case Depth::k32s: return py::dtype::of<int32_t>();
        case Depth::k32f: return py::dtype::of<float>();
        case Depth::k64f: break;
    }
    return py::dtype::of<double>();
}

Image Image::part(const IppiRect& r) const {
    Image image = *this;
    image.data += int64_t{r.y} * step + int64_t{r.x} * pixelSize();
    image.width = r.width;
    image.height = r.height;
    return image;
}

Image imageOf(const Argument& argument, const py::array& array, const Form& form, Access access) {
    const std::string mustBe = std::string("must be ") + form.words + ", not ";
    if (!py::isinstance<py::array>(array)) refuseType(argument, mustBe + described(py::object(array)));
    const std::optional<Depth> depth = depthOf(array);
    if (!takesDepth(form, depth)) refuseType(argument, mustBe + described(array));
    const bool isImage =
        array.ndim() == 2 || (array.ndim() == 3 && array.shape(2) >= 1 && array.shape(2) <= kMostChannels);
    const int channels = isImage && array.ndim() == 3 ? static_cast<int>(array.shape(2)) : 1;
    if (!isImage || !form.takes(*depth, channels) || (array.ndim() == 3 && channels == 1))
        refuse(argument, mustBe + described(array));
    checkSides(argument, array);

    Image image;
    image.data = static_cast<unsigned char*>(const_cast<void*>(array.data()));
    image.width = static_cast<int>(array.shape(1));
    image.height = static_cast<int>(array.shape(0));
    image.channels = channels;
    image.depth = *depth;
    checkInnerStrides(argument, array, image);
    image.step = stepOf(argument, array, image);
    if (reinterpret_cast<uintptr_t>(image.data) % static_cast<uintptr_t>(bytesOf(image.depth)) != 0)
        refuse(argument, "is not aligned");
    if (access == Access::kWrite && !array.writeable()) refuse(argument, "is read-only");
    return image;
}

Image packedImageOf(const Argument& argument, const py::array& array, const Form& form, Access access) {
    const Image image = imageOf(argument, array, form, access);
    if (image.step != image.rowBytes()) refuse(argument, "has gaps between its rows");
    return image;
}

IppiRect regionOf(const Argument& argument, const Image& image, const Region& region, const Margin& margin) {
    const std::string needs = "a margin of " + std::to_string(margin.left) + " pixels to the left, " +
                              std::to_string(margin.top) + " above, " + std::to_string(margin.right) +
                              " to the right and " + std::to_string(margin.bottom) + " below";
    int64_t x = std::max<int64_t>(margin.left, 0);
    int64_t y = std::max<int64_t>(margin.top, 0);
    int64_t width = image.width - x - std::max<int64_t>(margin.right, 0);
    int64_t height = image.height - y - std::max<int64_t>(margin.bottom, 0);
    const std::string size = std::to_string(image.width) + " x " + std::to_string(image.height);
    if (!region) {
        if (width <= 0 || height <= 0)
            refuse(argument, "does not fit: the image of " + size + " must contain " + needs);
    } else {
        const auto within = [](int64_t start, int64_t count, int64_t before, int64_t behind, int64_t all) {
            return count > 0 && start >= 0 && start <= all - count && start - before >= 0 &&
                   start + count + behind <= all;
        };
        std::tie(x, y, width, height) = *region;
        if (!within(x, width, margin.left, margin.right, image.width) ||
            !within(y, height, margin.top, margin.bottom, image.height))
            refuse(argument, "(" + std::to_string(x) + ", " + std::to_string(y) + ", " + std::to_string(width) + ", " +
                                 std::to_string(height) + ") does not lie in the image of " + size + " with " + needs);
    }
    return {static_cast<int>(x), static_cast<int>(y), static_cast<int>(width), static_cast<int>(height)};
}

IppiRect readRect(const IppiRect& region, const Margin& margin) {
    return {static_cast<int>(region.x - margin.left), static_cast<int>(region.y - margin.top),
            static_cast<int>(region.width + margin.left + margin.right),
            static_cast<int>(region.height + margin.top + margin.bottom)};
}

int intOf(const Argument& argument, int64_t value) {
    if (value < INT_MIN || value > INT_MAX) refuse(argument, "does not fit in 32 bits: " + std::to_string(value));
    return static_cast<int>(value);
}

IppiPoint pointOf(const Argument& argument, const Pair& pair) {
    return {intOf(argument, std::get<0>(pair)), intOf(argument, std::get<1>(pair))};
}

IppiSize sizeOf(const Argument& argument, const Pair& pair) {
    const IppiPoint sides = pointOf(argument, pair);
    if (sides.x <= 0 || sides.y <= 0)
        refuse(argument,
               "must have two sides above 0, not " + std::to_string(sides.x) + " x " + std::to_string(sides.y));
    return {sides.x, sides.y};
}

bool overlap(const Image& a, const Image& b) { return rangesMeet(a, b) && (a.step != b.step || rowsMeet(a, b)); }

void refuseOverlap(const Argument& argument, const Image& output, const Image& source) {
    if (overlap(output, source)) refuse(argument, "overlaps the source");
}

Result resultOf(const char* function, const Output& out, int width, int height, int channels, Depth depth,
                Fresh fresh) {
    std::vector<py::ssize_t> shape = {height, width};
    if (channels > 1) shape.push_back(channels);
    const Argument argument = {function, "out"};
    if (!out) {
        py::array made(dtypeOf(depth), shape);
        if (fresh == Fresh::kZeros) std::memset(made.mutable_data(), 0, static_cast<size_t>(made.nbytes()));
        return {made, imageOf(argument, made, kAnyPixels, Access::kWrite)};
    }
    const Image image = imageOf(argument, *out, kAnyPixels, Access::kWrite);
    const auto why = [&] {
        const std::string words = py::str(py::object(dtypeOf(depth))).cast<std::string>() + " of shape ";
        return "must be " + words + py::str(py::tuple(py::cast(shape))).cast<std::string>() + ", not " +
               described(*out);
    };
    if (image.depth != depth) refuseType(argument, why());
    if (image.width != width || image.height != height || image.channels != channels) refuse(argument, why());
    return {*out, image};
}

TightRows::TightRows(const Image& image, int spare) : image_(image) {
    const int64_t wanted = image.rowBytes() + int64_t{spare} * image.pixelSize();
    if (image.step == wanted && spare == 0) return;
    if (wanted > INT_MAX) throw std::bad_alloc();
    copy_.resize(static_cast<size_t>(wanted) * static_cast<size_t>(image.height));
    for (int y = 0; y < image.height; ++y)
        std::memcpy(copy_.data() + wanted * y, image.data + int64_t{y} * image.step,
                    static_cast<size_t>(image.rowBytes()));
    image_.data = copy_.data();
    image_.step = static_cast<int>(wanted);
}

std::string nameOf(int status) {
    switch (status) {
        case ippStsNoMemErr: return "ippStsNoMemErr";
        case ippStsBadArgErr: return "ippStsBadArgErr";
        case paramErr: return "paramErr";
        case memFullErr: return "memFullErr";
        case rotateFailedErr: return "rotateFailedErr";
        case badAngleErr: return "badAngleErr";
        case uniteFailedErr: return "uniteFailedErr";
        default: return "status";
    }
}

void run(const char* libraryFunction, const std::function<int()>& call,
         const std::function<std::string(int)>& nameOfStatus) {
    const Outcome outcome = outcomeOf(call);
    if (!outcome.thrown && outcome.status == 0) return;
    const py::object status = outcome.thrown ? py::object(py::none()) : py::int_(outcome.status);
    const std::string why =
        outcome.thrown ? *outcome.thrown : nameOfStatus(outcome.status) + " (" + std::to_string(outcome.status) + ")";
    raise(outcome.outOfMemory ? "OutOfMemoryError" : "Error", libraryFunction, status, why);
}

void fail(const char* libraryFunction, const std::string& why) { raise("Error", libraryFunction, py::none(), why); }

}    // namespace binding
