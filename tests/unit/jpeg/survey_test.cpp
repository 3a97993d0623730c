// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <sys/mman.h>

#include <climits>
#include <initializer_list>
#include <vector>

#include "jpeg/survey.h"
#include "support/fenced_memory.h"
#include "support/jpeg_compression.h"
#include "support/jpeg_reading.h"
#include "support/random.h"
#include "support/reading.h"

namespace {

const Bytes kStart = {0xFF, 0xD8};
const Bytes kEnd = {0xFF, 0xD9};

Bytes segment(uint8_t marker, const Bytes& payload) {
    const size_t length = payload.size() + 2;
    Bytes bytes;
    for (const size_t byte : {size_t{0xFF}, size_t{marker}, length / 256, length % 256})
        bytes.push_back(static_cast<uint8_t>(byte));
    for (const uint8_t byte : payload) bytes.push_back(byte);
    return bytes;
}

Bytes frame(uint8_t marker = 0xC0) { return segment(marker, {8, 1, 2, 3, 4, 1, 0, 0x11, 0}); }    // 772 x 258
Bytes scan() { return segment(0xDA, {1, 0, 0, 0, 63, 0}); }

Bytes chain(std::initializer_list<Bytes> parts) {
    Bytes all;
    for (const Bytes& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}

StreamSurvey survey(const Bytes& stream) {
    FencedMemory block(stream.size(), FencedMemory::Fence::kBehind);
    std::copy(stream.begin(), stream.end(), block.data());
    StreamSurvey found = surveyStream(block.data(), block.size());
    found.exif = nullptr;    // leads into the block
    return found;
}

int scansOf(const Bytes& stream) { return survey(stream).scans; }

TEST(StreamSurvey, FindsTheFrameAndTheScans) {
    const StreamSurvey s = survey(chain({kStart, frame(), scan(), kEnd}));
    EXPECT_EQ(s.width, 772);
    EXPECT_EQ(s.height, 258);
    EXPECT_EQ(s.components, 1);
    EXPECT_EQ(s.scans, 1);
    EXPECT_EQ(s.exifLength, 0U);
}

TEST(StreamSurvey, KnowsEveryFrameHeader) {
    for (int marker = 0xC0; marker <= 0xFE; ++marker) {
        const bool header = marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
        const StreamSurvey s = survey(chain({kStart, frame(static_cast<uint8_t>(marker)), scan(), kEnd}));
        EXPECT_EQ(s.components, header ? 1 : 0) << marker;
    }
}

TEST(StreamSurvey, TheFirstFrameHeaderCounts) {
    const Bytes second = segment(0xC0, {8, 0, 9, 0, 9, 3});
    EXPECT_EQ(survey(chain({kStart, frame(), second, scan(), kEnd})).width, 772);
    EXPECT_EQ(survey(chain({kStart, segment(0xC0, {8, 0, 9, 0, 9}), frame(), kEnd})).width, 772);    // cut short
}

TEST(StreamSurvey, MarkersWithinSegmentsAreData) {
    const Bytes comment = segment(0xFE, chain({scan(), frame(), kEnd}));
    const StreamSurvey s = survey(chain({kStart, comment, segment(0xE0, scan()), kEnd}));
    EXPECT_EQ(s.components, 0);
    EXPECT_EQ(s.scans, 0);
}

TEST(StreamSurvey, CodedDataIsSkipped) {
    const Bytes coded = {1, 0xFF, 0x00, 0xDA, 0xFF, 0xD0, 7,    0xFF, 0xD7,
                         7, 0xFF, 0x00, 0xFF, 0x02, 0xFF, 0xD8, 0xFF, 0xBF};
    EXPECT_EQ(scansOf(chain({kStart, frame(), scan(), coded, scan(), coded, kEnd})), 2);
}

TEST(StreamSurvey, FillBytesMayPrecedeAMarker) {
    const Bytes fill(5, 0xFF);
    EXPECT_EQ(scansOf(chain({kStart, frame(), fill, scan(), {9, 9}, fill, scan(), kEnd})), 2);
    EXPECT_EQ(scansOf(chain({kStart, frame(), scan(), fill})), 1);
}

TEST(StreamSurvey, StopsAtTheEndOfTheImage) {
    EXPECT_EQ(scansOf(chain({kStart, frame(), scan(), kEnd, scan(), scan()})), 1);
    EXPECT_EQ(survey(chain({kStart, kEnd, frame()})).components, 0);
}

TEST(StreamSurvey, ALengthThatDoesNotCountItselfIsEmpty) {
    for (const uint8_t length : Bytes{0, 1}) {
        const Bytes bogus = {0xFF, 0xE1, 0, length};    // no APP1 segment at all
        const Bytes stream = chain({kStart, bogus, segment(0xE1, {7}), frame(), scan(), kEnd});
        const StreamSurvey s = surveyStream(stream.data(), stream.size());
        EXPECT_EQ(s.scans, 1);
        EXPECT_EQ(s.exifLength, 1U);
    }
}

TEST(StreamSurvey, NeverReadsPastTheStream) {
    const Bytes whole = chain({kStart, segment(0xE1, Bytes(9, 'x')), frame(), scan(), {1, 0xFF, 0, 2}, scan(), kEnd});
    const size_t frameEnds = 2 + 13 + 13;
    const size_t firstScanEnds = frameEnds + 10;
    const size_t secondScanEnds = firstScanEnds + 4 + 10;
    for (size_t length = 2; length <= whole.size(); ++length) {
        const StreamSurvey s = survey(Bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(length)));
        EXPECT_EQ(s.components, length >= frameEnds ? 1 : 0) << length;
        EXPECT_EQ(s.scans, (length >= firstScanEnds) + (length >= secondScanEnds)) << length;
        EXPECT_EQ(s.exifLength, length >= 15 ? 9U : 0U) << length;
    }
}

TEST(StreamSurvey, FindsTheFirstApp1SegmentInFrontOfTheScans) {
    const Bytes stream =
        chain({kStart, segment(0xE0, {1}), segment(0xE1, {2, 3}), segment(0xE1, {4}), frame(), scan()});
    const StreamSurvey s = surveyStream(stream.data(), stream.size());
    ASSERT_NE(s.exif, nullptr);
    EXPECT_EQ(s.exif[0], 2);
    EXPECT_EQ(s.exifLength, 2U);
    const Bytes behind = chain({kStart, frame(), scan(), segment(0xE1, {2, 3}), kEnd});
    EXPECT_EQ(surveyStream(behind.data(), behind.size()).exif, nullptr);
}

// A grey progressive page of this many scans (64 to 127): one scan for each coefficient, and for the first of them
// a second one that refines it.
Bytes scanned(int scans, int width, int height) {
    std::vector<jpeg_scan_info> script;
    const int refined = scans - 64;
    script.push_back({1, {0}, 0, 0, 0, 0});
    for (int k = 1; k < 64; ++k) script.push_back({1, {0}, k, k, 0, k <= refined ? 1 : 0});
    for (int k = 1; k <= refined; ++k) script.push_back({1, {0}, k, k, 1, 0});

    Random random(41);
    const Bytes pixels = drawing(random, width, height, 1);
    return compressJpeg({pixels.data(), width, width, height, 1, JCS_GRAYSCALE},
                        [&script](jpeg_compress_struct& cinfo) {
                            cinfo.scan_info = script.data();
                            cinfo.num_scans = static_cast<int>(script.size());
                        });
}

TEST(StreamSurvey, AHundredScansAreReadAndOneMoreIsRefused) {
    for (const int scans : {64, 99, 100}) {
        const Bytes stream = scanned(scans, 40, 30);
        ASSERT_EQ(scansOf(stream), scans);
        const Reading r = read(stream);
        ASSERT_EQ(r.status, noErr) << scans;
        expectSame(r, decodeWithOpenCV(stream, cv::IMREAD_ANYCOLOR), "scans", scans);
    }
    for (const int scans : {101, 127}) {
        const Bytes stream = scanned(scans, 40, 30);
        ASSERT_TRUE(decodeWithOpenCV(stream, cv::IMREAD_ANYCOLOR).data);
        const Reading r = read(stream);
        EXPECT_EQ(r.status, paramErr);
        expectUntouched(r);
        EXPECT_EQ(readSplit(stream, 40, 30).status, paramErr);
    }
}

// Thousands of scans for a page of 2^30 pixels are rejected before decoding.
TEST(StreamSurvey, ABombOfScansIsRefusedAtOnce) {
    Bytes stream = chain({kStart, segment(0xC2, {8, 0x80, 0, 0x80, 0, 1, 0, 0x11, 0})});
    const Bytes empty = segment(0xDA, {1, 0, 0, 1, 63, 0});
    for (int i = 0; i < 20000; ++i) stream.insert(stream.end(), empty.begin(), empty.end());
    const Reading r = read(chain({stream, kEnd}));
    EXPECT_EQ(r.status, paramErr);
    expectUntouched(r);
}

TEST(StreamSurvey, NeedsAFrameAndAScan) {
    Bytes unscanned = claiming(30000, 30000);
    unscanned.resize(unscanned.size() - 16);    // no memory would be found out later
    EXPECT_EQ(read(unscanned).status, paramErr);
    const Bytes good = grey(16, 16);
    for (const uint8_t marker : Bytes{0xC0, 0xDA}) {
        Bytes without = good;
        for (size_t i = 0; i + 1 < without.size(); ++i)
            if (without[i] == 0xFF && without[i + 1] == marker) without[i + 1] = 0xFE;
        const Reading r = read(without);
        EXPECT_EQ(r.status, paramErr) << int{marker};
        expectUntouched(r);
        EXPECT_EQ(readSplit(without, 16, 16).status, paramErr) << int{marker};
    }
}

Bytes withComponents(Bytes stream, uint8_t components) {
    for (size_t i = 0; i + 9 < stream.size(); ++i)
        if (stream[i] == 0xFF && stream[i + 1] == 0xC0) stream[i + 9] = components;
    return stream;
}

TEST(StreamSurvey, RefusesOtherNumbersOfComponents) {
    const Bytes claimed = claiming(30000, 30000);
    for (const uint8_t components : Bytes{0, 2, 5, 255}) {
        EXPECT_EQ(read(withComponents(claimed, components)).status, paramErr) << int{components};
        EXPECT_EQ(readSplit(withComponents(claimed, components), 30000, 30000).status, paramErr) << int{components};
    }
}

// The largest side that a decoder takes is 65500.
TEST(StreamSurvey, RefusesSidesThatNoDecoderTakes) {
    EXPECT_EQ(read(claiming(65500, 16000)).status, memFullErr);
    EXPECT_EQ(read(claiming(16000, 65500)).status, memFullErr);
    for (const auto& [width, height] : {std::pair{65501, 16000}, {16000, 65501}, {0, 16000}, {16000, 0}}) {
        const Reading r = read(claiming(width, height));
        EXPECT_EQ(r.status, paramErr) << width << " x " << height;
        expectUntouched(r);
    }
}

// A turned page is described by its turned size, and a grey one is colour for the reader of pieces.
TEST(StreamSurvey, ARasterThatCannotBeDescribedIsOutOfMemoryInEveryLayout) {
    const Bytes turned = withOrientation(claiming(30000, 30001), 6);
    const Reading r = read(turned);
    EXPECT_EQ(r.status, memFullErr);
    EXPECT_EQ(r.description.width, 30001);
    EXPECT_EQ(r.description.height, 30000);
    EXPECT_EQ(r.description.depth, 24);
    EXPECT_EQ(readSplit(turned, 30001, 30000).status, memFullErr);
    EXPECT_EQ(readSplit(turned, 30000, 30001).status, paramErr);
    EXPECT_EQ(readSplit(withComponents(claiming(30000, 30000), 1), 30000, 30000).status, memFullErr);
    EXPECT_EQ(read(withComponents(claiming(30000, 30000), 4)).status, memFullErr);
}

// A signed 32-bit size ends between these two heights. The smaller page goes on to the decoder, which finds that the
// scan names a component that is none of the frame's.
TEST(StreamSurvey, TheLargestRasterThatCanBeDescribed) {
    const auto withoutItsComponent = [](Bytes stream) {
        stream[stream.size() - 11] = 77;    // in the scan header
        return stream;
    };
    EXPECT_EQ(read(withoutItsComponent(claiming(65500, 10929))).status, memFullErr);
    const Reading r = read(withoutItsComponent(claiming(65500, 10928)));
    EXPECT_EQ(r.status, paramErr);
    expectUntouched(r);
}

// The stream in front of zeros up to a length that no test could fill: pages of the system that are never touched.
TEST(StreamSurvey, StreamsAreLimitedTo31BitsOfBytes) {
    const size_t mapped = size_t{1} << 31;
    void* const block =
        mmap(nullptr, mapped, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE(block, MAP_FAILED);
    const Bytes stream = colour(20, 10);
    std::copy(stream.begin(), stream.end(), static_cast<uint8_t*>(block));
    constexpr unsigned kTooLong = static_cast<unsigned>(INT_MAX) + 1;
    const Reading refused = read(block, kTooLong);
    EXPECT_EQ(refused.status, paramErr);
    EXPECT_EQ(refused.image, nullptr);
    EXPECT_EQ(refused.description.width, -1);
    const Reading longest = read(block, INT_MAX);
    EXPECT_EQ(longest.status, noErr);
    EXPECT_EQ(longest.description.width, 20);
    const Reading piece = readSplit(static_cast<uint8_t*>(block), kTooLong, 20, 10);
    EXPECT_EQ(piece.status, paramErr);
    EXPECT_EQ(piece.image, nullptr);
    munmap(block, mapped);
}

}    // namespace
