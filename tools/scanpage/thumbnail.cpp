// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "thumbnail.h"

#include <OPCV_dlib_read.h>

#include <algorithm>
#include <cmath>

#include "formats.h"
#include "record.h"

namespace {

// Sums of squares of `factor` pixels: rows are added first, in a way that compilers make vectors of.
Record shrunk(const KVIMG& page, int factor) {
    const int channels = page.depth / 8;
    Record small = newRecord(std::max(1, page.width / factor), std::max(1, page.height / factor), channels);
    const int columns = std::min(page.width, small->width * factor) * channels;
    const int rows = std::min(factor, page.height);
    const int across = std::min(factor, page.width);
    std::vector<uint32_t> sums(static_cast<size_t>(columns));
    for (int y = 0; y < small->height; ++y) {
        std::fill(sums.begin(), sums.end(), 0);
        for (int i = 0; i < rows; ++i) {
            const uint8_t* from = page.data + ptrdiff_t{y * factor + i} * page.rowBytes;
            for (size_t x = 0; x < sums.size(); ++x) sums[x] += from[x];
        }
        uint8_t* to = small->data + ptrdiff_t{y} * small->rowBytes;
        const auto area = static_cast<uint32_t>(rows * across);
        for (int x = 0; x < small->width; ++x)
            for (int c = 0; c < channels; ++c) {
                uint32_t sum = 0;
                for (int i = 0; i < across; ++i) sum += sums[static_cast<size_t>((x * factor + i) * channels + c)];
                *to++ = static_cast<uint8_t>((sum + area / 2) / area);
            }
    }
    return small;
}

}    // namespace

Thumbnail thumbnailOf(const KVIMG& page) {
    const int factor = std::max({1, (page.width + Thumbnail::kMostWidth - 1) / Thumbnail::kMostWidth,
                                 (page.height + Thumbnail::kMostHeight - 1) / Thumbnail::kMostHeight});
    const Record small = shrunk(page, factor);
    KVImageDescription description = describe(*small, {}, 100);
    KVImageDescription* handle = &description;
    return {small->width, small->height, jpegStream(*small, &handle, JpegQuality())};
}

PixPtr picture(const Thumbnail& thumbnail, int width, int height) {
    KVIMG* record = nullptr;
    if (opcv_read_page(thumbnail.jpeg.data(), thumbnail.jpeg.size(), nullptr, &record, nullptr) != OPCV_READ_OK)
        throw std::bad_alloc();
    const Record page(record);
    PixPtr pix = owned(pixConvertTo32(pixOf(*page).get()));
    const double scale =
        std::min(static_cast<double>(width) / thumbnail.width, static_cast<double>(height) / thumbnail.height);
    if (scale >= 1) return pix;
    const auto scaled = [scale](int side) { return std::max(1, static_cast<int>(std::lround(side * scale))); };
    return owned(pixScaleAreaMapToSize(pix.get(), scaled(thumbnail.width), scaled(thumbnail.height)));
}
