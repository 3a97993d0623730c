// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// What the headers say about a page, and the limits.
#include "jpeg/page_info.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/jpeg_costly.h"
#include "support/jpeg_reading.h"
#include "support/random.h"

namespace {

PageInfo infoOf(const Bytes& stream) {
    PageInfo page;
    inspectStream(stream.data(), stream.size(), ReadLimits(), page);
    return page;
}

Outcome outcomeOf(const Bytes& stream, const ReadLimits& limits = {}) {
    PageInfo page;
    return inspectStream(stream.data(), stream.size(), limits, page);
}

void append(Bytes& stream, std::initializer_list<int> bytes) {
    for (const int byte : bytes) stream.push_back(static_cast<uint8_t>(byte));
}

struct Claim {
    int frame = 0xC0;    // 0xC9 is sequential and arithmetic, 0xCA progressive and arithmetic
    int width = 8;
    int height = 8;
    int components = 1;
    int scans = 1;
    int componentsOfAScan = 1;
    int sampling = 0x11;    // of the first component
};

// Headers without data.
Bytes claim(const Claim& c) {
    Bytes stream = {0xFF, 0xD8};
    append(stream, {0xFF, c.frame, 0, 8 + 3 * c.components, 8, c.height / 256, c.height % 256, c.width / 256,
                    c.width % 256, c.components});
    for (int i = 0; i < c.components; ++i) append(stream, {i, i == 0 ? c.sampling : 0x11, 0});
    for (int i = 0; i < c.scans; ++i) {
        append(stream, {0xFF, 0xDA, 0, 6 + 2 * c.componentsOfAScan, c.componentsOfAScan});
        for (int k = 0; k < c.componentsOfAScan; ++k) append(stream, {k, 0});
        append(stream, {0, 63, 0});
    }
    append(stream, {0xFF, 0xD9});
    return stream;
}

TEST(PageInfo, KnowsTheCoding) {
    for (int frame = 0xC0; frame <= 0xCF; ++frame) {
        if (frame == 0xC4 || frame == 0xC8 || frame == 0xCC) continue;
        const StreamSurvey stored = infoOf(claim({frame})).stored;
        EXPECT_EQ(stored.arithmetic, frame > 0xC8) << frame;
        EXPECT_EQ(stored.progressive, frame == 0xC2 || frame == 0xC6 || frame == 0xCA || frame == 0xCE) << frame;
    }
}

TEST(PageInfo, CountsTheComponentsOfTheScans) {
    const StreamSurvey stored = infoOf(claim({0xC2, 8, 8, 4, 7, 3})).stored;
    EXPECT_EQ(stored.scans, 7);
    EXPECT_EQ(stored.scannedComponents, 21);
    EXPECT_EQ(stored.componentsOfFirstScan, 3);
    EXPECT_EQ(infoOf(claim({0xC2, 8, 8, 4, 2, 200})).stored.scannedComponents, 8);
    EXPECT_EQ(infoOf(claim({0xC2, 8, 8, 4, 2, 0})).stored.scannedComponents, 2);
}

// The most that the samples of all scans may come to: 2^33 and, coded arithmetically, 2^29; a byte counts as two.
TEST(PageInfo, BoundsTheWorkOfAllScans) {
    // 2^20 samples a scan; the stream has about 600 bytes.
    const Claim small = {0xC9, 1024, 1024, 4, 1, 4};
    EXPECT_EQ(outcomeOf(claim(small)), Outcome::kDone);
    Claim most = {0xC9, 4096, 2048, 1, 63, 1};
    EXPECT_EQ(outcomeOf(claim(most)), Outcome::kDone);
    most.scans = 64;    // 2^29 samples, and the bytes
    EXPECT_EQ(outcomeOf(claim(most)), Outcome::kOverLimit);
    most.height = 2040;
    EXPECT_EQ(outcomeOf(claim(most)), Outcome::kDone);
    most.height = 2041;    // as many blocks as 2048 rows
    EXPECT_EQ(outcomeOf(claim(most)), Outcome::kOverLimit);
    most.frame = 0xC1;
    EXPECT_EQ(outcomeOf(claim(most)), Outcome::kDone);

    Claim huffman = {0xC2, 16384, 8192, 1, 63, 1};
    EXPECT_EQ(outcomeOf(claim(huffman)), Outcome::kDone);
    huffman.scans = 64;
    EXPECT_EQ(outcomeOf(claim(huffman)), Outcome::kOverLimit);
    huffman.height = 8184;
    EXPECT_EQ(outcomeOf(claim(huffman)), Outcome::kDone);
}

TEST(PageInfo, EveryComponentOfAScanIsWork) {
    Claim c = {0xCA, 4096, 2048, 4, 15, 4};
    EXPECT_EQ(outcomeOf(claim(c)), Outcome::kDone);
    c.scans = 16;
    EXPECT_EQ(outcomeOf(claim(c)), Outcome::kOverLimit);
}

TEST(PageInfo, EveryByteIsTwiceAsMuchWork) {
    constexpr size_t kMost = size_t{1} << 29;
    Bytes stream = claim({0xC9, 4096, 2048, 1, 63, 1});    // 2^23 below the limit
    const size_t samples = size_t{63} << 23;
    stream.resize((kMost - samples) / 2);
    EXPECT_EQ(outcomeOf(stream), Outcome::kDone);
    stream.push_back(0);
    EXPECT_EQ(outcomeOf(stream), Outcome::kOverLimit);
}

// Blocks beyond the edges are coded as well: a column of pixels takes one of units of 32 columns.
TEST(PageInfo, PaddingIsWork) {
    Claim thin = {0xC9, 1, 65500, 3, 85, 3, 0x41};    // 255 x 32 x 65504 is just below 2^29
    EXPECT_EQ(outcomeOf(claim(thin)), Outcome::kDone);
    thin.scans = 86;
    EXPECT_EQ(outcomeOf(claim(thin)), Outcome::kOverLimit);
    thin.sampling = 0x11;
    EXPECT_EQ(outcomeOf(claim(thin)), Outcome::kDone);
}

TEST(PageInfo, TheCallersLimitsAreInclusive) {
    const Bytes stream = claim({0xC2, 100, 50, 1, 3});
    ReadLimits limits;
    limits.pixels = 5000;
    limits.scans = 3;
    limits.bytes = stream.size();
    EXPECT_EQ(outcomeOf(stream, limits), Outcome::kDone);
    for (const int which : {0, 1, 2}) {
        ReadLimits tight = limits;
        if (which == 0) --tight.pixels;
        if (which == 1) --tight.scans;
        if (which == 2) --tight.bytes;
        EXPECT_EQ(outcomeOf(stream, tight), Outcome::kOverLimit) << which;
    }
}

// 128 bytes for each block of each component, if the scans hold parts of them.
TEST(PageInfo, StreamsOfSeveralScansNeedTheirCoefficients) {
    constexpr int64_t kCoefficients = int64_t{3} * 100 * 100 * 128;
    const Claim whole = {0xC0, 800, 800, 3, 1, 3};
    EXPECT_LT(infoOf(claim(whole)).decoderBytes, kCoefficients / 4);
    const Claim progressive = {0xC2, 800, 800, 3, 1, 3};
    EXPECT_GE(infoOf(claim(progressive)).decoderBytes, kCoefficients);
    const Claim inParts = {0xC0, 800, 800, 3, 3, 1};
    EXPECT_GE(infoOf(claim(inParts)).decoderBytes, kCoefficients);
}

TEST(PageInfo, TurnsSizeAndResolution) {
    Bytes stream = withOrientation(grey(40, 24), 6);
    PageInfo page = infoOf(stream);
    EXPECT_EQ(page.width, 24);
    EXPECT_EQ(page.height, 40);
    EXPECT_EQ(page.orientationTag, 6);
    EXPECT_EQ(page.channels, 1);
}

Bytes withDensity(int unit, int x, int y) {
    Bytes stream = {0xFF, 0xD8};
    append(stream, {0xFF, 0xE0, 0, 16, 'J', 'F', 'I', 'F', 0, 1, 2, unit, x / 256, x % 256, y / 256, y % 256, 0, 0});
    const Bytes rest = claim({});
    stream.insert(stream.end(), rest.begin() + 2, rest.end());
    return stream;
}

TEST(PageInfo, ReadsDotsPerInchFromJfif) {
    EXPECT_EQ(infoOf(withDensity(1, 300, 600)).resolution.x, 300);
    EXPECT_EQ(infoOf(withDensity(1, 300, 600)).resolution.y, 600);
    EXPECT_DOUBLE_EQ(infoOf(withDensity(2, 118, 236)).resolution.x, 118 * 2.54);
    EXPECT_DOUBLE_EQ(infoOf(withDensity(2, 118, 236)).resolution.y, 236 * 2.54);
    EXPECT_EQ(infoOf(withDensity(0, 300, 300)).resolution.x, 0);
    EXPECT_EQ(infoOf(withDensity(1, 0, 300)).resolution.y, 0);
    EXPECT_EQ(infoOf(claim({})).resolution.x, 0);
    const PageInfo turned = infoOf(withOrientation(withDensity(1, 300, 600), 8));
    EXPECT_EQ(turned.resolution.x, 600);
    EXPECT_EQ(turned.resolution.y, 300);
}

// A little-endian block with two resolutions and their unit.
Bytes withExifResolution(const Bytes& stream, int unit, int denominator) {
    Bytes exif = {0xFF, 0xE1};
    append(exif, {0, 82, 'E', 'x', 'i', 'f', 0, 0, 'I', 'I', 42, 0, 8, 0, 0, 0, 3, 0});
    append(exif, {0x1A, 1, 5, 0, 1, 0, 0, 0, 50, 0, 0, 0});
    append(exif, {0x1B, 1, 5, 0, 1, 0, 0, 0, 58, 0, 0, 0});
    append(exif, {0x28, 1, 3, 0, 1, 0, 0, 0, unit, 0, 0, 0});
    append(exif, {0, 0, 0, 0});
    append(exif, {0x90, 1, 0, 0, denominator, 0, 0, 0});
    append(exif, {0x20, 3, 0, 0, denominator, 0, 0, 0});
    append(exif, {0, 0, 0, 0, 0, 0, 0, 0});
    Bytes all = stream;
    all.insert(all.begin() + 2, exif.begin(), exif.end());
    return all;
}

TEST(PageInfo, ReadsDotsPerInchFromExifWhereJfifIsSilent) {
    const Bytes plain = claim({});
    EXPECT_EQ(infoOf(withExifResolution(plain, 2, 2)).resolution.x, 200);
    EXPECT_EQ(infoOf(withExifResolution(plain, 2, 2)).resolution.y, 400);
    EXPECT_DOUBLE_EQ(infoOf(withExifResolution(plain, 3, 4)).resolution.x, 100 * 2.54);
    EXPECT_EQ(infoOf(withExifResolution(plain, 1, 1)).resolution.x, 0);
    EXPECT_EQ(infoOf(withExifResolution(plain, 2, 0)).resolution.x, 0);
    EXPECT_EQ(infoOf(withExifResolution(withDensity(1, 72, 72), 2, 1)).resolution.x, 72);
    EXPECT_EQ(infoOf(withExifResolution(withDensity(0, 72, 72), 2, 1)).resolution.x, 400);
}

// Every cut of the block: no byte behind it is read, and a resolution is whole or absent.
TEST(PageInfo, ABrokenExifBlockGivesNoResolution) {
    const Bytes stream = withExifResolution(claim({}), 2, 1);
    const Bytes payload(stream.begin() + 6, stream.begin() + 6 + 80);
    for (size_t length = 0; length <= payload.size(); ++length) {
        const Bytes cut(payload.begin(), payload.begin() + static_cast<ptrdiff_t>(length));
        const Resolution found = exifResolution(cut.data(), cut.size());
        EXPECT_EQ(found.x, length >= 72 ? 400 : 0) << length;
        EXPECT_EQ(found.y, length >= 72 ? 800 : 0) << length;
    }
}

}    // namespace
