// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "measurement.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <opencv2/core.hpp>

#include "reference.h"
#include "support/vector_target.h"

namespace bench {
namespace {

constexpr double kShortCall = 0.02;
constexpr int kRoundsOfShortCalls = 3;
constexpr double kQuiet = 1.1;    // times the fastest reference loop of the run

// The widest is the first, the next narrower the second.
std::vector<int64_t> targets;
std::vector<std::string> namesOfTargets(2);

double fastestLoop = std::numeric_limits<double>::max();

double timedReference() {
    const double seconds = referenceSeconds();
    fastestLoop = std::min(fastestLoop, seconds);
    return seconds;
}

double secondsOf(const Action& run, int repeats) {
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < repeats; ++i) {
        run();
        benchmark::ClobberMemory();
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() / repeats;
}

// Enough calls that the resolution of the clock does not matter. Counts by the fastest of several calls, because the
// first ones find their data in memory, the later ones in the caches.
int repeatsOf(const Action& run) {
    constexpr double kRun = 0.002;
    constexpr double kMost = 10000;
    double fastest = std::numeric_limits<double>::max();
    double spent = 0;
    while (spent < kRun) {
        const double once = std::max(secondsOf(run, 1), 1e-7);
        fastest = std::min(fastest, once);
        spent += once;
    }
    return static_cast<int>(std::clamp(std::ceil(kRun / fastest), 1.0, kMost));
}

double differenceOf(double a, double b) { return std::max(a, b) / std::min(a, b) - 1; }

std::string nameOf(const Subject& subject, int threads) {
    return subject.function + (subject.variant.empty() ? "" : " " + subject.variant) + "/" +
           std::to_string(subject.size.width) + "x" + std::to_string(subject.size.height) +
           "/threads:" + std::to_string(threads);
}

}    // namespace

Measurement::Measurement(const Comparison& comparison, int threads)
    : comparison_(comparison), threads_(threads), name_(nameOf(comparison.subject, threads)) {}

void Measurement::prepare() {
    const Action copy = memcpyOf(comparison_.subject);
    // If memcpy is also the plain way, it is measured once.
    const bool hasNarrower = targets.size() > 1 && threads_ == 1;
    runs_ = {comparison_.ours, comparison_.plain.run, copy, hasNarrower ? comparison_.ours : nullptr};
    for (size_t i = 0; i < kRuns; ++i) {
        if (runs_[i]) repeats_[i] = repeatsOf(runs_[i]);
    }
    if (comparison_.same && !comparison_.same()) {
        std::fprintf(stderr, "%s: the results differ\n", name_.c_str());
        std::exit(1);
    }
    oursHeap_ = HeapMeter::of(comparison_.ours);
    plainHeap_ = HeapMeter::of(comparison_.plain.run ? comparison_.plain.run : copy);
}

void Measurement::addRound() {
    Round round{passes_, {}, timedReference()};
    for (size_t i = 0; i < kRuns; ++i) {
        if (!runs_[i]) continue;
        if (i == kNarrower) vector_target::use(targets[1]);
        if (repeats_[i] > 1)
            runs_[i]();    // so that short calls do not depend on what the previous one left in the caches
        round.seconds[i] = secondsOf(runs_[i], repeats_[i]);
        if (i == kNarrower) vector_target::use(targets[0]);
        if (i <= kPlain) round.reference = std::max(round.reference, timedReference());
    }
    if (!runs_[kPlain]) round.seconds[kPlain] = round.seconds[kCopy];
    rounds_.push_back(round);
}

void Measurement::chooseTargets() {
    targets = vector_target::running();
    std::reverse(targets.begin(), targets.end());
    targets.resize(std::min(targets.size(), size_t{2}));
    for (size_t i = 0; i < targets.size(); ++i) namesOfTargets[i] = hwy::TargetName(targets[i]);
}

const std::string& Measurement::target() { return namesOfTargets[0]; }

const std::string& Measurement::narrowerTarget() { return namesOfTargets[1]; }

void Measurement::addPass() {
    cv::setNumThreads(threads_);
    if (rounds_.empty()) prepare();
    ++passes_;
    addRound();
    if (rounds_.back().seconds[kOurs] + rounds_.back().seconds[kPlain] > kShortCall) return;
    for (int i = 1; i < kRoundsOfShortCalls; ++i) addRound();
}

int Measurement::quietRounds() const {
    return static_cast<int>(std::count_if(rounds_.begin(), rounds_.end(),
                                          [](const Round& round) { return round.reference < kQuiet * fastestLoop; }));
}

// In odd passes if parity is 1, in even ones if it is 0, in all if it is negative.
double Measurement::fastest(size_t run, int parity) const {
    double seconds = std::numeric_limits<double>::max();
    for (const Round& round : rounds_)
        if (parity < 0 || round.pass % 2 == parity) seconds = std::min(seconds, round.seconds[run]);
    return seconds;
}

double Measurement::fastestReference() { return fastestLoop; }

Figures Measurement::figures() const {
    Figures figures;
    figures.ours = fastest(kOurs, -1);
    figures.plain = fastest(kPlain, -1);
    figures.copy = fastest(kCopy, -1);
    figures.narrower = fastest(kNarrower, -1);
    figures.quietRounds = quietRounds();
    figures.oursHeap = oursHeap_;
    figures.plainHeap = plainHeap_;
    if (passes_ > 1) {
        figures.spread = differenceOf(fastest(kOurs, 0), fastest(kOurs, 1));
        figures.ratioSpread =
            differenceOf(fastest(kOurs, 0) / fastest(kPlain, 0), fastest(kOurs, 1) / fastest(kPlain, 1));
    }
    return figures;
}

}    // namespace bench
