// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "turn.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <opencv2/core.hpp>
#include <utility>

#include "record.h"

namespace {

constexpr int kLongestSide = 32766;    // of an image that OpenCV can warp
const cv::Scalar kWhite = cv::Scalar::all(255);

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

Record deskewed(const KVIMG& page, double degrees) {
    if (std::max(page.width, page.height) > kLongestSide)
        throw std::runtime_error("is too large to be deskewed: " + std::to_string(page.width) + " x " +
                                 std::to_string(page.height) + " pixels, and the longest side is " +
                                 std::to_string(kLongestSide));
    double x = 0;
    double y = 0;
    KVMac_ippiGetRotateShift((page.width - 1) / 2.0, (page.height - 1) / 2.0, degrees, &x, &y);
    const IppiSize size = {page.width, page.height};
    const IppiRect whole = {0, 0, page.width, page.height};
    Record result = newRecord(page.width, page.height, page.depth / 8);
    require(ippiRotate(page.data, size, page.rowBytes, whole, result->data, result->rowBytes, whole, degrees,
                       static_cast<float>(x), static_cast<float>(y), 0, page.depth == 24 ? CV_8UC3 : CV_8UC1, kWhite),
            "deskewing");
    return result;
}

}    // namespace

Record turned(const KVIMG& page, KVImageDescription& description, double degrees) {
    const auto quarters = static_cast<int>(std::lround(degrees / 90));
    const double rest = degrees - 90.0 * quarters;
    if (quarters % 4 == 0) return rest == 0 ? copyOf(page) : deskewed(page, rest);
    Record upright = turnedByQuarters(page, description, quarters % 4);
    return rest == 0 ? std::move(upright) : deskewed(*upright, rest);
}
