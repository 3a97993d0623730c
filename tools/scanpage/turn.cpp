// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "turn.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#include "record.h"

namespace {

constexpr int kLongestSide = 32766;    // of an image that OpenCV can warp

Record copyOf(const KVIMG& page) {
    Record copy = newRecord(page.width, page.height, page.depth / 8);
    const auto rowBytes = static_cast<size_t>(page.width) * static_cast<size_t>(page.depth / 8);
    for (int y = 0; y < page.height; ++y)
        std::memcpy(copy->data + ptrdiff_t{y} * copy->rowBytes, page.data + ptrdiff_t{y} * page.rowBytes, rowBytes);
    return copy;
}

// RotateImageWithIPP turns clockwise.
Record turnedByQuarters(const KVIMG& page, KVImageDescription& description, int quarters) {
    KVImageDescription* handle = &description;
    KVIMG* record = nullptr;
    require(RotateImageWithIPP(&page, &handle, &record, -90.0 * quarters), "turning");
    if (quarters % 2 != 0) {
        std::swap(description.width, description.height);
        std::swap(description.horizontalResolution, description.verticalResolution);
    }
    return Record(record);
}

Record deskewed(const KVIMG& page, KVImageDescription& description, double degrees) {
    if (std::max(page.width, page.height) > kLongestSide)
        throw std::runtime_error("is too large to be deskewed: " + std::to_string(page.width) + " x " +
                                 std::to_string(page.height) + " pixels, and the longest side is " +
                                 std::to_string(kLongestSide));
    KVImageDescription* handle = &description;
    KVRect whole = {0, 0, page.height, page.width};
    KVIMG* record = nullptr;
    require(DeskewImageWithIPPEx(&page, &handle, &record, 0, 1, &whole, degrees), "deskewing");
    return Record(record);
}

}    // namespace

Record turned(const KVIMG& page, KVImageDescription& description, double degrees) {
    if (std::fmod(degrees, 90) != 0) return deskewed(page, description, degrees);
    const int quarters = static_cast<int>(degrees / 90) % 4;
    return quarters == 0 ? copyOf(page) : turnedByQuarters(page, description, quarters);
}
