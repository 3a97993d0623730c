// What is said about the pages: a line each on standard output, everything for people on standard error.
#pragma once

#include <mutex>

#include "page.h"
#include "progress.h"

class PageReport {
public:
    // `pages` is 0 if their number is not known.
    PageReport(size_t pages, bool verbose);

    // From any thread. Where standard output takes no more, the program is asked to stop.
    void add(const PageResult& result);

    // Counts, pages a second, a table of the stages, peak memory.
    void summarise();

    bool anyFailed() const { return failed_ > 0; }
    bool anyLineLost() const { return lineLost_; }

private:
    void print(const PageResult& result);
    void count(const PageResult& result);

    std::mutex mutex_;
    Progress progress_;
    bool verbose_;
    bool linesOnTerminal_;
    bool lineLost_ = false;
    size_t done_ = 0, kept_ = 0, failed_ = 0;
    double largest_ = 0;    // bytes of pixels
    std::vector<Stage> stages_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

// A file name on one line: backslash, tab, line feed and carriage return as \\, \t, \n and \r, other control
// characters as \x and two digits.
std::string escaped(const std::string& name);
