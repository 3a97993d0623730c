// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Streams to read, and the expected results.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "oracle/jpeg.h"
#include "oracle/jpeg_decoding.h"
#include "support/jpeg_drawing.h"
#include "support/random.h"
#include "support/reading.h"

inline Bytes anyStream(Random& random, int components, int width, int height) {
    oracle::JpegSettings settings;
    settings.components = components;
    settings.lumaSampling = components == 3 ? random.between(1, 2) : 1;
    settings.quality = random.between(5, 98);
    const Bytes pixels = drawing(random, width, height, components);
    return oracle::encodeJpeg(pixels.data(), width * components, width, height, settings);
}

inline Bytes grey(int width, int height) {
    Random random(11);
    return anyStream(random, 1, width, height);
}
inline Bytes colour(int width, int height) {
    Random random(12);
    return anyStream(random, 3, width, height);
}

// Progressive, by OpenCV.
inline Bytes foreignStreamOf(int components, int width, int height) {
    Random random(13);
    const Bytes pixels = drawing(random, width, height, components);
    const cv::Mat image(height, width, CV_MAKETYPE(CV_8U, components), const_cast<uint8_t*>(pixels.data()));
    Bytes stream;
    cv::imencode(".jpg", image, stream, {cv::IMWRITE_JPEG_PROGRESSIVE, 1});
    return stream;
}

// A stream written by OpenCV: progressive, optimised, with restart markers, or otherwise unlike the library's.
inline Bytes foreignStream(Random& random, int components, int width, int height) {
    const Bytes pixels = drawing(random, width, height, components);
    const cv::Mat image(height, width, CV_MAKETYPE(CV_8U, components), const_cast<uint8_t*>(pixels.data()));
    Bytes stream;
    cv::imencode(
        ".jpg", image, stream,
        {cv::IMWRITE_JPEG_QUALITY, random.between(5, 98), cv::IMWRITE_JPEG_PROGRESSIVE, random.between(0, 1),
         cv::IMWRITE_JPEG_OPTIMIZE, random.between(0, 1), cv::IMWRITE_JPEG_RST_INTERVAL, random.between(0, 3)});
    return stream;
}

inline cv::Mat decodeWithOpenCV(const Bytes& stream, int flags) {
    cv::Mat image;
    try {
        image = cv::imdecode(stream, flags);
    } catch (const cv::Exception&) {
        return {};
    }
    if (image.data && image.channels() == 3) cv::cvtColor(image, image, cv::COLOR_BGR2RGB);
    return image;
}

inline void expectSame(const Reading& r, const cv::Mat& expected, const char* what, int round) {
    if (!expected.data) {
        ASSERT_EQ(r.status, paramErr) << what << " " << round;
        ASSERT_EQ(r.image, nullptr);
        return;
    }
    ASSERT_EQ(r.status, noErr) << what << " " << round;
    const KVIMG& image = *r.image;
    ASSERT_EQ(image.width, expected.cols);
    ASSERT_EQ(image.height, expected.rows);
    ASSERT_EQ(image.depth, 8 * expected.channels());
    ASSERT_EQ(image.rowBytes, image.width * expected.channels());
    ASSERT_EQ(image.size, image.rowBytes * image.height);
    const Bytes bytes(expected.data, expected.data + expected.total() * expected.elemSize());
    ASSERT_TRUE(r.pixels() == bytes) << what << " " << round;
    ASSERT_EQ(r.description.width, expected.cols);
    ASSERT_EQ(r.description.height, expected.rows);
    ASSERT_EQ(r.description.depth, image.depth);
    ASSERT_EQ(r.description.horizontalResolution, 300);
    ASSERT_EQ(r.description.verticalResolution, 600);
    ASSERT_EQ(r.description.reserved, 77);
}

inline cv::Mat asMatrix(const oracle::DecodedStream& page) {
    return cv::Mat(page.height, page.width, CV_MAKETYPE(CV_8U, page.channels), const_cast<uint8_t*>(page.pixels.data()))
        .clone();
}

inline void expectUntouched(const Reading& r) {
    EXPECT_EQ(r.image, nullptr);
    EXPECT_EQ(r.description.width, -1);
    EXPECT_EQ(r.description.height, -2);
    EXPECT_EQ(r.description.depth, -3);
}

// Four components, as print software writes them. Without an Adobe marker they are read unchanged.
inline Bytes fourComponents(Random& random, int width, int height, J_COLOR_SPACE stored) {
    const Bytes pixels = drawing(random, width, height, 4);
    return compressJpeg({pixels.data(), ptrdiff_t{width} * 4, width, height, 4, JCS_CMYK},
                        [stored](jpeg_compress_struct& cinfo) { jpeg_set_colorspace(&cinfo, stored); });
}

// A colour stream without coded data after its headers.
inline Bytes claiming(int width, int height) {
    const auto high = [](int side) { return static_cast<uint8_t>(side / 256); };
    const auto low = [](int side) { return static_cast<uint8_t>(side % 256); };
    return {0xFF, 0xD8, 0xFF, 0xC0, 0, 17,   8, high(height), low(height), high(width), low(width), 3, 1, 0x11,
            0,    2,    0x11, 0,    3, 0x11, 0, 0xFF,         0xDA,        0,           12,         3, 1, 0,
            2,    0,    3,    0,    0, 63,   0, 0xFF,         0xD9};
}
