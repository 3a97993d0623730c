// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// opcv_read_info, opcv_read_page and opcv_read_rows.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <vector>

#include "OPCV_dlib_read.h"
#include "support/fenced_memory.h"
#include "support/jpeg_corpus.h"
#include "support/jpeg_reading.h"
#include "support/jpeg_report.h"
#include "support/jpeg_stream.h"
#include "support/random.h"

namespace {

TEST(ReadPage, GivesThePixelsOfReadJPEG) {
    Random random(41);
    for (int round = 0; round < 80; ++round) {
        const int components = random.chance(40) ? 1 : 3;
        const int width = random.between(1, 90);
        const int height = random.between(1, 90);
        Bytes stream = random.chance(50) ? anyStream(random, components, width, height)
                                         : foreignStream(random, components, width, height);
        if (random.chance(30)) stream = withOrientation(stream, static_cast<uint8_t>(random.between(1, 8)));
        if (random.chance(30)) stream.resize(static_cast<size_t>(random.between(1, static_cast<int>(stream.size()))));
        const Reading expected = read(stream);
        const PageReading found = readPage(stream);
        ASSERT_EQ(found.status == OPCV_READ_OK, expected.status == noErr) << round;
        if (!expected.image) {
            EXPECT_EQ(found.status, OPCV_READ_UNREADABLE);
            EXPECT_EQ(found.report.damaged, 1);
            continue;
        }
        ASSERT_EQ(found.image->depth, expected.image->depth);
        ASSERT_EQ(found.image->width, expected.image->width);
        ASSERT_EQ(found.image->rowBytes, expected.image->rowBytes);
        ASSERT_EQ(found.pixels(), expected.pixels()) << round;
        EXPECT_EQ(found.report.width, expected.image->width);
        EXPECT_EQ(found.report.height, expected.image->height);
        EXPECT_EQ(found.report.channels * 8, expected.image->depth);
    }
}

Bytes bytesOf(const opcv_read_report& report) {
    const auto* const first = reinterpret_cast<const uint8_t*>(&report);
    return {first, first + sizeof report};
}

TEST(ReadPage, ReportsAWholeStream) {
    for (const NamedStream& s : jpegCorpus()) {
        SCOPED_TRACE(s.name);
        const PageReading r = readPage(s.stream);
        ASSERT_EQ(r.status, OPCV_READ_OK);
        EXPECT_EQ(r.report.damaged, 0);
        EXPECT_EQ(r.report.warnings, 0);
        EXPECT_EQ(r.report.end_marker_seen, 1);
        EXPECT_EQ(r.report.rows_decoded, r.report.rows);
        EXPECT_EQ(r.report.rows, s.orientation >= 5 ? r.report.width : r.report.height);
        EXPECT_EQ(r.report.components, s.components);
        EXPECT_EQ(r.report.progressive, s.progressive ? 1 : 0);
        EXPECT_EQ(r.report.arithmetic, s.arithmetic ? 1 : 0);
        EXPECT_EQ(r.report.scans > 1, s.severalScans);
        EXPECT_EQ(r.report.orientation, s.orientation);
        EXPECT_EQ(r.report.dpi_x, s.components == 4 ? 0 : s.orientation >= 5 ? 200 : 300);
        EXPECT_EQ(r.report.dpi_y, s.components == 4 ? 0 : s.orientation >= 5 ? 300 : 200);

        opcv_read_report headers = newReport();
        ASSERT_EQ(opcv_read_info(s.stream.data(), s.stream.size(), nullptr, &headers), OPCV_READ_OK);
        EXPECT_EQ(headers.rows_decoded, 0);
        headers.rows_decoded = r.report.rows_decoded;
        headers.end_marker_seen = 1;
        EXPECT_EQ(bytesOf(headers), bytesOf(r.report));
    }
}

TEST(ReadPage, CountsTheRowsOfACutStream) {
    const Bytes whole = grey(101, 64);
    Bytes stream(whole.begin(), whole.end() - static_cast<ptrdiff_t>(whole.size() / 10));
    const PageReading r = readPage(stream);
    ASSERT_EQ(r.status, OPCV_READ_OK);
    EXPECT_EQ(r.report.damaged, 1);
    EXPECT_EQ(r.report.end_marker_seen, 0);
    EXPECT_EQ(r.report.rows, 64);
    ASSERT_GT(r.report.rows_decoded, 0);
    ASSERT_LT(r.report.rows_decoded, 64);
    const size_t last = static_cast<size_t>(r.report.rows_decoded - 1) * 101;
    const PageReading good = readPage(whole);
    EXPECT_EQ(std::memcmp(r.image->data, good.image->data, last + 101), 0);
    for (int y = r.report.rows_decoded; y < 64; ++y)
        EXPECT_EQ(std::memcmp(r.image->data + ptrdiff_t{101} * y, r.image->data + last, 101), 0) << y;
}

// Where the scan headers of a stream stand, and at last its end marker.
std::vector<size_t> scanHeaders(const Bytes& stream) {
    std::vector<size_t> places;
    for (size_t i = 0; i + 1 < stream.size(); ++i)
        if (stream[i] == 0xFF && (stream[i + 1] == JpegStream::kSOS || stream[i + 1] == JpegStream::kEOI))
            places.push_back(i);
    return places;
}

Bytes without(const Bytes& stream, size_t from, size_t to) {
    Bytes rest(stream.begin(), stream.begin() + static_cast<ptrdiff_t>(from));
    rest.insert(rest.end(), stream.begin() + static_cast<ptrdiff_t>(to), stream.end());
    return rest;
}

// Its data and end marker are there, and libjpeg does not warn.
TEST(ReadPage, AComponentWithoutAScanIsDamage) {
    for (const NamedStream& s : jpegCorpus()) {
        if (!s.severalScans || s.progressive) continue;
        const std::vector<size_t> scans = scanHeaders(s.stream);
        ASSERT_EQ(scans.size(), 4U);
        for (size_t i = 1; i < 3; ++i) {
            const PageReading r = readPage(without(s.stream, scans[i], scans[i + 1]));
            ASSERT_EQ(r.status, OPCV_READ_OK);
            EXPECT_EQ(r.report.warnings, 0);
            EXPECT_EQ(r.report.end_marker_seen, 1);
            EXPECT_EQ(r.report.rows_decoded, r.report.rows);
            EXPECT_EQ(r.report.damaged, 1) << i;
        }
    }
}

// A stream may end before its page is fully refined.
TEST(ReadPage, AMissingLastScanOfAProgressiveStreamIsNoDamage) {
    int streams = 0;
    for (const NamedStream& s : jpegCorpus()) {
        if (!s.progressive) continue;
        ++streams;
        const std::vector<size_t> scans = scanHeaders(s.stream);
        const PageReading r = readPage(without(s.stream, scans[scans.size() - 2], scans.back()));
        ASSERT_EQ(r.status, OPCV_READ_OK) << s.name;
        EXPECT_EQ(r.report.damaged, 0) << s.name;
    }
    EXPECT_EQ(streams, 3);
}

// The decoder needs bytes behind the last rows.
TEST(ReadPage, WithoutItsEndMarkerAStreamLosesItsLastRows) {
    const Bytes whole = grey(101, 702);
    const PageReading r = readPage(Bytes(whole.begin(), whole.end() - 2));
    ASSERT_EQ(r.status, OPCV_READ_OK);
    EXPECT_EQ(r.report.rows_decoded, 696);
    for (int y = 696; y < 702; ++y)
        EXPECT_EQ(std::memcmp(r.image->data + ptrdiff_t{101} * y, r.image->data + ptrdiff_t{101} * 695, 101), 0) << y;
}

TEST(ReadPage, AnErrorBehindTheLastRowLeavesThePage) {
    Bytes stream = grey(16, 16);
    const Reading expected = read(stream);
    stream.resize(stream.size() - 2);
    for (const int byte : {0xFF, 0xDA, 0, 8, 1, 0, 0, 0, 63, 0, 0xFF, 0xD9})    // a scan that the frame does not admit
        stream.push_back(static_cast<uint8_t>(byte));
    const PageReading r = readPage(stream);
    ASSERT_EQ(r.status, OPCV_READ_OK);
    EXPECT_EQ(r.pixels(), expected.pixels());
    EXPECT_EQ(r.report.rows_decoded, 16);
    EXPECT_EQ(r.report.end_marker_seen, 0);
    EXPECT_EQ(r.report.damaged, 1);
}

TEST(ReadPage, RefusesBadArguments) {
    const Bytes stream = grey(8, 8);
    const size_t size = stream.size();
    KVIMG untouched{};
    KVIMG* page = &untouched;
    opcv_read_report report = newReport();
    const auto refuses = [&](const opcv_read_options* options, opcv_read_report* out) {
        page = &untouched;
        const opcv_read_status status = opcv_read_page(stream.data(), size, options, &page, out);
        return status == OPCV_READ_BAD_ARGUMENT && page == nullptr;
    };
    EXPECT_EQ(opcv_read_page(nullptr, size, nullptr, &page, &report), OPCV_READ_BAD_ARGUMENT);
    EXPECT_EQ(opcv_read_page(stream.data(), 0, nullptr, &page, &report), OPCV_READ_BAD_ARGUMENT);
    EXPECT_EQ(opcv_read_page(stream.data(), size, nullptr, nullptr, &report), OPCV_READ_BAD_ARGUMENT);
    EXPECT_EQ(opcv_read_info(nullptr, size, nullptr, &report), OPCV_READ_BAD_ARGUMENT);
    EXPECT_EQ(opcv_read_info(stream.data(), 0, nullptr, &report), OPCV_READ_BAD_ARGUMENT);
    EXPECT_EQ(opcv_read_info(stream.data(), size, nullptr, nullptr), OPCV_READ_BAD_ARGUMENT);

    opcv_read_options options = newOptions();
    options.struct_size = sizeof options - 1;
    EXPECT_TRUE(refuses(&options, &report));
    options = newOptions();
    options.max_pixels = -1;
    EXPECT_TRUE(refuses(&options, &report));
    options = newOptions();
    options.max_memory = -1;
    EXPECT_TRUE(refuses(&options, &report));
    options = newOptions();
    options.max_scans = -1;
    EXPECT_TRUE(refuses(&options, &report));
    options = newOptions();
    options.reserved = 1;
    EXPECT_TRUE(refuses(&options, &report));
    report.struct_size = sizeof report - 1;
    report.width = -7;
    EXPECT_TRUE(refuses(nullptr, &report));
    EXPECT_EQ(report.width, -7);
}

// A caller that was compiled with a later header: what this library does not know must be unused, or stays as it was.
TEST(ReadPage, TakesLongerStructures) {
    struct {
        opcv_read_options known;
        int64_t later;
    } options{newOptions(), 0};
    struct {
        opcv_read_report known;
        int64_t later;
    } report{newReport(), 99};
    options.known.struct_size = sizeof options;
    report.known.struct_size = sizeof report;
    const Bytes stream = grey(8, 8);
    EXPECT_EQ(opcv_read_info(stream.data(), stream.size(), &options.known, &report.known), OPCV_READ_OK);
    EXPECT_EQ(report.later, 99);
    EXPECT_EQ(report.known.struct_size, sizeof report);
    options.later = 1;
    EXPECT_EQ(opcv_read_info(stream.data(), stream.size(), &options.known, &report.known), OPCV_READ_BAD_ARGUMENT);
}

TEST(ReadPage, KeepsToTheCallersLimits) {
    const Bytes stream = withOrientation(foreignStreamOf(3, 40, 24), 6);
    opcv_read_report known = newReport();
    ASSERT_EQ(opcv_read_info(stream.data(), stream.size(), nullptr, &known), OPCV_READ_OK);
    opcv_read_options exact = newOptions();
    exact.max_bytes = stream.size();
    exact.max_pixels = int64_t{40} * 24;
    exact.max_scans = known.scans;
    exact.max_memory = known.memory;
    EXPECT_EQ(readPage(stream, &exact).status, OPCV_READ_OK);
    for (const int which : {0, 1, 2, 3}) {
        opcv_read_options tight = exact;
        if (which == 0) --tight.max_bytes;
        if (which == 1) --tight.max_pixels;
        if (which == 2) --tight.max_scans;
        if (which == 3) --tight.max_memory;
        const PageReading r = readPage(stream, &tight);
        EXPECT_EQ(r.status, OPCV_READ_OVER_LIMIT) << which;
        EXPECT_EQ(r.image, nullptr);
        EXPECT_EQ(r.report.damaged, 0);
        EXPECT_EQ(r.report.width, which == 0 ? 0 : 24);
        opcv_read_report report = newReport();
        EXPECT_EQ(opcv_read_info(stream.data(), stream.size(), &tight, &report), OPCV_READ_OVER_LIMIT) << which;
    }
}

TEST(ReadPage, TellsRefusalFromDamage) {
    EXPECT_EQ(readPage(claiming(32768, 32769)).status, OPCV_READ_OVER_LIMIT);
    EXPECT_EQ(readPage(claiming(30000, 30000)).status, OPCV_READ_OVER_LIMIT);    // more bytes than a record states
    EXPECT_EQ(readPage(claiming(10, 10)).status, OPCV_READ_UNREADABLE);
    EXPECT_EQ(readPage({1, 2, 3}).status, OPCV_READ_UNREADABLE);
}

struct Countdown {
    int calls = 0;
    int last = 0;    // the call that cancels; 0: none

    static int ask(void* context) {
        auto* const self = static_cast<Countdown*>(context);
        return ++self->calls == self->last ? 1 : 0;
    }
};

TEST(ReadPage, CanBeCancelledAtEveryCall) {
    for (const NamedStream& s : jpegCorpus()) {
        SCOPED_TRACE(s.name);
        Countdown countdown;
        opcv_read_options options = newOptions();
        options.cancel = Countdown::ask;
        options.context = &countdown;
        const PageReading whole = readPage(s.stream, &options);
        ASSERT_EQ(whole.status, OPCV_READ_OK);
        const int calls = countdown.calls;
        EXPECT_GE(calls, whole.report.rows);
        for (int last = 1; last <= calls; last += 1 + last / 8) {
            countdown = {0, last};
            const PageReading r = readPage(s.stream, &options);
            ASSERT_EQ(r.status, OPCV_READ_CANCELLED) << last;
            EXPECT_EQ(countdown.calls, last);
            EXPECT_EQ(r.image, nullptr);
            EXPECT_EQ(r.report.damaged, 0);
            EXPECT_LT(r.report.rows_decoded, whole.report.rows);
        }
    }
}

// The rows lie apart, and every byte between them stays.
TEST(ReadRows, FillsTheCallersRowsAlone) {
    for (const NamedStream& s : jpegCorpus())
        for (const bool upwards : {false, true}) {
            SCOPED_TRACE(s.name);
            const PageReading page = readPage(s.stream);
            const size_t rowBytes = static_cast<size_t>(page.image->rowBytes);
            const size_t step = rowBytes + 7;
            const auto height = static_cast<size_t>(page.report.height);
            FencedMemory block(step * (height - 1) + rowBytes, FencedMemory::Fence::kBehind);
            std::memset(block.data(), 0xAB, block.size());
            opcv_rows rows = {block.data(), static_cast<ptrdiff_t>(step), page.report.width, page.report.height,
                              page.report.channels};
            if (upwards) {
                rows.data += step * (height - 1);
                rows.step = -rows.step;
            }
            opcv_read_report report = newReport();
            ASSERT_EQ(opcv_read_rows(s.stream.data(), s.stream.size(), nullptr, &rows, &report), OPCV_READ_OK);
            EXPECT_EQ(report.rows_decoded, page.report.rows_decoded);
            EXPECT_EQ(report.memory, page.report.memory - page.image->size - static_cast<int64_t>(sizeof(KVIMG)));
            for (size_t y = 0; y < height; ++y) {
                const uint8_t* row = block.data() + step * (upwards ? height - 1 - y : y);
                ASSERT_EQ(std::memcmp(row, page.image->data + rowBytes * y, rowBytes), 0) << y;
            }
            for (size_t y = 0; y + 1 < height; ++y)
                for (size_t i = rowBytes; i < step; ++i) ASSERT_EQ(block.data()[step * y + i], 0xAB);
        }
}

TEST(ReadRows, RepeatsGreyInThreeChannels) {
    const Bytes stream = withOrientation(grey(20, 12), 5);
    const Reading expected = readSplit(stream, 12, 20);
    Bytes pixels(12 * 20 * 3);
    const opcv_rows rows = {pixels.data(), 36, 12, 20, 3};
    ASSERT_EQ(opcv_read_rows(stream.data(), stream.size(), nullptr, &rows, nullptr), OPCV_READ_OK);
    EXPECT_EQ(pixels, expected.pixels());
}

TEST(ReadRows, RefusesRowsOfAnotherSize) {
    const Bytes stream = withOrientation(colour(20, 12), 6);
    Bytes pixels(60 * 60, 0xCD);
    const auto status = [&](int width, int height, int channels, ptrdiff_t step) {
        const opcv_rows rows = {pixels.data(), step, width, height, channels};
        opcv_read_report report = newReport();
        const opcv_read_status s = opcv_read_rows(stream.data(), stream.size(), nullptr, &rows, &report);
        EXPECT_EQ(report.width, s == OPCV_READ_BAD_ARGUMENT ? 0 : 12);
        EXPECT_EQ(report.damaged, 0);
        return s;
    };
    EXPECT_EQ(status(20, 12, 3, 60), OPCV_READ_WRONG_SIZE);
    EXPECT_EQ(status(13, 20, 3, 60), OPCV_READ_WRONG_SIZE);
    EXPECT_EQ(status(12, 19, 3, 60), OPCV_READ_WRONG_SIZE);
    EXPECT_EQ(status(12, 20, 1, 60), OPCV_READ_WRONG_SIZE);
    EXPECT_EQ(status(12, 20, 3, 35), OPCV_READ_BAD_ARGUMENT);
    EXPECT_EQ(status(12, 20, 3, -35), OPCV_READ_BAD_ARGUMENT);
    EXPECT_EQ(status(12, 20, 2, 60), OPCV_READ_BAD_ARGUMENT);
    EXPECT_EQ(status(0, 20, 3, 60), OPCV_READ_BAD_ARGUMENT);
    EXPECT_EQ(status(12, -1, 3, 60), OPCV_READ_BAD_ARGUMENT);
    EXPECT_EQ(pixels, Bytes(60 * 60, 0xCD));
    EXPECT_EQ(status(12, 20, 3, 60), OPCV_READ_OK);
    EXPECT_EQ(opcv_read_rows(stream.data(), stream.size(), nullptr, nullptr, nullptr), OPCV_READ_BAD_ARGUMENT);
    const opcv_rows nowhere = {nullptr, 60, 12, 20, 3};
    EXPECT_EQ(opcv_read_rows(stream.data(), stream.size(), nullptr, &nowhere, nullptr), OPCV_READ_BAD_ARGUMENT);
}

TEST(ReadRows, KeepsToTheLimits) {
    const Bytes stream = colour(20, 12);
    Bytes pixels(20 * 12 * 3, 0xCD);
    const opcv_rows rows = {pixels.data(), 60, 20, 12, 3};
    opcv_read_report report = newReport();
    ASSERT_EQ(opcv_read_rows(stream.data(), stream.size(), nullptr, &rows, &report), OPCV_READ_OK);
    opcv_read_options options = newOptions();
    options.max_memory = report.memory;
    EXPECT_EQ(opcv_read_rows(stream.data(), stream.size(), &options, &rows, nullptr), OPCV_READ_OK);
    --options.max_memory;
    EXPECT_EQ(opcv_read_rows(stream.data(), stream.size(), &options, &rows, nullptr), OPCV_READ_OVER_LIMIT);
}

// libjpeg takes a limit for its memory from there, and then has no place for the coefficients of a progressive page.
TEST(ReadPage, TheEnvironmentHasNoSayInWhatIsRead) {
    const Bytes stream = foreignStreamOf(3, 400, 300);
    const Reading expected = read(stream);
    ASSERT_EQ(expected.status, noErr);
    ASSERT_EQ(setenv("JPEGMEM", "1", 1), 0);
    const Reading r = read(stream);
    const PageReading page = readPage(stream);
    unsetenv("JPEGMEM");
    ASSERT_EQ(r.status, noErr);
    EXPECT_EQ(r.pixels(), expected.pixels());
    EXPECT_EQ(page.status, OPCV_READ_OK);
}

}    // namespace
