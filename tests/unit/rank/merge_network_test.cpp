// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "rank/merge_network.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace {

// Networks of minimum and maximum are right for all values if they are right for zeros and ones.
template <class Network>
std::vector<int> run(const Network& network, std::vector<int> wires, int outputs) {
    for (int i = 0; i < network.size; ++i) {
        const auto& step = network.steps[i];
        int& low = wires.at(static_cast<size_t>(step.low));
        int& high = wires.at(static_cast<size_t>(step.high));
        const auto sorted = std::minmax({low, high});
        // Values that are not computed are poison.
        low = step.keepLow ? sorted.first : -1;
        high = step.keepHigh ? sorted.second : -1;
    }
    std::vector<int> result;
    result.reserve(static_cast<size_t>(outputs));
    for (int i = 0; i < outputs; ++i) result.push_back(wires.at(static_cast<size_t>(network.outputs[i])));
    return result;
}

template <int kCount>
void expectSorts() {
    constexpr auto network = opcv::sorter<kCount>();
    for (int pattern = 0; pattern < 1 << kCount; ++pattern) {
        std::vector<int> wires;
        wires.reserve(kCount);
        for (int i = 0; i < kCount; ++i) wires.push_back(pattern >> i & 1);
        std::vector<int> expected = wires;
        std::sort(expected.begin(), expected.end());
        ASSERT_EQ(run(network, wires, kCount), expected);
    }
}

template <int kA, int kB, int kFirst, int kCount>
void expectMerges() {
    constexpr auto network = opcv::merger<kA, kB, kFirst, kCount>();
    for (int onesA = 0; onesA <= kA; ++onesA)
        for (int onesB = 0; onesB <= kB; ++onesB) {
            std::vector<int> wires;
            wires.reserve(kA + kB);
            for (int i = 0; i < kA; ++i) wires.push_back(i >= kA - onesA);
            for (int i = 0; i < kB; ++i) wires.push_back(i >= kB - onesB);
            std::vector<int> expected = wires;
            std::sort(expected.begin(), expected.end());
            expected = {expected.begin() + kFirst, expected.begin() + kFirst + kCount};
            ASSERT_EQ(run(network, wires, kCount), expected) << onesA << " and " << onesB;
        }
}

TEST(MergeNetwork, Sorts) {
    expectSorts<1>();
    expectSorts<2>();
    expectSorts<3>();
    expectSorts<4>();
    expectSorts<5>();
    expectSorts<6>();
    expectSorts<7>();
    expectSorts<8>();
    expectSorts<10>();
    expectSorts<12>();
}

TEST(MergeNetwork, MergesListsOfAnyLength) {
    expectMerges<1, 1, 0, 2>();
    expectMerges<1, 4, 0, 5>();
    expectMerges<4, 1, 0, 5>();
    expectMerges<3, 3, 0, 6>();
    expectMerges<5, 5, 0, 10>();
    expectMerges<7, 6, 0, 13>();
    expectMerges<22, 14, 0, 36>();
    expectMerges<52, 52, 0, 104>();
}

TEST(MergeNetwork, KeepsTheWantedRanks) {
    expectMerges<3, 3, 1, 4>();
    expectMerges<10, 10, 7, 6>();
    expectMerges<14, 14, 3, 22>();
    expectMerges<22, 14, 14, 8>();
    expectMerges<36, 36, 31, 10>();
    expectMerges<9, 4, 12, 1>();
    expectMerges<9, 4, 0, 1>();
}

TEST(MergeNetwork, LeavesOutWhatTheWantedRanksDoNotNeed) {
    constexpr auto all = opcv::merger<8, 8, 0, 16>();
    constexpr auto least = opcv::merger<8, 8, 0, 1>();
    EXPECT_EQ(all.size, 25);    // Batcher's count for two lists of eight
    EXPECT_EQ(least.size, 1);
    EXPECT_TRUE(least.steps[0].keepLow);
    EXPECT_FALSE(least.steps[0].keepHigh);
}

// A value of a sorted subset can be the median if and only if some values for the rest of the window make it so.
TEST(MergeNetwork, KnowsWhichRanksCanBeTheMedian) {
    const auto expectRanks = [](int m, int subset, int first, int count) {
        const int rest = m * m - subset;
        for (int rank = 0; rank < subset; ++rank) {
            bool possible = false;
            for (int below = 0; below <= rest; ++below) possible = possible || rank + below == m * m / 2;
            EXPECT_EQ(possible, rank >= first && rank < first + count) << m << ": " << rank << " of " << subset;
        }
    };
    using opcv::MedianRanks;
    expectRanks(3, 6, MedianRanks<3, 6>::kFirst, MedianRanks<3, 6>::kCount);
    expectRanks(5, 5, MedianRanks<5, 5>::kFirst, MedianRanks<5, 5>::kCount);
    expectRanks(5, 20, MedianRanks<5, 20>::kFirst, MedianRanks<5, 20>::kCount);
    expectRanks(7, 28, MedianRanks<7, 28>::kFirst, MedianRanks<7, 28>::kCount);
    expectRanks(7, 42, MedianRanks<7, 42>::kFirst, MedianRanks<7, 42>::kCount);
    expectRanks(9, 72, MedianRanks<9, 72>::kFirst, MedianRanks<9, 72>::kCount);
}

}    // namespace
