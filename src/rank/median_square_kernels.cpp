// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Medians of m x m windows by merging sorted columns, with minimum and maximum only.
//
// The image is processed in strips of columns, two rows at a time. The m - 1 source rows that the two have in common
// are sorted vertically once, and the remaining row of each is merged in: every column of the strip is now a sorted
// list of m values, stored in m row buffers. Adjacent columns are merged into pairs (m >= 5), pairs into fours (m >=
// 9), each of which several windows use. A window is then two or three such lists and a single column. Each merge keeps
// only the ranks that can still be the median.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

#include "rank/median_square.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "rank/median_square_kernels.cpp"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "rank/merge_network.h"
#include "simd/row-inl.h"

HWY_BEFORE_NAMESPACE();
namespace opcv {
namespace {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using simd::HWY_NAMESPACE::coverBeyond;
using simd::HWY_NAMESPACE::coverPulledBack;
using simd::HWY_NAMESPACE::lanesOf;
using D = hn::ScalableTag<uint8_t>;
using V = hn::Vec<D>;

constexpr D d;

// Calls `body` with each index as a constant: an array whose every index is known becomes registers.
template <int... i, class Body>
HWY_INLINE void unrolled(std::integer_sequence<int, i...> /*indices*/, const Body& body) {
    (body(std::integral_constant<int, i>()), ...);
}
template <int kCount, class Body>
HWY_INLINE void unrolled(const Body& body) {
    unrolled(std::make_integer_sequence<int, kCount>(), body);
}

template <class Maker>
HWY_INLINE void run(V* wires) {
    unrolled<Maker::kNetwork.size>([=](auto i) HWY_ATTR {
        constexpr auto kStep = Maker::kNetwork.steps[i];
        const V a = wires[kStep.low];
        const V b = wires[kStep.high];
        if constexpr (kStep.keepLow) wires[kStep.low] = hn::Min(a, b);
        if constexpr (kStep.keepHigh) wires[kStep.high] = hn::Max(a, b);
    });
}

template <int kCount>
struct Sorter {
    static constexpr auto kNetwork = sorter<kCount>();
};

template <int kA, int kB, int kFirst, int kCount>
struct Merger {
    static constexpr auto kNetwork = merger<kA, kB, kFirst, kCount>();
};

// kSubset values of a window, sorted; only the ranks that can be its median.
template <int m, int kSubset>
struct Sorted {
    using Ranks = MedianRanks<m, kSubset>;
    V v[Ranks::kCount];
};

// The list with the values of `valueOf`.
template <class List, int... i, class ValueOf>
HWY_INLINE List listOf(std::integer_sequence<int, i...> /*indices*/, const ValueOf& valueOf) {
    return {{valueOf(std::integral_constant<int, i>())...}};
}
template <class List, class ValueOf>
HWY_INLINE List listOf(const ValueOf& valueOf) {
    return listOf<List>(std::make_integer_sequence<int, List::Ranks::kCount>(), valueOf);
}

template <int m, int kA, int kB>
HWY_INLINE Sorted<m, kA + kB> merged(const Sorted<m, kA>& a, const Sorted<m, kB>& b) {
    using A = MedianRanks<m, kA>;
    using B = MedianRanks<m, kB>;
    using Both = MedianRanks<m, kA + kB>;
    using Maker = Merger<A::kCount, B::kCount, Both::kFirst - A::kFirst - B::kFirst, Both::kCount>;
    V wires[A::kCount + B::kCount];
    unrolled<A::kCount>([&](auto i) HWY_ATTR { wires[i] = a.v[i]; });
    unrolled<B::kCount>([&](auto i) HWY_ATTR { wires[A::kCount + i] = b.v[i]; });
    run<Maker>(wires);
    return listOf<Sorted<m, kA + kB>>([&](auto i) HWY_ATTR { return wires[Maker::kNetwork.outputs[i]]; });
}

// The value of rank k in two sorted lists is the least maximum of k + 1 values, some from the front of each.
template <int m, int kA, int kB>
HWY_INLINE V medianOf(const Sorted<m, kA>& a, const Sorted<m, kB>& b) {
    static_assert(kA + kB == m * m);
    using A = MedianRanks<m, kA>;
    using B = MedianRanks<m, kB>;
    constexpr int kTaken = m * m / 2 + 1 - A::kFirst - B::kFirst;
    static_assert(A::kCount >= kTaken && B::kCount < kTaken);
    V least = a.v[kTaken - 1];
    unrolled<B::kCount>([&](auto i) HWY_ATTR { least = hn::Min(least, hn::Max(a.v[kTaken - 2 - i], b.v[i])); });
    return least;
}

HWY_INLINE V middleOf(V a, V b, V c) { return hn::Max(hn::Min(a, b), hn::Min(hn::Max(a, b), c)); }

// Of three sorted columns only the greatest low, the median of the middles and the least high remain; their median is
// the median of the window.
HWY_INLINE V medianOfColumns(const Sorted<3, 3>& a, const Sorted<3, 3>& b, const Sorted<3, 3>& c) {
    return middleOf(hn::Max(hn::Max(a.v[0], b.v[0]), c.v[0]), middleOf(a.v[1], b.v[1], c.v[1]),
                    hn::Min(hn::Min(a.v[2], b.v[2]), c.v[2]));
}

// ---- row buffers

constexpr ptrdiff_t kMaxLanes = static_cast<ptrdiff_t>(hn::MaxLanes(d));

// Rows of sorted lists, one list per column: row i holds rank kFirst + i of each. Vectors run past the end of the
// strip; the values there are arbitrary, and no result depends on them.
template <int m, int kSubset, ptrdiff_t kBytes>
class ListRows {
public:
    HWY_INLINE Sorted<m, kSubset> load(ptrdiff_t x) const {
        return listOf<Sorted<m, kSubset>>([&](auto i) HWY_ATTR { return hn::LoadU(d, rows_[i] + x); });
    }
    HWY_INLINE void store(const Sorted<m, kSubset>& list, ptrdiff_t x) {
        unrolled<kRows>([&](auto i) HWY_ATTR { hn::StoreU(list.v[i], d, rows_[i] + x); });
    }

private:
    static constexpr int kRows = MedianRanks<m, kSubset>::kCount;
    HWY_ALIGN uint8_t rows_[kRows][kBytes];
};

template <int m>
class Strip {
public:
    // Columns of a strip. The buffers fit in the first-level cache together with the source rows. For m = 3 these are so
    // few that a strip can be filtered in two rows, then its right neighbour: the processor prefetches whole rows.
    static constexpr bool kGoesAlongRows = m == 3;
    static constexpr ptrdiff_t kBytes = m == 3 ? 2496 : 512;

    explicit Strip(int channels) : channels_(channels) {}

    // Filters two rows, or one if `dst[1]` is null. `src` are the m + 1 rows of their windows, from the left edge of
    // the first window. The rows of the next two are `srcAhead` after the last two of them and `dstAhead` after `dst`;
    // they are prefetched.
    void filter(ptrdiff_t width, const uint8_t* const (&src)[m + 1], uint8_t* const (&dst)[2], ptrdiff_t srcAhead,
                ptrdiff_t dstAhead) {
        width_ = width;
        srcAhead_ = srcAhead;
        dstAhead_ = dstAhead;
        sortColumns(src);
        for (int r = 0; r < 2 && dst[r]; ++r) {
            const Columns& columns = columns_[r];
            if constexpr (m >= 5)
                coverBeyond(width_ + (m - 2) * channels_, lanesOf(d), [&](ptrdiff_t x) HWY_ATTR {
                    pairs_.store(merged(columns.load(x), columns.load(x + channels_)), x);
                });
            if constexpr (m >= 9)
                coverBeyond(width_ + (m - 4) * channels_, lanesOf(d), [&](ptrdiff_t x) HWY_ATTR {
                    fours_.store(merged(pairs_.load(x), pairs_.load(x + 2 * channels_)), x);
                });
            writeRow(columns, dst[r]);
        }
    }

private:
    static constexpr int kLargestGroup = m >= 9 ? 4 : m >= 5 ? 2 : 1;
    // Whole vectors, so that vectors of all rows are aligned.
    static constexpr ptrdiff_t kBuffer = (kBytes + 3 * (m - 1) + 3 * kMaxLanes - 1) / kMaxLanes * kMaxLanes;
    struct Nothing {};
    using Columns = ListRows<m, m, kBuffer>;
    using Pairs = std::conditional_t<kLargestGroup >= 2, ListRows<m, 2 * m, kBuffer>, Nothing>;
    using Fours = std::conditional_t<kLargestGroup >= 4, ListRows<m, 4 * m, kBuffer>, Nothing>;

    // The last vector is pulled back to the end of the windows; rows shorter than a vector are copied first.
    void sortColumns(const uint8_t* const (&src)[m + 1]) {
        const ptrdiff_t width = width_ + (m - 1) * channels_;
        coverPulledBack(
            width, lanesOf(d), [&](ptrdiff_t x) HWY_ATTR { sortColumnsAt(src, x); },
            [&]() HWY_ATTR {
                HWY_ALIGN uint8_t block[m + 1][kMaxLanes] = {};
                const uint8_t* rows[m + 1];
                for (int i = 0; i <= m; ++i) {
                    std::memcpy(block[i], src[i], static_cast<size_t>(width));
                    rows[i] = block[i];
                }
                sortColumnsAt(rows, 0);
            });
    }

    HWY_INLINE void sortColumnsAt(const uint8_t* const (&src)[m + 1], ptrdiff_t x) {
        hwy::Prefetch(src[m - 1] + x + srcAhead_);
        hwy::Prefetch(src[m] + x + srcAhead_);
        V shared[m - 1];
        unrolled<m - 1>([&](auto i) HWY_ATTR { shared[i] = hn::LoadU(d, src[i + 1] + x); });
        run<Sorter<m - 1>>(shared);
        const auto sorted =
            listOf<Sorted<m, m - 1>>([&](auto i) HWY_ATTR { return shared[Sorter<m - 1>::kNetwork.outputs[i]]; });
        columns_[0].store(merged(sorted, Sorted<m, 1>{{hn::LoadU(d, src[0] + x)}}), x);
        columns_[1].store(merged(sorted, Sorted<m, 1>{{hn::LoadU(d, src[m] + x)}}), x);
    }

    // kCount adjacent columns as one list.
    template <int kCount>
    HWY_INLINE Sorted<m, kCount * m> sorted(const Columns& columns, ptrdiff_t x) const {
        if constexpr (kCount == 1) {
            return columns.load(x);
        } else if constexpr (kCount == 2 && kLargestGroup >= 2) {
            return pairs_.load(x);
        } else if constexpr (kCount == 4 && kLargestGroup >= 4) {
            return fours_.load(x);
        } else {
            constexpr int kLast = kCount % kLargestGroup ? kCount % kLargestGroup : kLargestGroup;
            return merged(sorted<kCount - kLast>(columns, x), sorted<kLast>(columns, x + (kCount - kLast) * channels_));
        }
    }

    HWY_INLINE V medianAt(const Columns& columns, ptrdiff_t x) const {
        if constexpr (m == 3)
            return medianOfColumns(columns.load(x), columns.load(x + channels_), columns.load(x + 2 * channels_));
        else
            return medianOf(sorted<m - 1>(columns, x), columns.load(x + (m - 1) * channels_));
    }

    void writeRow(const Columns& columns, uint8_t* dst) const {
        coverPulledBack(
            width_, lanesOf(d),
            [&](ptrdiff_t x) HWY_ATTR {
                hwy::Prefetch(dst + x + dstAhead_);
                hn::StoreU(medianAt(columns, x), d, dst + x);
            },
            [&]() HWY_ATTR {
                HWY_ALIGN uint8_t block[kMaxLanes];
                hn::Store(medianAt(columns, 0), d, block);
                std::memcpy(dst, block, static_cast<size_t>(width_));
            });
    }

    ptrdiff_t width_ = 0;
    ptrdiff_t channels_;
    ptrdiff_t srcAhead_ = 0;
    ptrdiff_t dstAhead_ = 0;
    Columns columns_[2];    // of the two rows
    Pairs pairs_;           // of the row that is being written
    Fours fours_;
};

struct Image {
    const uint8_t* src;
    ptrdiff_t srcStep;
    uint8_t* dst;
    ptrdiff_t dstStep;
    ptrdiff_t width;
    ptrdiff_t height;
};

// Filters the columns from `first` to `end` of two rows from y, or of a last row.
template <int m>
void filterPair(const Image& image, ptrdiff_t y, ptrdiff_t first, ptrdiff_t end, Strip<m>& strip) {
    const bool pair = y + 1 < image.height;
    const uint8_t* rows[m + 1];
    for (int i = 0; i < m + (pair ? 1 : 0); ++i) rows[i] = image.src + (y + i) * image.srcStep + first;
    if (!pair) rows[m] = rows[m - 1];
    const ptrdiff_t ahead = y + 3 < image.height ? 2 : 0;
    uint8_t* const dst = image.dst + y * image.dstStep + first;
    strip.filter(end - first, rows, {dst, pair ? dst + image.dstStep : nullptr}, ahead * image.srcStep,
                 ahead * image.dstStep);
}

template <int m>
void filterImage(const Image& image, int channels) {
    Strip<m> strip(channels);
    const ptrdiff_t strips = (image.width + Strip<m>::kBytes - 1) / Strip<m>::kBytes;
    const auto filterPart = [&](ptrdiff_t i, ptrdiff_t y) {
        filterPair(image, y, image.width * i / strips, image.width * (i + 1) / strips, strip);
    };
    if (Strip<m>::kGoesAlongRows) {
        for (ptrdiff_t y = 0; y < image.height; y += 2)
            for (ptrdiff_t i = 0; i < strips; ++i) filterPart(i, y);
    } else {
        for (ptrdiff_t i = 0; i < strips; ++i)
            for (ptrdiff_t y = 0; y < image.height; y += 2) filterPart(i, y);
    }
}

void filter(const Image& image, int m, int channels) {
    switch (m) {
        case 3: return filterImage<3>(image, channels);
        case 5: return filterImage<5>(image, channels);
        case 7: return filterImage<7>(image, channels);
        case 9: return filterImage<9>(image, channels);
        default: return;
    }
}

void squareMedianKernel(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep, ptrdiff_t width,
                        ptrdiff_t height, int m, int channels) {
    filter({src, srcStep, dst, dstStep, width, height}, m, channels);
}

}    // namespace HWY_NAMESPACE
}    // namespace
}    // namespace opcv
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace opcv {

namespace {
HWY_EXPORT(squareMedianKernel);
}    // namespace

bool hasSquareMedian(int m) { return m == 3 || m == 5 || m == 7 || m == 9; }

void squareMedian(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep, ptrdiff_t width,
                  ptrdiff_t height, int m, int channels) {
    HWY_DYNAMIC_DISPATCH(squareMedianKernel)(src, srcStep, dst, dstStep, width, height, m, channels);
}

}    // namespace opcv
#endif    // HWY_ONCE
