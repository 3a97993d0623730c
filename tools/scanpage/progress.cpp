// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "progress.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

Progress::Progress(size_t total, bool wanted)
    : total_(total), shown_(wanted && total != 1 && isatty(STDERR_FILENO) != 0) {}

void Progress::show(size_t done, size_t worked) {
    constexpr size_t kWidth = 30;
    constexpr auto kPause = std::chrono::milliseconds(100);
    const Clock::time_point now = Clock::now();
    if (!shown_ || (drawn_ && now < next_ && done != total_)) return;
    next_ = now + kPause;
    drawn_ = true;

    const double rate =
        static_cast<double>(worked) / std::max(std::chrono::duration<double>(now - start_).count(), 1e-9);
    if (total_ == 0) {
        std::fprintf(stderr, "\r%zu pages, %.1f pages/s\033[K", done, rate);
        return;
    }
    const size_t filled = std::min(kWidth, kWidth * done / total_);
    const std::string bar = std::string(filled, '=') + std::string(kWidth - filled, ' ');
    std::fprintf(stderr, "\r[%s] %zu/%zu, %.1f pages/s", bar.c_str(), done, total_, rate);
    if (rate > 0) {
        const auto left = std::lround(static_cast<double>(total_ - std::min(done, total_)) / rate);
        std::fprintf(stderr, ", %ld:%02ld:%02ld left", left / 3600, left / 60 % 60, left % 60);
    }
    std::fputs("\033[K", stderr);
}

void Progress::clear() {
    if (drawn_) std::fputs("\r\033[K", stderr);
    drawn_ = false;
}
