#include "support.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <opencv2/core.hpp>
#include <tuple>

#include "support/random.h"

namespace bench {
namespace {

// Dark strokes on light paper with a slow shade and noise of a few levels.
void drawPage(std::vector<uint8_t>& bytes, int step, int pixelSize) {
    Random random(7);
    for (size_t i = 0; i < bytes.size(); ++i) {
        const int x = static_cast<int>(i % static_cast<size_t>(step)) / pixelSize;
        const int y = static_cast<int>(i / static_cast<size_t>(step));
        const bool ink =
            y % 48 < 30 && x % 24 < 15 && (x / 24 * 7 + y / 48 * 13) % 5 != 0 && (x % 24 < 4 || y % 12 < 4);
        bytes[i] = static_cast<uint8_t>((ink ? 40 : 225) + x / 200 + random.byte() % 12);
    }
}

std::vector<std::string>& order() {
    static std::vector<std::string> names;
    return names;
}

// Collects the time of every repetition and prints medians and ratios at the end.
class RatioReporter : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs)
            if (run.run_type == Run::RT_Iteration)
                times_[run.run_name.function_name].push_back(run.GetAdjustedRealTime());
    }

    void Finalize() override {
        std::printf("| operation | ours, ms | beside | its ms | ratio ours / it |\n|---|---|---|---|---|\n");
        for (const std::string& name : order()) {
            const std::string prefix = name.substr(0, name.rfind('/'));
            const std::string contender = name.substr(name.rfind('/') + 1);
            const double ours = median(prefix + "/ours");
            const double other = median(name);
            if (contender == "ours" || ours <= 0 || other <= 0) continue;
            std::printf("| %s | %.3f | %s | %.3f | %.2f |\n", prefix.c_str(), ours, contender.c_str(), other,
                        ours / other);
        }
    }

private:
    double median(const std::string& name) {
        std::vector<double>& t = times_[name];
        if (t.empty()) return 0;
        std::sort(t.begin(), t.end());
        return t[t.size() / 2];
    }

    std::map<std::string, std::vector<double>> times_;
};

Page& pageOf(int which, IppiSize size, int pixelSize) {
    static std::map<std::tuple<int, int, int, int>, std::unique_ptr<Page>> pages;
    auto& page = pages[{which, size.width, size.height, pixelSize}];
    if (!page) page = std::make_unique<Page>(size, pixelSize);
    return *page;
}

// Made only once the thread count is set, as comparisons run what they compare.
std::vector<void (*)()>& registrations() {
    static std::vector<void (*)()> all;
    return all;
}

void add(const std::string& name, const std::function<void()>& run) {
    order().push_back(name);
    benchmark::RegisterBenchmark(name.c_str(),
                                 [run](benchmark::State& state) {
                                     for (auto _ : state) {
                                         run();
                                         benchmark::ClobberMemory();
                                     }
                                 })
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Repetitions(9)
        ->MinTime(0.02);
}

}    // namespace

Page::Page(IppiSize size, int pixelSize)
    : size_(size),
      pixelSize_(pixelSize),
      step_((size.width + 2 * kMargin) * pixelSize),
      bytes_(static_cast<size_t>(step_) * static_cast<size_t>(size.height + 2 * kMargin)) {
    drawPage(bytes_, step_, pixelSize);
}

bool Page::sameRegion(const Page& other) const {
    for (int y = 0; y < size_.height; ++y)
        if (std::memcmp(data() + ptrdiff_t{y} * step_, other.data() + ptrdiff_t{y} * other.step_,
                        static_cast<size_t>(size_.width) * static_cast<size_t>(pixelSize_)) != 0)
            return false;
    return true;
}

const Page& source(IppiSize size, int pixelSize) { return pageOf(0, size, pixelSize); }
Page& target(IppiSize size, int pixelSize) { return pageOf(1, size, pixelSize); }
Page& otherTarget(IppiSize size, int pixelSize) { return pageOf(2, size, pixelSize); }

void compare(const std::string& name, const std::function<void()>& ours, const std::vector<Contender>& others,
             const std::function<bool()>& verify) {
    ours();
    for (const Contender& other : others) other.run();
    if (verify && !verify()) {
        std::fprintf(stderr, "%s: the results differ\n", name.c_str());
        std::exit(1);
    }
    add(name + "/ours", ours);
    for (const Contender& other : others) add(name + "/" + other.name, other.run);
}

Contender memcpyOf(size_t bytesReadAndWritten) {
    static std::vector<uint8_t> from;
    static std::vector<uint8_t> to;
    const size_t half = bytesReadAndWritten / 2;
    if (from.size() < half) {
        from.resize(half, 1);
        to.resize(half);
    }
    return {"memcpy", [half] {
                std::memcpy(to.data(), from.data(), half);
                benchmark::DoNotOptimize(to.data());
            }};
}

Registration::Registration(void (*makeComparisons)()) { registrations().push_back(makeComparisons); }

std::string withSize(const std::string& name, IppiSize size) {
    return name + " " + std::to_string(size.width) + "x" + std::to_string(size.height);
}

void makeAllComparisons() {
    for (auto* make : registrations()) make();
}

}    // namespace bench

int main(int argc, char** argv) {
    const char* threads = std::getenv("OPCV_DLIB_BENCH_THREADS");
    cv::setNumThreads(threads ? std::stoi(threads) : 1);
    bench::makeAllComparisons();

    std::vector<char*> arguments(argv, argv + argc);
    char interleave[] = "--benchmark_enable_random_interleaving=true";
    arguments.insert(arguments.begin() + 1, interleave);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return 0;
}
