// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// A progress bar on a terminal: pages done, speed and remaining time.
#pragma once

#include <chrono>
#include <cstddef>

// Shown only if standard error is a terminal and it is wanted. Not for several threads at once.
class Progress {
public:
    Progress(size_t total, bool wanted);    // of 0 pages: unknown

    // `done` pages are complete, `worked` of them in this run. Draws a few times per second, and immediately after a
    // line of text.
    void show(size_t done, size_t worked);

    // Makes room for a line of text.
    void clear();

private:
    using Clock = std::chrono::steady_clock;

    size_t total_;
    bool shown_;
    bool drawn_ = false;
    Clock::time_point start_ = Clock::now();
    Clock::time_point next_ = start_;
};
