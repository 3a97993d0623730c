// Runs both sides of every comparison once, each between two marker functions that `count_instructions.py` looks for in
// the trace of the run. Prints a line for each comparison.
#include <cstdio>
#include <opencv2/core.hpp>

#include "support.h"

extern "C" {
__attribute__((noinline, used)) void startOfCount() { asm volatile("nop" ::: "memory"); }
__attribute__((noinline, used)) void endOfCount() { asm volatile("nop" ::: "memory"); }
}

namespace {

void count(const bench::Action& run) {
    run();    // what is made once is made now
    startOfCount();
    run();
    endOfCount();
}

}    // namespace

int main() {
    cv::setNumThreads(1);
    bench::makeComparisons({bench::kTile});
    for (const bench::Comparison& comparison : bench::comparisons()) {
        const bench::Subject& subject = comparison.subject;
        std::printf("%s\t%s\t%s\t%d\n", subject.function.c_str(), subject.variant.c_str(),
                    comparison.plain.name.c_str(), subject.size.width * subject.size.height);
        count(comparison.ours);
        count(comparison.plain.run ? comparison.plain.run : bench::memcpyOf(subject));
    }
    return 0;
}
