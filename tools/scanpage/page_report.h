// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The report on the pages: a line each on standard output, everything for people on standard error.
#pragma once

#include <map>
#include <mutex>

#include "page.h"
#include "progress.h"

// How much people are told. kQuiet: errors only.
enum class Talk { kQuiet, kUsual, kVerbose };

// What standard output gets: a line for each page, or for each file that would be written.
enum class Lines { kNone, kPages, kPlan };

// As the report has it.
const char* nameOf(Status status);

class PageReport {
public:
    // `pages` is 0 if their number is not known.
    PageReport(size_t pages, Talk talk, Lines lines);

    // From any thread. If standard output fails, the program is asked to stop.
    void add(const PageResult& result);

    // A file that would be written besides those of the pages.
    void plan(const std::string& path);

    // Prints counts and pages per second; if verbose, also a table of the stages and peak memory.
    void summarise();

    bool anyBad() const { return damaged_ + failed_ > 0; }
    size_t failed() const { return failed_; }
    bool anyLineLost() const { return lineLost_; }

private:
    void writeLines(const std::string& lines);
    void print(const PageResult& result);
    void count(const PageResult& result);
    void printCounts() const;
    void printStages() const;

    std::mutex mutex_;
    Progress progress_;
    Talk talk_;
    Lines lines_;
    bool linesOnTerminal_;
    bool lineLost_ = false;
    bool lineCut_ = false;
    size_t done_ = 0, kept_ = 0, damaged_ = 0, failed_ = 0;
    size_t worked_ = 0;                            // pages that were not kept
    std::map<std::string, size_t> withoutSkew_;    // pages by reason
    double largest_ = 0;                           // bytes of pixels
    std::vector<Stage> stages_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};
