// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "measure.h"

#include <algorithm>
#include <array>
#include <memory>
#include <opencv2/core/parallel/parallel_backend.hpp>
#include <stdexcept>
#include <utility>

#include "support/heap_meter.h"

namespace {

// A replacement for OpenCV's threads, which runs the jobs one after the other.
class CountingThreads : public cv::parallel::ParallelForAPI {
public:
    void parallel_for(int tasks, FN_parallel_for_body_cb_t body, void* data) override {
        ++jobs;
        for (int i = 0; i < tasks; ++i) body(i, i + 1, data);
    }
    int getThreadNum() const override { return 0; }
    int getNumThreads() const override { return threads; }
    int setNumThreads(int count) override { return std::exchange(threads, count); }
    const char* getName() const override { return "counting"; }

    int jobs = 0;
    int threads = 1;
};

CountingThreads& countingThreads() {
    static const auto threads = [] {
        auto made = std::make_shared<CountingThreads>();
        cv::parallel::setParallelForBackend(made);
        return made;
    }();
    return *threads;
}

void succeed(const Entry& entry, Case& c) {
    if (c.run() != 0) throw std::runtime_error(entry.name + " failed");
}

Case::Setting apart(int variant, IppiSize size) {
    Case::Setting setting;
    setting.variant = variant;
    setting.size = size;
    setting.page = true;
    return setting;
}

Bytes outputAfter(const Entry& entry, int variant, const std::function<void(Case&)>& change) {
    constexpr IppiSize kSmall = {44, 36};
    Heap heap;
    Case c(apart(variant, kSmall), heap);
    entry.prepare(c);
    c.restore();
    change(c);
    succeed(entry, c);
    return c.takeOutput();
}

// The farthest row or column of pixels on a side that makes a difference.
int marginOn(const Entry& entry, int variant, Case::Side side, int widest, const Bytes& expected) {
    for (int distance = widest; distance > 0; --distance)
        for (const auto how : {Case::Change::kBlack, Case::Change::kWhite, Case::Change::kInverted})
            if (outputAfter(entry, variant, [&](Case& c) { c.disturb(side, distance, how); }) != expected)
                return distance;
    return 0;
}

}    // namespace

std::string marginOf(const Entry& entry, int variant) {
    constexpr std::array kSides = {Case::Side::kLeft, Case::Side::kAbove, Case::Side::kRight, Case::Side::kBelow};
    bool takesRegions = false;
    std::array<int, 4> widest{};
    const Bytes expected = outputAfter(entry, variant, [&](Case& c) {
        takesRegions = c.takesRegions;
        for (size_t i = 0; i < kSides.size(); ++i) widest[i] = c.widestMargin(kSides[i]);
    });
    if (!takesRegions) return "";
    std::array<int, 4> margin{};
    for (size_t i = 0; i < kSides.size(); ++i) margin[i] = marginOn(entry, variant, kSides[i], widest[i], expected);
    if (std::all_of(margin.begin(), margin.end(), [&](int pixels) { return pixels == margin[0]; }))
        return std::to_string(margin[0]);
    return std::to_string(margin[0]) + ", " + std::to_string(margin[1]) + ", " + std::to_string(margin[2]) + ", " +
           std::to_string(margin[3]);
}

Use useOf(const Entry& entry, int variant) {
    CountingThreads& threads = countingThreads();
    Heap heap;
    Case c(apart(variant, kPage), heap);
    entry.prepare(c);
    threads.threads = 1;
    c.restore();
    succeed(entry, c);    // lets OpenCV fill its caches
    c.restore();
    HeapMeter::start();
    succeed(entry, c);
    const HeapMeter::Use use = HeapMeter::stop();
    threads.threads = 4;
    threads.jobs = 0;
    c.restore();
    succeed(entry, c);
    threads.threads = 1;
    return {use.kept, use.most - use.kept, threads.jobs > 0};
}
