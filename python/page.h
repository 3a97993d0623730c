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

// Takes ownership of the record.
PagePtr pageOf(KVIMG* record, Dpi dpi);

}    // namespace binding
