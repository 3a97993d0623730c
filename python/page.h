// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// A page: an image record with its resolution in dots per inch.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "arrays.h"

namespace binding {

constexpr int kUsualDpi = 300;

struct RecordDeleter {
    void operator()(KVIMG* record) const { DisposeKVIMG(record); }
};
using RecordPtr = std::unique_ptr<KVIMG, RecordDeleter>;

struct Dpi {
    int x = kUsualDpi;
    int y = kUsualDpi;
};

int dpiOf(const Argument& argument, int64_t value);
Dpi dpiOf(const char* function, int64_t x, const std::optional<int64_t>& y);

KVImageDescription descriptionOf(const KVIMG& record, Dpi dpi);

// Rounded and clamped to the valid range.
int scaledDpi(int dpi, double scale);

// A record and its resolution. The record does not change after its creation; its pixels may.
class Page {
public:
    Page(RecordPtr record, Dpi dpi) : record_(std::move(record)), dpi_(dpi) {}

    const KVIMG& record() const { return *record_; }
    Dpi dpi() const { return dpi_; }
    void setDpiX(int64_t value) { dpi_.x = dpiOf({"Page", "dpi_x"}, value); }
    void setDpiY(int64_t value) { dpi_.y = dpiOf({"Page", "dpi_y"}, value); }

    KVImageDescription description() const { return descriptionOf(*record_, dpi_); }

private:
    RecordPtr record_;
    Dpi dpi_;
};

using PagePtr = std::unique_ptr<Page>;

// Takes ownership of the record.
PagePtr pageOf(KVIMG* record, Dpi dpi);

// The argument of functions that take a page or an array.
struct PageOrPixels {
    py::object object;
};

// That argument as a record. An array whose rows have gaps is copied, because a record's gaps count as image.
class PageView {
public:
    PageView(const char* function, const PageOrPixels& argument);

    const KVIMG& record() const { return record_; }
    Dpi dpi() const { return dpi_; }
    KVImageDescription description() const { return descriptionOf(record_, dpi_); }

    // A new page in the form of the argument: the page itself or its pixels.
    py::object resultOf(PagePtr page) const;

private:
    KVIMG record_{};
    Dpi dpi_;
    std::optional<TightRows> rows_;    // of an array
};

// The pixels of a page: an array that refers to the record and keeps the page alive.
py::array pixelsOf(const py::object& page);

}    // namespace binding

template <>
struct pybind11::detail::type_caster<binding::PageOrPixels> {
    PYBIND11_TYPE_CASTER(binding::PageOrPixels, const_name("Union[Page, numpy.ndarray]"));
    bool load(handle source, bool) {
        value.object = reinterpret_borrow<object>(source);
        return static_cast<bool>(source);
    }
};
