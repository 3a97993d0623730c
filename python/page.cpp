// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "page.h"

#include <algorithm>
#include <cmath>
#include <string>

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

PagePtr pageOf(KVIMG* record, Dpi dpi) { return std::make_unique<Page>(RecordPtr(record), dpi); }

}    // namespace binding
