// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// NumPy arrays as images: checks, the rectangle that a filter reads, overlap, results, and calls into the library.
//
// Before the library is called, everything that a function will read or write is compared with the extent of the array.
// If it does not fit, ValueError is raised with the names of the function and the argument. TypeError is raised for
// arrays of another dtype and for objects that are not arrays.
#pragma once

#include <OPCV_dlib.h>
#include <pybind11/numpy.h>

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

// Accepts every object as an array, so that imageOf can tell what is wrong with it. pybind11's own caster would make it
// print the signature of the function and the whole argument instead.
template <>
class pybind11::detail::type_caster<pybind11::array> : public pyobject_caster<array> {
public:
    bool load(handle source, bool) {
        value = reinterpret_borrow<array>(source);
        return static_cast<bool>(source);
    }
};

namespace binding {

namespace py = pybind11;

// An argument of a Python function, for messages.
struct Argument {
    const char* function;
    const char* name;
};

[[noreturn]] void refuse(const Argument& argument, const std::string& why);
[[noreturn]] void refuse(const char* function, const std::string& why);
[[noreturn]] void refuseType(const Argument& argument, const std::string& why);    // TypeError

// Pixel depths in OpenCV's numbering, which the functions for any pixel type use.
enum class Depth { k8u, k8s, k16u, k16s, k32s, k32f, k64f };

int bytesOf(Depth depth);
py::dtype dtypeOf(Depth depth);

// The arrays that an argument accepts.
struct Form {
    const char* words;
    bool (*takes)(Depth depth, int channels);
};

inline constexpr Form kGrey = {"a 2-D array of uint8", [](Depth d, int n) { return d == Depth::k8u && n == 1; }};
inline constexpr Form kColour = {"an array of uint8 with the shape (height, width, 3)",
                                 [](Depth d, int n) { return d == Depth::k8u && n == 3; }};
inline constexpr Form kGreyOrColour = {"an array of uint8 with the shape (height, width) or (height, width, 3)",
                                       [](Depth d, int n) { return d == Depth::k8u && (n == 1 || n == 3); }};
inline constexpr Form kPagePixels = {
    "an array of uint8 with the shape (height, width), (height, width, 3) or (height, width, 4)",
    [](Depth d, int n) { return d == Depth::k8u && (n == 1 || n == 3 || n == 4); }};
inline constexpr Form kPageOrPixels = {
    "a Page or an array of uint8 with the shape (height, width), (height, width, 3) or (height, width, 4)",
    kPagePixels.takes};
inline constexpr Form kGrey16 = {"a 2-D array of int16", [](Depth d, int n) { return d == Depth::k16s && n == 1; }};
inline constexpr Form kGreyOf8Or16 = {"a 2-D array of uint8 or int16",
                                      [](Depth d, int n) { return (d == Depth::k8u || d == Depth::k16s) && n == 1; }};
inline constexpr Form kFloats = {"a 2-D array of float32", [](Depth d, int n) { return d == Depth::k32f && n == 1; }};
inline constexpr Form kDoubles = {"a 2-D array of float64", [](Depth d, int n) { return d == Depth::k64f && n == 1; }};
inline constexpr Form kAnyPixels = {"an array of numbers with the shape (height, width) or (height, width, channels)",
                                    [](Depth, int) { return true; }};

enum class Access { kRead, kWrite };

// A rectangle of pixels in an array or in other memory.
struct Image {
    unsigned char* data = nullptr;
    int step = 0;    // bytes
    int width = 0;
    int height = 0;
    int channels = 1;
    Depth depth = Depth::k8u;

    int pixelSize() const { return bytesOf(depth) * channels; }
    int64_t rowBytes() const { return int64_t{width} * pixelSize(); }
    int type() const { return static_cast<int>(depth) | (channels - 1) << 3; }    // OpenCV's code
    IppiSize size() const { return {width, height}; }
    IppiRect rect() const { return {0, 0, width, height}; }
    Image part(const IppiRect& r) const;
};

// The array as an image. Rejects other objects, other forms, empty arrays, gaps between pixels, row strides that are negative, shorter
// than a row or not a multiple of the pixel size, and, for writing, read-only arrays.
Image imageOf(const Argument& argument, const py::array& array, const Form& form, Access access = Access::kRead);

// A whole image without gaps between the rows.
Image packedImageOf(const Argument& argument, const py::array& array, const Form& form, Access access = Access::kRead);

// Pixels that a filter reads beyond its region; negative where it does not read the edge of the region itself.
struct Margin {
    int64_t left = 0;
    int64_t top = 0;
    int64_t right = 0;
    int64_t bottom = 0;

    static Margin around(int64_t pixels) { return {pixels, pixels, pixels, pixels}; }
};

using Region = std::optional<std::tuple<int64_t, int64_t, int64_t, int64_t>>;    // x, y, width, height
using Pair = std::tuple<int64_t, int64_t>;                                       // x, y or width, height
using Output = std::optional<py::array>;

// The region, which must lie in the image together with its margin. Without one, the largest such region.
IppiRect regionOf(const Argument& argument, const Image& image, const Region& region, const Margin& margin = {});

// The rectangle that a filter reads for a region.
IppiRect readRect(const IppiRect& region, const Margin& margin);

int intOf(const Argument& argument, int64_t value);
IppiPoint pointOf(const Argument& argument, const Pair& pair);
IppiSize sizeOf(const Argument& argument, const Pair& pair);    // both sides above 0

bool overlap(const Image& a, const Image& b);
void refuseOverlap(const Argument& argument, const Image& output, const Image& source);

// The array that receives a result: the caller's or a new one.
struct Result {
    py::array array;
    Image image;
};

enum class Fresh { kAsItIs, kZeros };

Result resultOf(const char* function, const Output& out, int width, int height, int channels, Depth depth,
                Fresh fresh = Fresh::kAsItIs);

// An image with at least `spare` readable pixels after each row: the image itself if it has them, otherwise a copy. For
// functions that also read the pixels after a row.
class TightRows {
public:
    explicit TightRows(const Image& image) : TightRows(image, 0) {}
    TightRows(const Image& image, int spare);
    const Image& image() const { return image_; }

private:
    std::vector<unsigned char> copy_;
    Image image_;
};

// Calls the library without the interpreter's lock. A status other than 0 and C++ exceptions raise opcv_dlib.Error,
// out of memory raises opcv_dlib.OutOfMemoryError; both name the library's function and the status.
std::string nameOf(int status);
void run(const char* libraryFunction, const std::function<int()>& call,
         const std::function<std::string(int)>& nameOfStatus = nameOf);

// Raises opcv_dlib.Error for a function that reports failure without a status.
[[noreturn]] void fail(const char* libraryFunction, const std::string& why);

}    // namespace binding
