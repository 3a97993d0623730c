// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <optional>
#include <vector>

#include "OPCV_dlib.h"
#include "core/ownership.h"
#include "support/fenced_memory.h"
#include "support/jpeg_reading.h"
#include "support/jpeg_stream.h"
#include "support/random.h"

namespace {

TEST(ReadJPEG, GivesTheDecodersPixels) {
    Random random(21);
    for (int round = 0; round < 60; ++round) {
        const int components = random.chance(40) ? 1 : 3;
        const int width = random.between(1, 120);
        const int height = random.between(1, 120);
        const Bytes stream = random.chance(50) ? anyStream(random, components, width, height)
                                               : foreignStream(random, components, width, height);
        expectSame(read(stream), decodeWithOpenCV(stream, cv::IMREAD_ANYCOLOR), "read", round);
        expectSame(read(stream, ReadJPEGWithIPP), decodeWithOpenCV(stream, cv::IMREAD_ANYCOLOR), "second name", round);
        expectSame(readSplit(stream, width, height), decodeWithOpenCV(stream, cv::IMREAD_COLOR), "split", round);
    }
}

TEST(ReadJPEG, TurnsByTheOrientationTag) {
    Random random(22);
    for (const int components : {1, 3})
        for (uint8_t orientation = 0; orientation < 10; ++orientation) {
            const Bytes stream = withOrientation(anyStream(random, components, 40, 23), orientation);
            expectSame(read(stream), decodeWithOpenCV(stream, cv::IMREAD_ANYCOLOR), "orientation", orientation);
        }
}

// The size that the caller states is the size that the page has when it is turned.
TEST(ReadSplitJPEG, StatesTheTurnedSize) {
    Random random(26);
    for (const int components : {1, 3}) {
        const Bytes stream = withOrientation(anyStream(random, components, 40, 23), 6);
        expectSame(readSplit(stream, 23, 40), decodeWithOpenCV(stream, cv::IMREAD_COLOR), "turned", components);
        const Reading r = readSplit(stream, 40, 23);
        EXPECT_EQ(r.status, paramErr);
        EXPECT_EQ(r.image, nullptr);
        EXPECT_EQ(r.description.depth, -3);
    }
}

TEST(ReadJPEG, ReadsFourComponentsAsColour) {
    Random random(27);
    for (const J_COLOR_SPACE stored : {JCS_CMYK, JCS_YCCK}) {
        const Bytes stream = fourComponents(random, 33, 21, stored);
        const Reading r = read(stream);
        EXPECT_EQ(r.status, noErr);
        expectSame(r, decodeWithOpenCV(stream, cv::IMREAD_ANYCOLOR), "four components", stored);
        expectSame(readSplit(stream, 33, 21), decodeWithOpenCV(stream, cv::IMREAD_COLOR), "split", stored);
    }
}

// Cameras that write one JPEG a frame leave out the Huffman tables, as they are always the same.
Bytes withoutHuffmanTables(const Bytes& stream) {
    Bytes kept(stream.begin(), stream.begin() + 2);
    size_t at = 2;
    while (stream.at(at + 1) != JpegStream::kSOS) {
        const size_t length = 2 + size_t{stream.at(at + 2)} * 256 + stream.at(at + 3);
        const auto segment = stream.begin() + static_cast<ptrdiff_t>(at);
        if (stream[at + 1] != JpegStream::kDHT)
            kept.insert(kept.end(), segment, segment + static_cast<ptrdiff_t>(length));
        at += length;
    }
    kept.insert(kept.end(), stream.begin() + static_cast<ptrdiff_t>(at), stream.end());
    return kept;
}

TEST(ReadJPEG, ReadsStreamsWithoutHuffmanTables) {
    Random random(28);
    for (const int components : {1, 3}) {
        const Bytes stream = anyStream(random, components, 50, 40);
        const Bytes bare = withoutHuffmanTables(stream);
        ASSERT_LT(bare.size() + 100, stream.size());
        const Reading r = read(bare);
        ASSERT_EQ(r.status, noErr);
        EXPECT_EQ(r.pixels(), read(stream).pixels());
    }
    for (int round = 0; round < 40; ++round) {
        const int components = random.chance(40) ? 1 : 3;
        const Bytes bare = withoutHuffmanTables(foreignStream(random, components, 50, 40));
        expectSame(read(bare), decodeWithOpenCV(bare, cv::IMREAD_ANYCOLOR), "without tables", round);
    }
}

TEST(ReadJPEG, GreyPageHasDepth8AndPackedRows) {
    const Reading r = read(grey(33, 20));
    ASSERT_EQ(r.status, noErr);
    EXPECT_EQ(r.image->depth, 8);
    EXPECT_EQ(r.image->rowBytes, 33);
    EXPECT_EQ(r.description.depth, 8);
}

TEST(ReadJPEG, StoresRedGreenBlue) {
    const int side = 16;
    Bytes pixels;
    for (int i = 0; i < side * side; ++i) pixels.insert(pixels.end(), {0, 0, 255});
    const Bytes stream =
        compressJpeg({pixels.data(), ptrdiff_t{3} * side, side, side, 3, JCS_RGB}, [](jpeg_compress_struct& cinfo) {
            jpeg_set_colorspace(&cinfo, JCS_RGB);    // nothing is lost on the way through luma and chroma
            jpeg_set_quality(&cinfo, 100, TRUE);
        });
    const Reading r = read(stream);
    ASSERT_EQ(r.status, noErr);
    for (size_t i = 0; i < pixels.size(); ++i) ASSERT_EQ(r.image->data[i], pixels[i]) << i;
}

TEST(ReadSplitJPEG, ExpandsGreyToThreeEqualBytes) {
    const Bytes stream = grey(31, 17);
    const Reading expected = read(stream);
    const Reading r = readSplit(stream, 31, 17);
    ASSERT_EQ(r.status, noErr);
    EXPECT_EQ(r.image->depth, 24);
    EXPECT_EQ(r.description.depth, 24);
    for (size_t i = 0; i < 31 * 17; ++i)
        for (size_t c = 0; c < 3; ++c) ASSERT_EQ(r.image->data[3 * i + c], expected.image->data[i]);
}

TEST(ReadSplitJPEG, RefusesAnotherSize) {
    const Bytes stream = colour(30, 20);
    for (const auto& [width, height] : {std::pair{31, 20}, {29, 20}, {30, 21}, {30, 19}, {20, 30}}) {
        const Reading r = readSplit(stream, width, height);
        EXPECT_EQ(r.status, paramErr);
        EXPECT_EQ(r.image, nullptr);
        EXPECT_EQ(r.description.width, width);
        EXPECT_EQ(r.description.height, height);
        EXPECT_EQ(r.description.depth, -3);
    }
}

TEST(ReadJPEG, RefusesMissingArguments) {
    const Bytes stream = grey(8, 8);
    const auto size = static_cast<unsigned>(stream.size());
    KVImageDescription description{};
    KVImageDescription* record = &description;
    KVImageDescription* noRecord = nullptr;
    KVImageDescriptionHandle handle = &record;
    KVImageDescriptionHandle noHandle = nullptr;
    KVImageDescriptionHandle emptyHandle = &noRecord;
    KVIMG untouched{};
    KVIMG* image = &untouched;
    for (const auto reader : {ReadJPEG, ReadJPEGWithIPP}) {
        EXPECT_EQ(reader(nullptr, size, &handle, &image), paramErr);
        EXPECT_EQ(reader(stream.data(), 0, &handle, &image), paramErr);
        EXPECT_EQ(reader(stream.data(), size, nullptr, &image), paramErr);
        EXPECT_EQ(reader(stream.data(), size, &noHandle, &image), paramErr);
        EXPECT_EQ(reader(stream.data(), size, &emptyHandle, &image), paramErr);
        EXPECT_EQ(reader(stream.data(), size, &handle, nullptr), paramErr);
    }
    EXPECT_EQ(ReadSplitJPEG(nullptr, size, handle, &image), paramErr);
    EXPECT_EQ(ReadSplitJPEG(stream.data(), 0, handle, &image), paramErr);
    EXPECT_EQ(ReadSplitJPEG(stream.data(), size, nullptr, &image), paramErr);
    EXPECT_EQ(ReadSplitJPEG(stream.data(), size, emptyHandle, &image), paramErr);
    EXPECT_EQ(ReadSplitJPEG(stream.data(), size, handle, nullptr), paramErr);
    EXPECT_EQ(image, &untouched);
    EXPECT_EQ(description.width, 0);
}

// OpenCV's decoder is no oracle for these: depending on its version, it repeats the last row or leaves the rows behind it
// as its memory was.
void expectTheRowsOf(const Bytes& stream, int orientation, int round) {
    const Reading r = read(stream);
    const std::optional<oracle::DecodedStream> expected = oracle::decodeStream(stream);
    if (expected)
        expectSame(r, asMatrix(oracle::turned(*expected, orientation)), "cut", round);
    else
        expectUntouched(r);
    ASSERT_EQ(r.status, expected ? noErr : paramErr) << round;
}

TEST(ReadJPEG, CutStreamsGiveTheDecodersPartialPageOrAreRefused) {
    Random random(23);
    int partial = 0;
    for (int round = 0; round < 150; ++round) {
        const int components = random.chance(40) ? 1 : 3;
        const int width = random.between(8, 90);
        const int height = random.between(8, 90);
        Bytes stream = random.chance(50) ? anyStream(random, components, width, height)
                                         : foreignStream(random, components, width, height);
        stream.resize(static_cast<size_t>(random.between(1, static_cast<int>(stream.size()))));
        expectTheRowsOf(stream, 1, round);
        partial += read(stream).status == noErr;
    }
    EXPECT_GT(partial, 30);
}

// Streams of every kind, truncated after each of their bytes.
TEST(ReadJPEG, EveryCutOfAStreamGivesTheDecodersPartialPageOrIsRefused) {
    Random random(29);
    const Bytes pixels = drawing(random, 36, 27, 3);
    const cv::Mat image(27, 36, CV_8UC3, const_cast<uint8_t*>(pixels.data()));
    Bytes progressive;
    Bytes restarting;
    cv::imencode(".jpg", image, progressive, {cv::IMWRITE_JPEG_PROGRESSIVE, 1, cv::IMWRITE_JPEG_QUALITY, 40});
    cv::imencode(".jpg", image, restarting, {cv::IMWRITE_JPEG_RST_INTERVAL, 1, cv::IMWRITE_JPEG_QUALITY, 40});
    const Bytes streams[] = {grey(33, 29),
                             colour(35, 26),
                             progressive,
                             restarting,
                             withOrientation(colour(21, 40), 6),
                             withOrientation(grey(40, 21), 3),
                             fourComponents(random, 30, 28, JCS_YCCK)};
    int kind = 0;
    for (const Bytes& whole : streams) {
        int partial = 0;
        const int orientation = kind == 4 ? 6 : kind == 5 ? 3 : 1;
        for (size_t length = 1; length <= whole.size(); ++length) {
            const Bytes stream(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(length));
            // Before the whole orientation is there the stream has no scan either.
            expectTheRowsOf(stream, orientation, static_cast<int>(length));
            partial += read(stream).status == noErr;
        }
        EXPECT_GT(partial, &whole == &streams[2] ? 0 : 30) << "stream " << kind;
        ++kind;
    }
}

// Every length up to the coded data. No byte after the stream is read.
TEST(ReadJPEG, EveryCutOfTheHeadersIsRefused) {
    const Bytes whole = colour(16, 16);
    size_t scan = 0;
    while (whole.at(scan) != 0xFF || whole.at(scan + 1) != JpegStream::kSOS) ++scan;
    for (size_t length = 1; length < scan + 14; ++length) {
        FencedMemory stream(length, FencedMemory::Fence::kBehind);
        std::copy_n(whole.begin(), length, stream.data());
        KVImageDescription description{-1, -2, 0, 0, 0, -3};
        KVImageDescription* record = &description;
        KVImageDescriptionHandle handle = &record;
        KVIMG* image = nullptr;
        ASSERT_EQ(ReadJPEG(stream.data(), static_cast<unsigned>(length), &handle, &image), paramErr) << length;
        ASSERT_EQ(image, nullptr);
        ASSERT_EQ(description.width, -1);
        ASSERT_EQ(description.depth, -3);
    }
}

TEST(ReadJPEG, NeedsTheThreeBytesThatEveryJpegStreamBeginsWith) {
    const Bytes good = colour(9, 9);
    ASSERT_EQ(read(good).status, noErr);
    for (size_t i = 0; i < 3; ++i) {
        Bytes stream = good;
        stream[i] = 0x00;
        EXPECT_EQ(read(stream).status, paramErr) << i;
        EXPECT_EQ(readSplit(stream, 9, 9).status, paramErr) << i;
    }
    Bytes padded = good;
    padded.insert(padded.begin() + 2, 0x00);    // libjpeg would look for the next marker
    EXPECT_EQ(read(padded).status, paramErr);
}

TEST(ReadJPEG, DamagedStreamsGiveTheDecodersPageOrAreRefused) {
    Random random(24);
    for (int round = 0; round < 250; ++round) {
        const int components = random.chance(40) ? 1 : 3;
        const int width = random.between(8, 70);
        const int height = random.between(8, 70);
        Bytes stream = random.chance(50) ? anyStream(random, components, width, height)
                                         : foreignStream(random, components, width, height);
        for (int i = random.between(1, 6); i > 0; --i)
            stream[static_cast<size_t>(random.between(2, static_cast<int>(stream.size()) - 1))] = random.byte();
        const Reading r = read(stream);
        const cv::Mat expected = decodeWithOpenCV(stream, cv::IMREAD_ANYCOLOR);
        if (r.status == paramErr && holdsNoRow(expected)) continue;
        expectSame(r, expected, "damaged", round);
    }
}

TEST(ReadJPEG, RefusesRandomBytes) {
    Random random(25);
    for (int round = 0; round < 200; ++round) {
        Bytes stream(static_cast<size_t>(random.between(1, 400)));
        random.fill(stream.data(), stream.size());
        if (random.chance(50) && stream.size() > 3) std::copy_n(Bytes{0xFF, 0xD8, 0xFF}.begin(), 3, stream.begin());
        const Reading r = read(stream);
        ASSERT_EQ(r.status, paramErr);
        expectUntouched(r);
        ASSERT_EQ(readSplit(stream, 1, 1).status, paramErr);
    }
}

TEST(ReadJPEG, RefusesOtherFormats) {
    const cv::Mat image(9, 9, CV_8UC3, cv::Scalar(1, 2, 3));
    for (const char* format : {".png", ".bmp", ".ppm", ".tiff"}) {
        Bytes stream;
        ASSERT_TRUE(cv::imencode(format, image, stream));
        EXPECT_EQ(read(stream).status, paramErr) << format;
        EXPECT_EQ(readSplit(stream, 9, 9).status, paramErr) << format;
    }
}

// A header that claims more pixels than memory can hold is rejected before decoding.
TEST(ReadJPEG, RefusesAHeaderThatClaimsTooMuch) {
    const Bytes stream = {0xFF, 0xD8, 0xFF, 0xC0, 0, 11, 8, 0xFF, 0xDC, 0xFF, 0xDC, 1,    0,   0x11,
                          0,    0xFF, 0xDA, 0,    8, 1,  0, 0,    0,    63,   0,    0xFF, 0xD9};
    const Reading r = read(stream);
    EXPECT_EQ(r.status, paramErr);
    expectUntouched(r);
    EXPECT_EQ(readSplit(stream, 65500, 65500).status, paramErr);

    const Bytes turned = withOrientation(stream, 6);    // OpenCV throws
    const Reading r6 = read(turned);
    EXPECT_EQ(r6.status, paramErr);
    expectUntouched(r6);
    EXPECT_EQ(readSplit(turned, 65500, 65500).status, paramErr);
}

// 2^30 pixels are the most that are looked at; three bytes each are then more than memory holds.
TEST(ReadJPEG, TheLimitOfPixelsIsTheDecoders) {
    EXPECT_EQ(read(claiming(32768, 32768)).status, memFullErr);
    const Reading r = read(claiming(32768, 32769));
    EXPECT_EQ(r.status, paramErr);
    expectUntouched(r);
}

// 30000 x 30000 colour pixels are below the decoder's limit but cannot be described by a signed 32-bit size.
TEST(ReadJPEG, ARasterThatCannotBeDescribedIsOutOfMemory) {
    const Bytes stream = claiming(30000, 30000);
    const Reading r = read(stream);
    EXPECT_EQ(r.status, memFullErr);
    EXPECT_EQ(r.image, nullptr);
    EXPECT_EQ(r.description.width, 30000);
    EXPECT_EQ(r.description.height, 30000);
    EXPECT_EQ(r.description.depth, 24);
    const Reading split = readSplit(stream, 30000, 30000);
    EXPECT_EQ(split.status, memFullErr);
    EXPECT_EQ(split.image, nullptr);
    EXPECT_EQ(split.description.depth, -3);
}

}    // namespace
