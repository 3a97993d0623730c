// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Pages to compress, and what is put into their streams.
#pragma once

#include <algorithm>
#include <cstdint>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "support/random.h"

using Bytes = std::vector<uint8_t>;

// A page of soft shapes and some noise, so that every stage of a decoder affects the result.
inline Bytes drawing(Random& random, int width, int height, int components) {
    cv::Mat image(height, width, CV_MAKETYPE(CV_8U, components), cv::Scalar(200, 190, 170));
    for (int i = 0; i < 6; ++i)
        cv::circle(image, {random.between(0, width), random.between(0, height)}, random.between(1, 1 + width / 3),
                   cv::Scalar(random.byte(), random.byte(), random.byte()), cv::FILLED);
    Bytes bytes(image.data, image.data + image.total() * image.elemSize());
    for (uint8_t& b : bytes) b = static_cast<uint8_t>(std::clamp(b + random.between(-9, 9), 0, 255));
    return bytes;
}

// An APP1 segment with an orientation, after the start of the image.
inline Bytes withOrientation(const Bytes& stream, uint8_t orientation) {
    const Bytes exif = {0xFF, 0xE1, 0,    34,   'E', 'x', 'i', 'f', 0, 0, 'M', 'M',         0, 42, 0, 0, 0, 8,
                        0,    1,    0x01, 0x12, 0,   3,   0,   0,   0, 1, 0,   orientation, 0, 0,  0, 0, 0, 0};
    Bytes all = stream;
    all.insert(all.begin() + 2, exif.begin(), exif.end());
    return all;
}
