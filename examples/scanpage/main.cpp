// scanpage: reads scanned JPEG pages, straightens them and writes them as JPEG, PBM or TIFF.
#include <leptonica/allheaders.h>
#include <sys/resource.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <atomic>
#include <cstdio>
#include <iostream>
#include <map>
#include <mutex>
#include <thread>

#include "contact_sheet.h"
#include "filter.h"
#include "page.h"

namespace {

constexpr double kMegabyte = 1024.0 * 1024.0;

class Progress {
public:
    explicit Progress(size_t total) : total_(total), shown_(total > 1 && isatty(STDERR_FILENO) != 0) {}

    void add() {
        const std::lock_guard<std::mutex> lock(mutex_);
        ++done_;
        if (!shown_) return;
        constexpr size_t kWidth = 40;
        const size_t filled = kWidth * done_ / total_;
        std::cerr << "\r[" << std::string(filled, '=') << std::string(kWidth - filled, ' ') << "] " << done_ << "/"
                  << total_ << (done_ == total_ ? "\n" : "") << std::flush;
    }

private:
    std::mutex mutex_;
    size_t total_;
    size_t done_ = 0;
    bool shown_;
};

// The library may be called from any number of threads, so each page is one job of any thread.
std::vector<Report> processAll(const std::vector<std::string>& files, const Options& options, int jobs,
                               bool keepImages) {
    std::vector<Report> reports(files.size());
    std::atomic<size_t> next{0};
    Progress progress(files.size());
    const auto work = [&] {
        for (size_t i = next++; i < files.size(); i = next++) {
            reports[i] = processPage(files[i], options, keepImages);
            progress.add();
        }
    };
    std::vector<std::thread> threads;
    for (int i = 1; i < jobs; ++i) threads.emplace_back(work);
    work();
    for (std::thread& thread : threads) thread.join();
    return reports;
}

void printPages(const std::vector<Report>& reports) {
    for (const Report& r : reports) {
        if (!r.fault.empty()) {
            std::fprintf(stderr, "%s: skipped: %s\n", r.file.c_str(), r.fault.c_str());
            continue;
        }
        std::printf("%s: %d x %d, %d bits, %d x %d dpi, ", r.file.c_str(), r.width, r.height, r.depth, r.dpiX, r.dpiY);
        if (r.skewKnown)
            std::printf("skew %.2f degrees\n", r.skew);
        else
            std::printf("no text lines to tell the skew by\n");
    }
}

// Times and sizes, summed up over the pages.
void printStages(const std::vector<Report>& reports) {
    std::vector<Stage> total;
    for (const Report& r : reports)
        for (const Stage& stage : r.stages) {
            const auto it =
                std::find_if(total.begin(), total.end(), [&](const Stage& s) { return s.name == stage.name; });
            if (it == total.end()) {
                total.push_back(stage);
            } else {
                it->milliseconds += stage.milliseconds;
                it->bytes += stage.bytes;
            }
        }
    std::printf("\n%-16s %10s %12s\n", "stage", "ms", "result, MB");
    double sum = 0;
    for (const Stage& stage : total) {
        std::printf("%-16s %10.1f %12.2f\n", stage.name.c_str(), stage.milliseconds,
                    static_cast<double>(stage.bytes) / kMegabyte);
        sum += stage.milliseconds;
    }
    std::printf("%-16s %10.1f\n", "all", sum);
}

// Read after the pages and before the contact sheet, which needs memory of its own.
double peakMegabytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

void printPeak(double peak, const std::vector<Report>& reports) {
    double largest = 0;
    for (const Report& r : reports)
        largest = std::max(largest, static_cast<double>(r.width) * r.height * r.depth / 8 / kMegabyte);
    std::printf("peak memory %.1f MB", peak);
    if (largest > 0) std::printf(", %.1f times the pixels of the largest page", peak / largest);
    std::printf("\n");
}

int run(int argc, char** argv) {
    Options options;
    std::vector<std::string> files;
    std::vector<std::string> formats = {"jpeg"};
    std::string contactSheet;
    int jobs = 1;

    CLI::App app("Straightens scanned pages.", "scanpage");
    app.add_option("pages", files, "JPEG files")->required()->type_name("PAGE.jpg");
    app.add_option("-o,--output", options.directory, "Folder for the results")
        ->required()
        ->check(CLI::ExistingDirectory);
    auto* angle = app.add_option("--angle", options.angle,
                                 "Turn by this many degrees, counter-clockwise, instead of finding the skew");
    app.add_option("--denoise", options.denoise, "Reduce noise with this strength, 0 to 10")->check(CLI::Range(0, 10));
    app.add_option("--median", options.median,
                   "Median over 3 x 3 pixels: none, cross, weighted (centre counts 3 times), colour")
        ->transform(CLI::CheckedTransformer(std::map<std::string, Median>{{"none", Median::kNone},
                                                                          {"cross", Median::kCross},
                                                                          {"weighted", Median::kWeighted},
                                                                          {"colour", Median::kColour}}));
    app.add_option("--dpi", options.dpi, "Scale to this resolution")->check(CLI::Range(10, 4800));
    app.add_option("--format", formats, "Results to write: jpeg, pbm, g4 (TIFF, CCITT group 4)")
        ->check(CLI::IsMember({"jpeg", "pbm", "g4"}))
        ->delimiter(',')
        ->capture_default_str();
    app.add_option("--mode", options.mode, "JPEG quality by mode code")
        ->check(CLI::IsMember({0, 286, 389, 450, 788}))
        ->capture_default_str();
    app.add_option("--threshold", options.threshold,
                   "Largest grey value that is black at 1 bit; chosen by histogram if not given")
        ->check(CLI::Range(0, 255));
    app.add_option("--contact-sheet", contactSheet, "PNG with each page before and after")->type_name("OUT.png");
    app.add_option("--jobs", jobs, "Pages at once")->check(CLI::Range(1, 256))->capture_default_str();
    CLI11_PARSE(app, argc, argv);

    options.skewGiven = angle->count() > 0;
    const auto asked = [&](const char* format) {
        return std::find(formats.begin(), formats.end(), format) != formats.end();
    };
    options.jpeg = asked("jpeg");
    options.pbm = asked("pbm");
    options.g4 = asked("g4");

    setMsgSeverity(L_SEVERITY_NONE);    // Leptonica would report pages without text
    const std::vector<Report> reports = processAll(files, options, jobs, !contactSheet.empty());
    const double peak = peakMegabytes();
    printPages(reports);
    printStages(reports);
    printPeak(peak, reports);
    if (!contactSheet.empty()) writeContactSheet(reports, contactSheet);
    const bool allWell = std::all_of(reports.begin(), reports.end(), [](const Report& r) { return r.fault.empty(); });
    return allWell ? 0 : 1;
}

}    // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "scanpage: %s\n", e.what());
        return 2;
    }
}
