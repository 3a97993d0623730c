// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "jpeg/KVCompress.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <string>
#include <type_traits>

#include "oracle/jpeg.h"
#include "support/guarded_image.h"
#include "support/jpeg_stream.h"
#include "support/random.h"

namespace {

using Bytes = std::vector<unsigned char>;

constexpr int kWorkBuffer = 524288;

static_assert(std::is_base_of_v<JpegDestination, KVCompress>);
static_assert(offsetof(JpegErrorTrap, errorManager) == 0);
static_assert(offsetof(JpegErrorTrap, jumpBuffer) == sizeof(jpeg_error_mgr));
static_assert(offsetof(JpegDestination, pub) == 0);

Bytes noise(size_t count, unsigned seed) {
    Bytes bytes(count);
    Random(seed).fill(bytes.data(), count);
    return bytes;
}

Bytes tag() { return {std::begin(DEFAULT_CREATOR), std::end(DEFAULT_CREATOR)}; }

TEST(KVCompress, WritesTheSegmentsOfASmallGreyImageInOrder) {
    const unsigned char pixel = 77;
    Bytes stream;
    KVCompress encoder;
    EXPECT_EQ(encoder.cinfo, nullptr);
    EXPECT_TRUE(encoder.buffer.empty());
    ASSERT_TRUE(encoder.InitWithGray(1, 1, kWorkBuffer, stream));
    EXPECT_EQ(encoder.buffer.size(), size_t{kWorkBuffer});
    EXPECT_EQ(static_cast<void*>(encoder.cinfo->dest), static_cast<void*>(&encoder));
    encoder.SetQuality(50);
    encoder.SetOutImageGray444();
    encoder.SetResolution(1, 200, 300);
    ASSERT_TRUE(encoder.Compress(&pixel, 1, DEFAULT_CREATOR, 8));

    using S = JpegStream;
    const JpegStream parsed(stream);
    EXPECT_EQ(parsed.markers(),
              (std::vector<int>{S::kSOI, S::kAPP0, S::kCOM, S::kDQT, S::kSOF0, S::kDHT, S::kDHT, S::kSOS, S::kEOI}));
    EXPECT_EQ(parsed.first(S::kAPP0), (Bytes{'J', 'F', 'I', 'F', 0, 1, 2, 1, 300 / 256, 300 % 256, 0, 200, 0, 0}));
    EXPECT_EQ(parsed.first(S::kCOM), tag());
    EXPECT_EQ(parsed.first(S::kDQT).size(), 65U);
    EXPECT_EQ(parsed.first(S::kSOF0), (Bytes{8, 0, 1, 0, 1, 1, 0, 0x11, 0}));
}

TEST(KVCompress, WritesTheCommentAsAnEightByteSegment) {
    const unsigned char pixel = 0;
    Bytes stream;
    KVCompress encoder;
    ASSERT_TRUE(encoder.InitWithGray(1, 1, kWorkBuffer, stream));
    encoder.SetOutImageGray444();
    ASSERT_TRUE(encoder.Compress(&pixel, 1, DEFAULT_CREATOR, 8));
    const Bytes segment = {0xFF, 0xFE, 0, 0x0A, 'K', 'O', 'R', 'V', 'E', 'L', 'I', 'N'};
    EXPECT_NE(std::search(stream.begin(), stream.end(), segment.begin(), segment.end()), stream.end());
}

TEST(KVCompress, NeedsAMarkerAndALengthForAComment) {
    const unsigned char pixel = 0;
    for (const int length : {0, 8}) {
        Bytes stream;
        KVCompress encoder;
        ASSERT_TRUE(encoder.InitWithGray(1, 1, kWorkBuffer, stream));
        encoder.SetOutImageGray444();
        ASSERT_TRUE(encoder.Compress(&pixel, 1, length == 0 ? DEFAULT_CREATOR : nullptr, length));
        EXPECT_TRUE(JpegStream(stream).all(JpegStream::kCOM).empty());
    }
}

TEST(KVCompress, CountsComponentIdentifiersFromZero) {
    const Bytes pixels = noise(16 * 16 * 3, 1);
    const auto frameOf = [&pixels](void (KVCompress::*layout)()) {
        Bytes stream;
        KVCompress encoder;
        EXPECT_TRUE(encoder.InitWithRGB(16, 16, kWorkBuffer, stream));
        (encoder.*layout)();
        EXPECT_TRUE(encoder.Compress(pixels.data(), 48, nullptr, 0));
        return JpegStream(stream).first(JpegStream::kSOF0);
    };
    EXPECT_EQ(frameOf(&KVCompress::SetOutImageYCbCr411),
              (Bytes{8, 0, 16, 0, 16, 3, 0, 0x22, 0, 1, 0x11, 1, 2, 0x11, 1}));
    EXPECT_EQ(frameOf(&KVCompress::SetOutImageYCbCr444),
              (Bytes{8, 0, 16, 0, 16, 3, 0, 0x11, 0, 1, 0x11, 1, 2, 0x11, 1}));
}

TEST(KVCompress, StoresTheLowSixteenBitsOfADensity) {
    const unsigned char pixel = 0;
    Bytes stream;
    KVCompress encoder;
    ASSERT_TRUE(encoder.InitWithGray(1, 1, kWorkBuffer, stream));
    encoder.SetOutImageGray444();
    encoder.SetResolution(1, 65536 + 5, 70000);
    ASSERT_TRUE(encoder.Compress(&pixel, 1, nullptr, 0));
    const Bytes app0 = JpegStream(stream).first(JpegStream::kAPP0);
    EXPECT_EQ(app0[8] * 256 + app0[9], 4464);
    EXPECT_EQ(app0[10] * 256 + app0[11], 5);
}

TEST(KVCompress, UsesTheOwnTablesInNaturalOrder) {
    const Bytes pixels = noise(8 * 8 * 3, 2);
    Bytes stream;
    KVCompress encoder;
    ASSERT_TRUE(encoder.InitWithRGB(8, 8, kWorkBuffer, stream));
    encoder.SetQuality(50, g_customLuminanceQuant, g_customChrominanceQuant);
    encoder.SetOutImageYCbCr444();
    ASSERT_TRUE(encoder.Compress(pixels.data(), 24, nullptr, 0));
    const JpegStream parsed(stream);
    EXPECT_EQ(parsed.quantTable(0), (std::vector<unsigned>(g_customLuminanceQuant, g_customLuminanceQuant + 64)));
    EXPECT_EQ(parsed.quantTable(1), (std::vector<unsigned>(g_customChrominanceQuant, g_customChrominanceQuant + 64)));
}

// The tables come from the example tables of ITU-T T.81, Annex K, by a rule that can be computed.
TEST(KVCompress, OwnTablesAreThreeTenthsOfTheExampleTablesInZigzagSequence) {
    constexpr unsigned kLuminance[64] = {16, 11, 10, 16, 24,  40,  51,  61,  12, 12, 14, 19, 26,  58,  60,  55,    //
                                         14, 13, 16, 24, 40,  57,  69,  56,  14, 17, 22, 29, 51,  87,  80,  62,    //
                                         18, 22, 37, 56, 68,  109, 103, 77,  24, 35, 55, 64, 81,  104, 113, 92,    //
                                         49, 64, 78, 87, 103, 121, 120, 101, 72, 92, 95, 98, 112, 100, 103, 99};
    constexpr unsigned kChrominanceCorner[4][4] = {
        {17, 18, 24, 47}, {18, 21, 26, 66}, {24, 26, 56, 99}, {47, 66, 99, 99}};
    size_t i = 0;
    for (int diagonal = 0; diagonal < 15; ++diagonal)
        for (int k = 0; k <= diagonal; ++k) {
            const int row = diagonal % 2 ? k : diagonal - k;
            const int column = diagonal - row;
            if (row > 7 || column > 7) continue;
            const unsigned chrominance = row < 4 && column < 4 ? kChrominanceCorner[row][column] : 99;
            EXPECT_EQ(g_customLuminanceQuant[i], kLuminance[row * 8 + column] * 3 / 10) << i;
            EXPECT_EQ(g_customChrominanceQuant[i], chrominance * 3 / 10) << i;
            ++i;
        }
    EXPECT_EQ(i, 64U);
}

TEST(KVCompress, ANullTableLeavesTheSlotAtQuality75) {
    const Bytes pixels = noise(8 * 8 * 3, 3);
    Bytes stream;
    KVCompress encoder;
    ASSERT_TRUE(encoder.InitWithRGB(8, 8, kWorkBuffer, stream));
    encoder.SetQuality(20, g_customLuminanceQuant, nullptr);
    encoder.SetOutImageYCbCr444();
    ASSERT_TRUE(encoder.Compress(pixels.data(), 24, nullptr, 0));
    oracle::JpegSettings defaults;
    defaults.components = 3;
    const Bytes expected = oracle::encodeJpeg(pixels.data(), 24, 8, 8, defaults);
    EXPECT_EQ(JpegStream(stream).quantTable(1), JpegStream(expected).quantTable(1));
    EXPECT_NE(JpegStream(stream).quantTable(0), JpegStream(expected).quantTable(0));
}

// Baseline tables hold 8 bits: what the scaling makes larger becomes 255.
TEST(KVCompress, KeepsTheTablesBaselineAtTheLowestQuality) {
    const Bytes pixels = noise(8 * 8 * 3, 6);
    Bytes stream;
    KVCompress encoder;
    ASSERT_TRUE(encoder.InitWithRGB(8, 8, kWorkBuffer, stream));
    encoder.SetQuality(1, g_customLuminanceQuant, g_customChrominanceQuant);
    encoder.SetOutImageYCbCr444();
    ASSERT_TRUE(encoder.Compress(pixels.data(), 24, nullptr, 0));
    const JpegStream parsed(stream);
    for (size_t i = 0; i < 64; ++i) {
        EXPECT_EQ(parsed.quantTable(0)[i], std::min(50 * g_customLuminanceQuant[i], 255U));
        EXPECT_EQ(parsed.quantTable(1)[i], std::min(50 * g_customChrominanceQuant[i], 255U));
    }
}

TEST(KVCompress, StoresTheUnitAsAByte) {
    const unsigned char pixel = 0;
    for (const auto& [unit, stored] : {std::pair{0, 0}, {1, 1}, {2, 2}, {258, 2}}) {
        Bytes stream;
        KVCompress encoder;
        ASSERT_TRUE(encoder.InitWithGray(1, 1, kWorkBuffer, stream));
        encoder.SetOutImageGray444();
        encoder.SetResolution(unit, 3, 4);
        ASSERT_TRUE(encoder.Compress(&pixel, 1, nullptr, 0));
        EXPECT_EQ(JpegStream(stream).first(JpegStream::kAPP0)[7], stored);
    }
}

TEST(KVCompress, AppendsToTheVector) {
    const unsigned char pixel = 9;
    Bytes alone;
    Bytes behind = {1, 2, 3};
    for (Bytes* out : {&alone, &behind}) {
        KVCompress encoder;
        ASSERT_TRUE(encoder.InitWithGray(1, 1, kWorkBuffer, *out));
        encoder.SetOutImageGray444();
        ASSERT_TRUE(encoder.Compress(&pixel, 1, DEFAULT_CREATOR, 8));
    }
    ASSERT_EQ(behind.size(), alone.size() + 3);
    EXPECT_EQ(Bytes(behind.begin(), behind.begin() + 3), (Bytes{1, 2, 3}));
    EXPECT_EQ(Bytes(behind.begin() + 3, behind.end()), alone);
}

// Small work buffers are flushed often, a large one not once, and the stream is the same.
TEST(KVCompress, FlushesWholeBuffers) {
    const int width = 900;
    const int height = 900;
    const Bytes pixels = noise(size_t{width} * height * 3, 4);
    oracle::JpegSettings settings;
    settings.components = 3;
    settings.quality = 95;
    settings.comment.clear();
    const Bytes expected = oracle::encodeJpeg(pixels.data(), width * 3, width, height, settings);
    ASSERT_GT(expected.size(), size_t{2 * kWorkBuffer});
    for (const int bufferSize : {700, 4096, kWorkBuffer, 8 * kWorkBuffer}) {
        Bytes stream;
        KVCompress encoder;
        ASSERT_TRUE(encoder.InitWithRGB(width, height, bufferSize, stream));
        encoder.SetQuality(95);
        encoder.SetOutImageYCbCr444();
        encoder.SetResolution(1, 1, 1);
        ASSERT_TRUE(encoder.Compress(pixels.data(), width * 3, nullptr, 0));
        ASSERT_TRUE(stream == expected) << bufferSize;
    }
}

TEST(KVCompress, FailsOnSidesOverTheLimitInsteadOfAborting) {
    const Bytes pixels(70000, 0);
    for (const auto& [width, height] : {std::pair{1, 65501}, {65501, 1}, {0, 1}, {1, 0}, {-1, 1}, {1, INT_MIN}}) {
        Bytes stream = {42};
        KVCompress encoder;
        ASSERT_TRUE(encoder.InitWithGray(width, height, kWorkBuffer, stream));
        encoder.SetQuality(50);
        encoder.SetOutImageGray444();
        EXPECT_FALSE(encoder.Compress(pixels.data(), 1, DEFAULT_CREATOR, 8)) << width << " x " << height;
        EXPECT_EQ(stream, Bytes{42});
    }
}

TEST(KVCompress, FailsOnACommentThatIsTooLong) {
    const unsigned char pixel = 0;
    const Bytes comment(65534, 'x');
    Bytes stream;
    KVCompress encoder;
    ASSERT_TRUE(encoder.InitWithGray(1, 1, kWorkBuffer, stream));
    encoder.SetOutImageGray444();
    EXPECT_FALSE(encoder.Compress(&pixel, 1, comment.data(), 65534));
}

TEST(KVCompress, ReadsOnlyTheRows) {
    Random random(5);
    for (int round = 0; round < 60; ++round) {
        const int components = random.chance(50) ? 1 : 3;
        const IppiSize size = {random.between(1, 90), random.between(1, 90)};
        const GuardedImage image(random, size, GuardedImage::anyLayout(random, components), random.anyValues());
        oracle::JpegSettings settings;
        settings.components = components;
        settings.quality = random.between(1, 100);
        settings.lumaSampling = components == 3 && random.chance(50) ? 2 : 1;
        settings.xDensity = random.between(1, 1200);
        settings.yDensity = random.between(1, 1200);
        Bytes stream;
        KVCompress encoder;
        ASSERT_TRUE(components == 1 ? encoder.InitWithGray(size.width, size.height, 1000, stream)
                                    : encoder.InitWithRGB(size.width, size.height, 1000, stream));
        encoder.SetQuality(settings.quality);
        if (components == 1)
            encoder.SetOutImageGray444();
        else if (settings.lumaSampling == 2)
            encoder.SetOutImageYCbCr411();
        else
            encoder.SetOutImageYCbCr444();
        encoder.SetResolution(1, settings.yDensity, settings.xDensity);
        ASSERT_TRUE(encoder.Compress(image.data(), image.step(), DEFAULT_CREATOR, 8));
        ASSERT_EQ(stream, oracle::encodeJpeg(image.data(), image.step(), size.width, size.height, settings));
    }
}

}    // namespace
