// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "record.h"

#include <cmath>
#include <cstring>

namespace {

constexpr uint64_t kLongestSide = 65500;
constexpr uint64_t kMostPixels = uint64_t{1} << 30;
constexpr uint64_t kLeastShare = 64;    // a file that holds less than one part in 64 of its page is not worth reading
constexpr double kMostDpi = 1e6;

// Some programs write one dot per inch if they know no resolution.
int resolutionOr(double dpi, int otherwise) {
    return dpi >= 1.5 && dpi < kMostDpi ? static_cast<int>(std::lround(dpi)) : otherwise;
}

}    // namespace

Record newRecord(int width, int height, int channels) {
    KVRect size{};
    KVSetRect(&size, 0, 0, width, height);
    KVIMG* record = nullptr;
    const OSErr status = CreateNewKVIMGPtr(&record, &size, static_cast<unsigned char>(8 * channels));
    if (status != noErr || !record) throw std::bad_alloc();
    return Record(record);
}

void requirePageSize(uint64_t width, uint64_t height) {
    if (width == 0 || height == 0) throw std::runtime_error("cannot be decoded");
    if (width > kLongestSide || height > kLongestSide || width * height > kMostPixels)
        throw std::runtime_error("is too large to be a page");
}

void requirePlausible(uint64_t fileBytes, uint64_t raster, uint64_t mostRatio) {
    if (raster / kLeastShare / mostRatio > fileBytes)
        throw std::runtime_error("cannot be decoded: it is too short for a page of its size");
}

KVImageDescription describe(const KVIMG& page, Resolution resolution, int assumedDpi) {
    KVImageDescription description{};
    description.width = page.width;
    description.height = page.height;
    description.depth = static_cast<int16_t>(page.depth);
    description.horizontalResolution = resolutionOr(resolution.x, resolutionOr(resolution.y, assumedDpi));
    description.verticalResolution = resolutionOr(resolution.y, description.horizontalResolution);
    return description;
}

std::string rowsMissing(int rows, int height) {
    return "is damaged: only " + std::to_string(rows) + " of " + std::to_string(height) + " rows are there";
}

void whitenRows(KVIMG& page, int from) {
    for (int y = from; y < page.height; ++y)
        std::memset(page.data + ptrdiff_t{y} * page.rowBytes, 0xFF,
                    static_cast<size_t>(page.width) * static_cast<size_t>(page.depth / 8));
}
