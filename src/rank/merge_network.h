// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Networks of comparators that sort, and that merge two sorted lists, generated at compile time by Batcher's odd-even
// merge (Knuth, The Art of Computer Programming, 5.3.4). Comparators that no wanted output depends on are removed.
#pragma once

#include <algorithm>

namespace opcv {

// Puts the smaller of two wires on `low` and the larger on `high`; a result that is not used is not computed.
struct Comparator {
    int low;
    int high;
    bool keepLow;
    bool keepHigh;
};

// Wires in the order of their values.
template <int kCapacity>
struct Wires {
    constexpr void add(int wire) { of[count++] = wire; }

    // Every second wire, from the first or second one on.
    constexpr Wires every2nd(int first) const {
        Wires some;
        for (int i = first; i < count; i += 2) some.add(of[i]);
        return some;
    }

    int of[kCapacity] = {};
    int count = 0;
};

template <int kWires>
class Network {
public:
    using List = Wires<kWires>;

    constexpr List sort(int first, int count) {
        List list;
        if (count == 1) {
            list.add(first);
            return list;
        }
        return merge(sort(first, count / 2), sort(first + count / 2, count - count / 2));
    }

    constexpr List merge(const List& a, const List& b) {
        if (a.count == 0) return b;
        if (b.count == 0) return a;
        List merged;
        if (a.count == 1 && b.count == 1) {
            compare(a.of[0], b.of[0]);
            merged.add(a.of[0]);
            merged.add(b.of[0]);
            return merged;
        }
        const List odd = merge(a.every2nd(0), b.every2nd(0));
        const List even = merge(a.every2nd(1), b.every2nd(1));
        merged.add(odd.of[0]);
        for (int i = 1; i < odd.count || i <= even.count; ++i) {
            const bool pair = i < odd.count && i <= even.count;
            if (pair) compare(even.of[i - 1], odd.of[i]);
            if (i <= even.count) merged.add(even.of[i - 1]);
            if (i < odd.count) merged.add(odd.of[i]);
        }
        return merged;
    }

    // Keeps `count` outputs starting at rank `first`, and the comparators they depend on.
    constexpr void select(const List& sorted, int first, int count) {
        bool needed[kWires] = {};
        for (int i = 0; i < count; ++i) {
            outputs[i] = sorted.of[first + i];
            needed[outputs[i]] = true;
        }
        int kept = kMaxSteps;
        for (int i = size - 1; i >= 0; --i) {
            Comparator c = steps[i];
            c.keepLow = needed[c.low];
            c.keepHigh = needed[c.high];
            if (!c.keepLow && !c.keepHigh) continue;
            needed[c.low] = needed[c.high] = true;
            steps[--kept] = c;
        }
        size = kMaxSteps - kept;
        for (int i = 0; i < size; ++i) steps[i] = steps[kept + i];
    }

private:
    static constexpr int log2(int n) { return n > 1 ? 1 + log2(n / 2) : 0; }
    static constexpr int kMaxSteps = kWires * (log2(kWires) + 1) * (log2(kWires) + 2) / 4 + 1;

    constexpr void compare(int low, int high) { steps[size++] = {low, high, true, true}; }

public:
    int size = 0;
    Comparator steps[kMaxSteps] = {};
    int outputs[kWires] = {};
};

template <int kCount>
constexpr Network<kCount> sorter() {
    Network<kCount> network;
    network.select(network.sort(0, kCount), 0, kCount);
    return network;
}

// Merges sorted wires 0 to kA - 1 with sorted wires kA to kA + kB - 1; yields kCount ranks from kFirst on.
template <int kA, int kB, int kFirst, int kCount>
constexpr Network<kA + kB> merger() {
    Network<kA + kB> network;
    Wires<kA + kB> a;
    Wires<kA + kB> b;
    for (int i = 0; i < kA; ++i) a.add(i);
    for (int i = 0; i < kB; ++i) b.add(kA + i);
    network.select(network.merge(a, b), kFirst, kCount);
    return network;
}

// Of the values of an m x m window, the ranks (from 0) of a sorted subset that can be the window's median: those with
// no more than half of the window below and no more than half above them.
template <int m, int kSubset>
struct MedianRanks {
    static constexpr int kHalf = m * m / 2;
    static constexpr int kFirst = std::max(0, kSubset - 1 - kHalf);
    static constexpr int kCount = std::min(kSubset - 1, kHalf) - kFirst + 1;
};

}    // namespace opcv
