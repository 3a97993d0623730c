// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Results of the JPEG readers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <opencv2/core.hpp>
#include <vector>

#include "OPCV_dlib.h"
#include "core/ownership.h"

struct Reading {
    OSErr status = noErr;
    opcv::RecordPtr image;
    KVImageDescription description{-1, -2, 300, 600, 77, -3};

    std::vector<uint8_t> pixels() const { return {image->data, image->data + image->size}; }
};

inline Reading read(const void* stream, unsigned length, decltype(&ReadJPEG) reader = ReadJPEG) {
    Reading r;
    KVImageDescription* record = &r.description;
    KVImageDescriptionHandle handle = &record;
    KVIMG* image = nullptr;
    r.status = reader(stream, length, &handle, &image);
    r.image.reset(image);
    return r;
}

inline Reading read(const std::vector<uint8_t>& stream, decltype(&ReadJPEG) reader = ReadJPEG) {
    return read(stream.data(), static_cast<unsigned>(stream.size()), reader);
}

inline Reading readSplit(const uint8_t* stream, unsigned length, int width, int height,
                         decltype(&ReadSplitJPEG) reader = ReadSplitJPEG) {
    Reading r;
    r.description.width = width;
    r.description.height = height;
    KVImageDescription* record = &r.description;
    KVIMG* image = nullptr;
    r.status = reader(stream, length, &record, &image);
    r.image.reset(image);
    return r;
}

inline Reading readSplit(const std::vector<uint8_t>& stream, int width, int height,
                         decltype(&ReadSplitJPEG) reader = ReadSplitJPEG) {
    return readSplit(stream.data(), static_cast<unsigned>(stream.size()), width, height, reader);
}

// If no row can be decoded, OpenCV repeats one row of memory that it never wrote; such streams must be rejected. In all
// other cases a stream that ends early gives the decoder's partial page.
inline bool holdsNoRow(const cv::Mat& decoded) {
    if (!decoded.data) return false;
    const size_t rowBytes = static_cast<size_t>(decoded.cols) * decoded.elemSize();
    for (int y = 1; y < decoded.rows; ++y)
        if (std::memcmp(decoded.ptr(y), decoded.ptr(0), rowBytes) != 0) return false;
    return true;
}
