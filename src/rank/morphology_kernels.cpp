// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Largest and smallest pixels under a rectangle or under any set of cells.
//
// A rectangle is computed as a column of pixels, then a row of such columns. Columns use van Herk's method, in blocks
// of as many rows as the rectangle is high. The extremes from each row to the end of the block are stored; each window
// combines one of these with the extreme of its rows in the next block:
//
//     rows of a block of 4    | 0 1 2 3 | 4 5 6 ...
//     window of row 2             |---| |---|          3 operations per pixel, for any height
//
// A few columns are computed from the first to the last row of a block before the next ones, so that the extremes stay
// in registers.
//
// Rows of columns use doubling, in registers: extremes of 2, 4, 8, ... neighbours, and finally of two such groups that
// overlap.
//
// The 3x3 square, which most callers use, is computed directly from the source rows, without intermediate rows.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "rank/morphology.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "rank/morphology_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "rank/row_pair-inl.h"
#include "simd/row-inl.h"
#include "simd/slide-inl.h"
#include "simd/unrolled-inl.h"
#include "simd/vector_size-inl.h"

HWY_BEFORE_NAMESPACE();
namespace opcv {
namespace {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using rank::HWY_NAMESPACE::coverPair;
using rank::HWY_NAMESPACE::forEachRowPair;
using rank::HWY_NAMESPACE::RowPair;
namespace simd = opcv::simd::HWY_NAMESPACE;
using simd::coverBeyond;
using simd::coverPulledBack;
using simd::coverRow;

struct Max {
    template <class V>
    static HWY_INLINE V of(V a, V b) {
        return hn::Max(a, b);
    }
};

struct Min {
    template <class V>
    static HWY_INLINE V of(V a, V b) {
        return hn::Min(a, b);
    }
};

constexpr simd::ExtremumTag<uint8_t> dFull;    // of formulas that load neighbours from memory
constexpr simd::Widest<uint8_t> dWidest;
constexpr auto kLanes = static_cast<ptrdiff_t>(hn::MaxLanes(dWidest));

template <class Op>
class RectangleFilter {
public:
    RectangleFilter(const WindowRows& rows, IppiSize rectangle) : rows_(rows), side_(rectangle) {
        for (; 2 * group_ <= side_.width && doublings_ < kMostDoublings; group_ *= 2) ++doublings_;
    }

    void filter() {
        const ptrdiff_t longestLine = (kScratch - 2 * kMargin) / side_.height - 2 * kCacheLine;
        const ptrdiff_t widest = longestLine - (side_.width - 1);
        const ptrdiff_t strips = (rows_.width + widest - 1) / widest;
        for (ptrdiff_t i = 0; i < strips; ++i) {
            first_ = rows_.width * i / strips;
            width_ = rows_.width * (i + 1) / strips - first_;
            // An odd number of cache lines: the lines of a block then lie in different sets of the cache.
            lineBytes_ = (columnsWidth() / kCacheLine | 1) * kCacheLine;
            if (lineBytes_ < columnsWidth()) lineBytes_ += 2 * kCacheLine;
            for (ptrdiff_t y = 0; y < rows_.height; y += side_.height) filterBlock(y);
        }
    }

private:
    using V = hn::Vec<decltype(dWidest)>;

    static constexpr ptrdiff_t kScratch = 98304;    // holds rows of a page: in strips, each row misses the caches again
    static constexpr ptrdiff_t kCacheLine = 64;
    static constexpr ptrdiff_t kAtOnce = 2 * std::max(kLanes, kCacheLine / 2);    // columns
    static constexpr int kMostDoublings = 5;    // two groups of 32 cover kLargestRectangleSide
    static constexpr ptrdiff_t kMargin = kMostDoublings * kLanes;
    static constexpr ptrdiff_t kRun = 2048;    // bytes of lines, which may be short, whose groups are formed in one go

    static_assert((kScratch - 2 * kMargin) / kLargestRectangleSide - 2 * kCacheLine >= 2 * kLargestRectangleSide,
                  "the largest rectangle leaves room for columns to write");

    ptrdiff_t columnsWidth() const { return width_ + side_.width - 1; }
    const uint8_t* source(ptrdiff_t y) const { return rows_.src + y * rows_.srcStep + first_; }
    uint8_t* target(ptrdiff_t y) const { return rows_.dst + y * rows_.dstStep + first_; }
    uint8_t* line(ptrdiff_t i) { return scratch_ + kMargin + i * lineBytes_; }

    // The block of rows from y, up to the end of the region.
    void filterBlock(ptrdiff_t y) {
        const ptrdiff_t count = std::min<ptrdiff_t>(side_.height, rows_.height - y);
        if (side_.width == 1) return setColumns(source(y), count, target(y), rows_.dstStep);
        setColumns(source(y), count, line(0), lineBytes_);
        const ptrdiff_t linesInRun = std::max<ptrdiff_t>(kRun / lineBytes_, 1);
        for (ptrdiff_t i = 0; i < count; i += linesInRun) {
            const ptrdiff_t end = std::min(i + linesInRun, count);
            setGroups(line(i), (end - i) * lineBytes_);
            for (ptrdiff_t row = i; row < end; ++row) writeRow(y + row, line(row));
        }
    }

    // Writes the extremes of the columns of `count` rows of windows. `src` is the first row.
    void setColumns(const uint8_t* src, ptrdiff_t count, uint8_t* to, ptrdiff_t toStep) const {
        coverPulledBack(
            columnsWidth(), kAtOnce,
            [=](ptrdiff_t x) HWY_ATTR { setColumnsAt<kAtOnce / kLanes>(dWidest, src + x, count, to + x, toStep); },
            [=]() HWY_ATTR {
                coverRow(dWidest, columnsWidth(),
                         [=](auto d, ptrdiff_t x) HWY_ATTR { setColumnsAt<1>(d, src + x, count, to + x, toStep); });
            });
    }

    template <size_t kVectors, class D>
    HWY_INLINE void setColumnsAt(D d, const uint8_t* src, ptrdiff_t count, uint8_t* to, ptrdiff_t toStep) const {
        const ptrdiff_t step = rows_.srcStep;
        const ptrdiff_t height = side_.height;
        const bool isResult = side_.width == 1;
        hn::Vec<D> extremes[kVectors];
        const auto begin = [&](const uint8_t* row) HWY_ATTR {
            simd::unrolled<kVectors>([&](auto v)
                                         OPCV_DLIB_INLINED { extremes[v] = hn::LoadU(d, row + v * hn::Lanes(d)); });
        };
        // A row may be added twice: that does not change an extreme.
        const auto extend = [&](const uint8_t* row) HWY_ATTR {
            simd::unrolled<kVectors>([&](auto v) OPCV_DLIB_INLINED {
                extremes[v] = Op::of(extremes[v], hn::LoadU(d, row + v * hn::Lanes(d)));
            });
        };

        const uint8_t* row = src + (height - 1) * step;
        begin(row);
        for (ptrdiff_t i = height - 1; i >= count; --i, row -= step) extend(row);
        for (ptrdiff_t i = count - 1; i >= 0; --i, row -= step) {
            uint8_t* const column = to + i * toStep;
            if (isResult) fetchColumns(row, row + height * step, column);
            extend(row);
            simd::unrolled<kVectors>([&](auto v)
                                         OPCV_DLIB_INLINED { hn::StoreU(extremes[v], d, column + v * hn::Lanes(d)); });
        }
        if (count == 1) return;
        row = src + height * step;
        begin(row);
        for (ptrdiff_t i = 1; i < count; ++i, row += step) {
            extend(row);
            simd::unrolled<kVectors>([&](auto v) OPCV_DLIB_INLINED {
                uint8_t* const column = to + i * toStep + v * hn::Lanes(d);
                hn::StoreU(Op::of(extremes[v], hn::LoadU(d, column)), d, column);
            });
        }
    }

    // Prefetches columns that are needed soon. Any address is allowed.
    static HWY_INLINE void fetchColumns(const uint8_t* row, const uint8_t* rowOfNextBlock, const uint8_t* dst) {
        constexpr ptrdiff_t kAhead = 256;
        simd::prefetchRow(row + kAhead, kAtOnce);
        simd::prefetchRow(rowOfNextBlock + kAhead, kAtOnce);
        simd::prefetchRow(dst + kAhead, kAtOnce);
    }

    void setGroups(uint8_t* columns, ptrdiff_t bytes) const {
        switch (doublings_) {
            case 1: return setGroups<1>(columns, bytes);
            case 2: return setGroups<2>(columns, bytes);
            case 3: return setGroups<3>(columns, bytes);
            case 4: return setGroups<4>(columns, bytes);
            default: return setGroups<kMostDoublings>(columns, bytes);
        }
    }

    // Replaces the columns by the extremes of groups. Each doubling needs the next vector of the one before it, so the
    // groups lag behind the columns. The first doubling loads its neighbours, because the others keep the shuffles busy.
    template <int kDoublings>
    static void setGroups(uint8_t* columns, ptrdiff_t bytes) {
        constexpr size_t kSlid = kDoublings - 1;
        constexpr ptrdiff_t kLag = kSlid * kLanes;
        V previous[kSlid + 1];    // one element for no doubling in registers
        simd::unrolled<kSlid>([&](auto i) OPCV_DLIB_INLINED { previous[i] = hn::Zero(dWidest); });
        coverBeyond(bytes + kLag, kLanes, [&](ptrdiff_t x) HWY_ATTR {
            V extremes = Op::of(hn::Load(dWidest, columns + x), hn::LoadU(dWidest, columns + x + 1));
            simd::unrolled<kSlid>([&](auto i) OPCV_DLIB_INLINED {
                const V here = std::exchange(previous[i], extremes);
                extremes = Op::of(here, simd::slid<(size_t{2} << i)>(dWidest, here, extremes));
            });
            hn::Store(extremes, dWidest, columns + x - kLag);
        });
    }

    // Writes a row, from the groups of its windows.
    void writeRow(ptrdiff_t y, const uint8_t* groups) const {
        const uint8_t* const last = groups + side_.width - group_;
        uint8_t* const dst = target(y);
        // Rows are too short for the hardware prefetcher.
        const ptrdiff_t nextRow = y + std::max(2 * side_.height - 1, side_.height + 1);
        const uint8_t* const nextSrc = nextRow < rows_.height + side_.height - 1 ? source(nextRow) : groups;
        const uint8_t* const nextDst = y + 2 < rows_.height ? target(y + 2) : dst;
        coverRow(dWidest, width_, [=](auto d, ptrdiff_t x) HWY_ATTR {
            hwy::Prefetch(nextSrc + x);
            hwy::Prefetch(nextDst + x);
            hn::StoreU(Op::of(hn::LoadU(d, groups + x), hn::LoadU(d, last + x)), d, dst + x);
        });
    }

    WindowRows rows_;
    IppiSize side_;
    ptrdiff_t group_ = 1;    // neighbours under one extreme
    int doublings_ = 0;
    ptrdiff_t first_ = 0;    // column of the strip
    ptrdiff_t width_ = 0;
    ptrdiff_t lineBytes_ = 0;    // of the scratch memory; from one row of the block to the next
    HWY_ALIGN uint8_t scratch_[kScratch];
};

// Computes two rows at a time: their columns share the two rows in the middle.
template <class Op>
void filterSquare3x3(const WindowRows& rows) {
    const ptrdiff_t step = rows.srcStep;
    forEachRowPair(
        rows.src + step, step, rows.dst, rows.dstStep, static_cast<int>(rows.height),
        [=](const RowPair& pair) HWY_ATTR {
            const uint8_t* const above = pair.upper - step;
            const uint8_t* const lower = pair.upper + step;
            const uint8_t* const below = pair.hasLower ? lower + step : lower;
            coverPair(dFull, pair, rows.width, [=](auto d, ptrdiff_t x) HWY_ATTR {
                const auto at = [=](const uint8_t* row, ptrdiff_t dx) HWY_ATTR { return hn::LoadU(d, row + x + dx); };
                const auto shared = [=](ptrdiff_t dx) HWY_ATTR { return Op::of(at(pair.upper, dx), at(lower, dx)); };
                const auto left = shared(0);
                const auto middle = shared(1);
                const auto right = shared(2);
                const auto both = Op::of(Op::of(left, middle), right);
                const auto with = [=](const uint8_t* row) HWY_ATTR {
                    return Op::of(Op::of(both, at(row, 0)), Op::of(at(row, 1), at(row, 2)));
                };
                hn::StoreU(with(below), d, pair.lowerDst + x);
                hn::StoreU(with(above), d, pair.upperDst + x);
            });
        });
}

template <class Op>
void filterRectangle(const WindowRows& rows, IppiSize side) {
    if (side.width == 3 && side.height == 3)
        filterSquare3x3<Op>(rows);
    else
        RectangleFilter<Op>(rows, side).filter();
}

template <class Op>
void filterCells(const WindowRows& rows, const ptrdiff_t* cells, int count) {
    for (ptrdiff_t y = 0; y < rows.height; ++y) {
        const uint8_t* const src = rows.src + y * rows.srcStep;
        uint8_t* const dst = rows.dst + y * rows.dstStep;
        coverRow(dFull, rows.width, [=](auto d, ptrdiff_t x) HWY_ATTR {
            const uint8_t* const window = src + x;
            auto extreme = hn::LoadU(d, window + cells[0]);
            for (int i = 1; i < count; ++i) extreme = Op::of(extreme, hn::LoadU(d, window + cells[i]));
            hn::StoreU(extreme, d, dst + x);
        });
    }
}

void underRectangle(const WindowRows& rows, IppiSize side, Extremum extremum) {
    if (extremum == Extremum::kMax) {
        filterRectangle<Max>(rows, side);
    } else {
        filterRectangle<Min>(rows, side);
    }
}

void underCells(const WindowRows& rows, const ptrdiff_t* cells, int count, Extremum extremum) {
    if (extremum == Extremum::kMax) {
        filterCells<Max>(rows, cells, count);
    } else {
        filterCells<Min>(rows, cells, count);
    }
}

}    // namespace HWY_NAMESPACE
}    // namespace
}    // namespace opcv
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace opcv {

namespace {
HWY_EXPORT(underRectangle);
HWY_EXPORT(underCells);
}    // namespace

void filterUnderRectangle(const WindowRows& rows, IppiSize rectangle, Extremum extremum) {
    HWY_DYNAMIC_DISPATCH(underRectangle)(rows, rectangle, extremum);
}

void filterUnderCells(const WindowRows& rows, const ptrdiff_t* cells, int count, Extremum extremum) {
    HWY_DYNAMIC_DISPATCH(underCells)(rows, cells, count, extremum);
}

}    // namespace opcv
#endif    // HWY_ONCE
