// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Measures every registered comparison and writes a table of tab-separated lines, one per comparison and number of
// threads. Lines of an earlier run that are not measured again are kept, so that a table can be measured in parts:
//
//     opcv_dlib_bench [--results=FILE] [--rounds=N] [options of Google Benchmark]
//
// OPCV_DLIB_TEST_TARGET=AVX2 measures the kernels of that vector target. Each line names the target and the processor.
//
// A round runs the library, the plain way and memcpy in turn. Ratios are computed within a round. Times and ratios are
// medians over the rounds.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <opencv2/core.hpp>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "support.h"
#include "support/heap_meter.h"
#include "support/vector_target.h"

namespace bench {
namespace {

std::string nameOf(const Comparison& comparison, int threads) {
    const Subject& subject = comparison.subject;
    return subject.function + (subject.variant.empty() ? "" : " " + subject.variant) + "/" +
           std::to_string(subject.size.width) + "x" + std::to_string(subject.size.height) +
           "/threads:" + std::to_string(threads);
}

// Short calls run once before timing starts, so that none depends on what the previous call has left in the caches.
double secondsOf(const Action& run, int repeats) {
    if (repeats > 1) run();
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < repeats; ++i) {
        run();
        benchmark::ClobberMemory();
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() / repeats;
}

// Enough calls that the resolution of the clock does not matter.
int repeatsOf(const Action& run) {
    constexpr double kRound = 0.004;
    constexpr double kMost = 10000;
    const double once = std::max(secondsOf(run, 2), 1e-9);
    return static_cast<int>(std::clamp(std::ceil(kRound / once), 1.0, kMost));
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

struct Figures {
    double ours = 0;
    double plain = 0;
    double ratio = 0;
    double copy = 0;
    double ratioToCopy = 0;
    HeapMeter::Use oursHeap;
    HeapMeter::Use plainHeap;
};

Figures measure(const Comparison& comparison, int rounds) {
    const Action copy = memcpyOf(comparison.subject);
    const std::array<Action, 3> runs = {comparison.ours, comparison.plain.run ? comparison.plain.run : copy, copy};
    std::array<std::vector<double>, 3> times;
    std::array<int, 3> repeats{};
    for (size_t i = 0; i < runs.size(); ++i) {
        runs[i]();
        repeats[i] = repeatsOf(runs[i]);
    }
    if (comparison.same && !comparison.same()) {
        std::fprintf(stderr, "%s: the results differ\n", nameOf(comparison, 1).c_str());
        std::exit(1);
    }
    for (int round = 0; round < rounds; ++round)
        for (size_t i = 0; i < runs.size(); ++i) times[i].push_back(secondsOf(runs[i], repeats[i]));

    std::array<std::vector<double>, 3> ratios;
    for (size_t i = 0; i < runs.size(); ++i)
        for (size_t round = 0; round < times[i].size(); ++round) ratios[i].push_back(times[0][round] / times[i][round]);
    // If memcpy is also the plain way, it is measured once.
    if (!comparison.plain.run) {
        times[1] = times[2];
        ratios[1] = ratios[2];
    }
    return {median(times[0]),  median(times[1]),       median(ratios[1]),     median(times[2]),
            median(ratios[2]), HeapMeter::of(runs[0]), HeapMeter::of(runs[1])};
}

// As the kernel names it.
std::string processorName() {
    std::ifstream in("/proc/cpuinfo");
    for (std::string line; std::getline(in, line);)
        if (line.rfind("model name", 0) == 0) return line.substr(line.find(':') + 2);
    return "unknown";
}

// The lines of the table, by name of comparison.
class Results {
public:
    explicit Results(std::string file) : file_(std::move(file)) {
        std::ifstream in(file_);
        std::string line;
        for (std::getline(in, line); std::getline(in, line);) lines_[line.substr(0, line.find('\t'))] = line;
    }

    void add(const Comparison& comparison, int threads, const Figures& figures) {
        const Subject& subject = comparison.subject;
        const std::string name = nameOf(comparison, threads);
        std::ostringstream line;
        line << name << '\t' << comparison.heading << '\t' << subject.function << '\t' << subject.variant << '\t'
             << subject.size.width << 'x' << subject.size.height << '\t' << threads << '\t' << subject.bytesRead << '\t'
             << subject.bytesWritten << '\t' << figures.ours << '\t' << comparison.plain.name << '\t' << figures.plain
             << '\t' << figures.ratio << '\t' << figures.copy << '\t' << figures.ratioToCopy << '\t'
             << figures.oursHeap.most << '\t' << figures.oursHeap.blocks << '\t' << figures.plainHeap.most << '\t'
             << figures.plainHeap.blocks;
        const Goal* goal = goalOf(subject);
        line << '\t' << (goal ? std::to_string(goal->ratio) : "") << '\t'
             << (goal && goal->beside == Goal::kMemcpy ? "memcpy" : "") << '\t' << vector_target::name() << '\t'
             << processor_;
        lines_[name] = line.str();
    }

    // In order of registration.
    bool write(const std::vector<int>& threadCounts) const {
        if (file_.empty()) return true;
        std::ofstream out(file_);
        out << "name\theading\tfunction\tvariant\tsize\tthreads\tread\twritten\tours\tplain_"
               "name\tplain\tratio\tmemcpy\t"
               "ratio_memcpy\theap\tblocks\tplain_heap\tplain_blocks\tgoal\tgoal_beside\ttarget\tprocessor\n";
        for (const Comparison& comparison : comparisons())
            for (const int threads : threadCounts) {
                const auto line = lines_.find(nameOf(comparison, threads));
                if (line != lines_.end()) out << line->second << '\n';
            }
        return static_cast<bool>(out);
    }

private:
    std::string file_;
    std::string processor_ = processorName();
    std::map<std::string, std::string> lines_;
};

void registerComparison(const Comparison& comparison, int threads, int rounds, Results& results) {
    const std::string name = nameOf(comparison, threads);
    benchmark::RegisterBenchmark(name.c_str(),
                                 [&comparison, &results, name, threads, rounds](benchmark::State& state) {
                                     cv::setNumThreads(threads);
                                     for (auto _ : state) {
                                         const Figures figures = measure(comparison, rounds);
                                         state.SetIterationTime(figures.ours);
                                         results.add(comparison, threads, figures);
                                         std::printf("| %s | %.4f | %s %.4f | %.2f | memcpy %.2f | %zu in %zu |\n",
                                                     name.c_str(), 1000 * figures.ours, comparison.plain.name.c_str(),
                                                     1000 * figures.plain, figures.ratio, figures.ratioToCopy,
                                                     figures.oursHeap.most, figures.oursHeap.blocks);
                                         std::fflush(stdout);
                                     }
                                 })
        ->Iterations(1)
        ->UseManualTime();
}

class Silent : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context& /*context*/) override { return true; }
    void ReportRuns(const std::vector<Run>& /*runs*/) override {}
};

// Removes --NAME=VALUE from the arguments and returns the value.
std::string takeOption(std::vector<char*>& arguments, const std::string& name, const std::string& otherwise) {
    const std::string prefix = "--" + name + "=";
    for (auto argument = arguments.begin(); argument != arguments.end(); ++argument)
        if (std::strncmp(*argument, prefix.c_str(), prefix.size()) == 0) {
            std::string value = *argument + prefix.size();
            arguments.erase(argument);
            return value;
        }
    return otherwise;
}

}    // namespace

int run(std::vector<char*> arguments) {
    if (const int end = vector_target::choose()) return end;
    Results results(takeOption(arguments, "results", ""));
    const int rounds = std::stoi(takeOption(arguments, "rounds", "9"));
    std::vector<int> threadCounts = {1};
    if (cv::getNumThreads() > 1) threadCounts.push_back(cv::getNumThreads());

    makeComparisons({kPage, kTile});
    for (const int threads : threadCounts)
        for (const Comparison& comparison : comparisons()) registerComparison(comparison, threads, rounds, results);

    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;
    std::printf("%s, kernels of %s\n", processorName().c_str(), vector_target::name().c_str());
    std::printf("| call | ours, ms | beside, ms | ratio | ratio | heap peak in blocks |\n|---|---|---|---|---|---|\n");
    Silent reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return results.write(threadCounts) ? 0 : 1;
}

}    // namespace bench

int main(int argc, char** argv) { return bench::run({argv, argv + argc}); }
