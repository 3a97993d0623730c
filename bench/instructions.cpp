// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Runs both sides of every comparison once, each between two marker functions that `arm_trace.py` finds in the trace of
// the run. Prints a line for each comparison; with --maps, prints the memory map instead.
#include <cstdio>
#include <fstream>
#include <iostream>
#include <opencv2/core.hpp>

#include "support.h"

extern "C" {
__attribute__((noinline, used)) void startOfCount() { asm volatile("nop" ::: "memory"); }
__attribute__((noinline, used)) void endOfCount() { asm volatile("nop" ::: "memory"); }
}

namespace {

constexpr IppiSize kSize = {256, 64};    // small, because the trace lists every executed block

void count(const bench::Action& run) {
    run();    // one-time initialisation is not counted
    startOfCount();
    run();
    endOfCount();
}

}    // namespace

int main(int argc, char** /*argv*/) {
    if (argc > 1) {
        std::cout << std::ifstream("/proc/self/maps").rdbuf();
        return 0;
    }
    cv::setNumThreads(1);
    bench::makeComparisons({kSize});
    for (const bench::Comparison& comparison : bench::comparisons()) {
        const bench::Subject& subject = comparison.subject;
        std::printf("%s\t%s\t%s\t%d\t%zu\t%zu\n", subject.function.c_str(), subject.variant.c_str(),
                    comparison.plain.name.c_str(), subject.size.width * subject.size.height, subject.bytesRead,
                    subject.bytesWritten);
        count(comparison.ours);
        count(comparison.plain.run ? comparison.plain.run : bench::memcpyOf(subject));
    }
    return 0;
}
