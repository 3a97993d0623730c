// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// What is said of streams that were cut or have a bit flipped.
#include "support/jpeg_damage.h"

#include <gtest/gtest.h>

#include <optional>

#include "oracle/jpeg_decoding.h"

namespace {

TEST(DamagedStream, EveryCutIsReported) {
    const std::vector<NamedStream> all = jpegCorpus();
    ASSERT_EQ(all.size(), 12U);
    for (const NamedStream& s : all) {
        SCOPED_TRACE(s.name);
        int pages = 0;
        for (size_t length = 1; length < s.stream.size(); ++length) {
            const std::vector<uint8_t> cut(s.stream.begin(), s.stream.begin() + static_cast<ptrdiff_t>(length));
            const PageReading r = readPage(cut);
            ASSERT_EQ(r.report.damaged, 1) << length;
            ASSERT_EQ(r.report.end_marker_seen, 0) << length;
            ASSERT_TRUE(r.status == OPCV_READ_OK || r.status == OPCV_READ_UNREADABLE) << length;
            const std::optional<oracle::DecodedStream> expected = oracle::decodeStream(cut);
            ASSERT_EQ(r.status == OPCV_READ_OK, expected.has_value()) << length;
            if (!expected) continue;
            ++pages;
            ASSERT_EQ(r.report.rows_decoded, expected->rows) << length;
            ASSERT_EQ(r.report.warnings, expected->warnings) << length;
            ASSERT_EQ(r.pixels(), oracle::turned(*expected, s.orientation).pixels) << length;
        }
        // The decoder needs all scans of a stream of several, and cannot pause in arithmetic data.
        EXPECT_GE(pages, s.severalScans || s.arithmetic ? 0 : 40);
    }
}

// Every bit of the corpus, beside libjpeg driven directly.
TEST(DamagedStream, EveryFlipIsReadAsLibjpegReadsIt) {
    for (const NamedStream& s : jpegCorpus()) {
        SCOPED_TRACE(s.name);
        std::vector<uint8_t> stream = s.stream;
        for (size_t i = firstScanData(stream); i < stream.size(); ++i)
            for (int bit = 0; bit < 8; ++bit) {
                stream[i] = static_cast<uint8_t>(s.stream[i] ^ 1 << bit);
                const PageReading r = readPage(stream);
                const std::optional<oracle::DecodedStream> expected = oracle::decodeStream(stream);
                ASSERT_EQ(r.status == OPCV_READ_OK, expected.has_value()) << i << " bit " << bit;
                ASSERT_EQ(r.report.damaged == 0, expected && !expected->isDamaged()) << i << " bit " << bit;
                ASSERT_TRUE(!expected || r.pixels() == oracle::turned(*expected, s.orientation).pixels);
                stream[i] = s.stream[i];
            }
    }
}

}    // namespace
