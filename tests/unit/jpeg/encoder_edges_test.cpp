// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The encoder with a work buffer that ends with the stream, and with one custom table.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "jpeg/KVCompress.h"
#include "oracle/jpeg.h"
#include "support/jpeg_stream.h"
#include "support/random.h"

namespace {

using Bytes = std::vector<unsigned char>;

constexpr int kWidth = 61;
constexpr int kHeight = 43;

Bytes pixels() {
    Bytes bytes(3 * kWidth * kHeight);
    Random(71).fill(bytes.data(), bytes.size());
    return bytes;
}

Bytes encodedThrough(int bufferSize) {
    Bytes stream;
    KVCompress encoder;
    EXPECT_TRUE(encoder.InitWithRGB(kWidth, kHeight, bufferSize, stream));
    encoder.SetQuality(80);
    encoder.SetOutImageYCbCr444();
    EXPECT_TRUE(encoder.Compress(pixels().data(), 3 * kWidth, DEFAULT_CREATOR, 8));
    return stream;
}

// libjpeg empties a full buffer at once, so that nothing is left for the end, and nothing may come twice.
TEST(KVCompress, WritesABufferThatEndsWithTheStreamOnce) {
    const Bytes expected = encodedThrough(1 << 20);
    const int length = static_cast<int>(expected.size());
    for (const int bufferSize : {length - 1, length, length + 1}) EXPECT_EQ(encodedThrough(bufferSize), expected);
}

// The missing luma table is not replaced: it keeps libjpeg's quality of 75.
TEST(KVCompress, TakesATableForChromaAlone) {
    Bytes stream;
    KVCompress encoder;
    ASSERT_TRUE(encoder.InitWithRGB(kWidth, kHeight, 4096, stream));
    encoder.SetQuality(30, nullptr, g_customChrominanceQuant);
    encoder.SetOutImageYCbCr444();
    ASSERT_TRUE(encoder.Compress(pixels().data(), 3 * kWidth, nullptr, 0));

    Bytes both;
    KVCompress other;
    ASSERT_TRUE(other.InitWithRGB(kWidth, kHeight, 4096, both));
    other.SetQuality(30, g_customLuminanceQuant, g_customChrominanceQuant);
    other.SetOutImageYCbCr444();
    ASSERT_TRUE(other.Compress(pixels().data(), 3 * kWidth, nullptr, 0));

    oracle::JpegSettings settings;
    settings.components = 3;
    settings.quality = 75;
    const Bytes plain = oracle::encodeJpeg(pixels().data(), 3 * kWidth, kWidth, kHeight, settings);
    const auto tables = [](const Bytes& bytes) { return JpegStream(bytes).all(JpegStream::kDQT); };
    ASSERT_EQ(tables(stream).size(), 2U);
    EXPECT_EQ(tables(stream)[0], tables(plain)[0]);
    EXPECT_EQ(tables(stream)[1], tables(both)[1]);
    EXPECT_NE(tables(stream)[1], tables(plain)[1]);
}

}    // namespace
