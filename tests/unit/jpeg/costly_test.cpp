// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Streams of a few bytes that would keep a decoder busy: each is rejected, or stays within a limit of its caller.
#include "support/jpeg_costly.h"

#include <gtest/gtest.h>

#include "support/jpeg_report.h"
#include "support/reading.h"

namespace {

using Bytes = std::vector<uint8_t>;

// The same stream with another size in its frame header.
Bytes claiming(const CostlyStream& wanted, int width, int height) {
    Bytes stream = costlyStream(wanted);
    size_t at = 2;
    while (stream.at(at + 1) < 0xC0 || stream[at + 1] > 0xCA || stream[at + 1] == 0xC4)
        at += 2 + (size_t{stream.at(at + 2)} << 8 | stream.at(at + 3));
    const auto put = [&stream, at](size_t place, int side) {
        stream[at + place] = static_cast<uint8_t>(side / 256);
        stream[at + place + 1] = static_cast<uint8_t>(side % 256);
    };
    put(5, height);
    put(7, width);
    return stream;
}

CostlyStream grey() {
    CostlyStream wanted;
    wanted.data = false;
    return wanted;
}

CostlyStream manyArithmeticScans() {
    CostlyStream wanted;
    wanted.progressive = true;
    wanted.arithmetic = true;
    wanted.data = false;
    wanted.scans = 100;
    return wanted;
}

opcv_read_status infoOf(const Bytes& stream, opcv_read_report& report, const opcv_read_options* options = nullptr) {
    return opcv_read_info(stream.data(), stream.size(), options, &report);
}

// A page of 1 GB without data. Its work is bounded, and its size is known without decoding.
TEST(CostlyStream, ALargeEmptyPageMeetsTheCallersLimits) {
    const Bytes stream = claiming(grey(), 32767, 32767);
    ASSERT_LT(stream.size(), 400U);
    opcv_read_report report = newReport();
    EXPECT_EQ(infoOf(stream, report), OPCV_READ_OK);
    EXPECT_GT(report.memory, int64_t{32767} * 32767);
    opcv_read_options options = newOptions();
    options.max_memory = int64_t{1} << 28;
    EXPECT_EQ(readPage(stream, &options).status, OPCV_READ_OVER_LIMIT);
    options = newOptions();
    options.max_pixels = 100'000'000;
    EXPECT_EQ(readPage(stream, &options).status, OPCV_READ_OVER_LIMIT);

    CostlyStream arithmetic = grey();
    arithmetic.arithmetic = true;
    EXPECT_EQ(readPage(claiming(arithmetic, 32767, 32767)).status, OPCV_READ_OVER_LIMIT);
}

TEST(CostlyStream, AHundredArithmeticScansOfALargePageAreRejected) {
    const Bytes stream = claiming(manyArithmeticScans(), 32767, 32767);
    ASSERT_LT(stream.size(), 1500U);
    const PageReading r = readPage(stream);
    EXPECT_EQ(r.status, OPCV_READ_OVER_LIMIT);
    EXPECT_EQ(r.report.scans, 100);
    EXPECT_EQ(r.report.width, 32767);
    const Reading plain = read(stream);
    EXPECT_EQ(plain.status, paramErr);
    EXPECT_EQ(plain.image, nullptr);
}

// 2048 x 2048 pixels in a hundred arithmetic scans are below the limit of work, 2320 x 2320 above it.
TEST(CostlyStream, AHundredArithmeticScansAreBoundedByTheWork) {
    CostlyStream wanted = manyArithmeticScans();
    wanted.data = true;
    wanted.magnitude = 10;
    wanted.random = false;
    opcv_read_report report = newReport();
    EXPECT_EQ(infoOf(claiming(wanted, 2048, 2048), report), OPCV_READ_OK);
    EXPECT_EQ(infoOf(claiming(wanted, 2320, 2320), report), OPCV_READ_OVER_LIMIT);
}

// The decoder reads all scans before the first row; it asks in them too.
TEST(CostlyStream, CanBeCancelledBeforeTheFirstRow) {
    const Bytes stream = claiming(manyArithmeticScans(), 2048, 2048);
    int calls = 0;
    opcv_read_options options = newOptions();
    options.cancel = [](void* context) { return ++*static_cast<int*>(context) == 3 ? 1 : 0; };
    options.context = &calls;
    const PageReading r = readPage(stream, &options);
    EXPECT_EQ(r.status, OPCV_READ_CANCELLED);
    EXPECT_EQ(calls, 3);
    EXPECT_EQ(r.report.rows_decoded, 0);
    EXPECT_EQ(r.image, nullptr);
}

}    // namespace
