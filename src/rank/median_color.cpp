// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// 3x3 vector median of colour pixels: the pixel of the window with the smallest sum of colour distances to the other
// eight; of equal sums, the first in raster order.
//
// A pair of pixels is in up to six windows, so each distance is computed once. Per pixel there are twelve: to its
// neighbours 1 and 2 to the right, to five pixels of the next row and to five of the row after that. The image is
// processed in strips of columns, from top to bottom, three rows at a time; all intermediate rows are on the stack.
//
// Instead of |a - b| summed over the channels, a pair has M(p, q) = max r + max g + max b. With T = r + g + b the
// distance is 2 M(p, q) - T(p) - T(q), so over the eight others of a window
//
//     distances(p) = 2 sum of M(p, q) - 7 T(p) - (sum of T over the nine pixels),
//
// and as the last term is the same for all nine candidates they are ranked by the first two, the score. The sum over
// the three pixels of one row depends on whether p is in the left, middle or right column of the window, and serves
// three windows.
//
// The least of the nine scores is at most their mean, which is convex in each sample and hence largest when samples are
// 0 or 255: 255 (2 k (9 - k) / 9 + k) for k samples of 255 in a channel, at most 2578.4 per channel and 7735 in total.
// So 8 score + 7 fits in 16 bits where it matters; other scores saturate. The low three bits hold the candidate's
// place.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "OPCV_dlib.h"
#include "rank/fixed_window.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "rank/median_color.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/row-inl.h"

HWY_BEFORE_NAMESPACE();
namespace opcv {
namespace {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using simd::HWY_NAMESPACE::coverBeyond;
using simd::HWY_NAMESPACE::coverPulledBack;
using simd::HWY_NAMESPACE::lanesOf;
using simd::HWY_NAMESPACE::prefetchRow;
using simd::HWY_NAMESPACE::prefetchToWrite;

using D8 = hn::ScalableTag<uint8_t>;
using D16 = hn::ScalableTag<uint16_t>;
using DI16 = hn::RebindToSigned<D16>;
using V16 = hn::Vec<D16>;

constexpr D8 d8;
constexpr D16 d16;
constexpr DI16 di16;

constexpr ptrdiff_t kColumns = 320;                  // of a strip, with one more on either side than it writes
constexpr ptrdiff_t kStrip = kColumns - 2;           // columns that it writes
constexpr ptrdiff_t kPadBytes = hn::MaxLanes(d8);    // around them, without effect on results
constexpr int kReach = 2;                            // columns from one end of a window to the other
constexpr int kShifts = 2 * kReach + 1;              // column distances of a pair in different rows
constexpr int kScale = 16;                           // of the samples in 16 bits: 2 for the distance, 8 for the place
static_assert(kColumns % static_cast<ptrdiff_t>(hn::MaxLanes(d8)) == 0, "the last vector of a row ends with it");

enum Column { kLeft, kMiddle, kRight, kColumnsOfWindow };

// One value per column; column 0 is left of the first one that is written. Its address is that of an aligned vector.
template <class T>
class Row {
public:
    T* at(ptrdiff_t p) { return values_ + kPad + p; }
    const T* at(ptrdiff_t p) const { return values_ + kPad + p; }

private:
    static constexpr ptrdiff_t kPad = kPadBytes / sizeof(T);
    alignas(kPadBytes) T values_[kPad + kColumns + kPad] = {};
};

struct PixelRow {
    Row<uint8_t> bytes[3];
    Row<int16_t> samples[3];    // times kScale
};

struct ColumnSums {
    V16 of[kColumnsOfWindow];
};

using SumRows = Row<uint16_t>[kColumnsOfWindow];

// A strip of columns of the image, and what it keeps between rows: the last three rows of pixels (above, here, below),
// and of their pairs what later rows need.
class Strip {
public:
    explicit Strip(ptrdiff_t width) : width_(width) {}

    // Advances by one row: `row` becomes the row below. It points to the first pixel to be written; one more is read on
    // either side.
    void enter(const uint8_t* row) {
        std::rotate(pixels_, pixels_ + 1, pixels_ + 3);
        load(row - 3);
        coverBeyond(width_ + kReach, lanesOf(d16), [this](ptrdiff_t p) HWY_ATTR { pairAt(p); });
        coverBeyond(width_ + kReach, lanesOf(d16), [this](ptrdiff_t p) HWY_ATTR { scoreAt(p); });
    }

    // Writes the medians of the row here.
    void select(uint8_t* dst) const {
        coverPulledBack(
            width_, lanesOf(d8), [this, dst](ptrdiff_t x) HWY_ATTR { selectAt(x, dst); },
            [this, dst]() HWY_ATTR {
                HWY_ALIGN uint8_t block[3 * hn::MaxLanes(d8)];
                selectAt(0, block);
                std::memcpy(dst, block, static_cast<size_t>(3 * width_));
            });
    }

private:
    const PixelRow& above() const { return *pixels_[0]; }
    const PixelRow& here() const { return *pixels_[1]; }
    const PixelRow& below() const { return *pixels_[2]; }

    void load(const uint8_t* row) {
        const ptrdiff_t count = width_ + kReach;
        coverPulledBack(
            count, lanesOf(d8), [this, row](ptrdiff_t p) HWY_ATTR { loadAt(p, row); },
            [this, row, count]() HWY_ATTR {
                HWY_ALIGN uint8_t block[3 * hn::MaxLanes(d8)] = {};
                std::memcpy(block, row, static_cast<size_t>(3 * count));
                loadAt(0, block);
            });
    }

    void loadAt(ptrdiff_t p, const uint8_t* row) {
        const hn::Half<D8> half;
        hn::Vec<D8> channel[3];
        hn::LoadInterleaved3(d8, row + 3 * p, channel[0], channel[1], channel[2]);
        for (int c = 0; c < 3; ++c) {
            hn::StoreU(channel[c], d8, pixels_[2]->bytes[c].at(p));
            int16_t* samples = pixels_[2]->samples[c].at(p);
            const auto scale = hn::Set(di16, kScale);
            hn::StoreU(hn::Mul(hn::PromoteTo(di16, hn::LowerHalf(half, channel[c])), scale), di16, samples);
            hn::StoreU(hn::Mul(hn::PromoteTo(di16, hn::UpperHalf(half, channel[c])), scale), di16,
                       samples + lanesOf(d16));
        }
    }

    // Three samples of a column.
    struct Pixels {
        hn::Vec<DI16> c0, c1, c2;
    };
    static HWY_INLINE Pixels pixelsAt(const PixelRow& row, ptrdiff_t p) {
        return {hn::LoadU(di16, row.samples[0].at(p)), hn::LoadU(di16, row.samples[1].at(p)),
                hn::LoadU(di16, row.samples[2].at(p))};
    }

    static HWY_INLINE V16 load16(const Row<uint16_t>& row, ptrdiff_t p) { return hn::LoadU(d16, row.at(p)); }
    static HWY_INLINE void store16(V16 values, Row<uint16_t>& row, ptrdiff_t p) { hn::StoreU(values, d16, row.at(p)); }

    // M of two pixels.
    static HWY_INLINE V16 largest(const Pixels& a, const Pixels& b) {
        return hn::BitCast(d16, hn::Add(hn::Add(hn::Max(a.c0, b.c0), hn::Max(a.c1, b.c1)), hn::Max(a.c2, b.c2)));
    }

    // Sums over the three pixels of another row, by the pairs' column distances -2 to 2.
    static HWY_INLINE ColumnSums sumsOf(V16 l2, V16 l1, V16 same, V16 r1, V16 r2) {
        const V16 left = hn::Add(l1, same);
        const V16 right = hn::Add(same, r1);
        return {{hn::Add(right, r2), hn::Add(left, r1), hn::Add(l2, left)}};
    }
    // The pairs of a pixel with those of a row above it: the partner at distance i has this pixel at distance -i.
    static HWY_INLINE ColumnSums upwards(const Row<uint16_t> (&pairs)[kShifts], ptrdiff_t p) {
        return sumsOf(load16(pairs[4], p - 2), load16(pairs[3], p - 1), load16(pairs[2], p), load16(pairs[1], p + 1),
                      load16(pairs[0], p + 2));
    }

    // M of the pixels at column p with those of the row below, and keys of the candidates above and here, whose sums are
    // then complete. Partners are loaded once for both: an unaligned load costs as much as two others.
    HWY_INLINE void pairAt(ptrdiff_t p) {
        const Pixels own = pixelsAt(below(), p);
        const Pixels l2 = pixelsAt(below(), p - 2);
        const Pixels l1 = pixelsAt(below(), p - 1);
        const Pixels r1 = pixelsAt(below(), p + 1);
        const Pixels r2 = pixelsAt(below(), p + 2);
        store16(largest(own, r1), nextColumn_, p);
        store16(largest(own, r2), columnAfter_, p);
        const auto total = hn::BitCast(d16, hn::Add(hn::Add(own.c0, own.c1), own.c2));
        store16(hn::Mul(hn::ShiftRight<1>(total), hn::Set(d16, 7)), sevenTotals_, p);

        const auto sums = [&](const Pixels& upper, Row<uint16_t>(&pairs)[kShifts]) HWY_ATTR {
            const V16 ml2 = largest(upper, l2);
            const V16 ml1 = largest(upper, l1);
            const V16 same = largest(upper, own);
            const V16 mr1 = largest(upper, r1);
            const V16 mr2 = largest(upper, r2);
            store16(ml2, pairs[0], p);
            store16(ml1, pairs[1], p);
            store16(same, pairs[2], p);
            store16(mr1, pairs[3], p);
            store16(mr2, pairs[4], p);
            return sumsOf(ml2, ml1, same, mr1, mr2);
        };
        const ColumnSums hereToBelow = sums(pixelsAt(here(), p), nextRow_);
        const ColumnSums aboveToBelow = sums(pixelsAt(above(), p), rowAfter_);
        for (int c = 0; c < kColumnsOfWindow; ++c) {
            const V16 keyAbove = keyOf(c, load16(ownAndDown_[c], p), aboveToBelow.of[c]);
            const V16 keyHere = keyOf(3 + c, load16(ownAndUp_[c], p), hereToBelow.of[c]);
            store16(hn::Min(keyAbove, keyHere), keys_[c], p);
            store16(hn::Add(load16(own_[c], p), hereToBelow.of[c]), ownAndDown_[c], p);
        }
    }

    // Sums within the row below, less 7 T of the pixel itself. Together with the sums over any further row they are not
    // negative, as 5 M >= 5 T.
    HWY_INLINE ColumnSums withinRow(ptrdiff_t p) const {
        const V16 sevenTotals = load16(sevenTotals_, p);
        const V16 r1 = hn::Sub(load16(nextColumn_, p), sevenTotals);
        const V16 l1 = load16(nextColumn_, p - 1);
        const V16 l2 = hn::Sub(load16(columnAfter_, p - 2), sevenTotals);
        return {{hn::Add(r1, load16(columnAfter_, p)), hn::Add(r1, l1), hn::Add(l1, l2)}};
    }

    // Keys of the candidates below, whose partners above have been paired in neighbouring columns.
    HWY_INLINE void scoreAt(ptrdiff_t p) {
        const ColumnSums own = withinRow(p);
        const ColumnSums belowToHere = upwards(nextRow_, p);
        const ColumnSums belowToAbove = upwards(rowAfter_, p);
        for (int c = 0; c < kColumnsOfWindow; ++c) {
            const V16 up = hn::Add(own.of[c], belowToHere.of[c]);
            const V16 key = keyOf(6 + c, up, belowToAbove.of[c]);
            if (c == kRight)
                store16(key, lastKey_, p);
            else
                store16(hn::Min(load16(keys_[c], p), key), keys_[c], p);
            store16(up, ownAndUp_[c], p);
            store16(own.of[c], own_[c], p);
        }
    }

    // Three bits cannot hold the index of the ninth candidate. It wins if its key with index 7 is below all others,
    // that is, if its score is.
    static HWY_INLINE V16 keyOf(int place, V16 twoRows, V16 oneRow) {
        const auto bits = static_cast<uint16_t>(std::min(place, 7));
        return hn::SaturatedAdd(twoRows, hn::Add(oneRow, hn::Set(d16, bits)));
    }

    // Places, 0 to 8, of the winners in the windows that begin at column p.
    HWY_INLINE V16 winnersAt(ptrdiff_t p) const {
        const V16 best =
            hn::Min(hn::Min(load16(keys_[kLeft], p), load16(keys_[kMiddle], p + 1)), load16(keys_[kRight], p + 2));
        const auto lastLoses = hn::Eq(hn::Min(best, load16(lastKey_, p + 2)), best);
        return hn::IfThenElse(lastLoses, hn::And(best, hn::Set(d16, 7)), hn::Set(d16, 8));
    }

    HWY_INLINE void selectAt(ptrdiff_t x, uint8_t* dst) const {
        const auto place =
            hn::ConcatEven(d8, hn::BitCast(d8, winnersAt(x + lanesOf(d16))), hn::BitCast(d8, winnersAt(x)));
        const auto bit0 = hn::TestBit(place, hn::Set(d8, 1));
        const auto bit1 = hn::TestBit(place, hn::Set(d8, 2));
        const auto bit2 = hn::TestBit(place, hn::Set(d8, 4));
        const auto bit3 = hn::TestBit(place, hn::Set(d8, 8));
        const auto channel = [=](int c) HWY_ATTR {
            const auto candidate = [=](int i)
                                       HWY_ATTR { return hn::LoadU(d8, pixels_[i / 3]->bytes[c].at(x + i % 3)); };
            const auto pick2 = [=](int i) HWY_ATTR { return hn::IfThenElse(bit0, candidate(i + 1), candidate(i)); };
            const auto pick4 = [=](int i) HWY_ATTR { return hn::IfThenElse(bit1, pick2(i + 2), pick2(i)); };
            return hn::IfThenElse(bit3, candidate(8), hn::IfThenElse(bit2, pick4(4), pick4(0)));
        };
        hn::StoreInterleaved3(channel(0), channel(1), channel(2), d8, dst + 3 * x);
    }

    ptrdiff_t width_;
    PixelRow ring_[3];
    PixelRow* pixels_[3] = {&ring_[0], &ring_[1], &ring_[2]};    // above, here, below
    Row<uint16_t> nextRow_[kShifts];                             // M of here and below, at the pixel here
    Row<uint16_t> rowAfter_[kShifts];                            // M of above and below, at the pixel above
    Row<uint16_t> nextColumn_;                                   // M within the row below
    Row<uint16_t> columnAfter_;
    Row<uint16_t> sevenTotals_;    // 7 T of the row below, in the scale of M
    SumRows own_;                  // within one row; from here on of the last row entered
    SumRows ownAndUp_;             // with the row before it
    SumRows ownAndDown_;           // of the row before, with the last one
    SumRows keys_;                 // the least of the candidates in a column of the window
    Row<uint16_t> lastKey_;        // of the ninth candidate, which keys_ leave out
};

void filterStrip(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep, ptrdiff_t width, int height) {
    constexpr int kAhead = 2;
    Strip strip(width);
    strip.enter(src - srcStep);
    strip.enter(src);
    for (; height > 0; --height, src += srcStep, dst += dstStep) {
        if (height > kAhead) {
            prefetchRow(src + (1 + kAhead) * srcStep, 3 * width);
            prefetchToWrite(dst + kAhead * dstStep, 3 * width);
        }
        strip.enter(src + srcStep);
        strip.select(dst);
    }
}

void filter(const uint8_t* src, int srcStep, uint8_t* dst, int dstStep, int width, int height) {
    if (height < 1) return;
    const ptrdiff_t strips = (width + kStrip - 1) / kStrip;
    for (ptrdiff_t i = 0; i < strips; ++i) {
        const ptrdiff_t first = width * i / strips;
        const ptrdiff_t end = width * (i + 1) / strips;
        filterStrip(src + 3 * first, srcStep, dst + 3 * first, dstStep, end - first, height);
    }
}

}    // namespace HWY_NAMESPACE
}    // namespace
}    // namespace opcv
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace opcv {
namespace {
HWY_EXPORT(filter);

FixedWindowKernel kernelOf(int mask) { return mask == 33 ? FilterMedianColor3x3_8u_C3R : nullptr; }
}    // namespace
}    // namespace opcv

using namespace opcv;

void FilterMedianColor3x3_8u_C3R(const unsigned char* pSrc, int srcStep, unsigned char* pDst, int dstStep, int width,
                                 int height) {
    HWY_DYNAMIC_DISPATCH(filter)(pSrc, srcStep, pDst, dstStep, width, height);
}

IppStatus IPPShare_ippiFilterMedianColor_8u_C3R(const unsigned char* pSrc, int srcStep, unsigned char* pDst,
                                                int dstStep, IppiSize dstRoiSize, int mask) {
    return filterFixedWindow(kernelOf(mask), pSrc, srcStep, pDst, dstStep, dstRoiSize, 3);
}
#endif    // HWY_ONCE
