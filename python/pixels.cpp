// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Bit packing, depth, thresholds, fill, colour space, plane layout, and planes that the library allocates.
#include <pybind11/stl.h>

#include <climits>
#include <new>

#include "arrays.h"
#include "bindings.h"

namespace binding {

namespace {

using namespace py::literals;

template <typename T>
T valueOf(const Argument& argument, int64_t value) {
    if (value < std::numeric_limits<T>::min() || value > std::numeric_limits<T>::max())
        refuse(argument, "is out of range: " + std::to_string(value));
    return static_cast<T>(value);
}

constexpr int kBits = 8;    // in a byte

void checkOffset(const char* function, int64_t offset) {
    if (offset < 0 || offset >= kBits) refuse(function, "bit_offset must be 0 to 7");
}

void checkBits(const Argument& argument, const Image& bits, int64_t width, int64_t offset) {
    if (width <= 0) refuse(argument.function, "width must be above 0");
    if (width > INT_MAX || offset + width > int64_t{kBits} * bits.width)
        refuse(argument, "has rows of " + std::to_string(int64_t{kBits} * bits.width) + " bits, too few for " +
                             std::to_string(width) + " pixels at bit offset " + std::to_string(offset));
}

py::array expandBits(const py::array& src, int64_t width, int64_t bitOffset, const Output& out) {
    const char* function = "expand_bits";
    const Image from = imageOf({function, "src"}, src, kGrey);
    checkOffset(function, bitOffset);
    checkBits({function, "src"}, from, width, bitOffset);
    const Result result = resultOf(function, out, static_cast<int>(width), from.height, 1, Depth::k8u);
    const Image& to = result.image;
    refuseOverlap({function, "out"}, to, from);
    run("IPPShare_ippiConvert_1u8u_C1R", [&] {
        return IPPShare_ippiConvert_1u8u_C1R(from.data, from.step, static_cast<int>(bitOffset), to.data, to.step,
                                             to.size());
    });
    return result.array;
}

Result bitResultOf(const char* function, const Output& out, const Image& from, int64_t bitOffset) {
    if (!out) {
        const int64_t bytes = (bitOffset + from.width + kBits - 1) / kBits;
        return resultOf(function, out, static_cast<int>(bytes), from.height, 1, Depth::k8u, Fresh::kZeros);
    }
    const Argument argument = {function, "out"};
    const Image to = imageOf(argument, *out, kGrey, Access::kWrite);
    if (to.height != from.height)
        refuse(argument, "has " + std::to_string(to.height) + " rows, not " + std::to_string(from.height));
    return {*out, to};
}

py::array reduceBits(const py::array& src, int64_t threshold, int64_t bitOffset, const Output& out) {
    const char* function = "reduce_bits";
    const Image from = imageOf({function, "src"}, src, kGrey);
    const auto largestClear = valueOf<unsigned char>({function, "threshold"}, threshold);
    checkOffset(function, bitOffset);
    const Result result = bitResultOf(function, out, from, bitOffset);
    const Image& to = result.image;
    checkBits({function, "out"}, to, from.width, bitOffset);
    refuseOverlap({function, "out"}, to, from);
    run("IPPShare_ippiReduceBits_8u1u_C1R", [&] {
        return IPPShare_ippiReduceBits_8u1u_C1R(from.data, from.step, to.data, to.step, static_cast<int>(bitOffset),
                                                from.size(), 0, 0, 0, largestClear);
    });
    return result.array;
}

py::array convert8u16s(const py::array& src, const Output& out) {
    const char* function = "convert_8u16s";
    const Image from = imageOf({function, "src"}, src, kGrey);
    const Result result = resultOf(function, out, from.width, from.height, 1, Depth::k16s);
    const Image& to = result.image;
    refuseOverlap({function, "out"}, to, from);
    run("IPPShare_ippiConvert_8u16s_C1R", [&] {
        return IPPShare_ippiConvert_8u16s_C1R(from.data, from.step, reinterpret_cast<short*>(to.data), to.step,
                                              from.size());
    });
    return result.array;
}

py::array convert16s8u(const py::array& src, const Output& out) {
    const char* function = "convert_16s8u";
    const Image from = imageOf({function, "src"}, src, kGrey16);
    const Result result = resultOf(function, out, from.width, from.height, 1, Depth::k8u);
    const Image& to = result.image;
    refuseOverlap({function, "out"}, to, from);
    run("IPPShare_ippiConvert_16s8u_C1R", [&] {
        return IPPShare_ippiConvert_16s8u_C1R(reinterpret_cast<const short*>(from.data), from.step, to.data, to.step,
                                              from.size());
    });
    return result.array;
}

py::array thresholdLT(const py::array& image, int64_t threshold, int64_t value) {
    const char* function = "threshold_lt";
    const Image to = imageOf({function, "image"}, image, kGreyOf8Or16, Access::kWrite);
    if (to.depth == Depth::k8u) {
        const auto largest = valueOf<unsigned char>({function, "threshold"}, threshold);
        const auto by = valueOf<unsigned char>({function, "value"}, value);
        run("IPPShare_ippiThreshold_LTVal_8u_C1IR",
            [&] { return IPPShare_ippiThreshold_LTVal_8u_C1IR(to.data, to.step, to.size(), largest, by); });
    } else {
        const auto largest = valueOf<short>({function, "threshold"}, threshold);
        const auto by = valueOf<short>({function, "value"}, value);
        run("IPPShare_ippiThreshold_LTVal_16s_C1IR", [&] {
            return IPPShare_ippiThreshold_LTVal_16s_C1IR(reinterpret_cast<short*>(to.data), to.step, to.size(), largest,
                                                         by);
        });
    }
    return image;
}

py::array fill(const py::array& image, int64_t value) {
    const char* function = "fill";
    const Image to = imageOf({function, "image"}, image, kGrey, Access::kWrite);
    const auto byte = valueOf<unsigned char>({function, "value"}, value);
    run("IPPShare_ippiSet_8u_C1R", [&] { return IPPShare_ippiSet_8u_C1R(byte, to.data, to.step, to.size()); });
    return image;
}

using ColourFunction = IppStatus (*)(const unsigned char*, int, unsigned char*, int, IppiSize);

py::array convertColour(const char* function, const char* libraryFunction, ColourFunction convert, const py::array& src,
                        const Output& out) {
    const Image from = imageOf({function, "src"}, src, kColour);
    const Result result = resultOf(function, out, from.width, from.height, 3, Depth::k8u);
    const Image& to = result.image;
    const bool inPlace = to.data == from.data && to.step == from.step;
    if (!inPlace && overlap(to, from))
        refuse(Argument{function, "out"}, "overlaps the source but is not the same array");
    run(libraryFunction, [&] { return convert(from.data, from.step, to.data, to.step, from.size()); });
    return result.array;
}

py::array rgbToYUV(const py::array& src, const Output& out) {
    return convertColour("rgb_to_yuv", "IPPShare_ippiRGBToYUV_8u_C3R", IPPShare_ippiRGBToYUV_8u_C3R, src, out);
}

py::array yuvToRGB(const py::array& src, const Output& out) {
    return convertColour("yuv_to_rgb", "IPPShare_ippiYUVToRGB_8u_C3R", IPPShare_ippiYUVToRGB_8u_C3R, src, out);
}

// Three planes of one size that share their row stride.
struct Planes {
    std::array<Image, 3> images;

    const Image& first() const { return images[0]; }
    std::array<unsigned char*, 3> pointers() const { return {images[0].data, images[1].data, images[2].data}; }
    std::array<const unsigned char*, 3> constPointers() const {
        return {images[0].data, images[1].data, images[2].data};
    }
};

Planes planesOf(const Argument& argument, const py::sequence& planes, Access access) {
    if (py::len(planes) != 3) refuse(argument, "must be three planes");
    Planes found;
    for (size_t i = 0; i < found.images.size(); ++i) {
        const py::object plane = planes[i];
        if (!py::isinstance<py::array>(plane)) refuse(argument, "must be three arrays or an array of three");
        found.images[i] = imageOf(argument, plane.cast<py::array>(), kGrey, access);
    }
    for (const Image& image : found.images) {
        if (image.width != found.first().width || image.height != found.first().height)
            refuse(argument, "has planes of different sizes");
        if (image.step != found.first().step) refuse(argument, "has planes of different row strides");
    }
    return found;
}

struct PlanesResult {
    py::object object;
    Planes planes;
};

using PlanesOutput = std::optional<py::sequence>;

PlanesResult planesResultOf(const char* function, const PlanesOutput& out, const Image& from) {
    const Argument argument = {function, "out"};
    const py::object object =
        out ? py::object(*out) : py::array(dtypeOf(Depth::k8u), std::vector<py::ssize_t>{3, from.height, from.width});
    PlanesResult result = {object, planesOf(argument, object, Access::kWrite)};
    const std::array<Image, 3>& to = result.planes.images;
    if (to[0].width != from.width || to[0].height != from.height)
        refuse(argument, "must have planes of " + std::to_string(from.height) + " rows and " +
                             std::to_string(from.width) + " columns");
    if (overlap(to[0], to[1]) || overlap(to[1], to[2]) || overlap(to[0], to[2]))
        refuse(argument, "has planes that overlap");
    return result;
}

py::object rgbToYUVPlanes(const py::array& src, const PlanesOutput& out) {
    const char* function = "rgb_to_yuv_planes";
    const Image from = imageOf({function, "src"}, src, kColour);
    const PlanesResult result = planesResultOf(function, out, from);
    run("IPPMini_ippiRGBToYUV_8u_C3P3R", [&] {
        return IPPMini_ippiRGBToYUV_8u_C3P3R(from.data, from.step, result.planes.pointers().data(),
                                             result.planes.first().step, from.size());
    });
    return result.object;
}

py::array yuvPlanesToRGB(const py::sequence& src, const Output& out) {
    const char* function = "yuv_planes_to_rgb";
    const Planes from = planesOf({function, "src"}, src, Access::kRead);
    const Result result = resultOf(function, out, from.first().width, from.first().height, 3, Depth::k8u);
    run("IPPMini_ippiYUVToRGB_8u_P3C3R", [&] {
        return IPPMini_ippiYUVToRGB_8u_P3C3R(from.constPointers().data(), from.first().step, result.image.data,
                                             result.image.step, result.image.size());
    });
    return result.array;
}

py::object splitPlanes(const py::array& src, const PlanesOutput& out) {
    const char* function = "split_planes";
    const Image from = imageOf({function, "src"}, src, kColour);
    const PlanesResult result = planesResultOf(function, out, from);
    for (const Image& plane : result.planes.images) refuseOverlap({function, "out"}, plane, from);
    run("IPPMini_ippiCopy_8u_C3P3R", [&] {
        return IPPMini_ippiCopy_8u_C3P3R(from.data, from.step, result.planes.pointers().data(),
                                         result.planes.first().step, from.size());
    });
    return result.object;
}

py::array mergePlanes(const py::sequence& src, const Output& out) {
    const char* function = "merge_planes";
    const Planes from = planesOf({function, "src"}, src, Access::kRead);
    const Result result = resultOf(function, out, from.first().width, from.first().height, 3, Depth::k8u);
    for (const Image& plane : from.images) refuseOverlap({function, "out"}, result.image, plane);
    run("IPPMini_ippiCopy_8u_P3C3R", [&] {
        return IPPMini_ippiCopy_8u_P3C3R(from.constPointers().data(), from.first().step, result.image.data,
                                         result.image.step, result.image.size());
    });
    return result.array;
}

py::array newPlane16s(int64_t width, int64_t height) {
    const IppiSize size = sizeOf({"new_plane_16s", "size"}, {width, height});
    int step = 0;
    short* plane = IPPShare_ippiMalloc_16s_C1(size.width, size.height, &step);
    if (!plane) run("IPPShare_ippiMalloc_16s_C1", [] { return int{ippStsNoMemErr}; });
    const py::capsule owner(plane, [](void* p) { IPPShare_ippiFree(p); });
    return py::array(dtypeOf(Depth::k16s), {size.height, size.width}, {step, 2}, plane, owner);
}

py::array newImage8uC3(int64_t width, int64_t height) {
    const IppiSize size = sizeOf({"new_image_8u_c3", "size"}, {width, height});
    int step = 0;
    unsigned char* image = IPPMini_ippiMalloc_8u_C3(size.width, size.height, &step);
    if (!image) run("IPPMini_ippiMalloc_8u_C3", [] { return int{ippStsNoMemErr}; });
    const py::capsule owner(image, [](void* p) { IPPMini_ippiFree(p); });
    return py::array(dtypeOf(Depth::k8u), {size.height, size.width, 3}, {step, 3, 1}, image, owner);
}

}    // namespace

void addPixelFunctions(py::module_& module) {
    module.def("expand_bits", expandBits, "src"_a, "width"_a, py::kw_only(), "bit_offset"_a = 0, "out"_a = py::none(),
               R"(Expands 1-bit rows to grey: a clear bit becomes 0, a set bit 255.

`src` holds the rows as packed bytes, the leftmost pixel in the most significant bit. `width` pixels of each row are
expanded, starting at `bit_offset` (0 to 7). `out` must not overlap `src`.

Shapes: (height, bytes) -> (height, width); uint8.

>>> bits = np.zeros((3508, 310), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.expand_bits(bits, 2480).shape
(3508, 2480)

Calls `IPPShare_ippiConvert_1u8u_C1R`, the checked form of `Convert_1u8u_C1R`.)");
    module.def("reduce_bits", reduceBits, "src"_a, "threshold"_a = 127, py::kw_only(), "bit_offset"_a = 0,
               "out"_a = py::none(),
               R"(Reduces grey to 1 bit per pixel: a pixel above the threshold becomes a set bit.

The result holds packed bytes, the leftmost pixel in the most significant bit, starting at `bit_offset` (0 to 7). The
other bits of the first and last byte of a row are kept (0 in a new result), except at threshold 255, which clears
them. `out` may have longer rows than needed and must not overlap `src`.

Shapes: (height, width) -> (height, (bit_offset + width + 7) // 8); uint8.

>>> page = np.zeros((3508, 2480), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.reduce_bits(page, 127).shape
(3508, 310)

Calls `IPPShare_ippiReduceBits_8u1u_C1R`, the checked form of `Convert_8u1u_C1R`.)");
    module.def("convert_8u16s", convert8u16s, "src"_a, py::kw_only(), "out"_a = py::none(),
               R"(Widens uint8 to int16. `out` must not overlap `src`.

Shapes: (height, width) uint8 -> (height, width) int16.

>>> page = np.zeros((3508, 2480), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.convert_8u16s(page).shape
(3508, 2480)

Calls `IPPShare_ippiConvert_8u16s_C1R`.)");
    module.def("convert_16s8u", convert16s8u, "src"_a, py::kw_only(), "out"_a = py::none(),
               R"(Narrows int16 to uint8, saturated to 0 and 255. `out` must not overlap `src`.

Shapes: (height, width) int16 -> (height, width) uint8.

>>> samples = np.zeros((3508, 2480), np.int16)
>>> opcv_dlib.convert_16s8u(samples).shape
(3508, 2480)

Calls `IPPShare_ippiConvert_16s8u_C1R`.)");
    module.def("threshold_lt", thresholdLT, "image"_a, "threshold"_a, "value"_a,
               R"(Replaces each pixel that is less than **or equal to** the threshold, in place; the image is returned.

Shapes: (height, width); uint8 or int16.

>>> page = np.zeros((3508, 2480), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.threshold_lt(page, 127, 0) is page
True

Calls `IPPShare_ippiThreshold_LTVal_8u_C1IR` or, for int16, `IPPShare_ippiThreshold_LTVal_16s_C1IR`, the checked forms
of `Threshold_LTVal_8u_C1IR` and `Threshold_LTVal_16s_C1IR`.)");
    module.def("fill", fill, "image"_a, "value"_a,
               R"(Sets every pixel of a grey image to one value, in place; the image is returned.

Shapes: (height, width); uint8.

>>> page = np.zeros((3508, 2480), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.fill(page, 255) is page
True

Calls `IPPShare_ippiSet_8u_C1R`.)");
    module.def("rgb_to_yuv", rgbToYUV, "src"_a, py::kw_only(), "out"_a = py::none(),
               R"(Converts RGB to full-range analog YUV, with U and V centred on 128.

`out` may be `src` itself, but must not otherwise overlap it.

Shapes: (height, width, 3) -> (height, width, 3); uint8.

>>> page = np.zeros((3508, 2480, 3), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.rgb_to_yuv(page).shape
(3508, 2480, 3)

Calls `IPPShare_ippiRGBToYUV_8u_C3R`.)");
    module.def("yuv_to_rgb", yuvToRGB, "src"_a, py::kw_only(), "out"_a = py::none(),
               R"(Converts YUV to RGB; otherwise like `rgb_to_yuv`.

Shapes: (height, width, 3) -> (height, width, 3); uint8.

>>> page = np.zeros((3508, 2480, 3), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.yuv_to_rgb(page).shape
(3508, 2480, 3)

Calls `IPPShare_ippiYUVToRGB_8u_C3R`.)");
    module.def("rgb_to_yuv_planes", rgbToYUVPlanes, "src"_a, py::kw_only(), "out"_a = py::none(),
               R"(Converts RGB to planes of Y, U and V.

The result is an array of the shape (3, height, width). `out` may be such an array or three arrays with the same row
stride. They may overlap `src`, but not each other.

Shapes: (height, width, 3) -> (3, height, width); uint8.

>>> page = np.zeros((3508, 2480, 3), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.rgb_to_yuv_planes(page).shape
(3, 3508, 2480)

Calls `IPPMini_ippiRGBToYUV_8u_C3P3R`.)");
    module.def("yuv_planes_to_rgb", yuvPlanesToRGB, "src"_a, py::kw_only(), "out"_a = py::none(),
               R"(Converts planes of Y, U and V, as `rgb_to_yuv_planes` returns them, to RGB. `out` may overlap `src`.

Shapes: (3, height, width) or three of (height, width) -> (height, width, 3); uint8.

>>> planes = np.zeros((3, 3508, 2480), np.uint8)
>>> opcv_dlib.yuv_planes_to_rgb(planes).shape
(3508, 2480, 3)

Calls `IPPMini_ippiYUVToRGB_8u_P3C3R`.)");
    module.def("split_planes", splitPlanes, "src"_a, py::kw_only(), "out"_a = py::none(),
               R"(Copies the channels of a colour image into planes, an array of the shape (3, height, width).

`out` may be such an array or three arrays with the same row stride; they must overlap neither `src` nor each other.

Shapes: (height, width, 3) -> (3, height, width); uint8.

>>> page = np.zeros((3508, 2480, 3), np.uint8)    # A4 at 300 dots per inch
>>> opcv_dlib.split_planes(page).shape
(3, 3508, 2480)

Calls `IPPMini_ippiCopy_8u_C3P3R`.)");
    module.def("merge_planes", mergePlanes, "src"_a, py::kw_only(), "out"_a = py::none(),
               R"(Copies three planes, one array or three arrays with the same row stride, into a colour image.

`out` must not overlap `src`.

Shapes: (3, height, width) or three of (height, width) -> (height, width, 3); uint8.

>>> planes = np.zeros((3, 3508, 2480), np.uint8)
>>> opcv_dlib.merge_planes(planes).shape
(3508, 2480, 3)

Calls `IPPMini_ippiCopy_8u_P3C3R`.)");
    module.def("new_plane_16s", newPlane16s, "width"_a, "height"_a,
               R"(Creates an int16 array with rows of a multiple of 64 bytes. Its contents are undefined.

Shapes: -> (height, width); int16.

>>> opcv_dlib.new_plane_16s(2480, 3508).shape
(3508, 2480)

Calls `IPPShare_ippiMalloc_16s_C1`, and `IPPShare_ippiFree` when the array is deleted.)");
    module.def("new_image_8u_c3", newImage8uC3, "width"_a, "height"_a,
               R"(Creates a colour array with rows of a multiple of 64 bytes. Its contents are undefined.

Other functions accept it only if its row stride is also a multiple of 3 bytes.

Shapes: -> (height, width, 3); uint8.

>>> opcv_dlib.new_image_8u_c3(2480, 3508).shape
(3508, 2480, 3)

Calls `IPPMini_ippiMalloc_8u_C3`, and `IPPMini_ippiFree` when the array is deleted.)");
}

}    // namespace binding
