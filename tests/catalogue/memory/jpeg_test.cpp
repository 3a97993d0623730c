// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Compressors and readers that are out of memory, in cases that the catalogue does not have.
#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "OPCV_dlib_read.h"
#include "core/ownership.h"
#include "failing_heap.h"
#include "observation.h"
#include "oracle/jpeg.h"
#include "records.h"
#include "support/reading.h"

namespace {

// Long enough for the work buffer to be flushed: the vector cannot grow while libjpeg runs.
TEST(OutOfMemory, CompressorsOfLongStreams) {
    for (const Entry& entry : catalogue()) {
        if (entry.name.rfind("Compress", 0) != 0) continue;
        Case::Setting setting;
        setting.variant = entry.variants - 1;    // the best quality
        setting.size = {700, 700};
        Observation seen;
        observe(entry, setting, seen);
        EXPECT_EQ(seen.fault, "") << entry.name;
    }
}

TEST(OutOfMemory, TheLengthIsWrittenWhenOnlyTheBlockIsMissing) {
    const opcv::RecordPtr image = recordOf(20, 20, 8);
    bool written = false;
    for (long n = 1; !written; ++n) {
        unsigned size = 0;
        void* data = &size;
        FailingHeap::arm(n, FailingHeap::Failure::kOnce);
        const OSErr err = CompressJPEG(image.get(), 300, 0, &data, &size);
        ASSERT_TRUE(FailingHeap::disarm()) << "no allocation for the block";
        if (err == noErr) std::free(data);    // libjpeg did with less
        written = err == memFullErr && data == nullptr && size > 100;
    }
}

// A piece of another size is refused before there is a block for its pixels.
TEST(OutOfMemory, APieceOfAnotherSizeLeavesNothing) {
    const opcv::RecordPtr page = recordOf(40, 30, 24);
    oracle::JpegSettings settings;
    settings.components = 3;
    const std::vector<unsigned char> stream = oracle::encodeJpeg(page->data, page->rowBytes, 40, 30, settings);
    FailingHeap::arm(FailingHeap::kNever, FailingHeap::Failure::kOnce);
    const Reading piece = readSplit(stream, 41, 30);
    EXPECT_FALSE(FailingHeap::disarm());
    EXPECT_EQ(piece.status, paramErr);
    EXPECT_EQ(FailingHeap::liveBlocks(), 0U);
    EXPECT_EQ(piece.image, nullptr);
}

// Each allocation of a read with a report fails once, one after the other, and then all from it on.
void expectNoMemoryFrom(const std::vector<unsigned char>& stream, bool intoRows) {
    std::vector<unsigned char> pixels(size_t{3} * 40 * 30);
    const opcv_rows rows = {pixels.data(), 120, 40, 30, 3};
    for (const auto failure : {FailingHeap::Failure::kOnce, FailingHeap::Failure::kLasting})
        for (long n = 1;; ++n) {
            KVIMG* page = nullptr;
            opcv_read_report report{};
            report.struct_size = sizeof report;
            FailingHeap::arm(n, failure);
            const opcv_read_status status = intoRows
                                                ? opcv_read_rows(stream.data(), stream.size(), nullptr, &rows, &report)
                                                : opcv_read_page(stream.data(), stream.size(), nullptr, &page, &report);
            const bool failed = FailingHeap::disarm();
            ASSERT_EQ(status == OPCV_READ_OK && !intoRows, page != nullptr) << n;
            opcv::RecordPtr(page).reset();
            ASSERT_EQ(FailingHeap::liveBlocks(), 0U) << n;
            ASSERT_TRUE(status == OPCV_READ_NO_MEMORY || status == OPCV_READ_OK) << n << " " << status;
            ASSERT_EQ(report.width, 40);
            ASSERT_EQ(report.damaged, 0);
            if (failed) continue;
            ASSERT_EQ(status, OPCV_READ_OK);
            ASSERT_GT(n, 5) << "a read takes more than one block from the heap";
            break;
        }
}

TEST(OutOfMemory, ReadersWithAReport) {
    const opcv::RecordPtr image = recordOf(40, 30, 24);
    for (const bool progressive : {false, true}) {
        oracle::JpegSettings settings;
        settings.components = 3;
        settings.progressive = progressive;
        const std::vector<unsigned char> stream =
            oracle::encodeJpeg(image->data, image->rowBytes, image->width, image->height, settings);
        for (const bool intoRows : {false, true}) expectNoMemoryFrom(stream, intoRows);

        opcv_read_report report{};
        report.struct_size = sizeof report;
        FailingHeap::arm(1, FailingHeap::Failure::kLasting);
        EXPECT_EQ(opcv_read_info(stream.data(), stream.size(), nullptr, &report), OPCV_READ_OK);
        EXPECT_FALSE(FailingHeap::disarm()) << "the headers are read without memory";

        int calls = 0;
        opcv_read_options options{};
        options.struct_size = sizeof options;
        options.cancel = [](void* context) { return ++*static_cast<int*>(context) == 9 ? 1 : 0; };
        options.context = &calls;
        KVIMG* page = nullptr;
        FailingHeap::arm(FailingHeap::kNever, FailingHeap::Failure::kOnce);
        EXPECT_EQ(opcv_read_page(stream.data(), stream.size(), &options, &page, nullptr), OPCV_READ_CANCELLED);
        EXPECT_FALSE(FailingHeap::disarm());
        EXPECT_EQ(FailingHeap::liveBlocks(), 0U) << "a cancelled read keeps nothing";
    }
}

}    // namespace
