// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "page_report.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>

#include "descriptor.h"
#include "escape.h"
#include "stop.h"

const char* nameOf(Status status) {
    switch (status) {
        case Status::kDone: return "done";
        case Status::kKept: return "kept";
        case Status::kDamaged: return "damaged";
        case Status::kFailed: break;
    }
    return "failed";
}

namespace {

constexpr double kMegabyte = 1024.0 * 1024.0;

std::string number(const char* format, double value) {
    char text[64];
    std::snprintf(text, sizeof(text), format, value);
    return text;
}

// file, status, angle, milliseconds, bytes, confidence, reason, blank
std::string lineOf(const PageResult& r) {
    return escaped(r.file) + '\t' + nameOf(r.status) + '\t' + (r.skew.known ? number("%.2f", r.skew.angle) : "-") +
           '\t' + number("%.1f", r.milliseconds) + '\t' + std::to_string(r.bytes) + '\t' +
           (r.skew.confidence > 0 ? number("%.2f", r.skew.confidence) : "-") + '\t' +
           (r.skew.reason.empty() ? "-" : r.skew.reason) + '\t' + (r.blank >= 0 ? number("%.2f", r.blank) : "-") + '\n';
}

std::string planOf(const std::vector<std::string>& paths) {
    std::string lines;
    for (const std::string& path : paths) lines += escaped(path) + '\n';
    return lines;
}

// Writes all of the text, in one piece if the system takes it so. Returns how much it took.
size_t writeText(int stream, const std::string& text) {
    size_t written = 0;
    while (written < text.size()) {
        const ssize_t count = write(stream, text.data() + written, text.size() - written);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        written += static_cast<size_t>(count);
    }
    return written;
}

// Lines are added to the end of a report in a file. If a crash has cut the last line there, it is ended first.
void beginOnFreshLine() {
    struct stat status {};
    if (fstat(STDOUT_FILENO, &status) != 0 || !S_ISREG(status.st_mode)) return;
    fcntl(STDOUT_FILENO, F_SETFL, fcntl(STDOUT_FILENO, F_GETFL) | O_APPEND);
    const Descriptor report(open("/proc/self/fd/1", O_RDONLY | O_CLOEXEC));
    char last = '\n';
    if (report.isOpen() && pread(report.get(), &last, 1, status.st_size - 1) == 1 && last != '\n')
        writeText(STDOUT_FILENO, "\n");
}

}    // namespace

PageReport::PageReport(size_t pages, Talk talk, Lines lines)
    : progress_(pages, talk != Talk::kQuiet),
      talk_(talk),
      lines_(lines),
      linesOnTerminal_(lines != Lines::kNone && isatty(STDOUT_FILENO) != 0) {
    if (lines_ == Lines::kPages) beginOnFreshLine();
}

void PageReport::add(const PageResult& result) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (linesOnTerminal_ || talk_ == Talk::kVerbose || !result.fault.empty()) progress_.clear();
    if (lines_ == Lines::kPages) writeLines(lineOf(result));
    if (lines_ == Lines::kPlan) writeLines(planOf(result.planned));
    print(result);
    count(result);
    progress_.show(done_ + kept_ + damaged_ + failed_, worked_);
}

void PageReport::plan(const std::string& path) { writeLines(planOf({path})); }

void PageReport::writeLines(const std::string& lines) {
    const std::string line = (lineCut_ ? "\n" : "") + lines;
    const size_t written = writeText(STDOUT_FILENO, line);
    lineCut_ = written < line.size() && (written > 0 || lineCut_);
    if (written == line.size()) return;
    lineLost_ = true;
    requestStop();
}

void PageReport::print(const PageResult& r) {
    const std::string file = escaped(r.file);
    if (!r.fault.empty()) std::fprintf(stderr, "scanpage: %s: %s\n", file.c_str(), escaped(r.fault).c_str());
    if (talk_ != Talk::kVerbose || r.status == Status::kFailed) return;
    if (lines_ == Lines::kPlan && r.status == Status::kDone) return;
    if (r.stages.empty()) {
        std::fprintf(stderr, "%s: its results are complete\n", file.c_str());
        return;
    }
    std::fprintf(
        stderr, "%s: %d x %d, %d bits, %d x %d dpi, %s\n", file.c_str(), r.width, r.height, r.depth, r.dpiX, r.dpiY,
        (r.skew.known ? number("skew %.2f degrees", r.skew.angle) : "no skew found: " + r.skew.reason).c_str());
}

void PageReport::count(const PageResult& r) {
    switch (r.status) {
        case Status::kDone: ++done_; break;
        case Status::kKept: ++kept_; break;
        case Status::kDamaged: ++damaged_; break;
        case Status::kFailed: ++failed_; break;
    }
    if (!r.stages.empty() || r.status == Status::kFailed) ++worked_;
    if (!r.skew.reason.empty()) ++withoutSkew_[r.skew.reason];
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
    if (talk_ == Talk::kQuiet) return;
    printCounts();
    if (talk_ == Talk::kVerbose && worked_ > 0) printStages();
}

void PageReport::printCounts() const {
    const std::string damaged = damaged_ > 0 ? std::to_string(damaged_) + " damaged, " : "";
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
    std::fprintf(stderr, "%zu %s, %zu kept, %s%zu failed in %.1f s: %.1f pages/s\n", done_,
                 lines_ == Lines::kPlan ? "would be done" : "done", kept_, damaged.c_str(), failed_, seconds,
                 static_cast<double>(worked_) / std::max(seconds, 1e-9));
    if (withoutSkew_.empty()) return;
    size_t pages = 0;
    std::string reasons;
    for (const auto& [reason, count] : withoutSkew_) {
        reasons += (pages > 0 ? ", " : "") + std::to_string(count) + ' ' + reason;
        pages += count;
    }
    std::fprintf(stderr, "no skew found on %zu (%s): field 7 of the report or -v shows which\n", pages,
                 reasons.c_str());
}

void PageReport::printStages() const {
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
