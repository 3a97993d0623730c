// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Bands of rows: each row comes once, whatever the number of rows and threads, and failures of the bands reach the
// caller. How threads that cannot be started are replaced is tested for every function in tests/catalogue.
#include "core/row_bands.h"

#include <gtest/gtest.h>

#include <atomic>
#include <new>
#include <opencv2/core.hpp>
#include <stdexcept>
#include <vector>

namespace {

constexpr double kElementsOfBand = 1 << 16;

struct Visits {
    explicit Visits(int rows) : ofRow(static_cast<size_t>(rows)) {}

    std::vector<std::atomic<int>> ofRow;
    std::atomic<int> calls{0};
};

void visitEachRow(int rows, double elements, Visits& visits) {
    opcv::forEachBand(rows, elements, [&](int firstRow, int endRow) {
        ++visits.calls;
        for (int row = firstRow; row < endRow; ++row) ++visits.ofRow[static_cast<size_t>(row)];
    });
}

TEST(RowBands, CoverEachRowOnce) {
    for (const int rows : {1, 2, 3, 7, 100, 1023, 1024, 1025, 5000})
        for (const double bands : {0.0, 0.5, 1.0, 1.6, 2.0, 3.0, 50.0, 2000.0, 1e9}) {
            Visits visits(rows);
            visitEachRow(rows, bands * kElementsOfBand, visits);
            for (const std::atomic<int>& count : visits.ofRow) ASSERT_EQ(count, 1) << rows << ' ' << bands;
            if (bands < 1.5 || rows == 1) {
                EXPECT_EQ(visits.calls, 1) << rows << ' ' << bands;
            }
        }
}

TEST(RowBands, PropagateExceptions) {
    const auto fail = [](int, int) { throw std::bad_alloc(); };
    EXPECT_THROW(opcv::forEachBand(10, 0, fail), std::bad_alloc);
    EXPECT_THROW(opcv::forEachBand(10, 5 * kElementsOfBand, fail), std::bad_alloc);
}

// A band that fails like a thread: the others are run once, and it is run again.
TEST(RowBands, CompleteTheRowsAfterAFailure) {
    constexpr int kRows = 40;
    for (int failing = 0; failing < kRows; failing += 3) {
        std::vector<std::atomic<int>> visits(kRows);
        std::atomic<bool> failed{false};
        opcv::forEachBand(kRows, kRows * kElementsOfBand, [&](int firstRow, int endRow) {
            if (firstRow <= failing && failing < endRow && !failed.exchange(true))
                throw std::runtime_error("no thread");
            for (int row = firstRow; row < endRow; ++row) ++visits[static_cast<size_t>(row)];
        });
        EXPECT_TRUE(failed);
        for (const std::atomic<int>& count : visits) ASSERT_EQ(count, 1) << failing;
    }
}

TEST(OpenCVThreads, AreReplacedByTheCallersThread) {
    int calls = 0;
    opcv::withOpenCVThreads([&] { ++calls; });
    EXPECT_EQ(calls, 1);

    // Within the second attempt OpenCV does not distribute.
    std::atomic<int> bands{0};
    opcv::withOpenCVThreads([&] {
        if (++calls == 2) throw std::runtime_error("no thread");
        cv::parallel_for_(cv::Range(0, 100), [&](const cv::Range& /*range*/) { ++bands; });
    });
    EXPECT_EQ(calls, 3);
    EXPECT_EQ(bands, 1);

    EXPECT_THROW(opcv::withOpenCVThreads([] { throw std::bad_alloc(); }), std::bad_alloc);
    EXPECT_THROW(opcv::withOpenCVThreads([] { CV_Error(cv::Error::StsBadArg, "refused"); }), cv::Exception);
    EXPECT_THROW(opcv::withOpenCVThreads([] { throw std::runtime_error("always"); }), std::runtime_error);
}

}    // namespace
