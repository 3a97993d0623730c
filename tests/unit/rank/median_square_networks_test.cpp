// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The merging networks of the square medians, for every distribution of black and white in a window.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "rank/median_square.h"
#include "support/random.h"

namespace {

constexpr int kLargestKernel = 9;    // larger masks use OpenCV

// All windows of m columns with any number of ones each, when the base is m + 1: a cyclic sequence that holds every
// tuple once (Fredricksen, Kessler and Maiorana).
void appendLyndonWords(int t, int p, int m, std::vector<uint8_t>& word, std::vector<uint8_t>& sequence) {
    const auto at = [&](int i) -> uint8_t& { return word[static_cast<size_t>(i)]; };
    if (t > m) {
        for (int i = 1; m % p == 0 && i <= p; ++i) sequence.push_back(at(i));
        return;
    }
    at(t) = at(t - p);
    appendLyndonWords(t + 1, p, m, word, sequence);
    for (int digit = at(t - p) + 1; digit <= m; ++digit) {
        at(t) = static_cast<uint8_t>(digit);
        appendLyndonWords(t + 1, t, m, word, sequence);
    }
}

// Filters two rows of black and white columns with these numbers of white pixels among the first m of m + 1, in random
// order. The median is white where white pixels are the majority.
void expectMajority(Random& random, int m, const std::vector<uint8_t>& whites) {
    const int columns = static_cast<int>(whites.size());
    const int width = columns - m + 1;
    std::vector<uint8_t> source(static_cast<size_t>(m + 1) * whites.size());
    const auto at = [&](int x, int y) -> uint8_t& {
        return source[static_cast<size_t>(y) * whites.size() + static_cast<size_t>(x)];
    };
    for (int x = 0; x < columns; ++x) {
        int white = whites[static_cast<size_t>(x)];
        for (int y = 0; y < m; ++y) {
            const bool take = static_cast<int>(random.byte()) * (m - y) < white * 256;
            at(x, y) = take ? 255 : 0;
            white -= take ? 1 : 0;
        }
        at(x, m) = random.byte() & 1U ? 255 : 0;
    }
    std::vector<uint8_t> result(2 * static_cast<size_t>(width));
    ASSERT_TRUE(opcv::hasSquareMedian(m));
    opcv::squareMedian(source.data(), columns, result.data(), width, width, 2, m, 1);
    for (int y = 0; y < 2; ++y) {
        int inWindow = 0;
        for (int x = 0; x < columns; ++x) {
            for (int j = 0; j < m; ++j) inWindow += (at(x, y + j) & 1) - (x >= m ? at(x - m, y + j) & 1 : 0);
            if (x < m - 1) continue;
            const int expected = inWindow > m * m / 2 ? 255 : 0;
            const size_t i = static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x - m + 1);
            ASSERT_EQ(expected, result[i]) << "row " << y << " window " << x - m + 1;
        }
    }
}

TEST(SquareMedianNetworks, AreCorrectForEveryWindowOfSortedColumns) {
    Random random(312);
    for (const int m : {3, 5, 7}) {
        std::vector<uint8_t> word(static_cast<size_t>(m) + 1, 0);
        std::vector<uint8_t> sequence;
        appendLyndonWords(1, 1, m, word, sequence);
        for (size_t i = 0; i + 1 < static_cast<size_t>(m); ++i) sequence.push_back(sequence[i]);
        ASSERT_NO_FATAL_FAILURE(expectMajority(random, m, sequence)) << m;
    }
}

TEST(SquareMedianNetworks, AreCorrectForWindowsThatAreNearlyEven) {
    Random random(313);
    for (int m = 3; m <= kLargestKernel; m += 2) {
        std::vector<uint8_t> whites;
        int inWindow = 0;
        for (size_t x = 0; x < 200000; ++x) {
            if (x >= static_cast<size_t>(m)) inWindow -= whites[x - static_cast<size_t>(m)];
            // Steers each window to within a few pixels of even.
            const int wanted = m * m / 2 - inWindow + random.between(-2, 3);
            const bool first = x + 1 < static_cast<size_t>(m);
            whites.push_back(static_cast<uint8_t>(first ? random.between(0, m) : std::clamp(wanted, 0, m)));
            inWindow += whites.back();
        }
        ASSERT_NO_FATAL_FAILURE(expectMajority(random, m, whites)) << m;
    }
}

}    // namespace
