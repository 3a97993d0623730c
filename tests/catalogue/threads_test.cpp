// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Calls all functions on eight threads at the same time, each thread in another order: every output must equal that of
// a single thread. Also runs with the thread sanitizer. Then calls each function on large images with one and with
// several OpenCV threads.
#include <gtest/gtest.h>

#include <atomic>
#include <opencv2/core.hpp>
#include <thread>

#include "catalogue/catalogue.h"

namespace {

constexpr int kThreads = 8;
constexpr int kVariantsOfEach = 3;

struct Prepared {
    std::unique_ptr<Memory> memory = std::make_unique<Heap>();
    std::unique_ptr<Case> call;
    const Entry* entry = nullptr;
};

// All cases of the catalogue.
std::vector<Prepared> prepareAll() {
    std::vector<Prepared> all;
    for (const Entry& entry : catalogue())
        for (int i = 0; i < std::min(entry.variants, kVariantsOfEach); ++i) {
            Case::Setting setting;
            setting.seed = static_cast<unsigned>(i) + 1;
            setting.variant = i * entry.variants / kVariantsOfEach;
            setting.size = {45, 21};
            Prepared prepared;
            prepared.entry = &entry;
            prepared.call = std::make_unique<Case>(setting, *prepared.memory);
            entry.prepare(*prepared.call);
            all.push_back(std::move(prepared));
        }
    return all;
}

Bytes outputOf(Case& c) {
    c.restore();
    const int status = c.run();
    Bytes output = c.takeOutput();
    output.push_back(status == 0 && c.strayWrites().empty() ? 1 : 0);
    return output;
}

// Runs all cases, starting at a different one in each thread, and counts those whose result differs.
void runAll(int thread, const std::vector<Bytes>& expected, std::atomic<int>& different) {
    std::vector<Prepared> cases = prepareAll();
    const size_t first = static_cast<size_t>(thread) * cases.size() / kThreads;
    for (size_t i = 0; i < cases.size(); ++i) {
        const size_t which = (first + i) % cases.size();
        if (outputOf(*cases[which].call) != expected[which]) {
            ++different;
            ADD_FAILURE() << cases[which].entry->name;
        }
    }
}

TEST(Threads, EightThreadsGetTheSameAsOne) {
#if defined(__SANITIZE_THREAD__)
    cv::setNumThreads(1);    // OpenCV's own threads are not instrumented
#endif
    std::vector<Bytes> expected;
    for (Prepared& prepared : prepareAll()) {
        expected.push_back(outputOf(*prepared.call));
        EXPECT_EQ(expected.back().back(), 1) << prepared.entry->name;
    }

    std::atomic<int> different{0};
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int t = 0; t < kThreads; ++t) threads.emplace_back([&, t] { runAll(t, expected, different); });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(different, 0);
}

// Large images take minutes in an emulated build with checks; the plain arm64 build and the checks on x86-64 have them.
#if !defined(__SANITIZE_THREAD__) && !(defined(__SANITIZE_ADDRESS__) && defined(__aarch64__))
Bytes outputOnThreads(const Entry& entry, int variant, int threads) {
    Heap heap;
    Case::Setting setting;
    setting.variant = variant;
    setting.size = {701, 311};    // enough for three bands of rows
    Case c(setting, heap);
    entry.prepare(c);
    cv::setNumThreads(threads);
    return outputOf(c);
}

TEST(Threads, OpenCVsOwnThreadsChangeNothing) {
    const int threads = cv::getNumThreads();
    for (const Entry& entry : catalogue()) {
        const int variant = entry.variants / 2;
        const Bytes alone = outputOnThreads(entry, variant, 1);
        EXPECT_EQ(alone.back(), 1) << entry.name;
        EXPECT_EQ(outputOnThreads(entry, variant, 3), alone) << entry.name;
    }
    cv::setNumThreads(threads);
}
#endif

}    // namespace
