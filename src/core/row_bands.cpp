// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "core/row_bands.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <opencv2/core.hpp>
#include <stdexcept>

namespace opcv {

namespace {

constexpr double kElementsOfBand = 1 << 16;
constexpr int kMostBands = 1024;

class Bands : public cv::ParallelLoopBody {
public:
    Bands(int rows, int count, const FunctionRef<int, int>& run) : rows_(rows), count_(count), run_(run) {}

    void operator()(const cv::Range& bands) const override {
        run_(firstRowOf(bands.start), firstRowOf(bands.end));
        std::fill(done_.begin() + bands.start, done_.begin() + bands.end, true);
    }

    void runTheRest() const {
        const auto end = done_.begin() + count_;
        for (auto first = std::find(done_.begin(), end, false); first != end; first = std::find(first, end, false)) {
            const auto last = std::find(first, end, true);
            (*this)(cv::Range(static_cast<int>(first - done_.begin()), static_cast<int>(last - done_.begin())));
        }
    }

private:
    int firstRowOf(int band) const { return static_cast<int>(int64_t{rows_} * band / count_); }

    int rows_;
    int count_;
    const FunctionRef<int, int>& run_;
    mutable std::array<bool, kMostBands> done_{};    // each written by one thread
};

class OneBand : public cv::ParallelLoopBody {
public:
    explicit OneBand(const FunctionRef<>& calls) : calls_(calls) {}

    void operator()(const cv::Range& /*bands*/) const override { calls_(); }

private:
    const FunctionRef<>& calls_;
};

}    // namespace

void forEachBand(int rows, double elements, FunctionRef<int, int> run) {
    const int most = std::min(rows, kMostBands);
    const int count = static_cast<int>(std::lround(std::clamp<double>(elements / kElementsOfBand, 1, most)));
    if (count <= 1) return run(0, rows);
    const Bands bands(rows, count, run);
    try {
        cv::parallel_for_(cv::Range(0, count), bands, count);
    } catch (const std::runtime_error&) {
        // TBB throws this if a thread cannot be started, after the bands in progress are complete.
        bands.runTheRest();
    }
}

// OpenCV does not start a parallel loop inside another one. The outer loop here has a single band, which OpenCV runs on
// the caller's thread. If another caller's loop ends in the meantime, the inner loops may be distributed again, but
// OpenCV's pool no longer uses a thread that has failed.
void withOpenCVThreads(FunctionRef<> calls) {
    constexpr int kMostThreads = 1024;
    for (int attempt = 0; attempt < kMostThreads; ++attempt) {
        try {
            if (attempt == 0) return calls();
            return cv::parallel_for_(cv::Range(0, 1), OneBand(calls), 1);
        } catch (const std::runtime_error&) {
            if (attempt + 1 == kMostThreads) throw;
        }
    }
}

}    // namespace opcv
