// A bar on a terminal: how far the pages are, how fast they come and how long the rest will take.
#pragma once

#include <chrono>
#include <cstddef>

// Shown only if standard error is a terminal. Not for several threads at once.
class Progress {
public:
    explicit Progress(size_t total);    // 0: not known

    // `done` pages are behind us, `worked` of them since the start. Draws a few times a second, and at once after a line
    // of text.
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
