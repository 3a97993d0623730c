// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Calls every function with images that end at an inaccessible page, and with images that begin after one. It must read
// only its documented margin and write only its output. Input buffers are in read-only pages. The row padding differs
// between the two calls and must not affect the result.
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <cstring>

#include "catalogue/catalogue.h"

namespace {

constexpr int kWidest = 300;

// Emulation and instrumentation are slow: they run one shape for each width, and under emulation only one in seven of
// the wider images.
#if defined(__aarch64__) || defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int kVariantsPerWidth = 1;
#else
constexpr int kVariantsPerWidth = 8;
#endif
#if defined(__aarch64__)
constexpr int kEveryWidthUpTo = 130;
#else
constexpr int kEveryWidthUpTo = kWidest;
#endif

int widthAfter(int width) { return width < kEveryWidthUpTo ? width + 1 : width + 7; }

// Prints the case that has accessed an inaccessible page.
class Announcement {
public:
    Announcement() {
        struct sigaction action {};
        action.sa_handler = report;
        action.sa_flags = static_cast<int>(SA_RESETHAND);
        sigaction(SIGSEGV, &action, &before_);
    }
    Announcement(const Announcement&) = delete;
    Announcement& operator=(const Announcement&) = delete;
    ~Announcement() { sigaction(SIGSEGV, &before_, nullptr); }

    void say(const Entry& entry, const Case::Setting& setting, const char* fence) {
        std::snprintf(text_.data(), text_.size(), "%s, variant %d, %d x %d, fence %s\n", entry.name.c_str(),
                      setting.variant, setting.size.width, setting.size.height, fence);
    }
    static std::string text() { return text_.data(); }

private:
    static void report(int /*signal*/) {
        const auto written = write(STDERR_FILENO, text_.data(), std::strlen(text_.data()));
        static_cast<void>(written);
    }

    static std::array<char, 200> text_;
    struct sigaction before_ {};
};

std::array<char, 200> Announcement::text_{};

Bytes outputBetweenFences(const Entry& entry, const Case::Setting& setting, Fenced& memory) {
    memory.reuse();
    Case c(setting, memory);
    entry.prepare(c);
    c.restore();
    EXPECT_EQ(c.run(), 0) << Announcement::text();
    EXPECT_EQ(c.strayWrites(), "") << Announcement::text();
    return c.takeOutput();
}

void expectBoundsKept(const Entry& entry, Announcement& announcement) {
    Fenced endAtFence(FencedMemory::Fence::kBehind);
    Fenced beginAtFence(FencedMemory::Fence::kInFront);
    // The variants take turns over the widths.
    int variant = 0;
    for (int width = 1; width <= kWidest; width = widthAfter(width))
        for (int i = 0; i < std::min(entry.variants, kVariantsPerWidth); ++i) {
            variant = (variant + 1) % entry.variants;
            Case::Setting setting;
            setting.variant = variant;
            setting.seed = static_cast<unsigned>(width);
            setting.size = {width, 1 + (width + variant) % 4};
            announcement.say(entry, setting, "behind");
            const Bytes behind = outputBetweenFences(entry, setting, endAtFence);
            setting.otherPadding = true;
            announcement.say(entry, setting, "in front");
            ASSERT_EQ(outputBetweenFences(entry, setting, beginAtFence), behind) << Announcement::text();
        }
}

TEST(Bounds, NoByteTooManyIsReadOrWritten) {
    Announcement announcement;
    for (const Entry& entry : catalogue()) expectBoundsKept(entry, announcement);
}

}    // namespace
