#include "page_report.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "stop.h"

namespace {

constexpr double kMegabyte = 1024.0 * 1024.0;

const char* nameOf(Status status) {
    switch (status) {
        case Status::kDone: return "done";
        case Status::kKept: return "kept";
        case Status::kFailed: break;
    }
    return "failed";
}

std::string number(const char* format, double value) {
    char text[64];
    std::snprintf(text, sizeof(text), format, value);
    return text;
}

// file, status, skew, milliseconds, bytes
std::string lineOf(const PageResult& r) {
    return escaped(r.file) + '\t' + nameOf(r.status) + '\t' + (r.skewKnown ? number("%.2f", r.skew) : "-") + '\t' +
           number("%.1f", r.milliseconds) + '\t' + std::to_string(r.bytes) + '\n';
}

}    // namespace

std::string escaped(const std::string& name) {
    std::string text;
    for (const char c : name) {
        const auto code = static_cast<unsigned char>(c);
        if (c == '\\')
            text += "\\\\";
        else if (c == '\t')
            text += "\\t";
        else if (c == '\n')
            text += "\\n";
        else if (c == '\r')
            text += "\\r";
        else if (code < 0x20 || code == 0x7F)
            text += "\\x" + std::string(1, "0123456789abcdef"[code >> 4]) + "0123456789abcdef"[code & 15];
        else
            text += c;
    }
    return text;
}

PageReport::PageReport(size_t pages, bool verbose)
    : progress_(pages), verbose_(verbose), linesOnTerminal_(isatty(STDOUT_FILENO) != 0) {}

void PageReport::add(const PageResult& result) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (linesOnTerminal_ || verbose_ || result.status == Status::kFailed) progress_.clear();
    print(result);
    count(result);
    progress_.show(done_ + kept_ + failed_, done_ + failed_);
}

// Each line leaves in one piece, so that a log holds whole lines whatever happens to the program.
void PageReport::print(const PageResult& r) {
    const std::string line = lineOf(r);
    if (std::fwrite(line.data(), 1, line.size(), stdout) != line.size() || std::fflush(stdout) != 0) {
        lineLost_ = true;
        requestStop();
    }
    if (r.status == Status::kFailed) {
        std::fprintf(stderr, "scanpage: %s: %s\n", escaped(r.file).c_str(), escaped(r.fault).c_str());
    } else if (verbose_ && r.status == Status::kKept) {
        std::fprintf(stderr, "%s: its results are there\n", escaped(r.file).c_str());
    } else if (verbose_) {
        std::fprintf(stderr, "%s: %d x %d, %d bits, %d x %d dpi, %s\n", escaped(r.file).c_str(), r.width, r.height,
                     r.depth, r.dpiX, r.dpiY,
                     r.skewKnown ? number("skew %.2f degrees", r.skew).c_str() : "no text lines to tell the skew by");
    }
}

void PageReport::count(const PageResult& r) {
    ++(r.status == Status::kDone ? done_ : r.status == Status::kKept ? kept_ : failed_);
    largest_ = std::max(largest_, static_cast<double>(r.width) * r.height * r.depth / 8);
    for (const Stage& stage : r.stages) {
        const auto it =
            std::find_if(stages_.begin(), stages_.end(), [&](const Stage& s) { return s.name == stage.name; });
        if (it == stages_.end()) {
            stages_.push_back(stage);
        } else {
            it->milliseconds += stage.milliseconds;
            it->bytes += stage.bytes;
        }
    }
}

void PageReport::summarise() {
    progress_.clear();
    if (lineLost_) std::fputs("scanpage: standard output cannot be written\n", stderr);
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
    std::fprintf(stderr, "%zu done, %zu kept, %zu failed in %.1f s: %.1f pages/s\n", done_, kept_, failed_, seconds,
                 static_cast<double>(done_ + failed_) / std::max(seconds, 1e-9));
    if (done_ + failed_ == 0) return;
    std::fprintf(stderr, "\n%-16s %12s %12s\n", "stage", "ms", "result, MB");
    double sum = 0;
    for (const Stage& stage : stages_) {
        std::fprintf(stderr, "%-16s %12.1f %12.2f\n", stage.name.c_str(), stage.milliseconds,
                     static_cast<double>(stage.bytes) / kMegabyte);
        sum += stage.milliseconds;
    }
    std::fprintf(stderr, "%-16s %12.1f\n", "all", sum);
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const double peak = static_cast<double>(usage.ru_maxrss) * 1024.0;
    std::fprintf(stderr, "peak memory %.1f MB", peak / kMegabyte);
    if (largest_ > 0) std::fprintf(stderr, ", %.1f times the pixels of the largest page", peak / largest_);
    std::fputc('\n', stderr);
}
