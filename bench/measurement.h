// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Times of one comparison with one number of threads. Passes over the table add rounds to it, so that they are spread
// over the whole run: what disturbs a machine often lasts for seconds.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "support.h"
#include "support/heap_meter.h"

namespace bench {

struct Figures {
    double ours = 0;
    double plain = 0;
    double copy = 0;
    double narrower = 0;       // the library with the kernels of the next narrower vector target; 0 if there is none
    double spread = 0;         // of ours, see Measurement::figures
    double ratioSpread = 0;    // of ours / plain
    int quietRounds = 0;
    HeapMeter::Use oursHeap;
    HeapMeter::Use plainHeap;
};

class Measurement {
public:
    Measurement(const Comparison& comparison, int threads);

    const Comparison& comparison() const { return comparison_; }
    int threads() const { return threads_; }
    const std::string& name() const { return name_; }
    bool isMeasured() const { return !rounds_.empty(); }

    // Runs the library, the plain way, memcpy and the library on narrower vectors in turn, several times if they are
    // short.
    void addPass();
    // Whether enough rounds have found the core quiet.
    bool isSettled() const { return quietRounds() >= kEnough; }

    // Times are minima over the rounds: a disturbance only adds time. Spreads compare the minima of odd and even
    // passes: 0.05 if they differ by 5 %.
    Figures figures() const;

    // The vector targets that are measured: the widest, and the next narrower. With several threads or a chosen target,
    // only one is. Call this before the first measurement.
    static void chooseTargets();
    static const std::string& target();
    static const std::string& narrowerTarget();

    // Seconds of the reference loop when the core was quiet: the fastest of the run.
    static double fastestReference();

private:
    static constexpr int kEnough = 5;
    enum { kOurs, kPlain, kCopy, kNarrower, kRuns };

    struct Round {
        int pass;
        std::array<double, kRuns> seconds;
        double reference;    // the slowest time of the reference loop around the first two runs
    };

    void prepare();
    void addRound();
    double fastest(size_t run, int parity) const;
    int quietRounds() const;

    const Comparison& comparison_;
    int threads_;
    std::string name_;
    std::array<Action, kRuns> runs_;
    std::array<int, kRuns> repeats_{};
    std::vector<Round> rounds_;
    int passes_ = 0;
    HeapMeter::Use oursHeap_;
    HeapMeter::Use plainHeap_;
};

}    // namespace bench
