// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Measures every registered comparison and writes a table of tab-separated lines, one per comparison and number of
// threads. Lines of an earlier run that are not measured again are kept, so that a table can be measured in parts:
//
//     opcv_dlib_bench [--results=FILE] [--passes=N] [--sizes=WIDTHxHEIGHT,...] [options of Google Benchmark]
//
// With --sizes, only the first comparison of each heading is measured, in one thread and on images of these sizes.
//
// N passes run through the table (6 by default; half as many with several threads), then up to three times as many over
// the comparisons in one thread that have found too few quiet moments.
//
// The kernels of the widest vector target are measured, and in one thread those of the next narrower in the same rounds;
// with OPCV_DLIB_TEST_TARGET=AVX2 those of that target only. Each line names the targets and the processor.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <memory>
#include <opencv2/core.hpp>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "measurement.h"
#include "support.h"
#include "support/vector_target.h"

namespace bench {
namespace {

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

    void add(const Measurement& measurement) {
        const Comparison& comparison = measurement.comparison();
        const Subject& subject = comparison.subject;
        const Figures figures = measurement.figures();
        std::ostringstream line;
        line << measurement.name() << '\t' << comparison.heading << '\t' << subject.function << '\t' << subject.variant
             << '\t' << subject.size.width << 'x' << subject.size.height << '\t' << measurement.threads() << '\t'
             << subject.bytesRead << '\t' << subject.bytesWritten << '\t' << figures.ours << '\t'
             << comparison.plain.name << '\t' << figures.plain << '\t' << figures.ours / figures.plain << '\t'
             << figures.copy << '\t' << figures.ours / figures.copy << '\t' << figures.spread << '\t'
             << figures.ratioSpread << '\t' << figures.quietRounds << '\t' << Measurement::fastestReference() << '\t'
             << figures.oursHeap.most << '\t' << figures.oursHeap.blocks << '\t' << figures.plainHeap.most << '\t'
             << figures.plainHeap.blocks;
        const Goal* goal = goalOf(subject);
        line << '\t' << (goal ? std::to_string(goal->ratio) : "") << '\t'
             << (goal && goal->beside == Goal::kMemcpy ? "memcpy" : "") << '\t' << Measurement::target() << '\t'
             << Measurement::narrowerTarget() << '\t' << figures.narrower << '\t' << processor_;
        lines_[measurement.name()] = line.str();
    }

    bool write(const std::vector<std::unique_ptr<Measurement>>& inOrder) const {
        if (file_.empty()) return true;
        std::ofstream out(file_);
        out << "name\theading\tfunction\tvariant\tsize\tthreads\tread\twritten\tours\tplain_name\tplain\tratio\t"
               "memcpy\tratio_memcpy\tspread\tratio_spread\tquiet_rounds\treference\theap\tblocks\tplain_heap\tplain_"
               "blocks\tgoal\t"
               "goal_beside\ttarget\tnarrower_target\tnarrower\tprocessor\n";
        for (const auto& measurement : inOrder) {
            const auto line = lines_.find(measurement->name());
            if (line != lines_.end()) out << line->second << '\n';
        }
        return static_cast<bool>(out);
    }

private:
    std::string file_;
    std::string processor_ = processorName();
    std::map<std::string, std::string> lines_;
};

void printHead() {
    std::printf("%s, kernels of %s\n", processorName().c_str(), Measurement::target().c_str());
    const std::string& narrower = Measurement::narrowerTarget();
    std::printf(
        "| call | ours, ms | plain is | plain, ms | ratio | / memcpy | / %s | spread | spread of ratio | quiet rounds "
        "|\n|---|---|---|---|---|---|---|---|---|---|\n",
        narrower.empty() ? "narrower" : narrower.c_str());
}

void print(const Measurement& measurement) {
    const Figures figures = measurement.figures();
    const auto quotient = [&figures](double by) { return by > 0 ? figures.ours / by : 0; };
    std::printf("| %s | %.4f | %s | %.4f | %.2f | %.2f | %.2f | %.1f %% | %.1f %% | %d |\n", measurement.name().c_str(),
                1000 * figures.ours, measurement.comparison().plain.name.c_str(), 1000 * figures.plain,
                quotient(figures.plain), quotient(figures.copy), quotient(figures.narrower), 100 * figures.spread,
                100 * figures.ratioSpread, figures.quietRounds);
}

constexpr int kExtra = 3;    // times the number of passes

struct Pass {
    int number = 0;
    bool isExtra = false;

    bool includes(const Measurement& measurement) const {
        if (measurement.threads() > 1) return !isExtra && number % 2 == 0;
        return !isExtra || !measurement.isSettled();
    }
};

// One run of the registered benchmarks is one pass.
void registerMeasurement(Measurement& measurement, const Pass& pass) {
    benchmark::RegisterBenchmark(measurement.name().c_str(), [&measurement, &pass](benchmark::State& state) {
        for (auto _ : state)
            if (pass.includes(measurement)) measurement.addPass();
    })->Iterations(1);
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

// Of "WIDTHxHEIGHT,WIDTHxHEIGHT".
std::vector<IppiSize> parseSizes(const std::string& text) {
    std::vector<IppiSize> sizes;
    std::istringstream in(text);
    IppiSize size{};
    char by = 0;
    while (in >> size.width >> by >> size.height) {
        sizes.push_back(size);
        in >> by;
    }
    return sizes;
}

// One for each heading and size.
bool isFirst(const Comparison& comparison) {
    const auto& all = comparisons();
    const auto first = std::find_if(all.begin(), all.end(), [&comparison](const Comparison& other) {
        return other.heading == comparison.heading && other.subject.size.width == comparison.subject.size.width;
    });
    return &*first == &comparison;
}

}    // namespace

int run(std::vector<char*> arguments) {
    if (const int end = vector_target::choose()) return end;
    Measurement::chooseTargets();
    Results results(takeOption(arguments, "results", ""));
    const int passes = std::stoi(takeOption(arguments, "passes", "6"));
    const std::vector<IppiSize> chosenSizes = parseSizes(takeOption(arguments, "sizes", ""));
    const bool bySize = !chosenSizes.empty();
    std::vector<int> threadCounts = {1};
    if (cv::getNumThreads() > 1 && !bySize) threadCounts.push_back(cv::getNumThreads());

    makeComparisons(bySize ? chosenSizes : std::vector<IppiSize>{kPage, kTile});
    std::vector<std::unique_ptr<Measurement>> measurements;
    for (const Comparison& comparison : comparisons()) {
        if (bySize && !isFirst(comparison)) continue;
        for (const int threads : threadCounts)
            measurements.push_back(std::make_unique<Measurement>(comparison, threads));
    }
    Pass pass;
    for (const auto& measurement : measurements) registerMeasurement(*measurement, pass);

    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;
    Silent reporter;
    const auto anyMeasured = [&measurements] {
        return std::any_of(measurements.begin(), measurements.end(),
                           [](const auto& measurement) { return measurement->isMeasured(); });
    };
    do {
        pass.isExtra = pass.number >= passes;
        benchmark::RunSpecifiedBenchmarks(&reporter);
        if (!anyMeasured()) return 0;    // the names were listed, or none matches
    } while (++pass.number < (1 + kExtra) * passes);

    printHead();
    for (const auto& measurement : measurements) {
        if (!measurement->isMeasured()) continue;
        print(*measurement);
        results.add(*measurement);
    }
    return results.write(measurements) ? 0 : 1;
}

}    // namespace bench

int main(int argc, char** argv) { return bench::run({argv, argv + argc}); }
