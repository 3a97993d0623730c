// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "page.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <string>
#include <vector>

namespace binding {

namespace {

constexpr int kHighestDpi = 65535;    // a JPEG stream stores 16 bits

}    // namespace

int dpiOf(const Argument& argument, int64_t value) {
    if (value < 1 || value > kHighestDpi) refuse(argument, "must be 1 to 65535, not " + std::to_string(value));
    return static_cast<int>(value);
}

Dpi dpiOf(const char* function, int64_t x, const std::optional<int64_t>& y) {
    return {dpiOf({function, "dpi_x"}, x), dpiOf({function, "dpi_y"}, y.value_or(x))};
}

int scaledDpi(int dpi, double scale) {
    const double scaled = std::round(dpi * scale);
    return static_cast<int>(std::min<double>(std::max<double>(scaled, 1), kHighestDpi));
}

KVImageDescription descriptionOf(const KVIMG& record, Dpi dpi) {
    KVImageDescription d{};
    d.width = record.width;
    d.height = record.height;
    d.horizontalResolution = dpi.x;
    d.verticalResolution = dpi.y;
    d.depth = static_cast<int16_t>(record.depth);
    return d;
}

PagePtr pageOf(KVIMG* record, Dpi dpi) { return std::make_unique<Page>(RecordPtr(record), dpi); }

PageView::PageView(const char* function, const PageOrPixels& argument) {
    if (py::isinstance<Page>(argument.object)) {
        const auto& page = argument.object.cast<const Page&>();
        record_ = page.record();
        dpi_ = page.dpi();
        return;
    }
    const Argument name = {function, "page"};
    const Image given = imageOf(name, py::reinterpret_borrow<py::array>(argument.object), kPageOrPixels);
    if (given.rowBytes() * given.height > INT_MAX) refuse(name, "has more than 2147483647 bytes");
    {
        const py::gil_scoped_release unlocked;
        rows_.emplace(given);
    }
    const Image& pixels = rows_->image();
    constexpr int kBits = 8;
    record_ = {pixels.data, kBits * pixels.channels,    pixels.width, pixels.height,
               pixels.step, pixels.step * pixels.height};
}

py::object PageView::resultOf(PagePtr page) const {
    py::object made = py::cast(std::move(page));
    return rows_ ? pixelsOf(made) : made;
}

py::array pixelsOf(const py::object& page) {
    const KVIMG& record = page.cast<const Page&>().record();
    constexpr int kBits = 8;
    const py::ssize_t width = record.depth == 1 ? (int64_t{record.width} + kBits - 1) / kBits : record.width;
    const int channels = record.depth == 24 || record.depth == 32 ? record.depth / kBits : 1;
    std::vector<py::ssize_t> shape = {record.height, width};
    std::vector<py::ssize_t> strides = {record.rowBytes, channels};
    if (channels > 1) {
        shape.push_back(channels);
        strides.push_back(1);
    }
    return py::array(dtypeOf(Depth::k8u), shape, strides, record.data, page);
}

}    // namespace binding
