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
// Rows of columns use doubling: extremes of 2, 4, 8, ... neighbours, and finally of two such groups that overlap.
//
// The 3x3 square, which most callers use, is computed directly from the source rows, without intermediate rows.
#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "rank/morphology.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "rank/morphology_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "rank/row_pair-inl.h"
#include "simd/vector_size-inl.h"

HWY_BEFORE_NAMESPACE();
namespace opcv {
namespace {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using rank::HWY_NAMESPACE::coverPair;
using rank::HWY_NAMESPACE::forEachRowPair;
using rank::HWY_NAMESPACE::RowPair;
using simd::HWY_NAMESPACE::coverBeyond;
using simd::HWY_NAMESPACE::coverRow;
using simd::HWY_NAMESPACE::lanesOf;

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

constexpr simd::HWY_NAMESPACE::ExtremumTag<uint8_t> dFull;
constexpr auto kMaxLanes = static_cast<ptrdiff_t>(hn::MaxLanes(dFull));

template <class Op>
class RectangleFilter {
public:
    RectangleFilter(const WindowRows& rows, IppiSize rectangle)
        : rows_(rows),
          side_(rectangle),
          rowBytes_(std::min(kScratch / (side_.height + kExtraRows), kWidest) / kMaxLanes * kMaxLanes) {}

    void filter() {
        const ptrdiff_t widest = rowBytes_ - 2 * kMaxLanes - (side_.width - 1);
        const ptrdiff_t strips = (rows_.width + widest - 1) / widest;
        for (ptrdiff_t i = 0; i < strips; ++i) {
            first_ = rows_.width * i / strips;
            width_ = rows_.width * (i + 1) / strips - first_;
            for (ptrdiff_t y = 0; y < rows_.height; y += side_.height) filterBlock(y);
        }
    }

private:
    static constexpr ptrdiff_t kScratch = 98304;    // holds rows of a page: in strips, each row misses the caches again
    static constexpr ptrdiff_t kWidest = 8192;
    static constexpr ptrdiff_t kExtraRows = 2;    // extremes beyond the block; groups of neighbours

    static_assert(kScratch / (kLargestRectangleSide + kExtraRows) >= 3 * kMaxLanes + 2 * kLargestRectangleSide,
                  "the largest rectangle leaves room for columns to write");

    const uint8_t* source(ptrdiff_t y) const { return rows_.src + y * rows_.srcStep + first_; }
    uint8_t* toBlockEnd(ptrdiff_t row) { return scratch_ + (kExtraRows + row) * rowBytes_; }
    uint8_t* fromBlockEnd() { return scratch_; }
    uint8_t* groups() { return scratch_ + rowBytes_; }

    ptrdiff_t columnsWidth() const { return width_ + side_.width - 1; }

    // The block of rows from y, up to the end of the region.
    void filterBlock(ptrdiff_t y) {
        const ptrdiff_t height = side_.height;
        const uint8_t* toEnd = source(y + height - 1);    // of the block's last row: that row
        for (ptrdiff_t i = height - 2; i >= 0; --i) {
            combine(source(y + i), toEnd, toBlockEnd(i));
            toEnd = toBlockEnd(i);
        }
        writeRow(y, toEnd, toEnd);
        const uint8_t* fromEnd = nullptr;
        for (ptrdiff_t i = 1; i < std::min(height, rows_.height - y); ++i) {
            if (i == 1) {
                fromEnd = source(y + height);
            } else {
                combine(source(y + height + i - 1), fromEnd, fromBlockEnd());
                fromEnd = fromBlockEnd();
            }
            writeRow(y + i, i == height - 1 ? source(y + i) : toBlockEnd(i), fromEnd);
        }
    }

    // `to` may be `b`: combining a byte twice does not change it.
    void combine(const uint8_t* a, const uint8_t* b, uint8_t* to) const {
        coverRow(dFull, columnsWidth(), [=](auto d, ptrdiff_t x) HWY_ATTR {
            hn::StoreU(Op::of(hn::LoadU(d, a + x), hn::LoadU(d, b + x)), d, to + x);
        });
    }

    // Writes a row, from the two parts of its windows' columns.
    void writeRow(ptrdiff_t y, const uint8_t* a, const uint8_t* b) {
        uint8_t* const dst = rows_.dst + y * rows_.dstStep + first_;
        if (side_.width == 1) {
            combine(a, b, dst);
            return;
        }
        uint8_t* const line = groups();
        coverRow(dFull, columnsWidth() - 1, [=](auto d, ptrdiff_t x) HWY_ATTR {
            const auto column = [=](ptrdiff_t i) HWY_ATTR { return Op::of(hn::LoadU(d, a + i), hn::LoadU(d, b + i)); };
            hn::StoreU(Op::of(column(x), column(x + 1)), d, line + x);
        });
        // Doubling in place must process each byte once, so it runs past the end of the row in whole vectors.
        ptrdiff_t group = 2;
        for (; 2 * group <= side_.width; group *= 2)
            coverBeyond(columnsWidth() - group, lanesOf(dFull), [=](ptrdiff_t x) HWY_ATTR {
                hn::StoreU(Op::of(hn::LoadU(dFull, line + x), hn::LoadU(dFull, line + x + group)), dFull, line + x);
            });
        const uint8_t* const last = line + side_.width - group;
        // Rows are too short for the hardware prefetcher.
        const bool hasNext = y + 2 < rows_.height;
        const uint8_t* const nextSrc = hasNext ? source(y + side_.height + 1) : line;
        const uint8_t* const nextDst = hasNext ? dst + 2 * rows_.dstStep : dst;
        coverRow(dFull, width_, [=](auto d, ptrdiff_t x) HWY_ATTR {
            hwy::Prefetch(nextSrc + x);
            hwy::Prefetch(nextDst + x);
            hn::StoreU(Op::of(hn::LoadU(d, line + x), hn::LoadU(d, last + x)), d, dst + x);
        });
    }

    WindowRows rows_;
    IppiSize side_;
    ptrdiff_t rowBytes_;
    ptrdiff_t first_ = 0;    // column of the strip
    ptrdiff_t width_ = 0;
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
