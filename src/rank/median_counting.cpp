// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Medians of m x m windows by counting the pixels below thresholds.
//
// A median is at least t if no more than half of its window is below t. Each threshold t that is tried narrows the
// bounds of the medians of all windows in a strip of columns, until the bounds of each are equal. The thresholds that
// the row before has needed are tried first. Medians of neighbouring windows are similar, so only a few dozen of the
// 255 thresholds are tried.
//
// Pixels below a threshold are counted by columns of m rows, and the counts of m columns are added. The counts of
// columns are kept: when the threshold is tried again, they change only by the pixels of the rows that have left the
// windows since, and of those that have entered them.
//
// Columns are stored by phase: phase p holds columns p, p + 4, p + 8 and so on. Column x + 4 is then the next lane, and
// windows one column apart are in different vectors, which differ by two counts, however large the window:
//
//     sum(x + 1) = sum(x) - count(x) + count(x + m)
#include "rank/median_counting.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "rank/median_counting.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace opcv {
namespace {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using D = hn::ScalableTag<int8_t>;
using DU = hn::RebindToUnsigned<D>;
using V = hn::Vec<D>;
using VU = hn::Vec<DU>;

constexpr D d;
constexpr DU du;
constexpr ptrdiff_t kVector = static_cast<ptrdiff_t>(hn::MaxLanes(d));
constexpr ptrdiff_t kPhases = 4;
constexpr ptrdiff_t kPhase = std::max<ptrdiff_t>(kVector, 32);    // columns of a phase
constexpr ptrdiff_t kColumns = kPhases * kPhase;                  // of a strip
constexpr ptrdiff_t kLargest = 31;                                // mask; counts of eight columns fit in a byte
constexpr ptrdiff_t kRows = 64;                                   // of the image that are kept
constexpr ptrdiff_t kThresholds = 256;
constexpr ptrdiff_t kRowsBetweenReviews = 4;    // of the thresholds that are tried first
static_assert(kRows >= kLargest + kLargest / 2, "all rows that outdated counts may lack");

// -1 in the lanes where a < b.
HWY_INLINE VU minusLess(V a, V b) { return hn::BitCast(du, hn::VecFromMask(d, hn::Lt(a, b))); }

HWY_INLINE hn::Mask<DU> isNegative(VU v) { return hn::RebindMask(du, hn::Lt(hn::BitCast(d, v), hn::Zero(d))); }

// Sum of counts less half a window less 1: negative if no more than half of the window is counted. Additions are those
// of unsigned lanes, because they wrap around.
class NarrowSum {    // windows of up to 255 pixels
public:
    explicit HWY_INLINE NarrowSum(ptrdiff_t half) : sum_(hn::Set(du, static_cast<uint8_t>(-half - 1))) {}
    HWY_INLINE void add(VU counts) { sum_ = hn::Add(sum_, counts); }
    HWY_INLINE void subtract(VU counts) { sum_ = hn::Sub(sum_, counts); }
    HWY_INLINE hn::Mask<DU> isNegative() const { return HWY_NAMESPACE::isNegative(sum_); }

private:
    VU sum_;
};

class WideSum {    // larger windows
public:
    explicit HWY_INLINE WideSum(ptrdiff_t half)
        : low_(hn::Set(du, static_cast<uint8_t>(127 - half % 256))),
          high_(hn::Set(du, static_cast<uint8_t>(-half / 256 - 1))) {}
    HWY_INLINE void add(VU counts) {
        const VU sum = hn::Add(low_, counts);
        high_ = hn::Sub(high_, minusLess(hn::BitCast(d, sum), hn::BitCast(d, low_)));
        low_ = sum;
    }
    HWY_INLINE void subtract(VU counts) {
        const VU difference = hn::Sub(low_, counts);
        high_ = hn::Add(high_, minusLess(hn::BitCast(d, low_), hn::BitCast(d, difference)));
        low_ = difference;
    }
    HWY_INLINE hn::Mask<DU> isNegative() const { return HWY_NAMESPACE::isNegative(high_); }

private:
    VU low_;    // less 128, so that signed comparisons detect carries
    VU high_;
};

// Of the medians of a vector of windows.
struct Bounds {
    VU least, most;
};

template <class Sum>
class Strip {
public:
    // `windows` of m x m pixels, `channels` bytes apart.
    Strip(ptrdiff_t m, ptrdiff_t windows, ptrdiff_t channels)
        : m_(m), windows_(windows), columns_(windows + m - 1), channels_(channels) {
        for (ptrdiff_t phase = 0; phase + 1 < kPhases; ++phase) entering_[phase] = placeOf(phase + m);
        for (ptrdiff_t x = 0; x < windows; ++x) inside_[placeOf(x)] = 255;
        std::fill(rowsOf_, rowsOf_ + kThresholds, -kRows);
    }

    void filter(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep, ptrdiff_t height) {
        for (ptrdiff_t j = 0; j < m_ - 1; ++j) read(src + j * srcStep, j);
        for (row_ = 0; row_ < height; ++row_) {
            const ptrdiff_t last = row_ + m_ - 1;
            read(src + last * srcStep, last);
            search();
            write(dst + row_ * dstStep);
            if (row_ % kRowsBetweenReviews == 0) forgetUnused();
        }
    }

private:
    // Index of a column in a row that is stored by phase.
    static ptrdiff_t placeOf(ptrdiff_t column) { return column % kPhases * kPhase + column / kPhases; }

    int8_t* keptRow(ptrdiff_t row) { return rows_[row % kRows]; }

    // Keeps a row of the image. Pixels are stored less 128, for signed comparisons.
    void read(const uint8_t* src, ptrdiff_t row) {
        pick(src);
        const VU bias = hn::Set(du, 128);
        int8_t* to = keptRow(row);
        for (ptrdiff_t i = 0; i < kPhase; i += kVector) {
            VU p0, p1, p2, p3;
            hn::LoadInterleaved4(du, block_ + kPhases * i, p0, p1, p2, p3);
            hn::Store(hn::BitCast(d, hn::Xor(p0, bias)), d, to + i);
            hn::Store(hn::BitCast(d, hn::Xor(p1, bias)), d, to + i + kPhase);
            hn::Store(hn::BitCast(d, hn::Xor(p2, bias)), d, to + i + 2 * kPhase);
            hn::Store(hn::BitCast(d, hn::Xor(p3, bias)), d, to + i + 3 * kPhase);
        }
    }

    void write(uint8_t* dst) {
        for (ptrdiff_t i = 0; i < kPhase; i += kVector)
            hn::StoreInterleaved4(hn::Load(du, least_ + i), hn::Load(du, least_ + i + kPhase),
                                  hn::Load(du, least_ + i + 2 * kPhase), hn::Load(du, least_ + i + 3 * kPhase), du,
                                  block_ + kPhases * i);
        put(dst);
    }

    // Columns of pixels of three channels that are handled as vectors. The other two channels are loaded, too, so the
    // last pixel of a row is left out: from the second or third channel on, they would lie beyond it.
    ptrdiff_t columnsOfVectors(ptrdiff_t columns) const {
        return channels_ == 3 ? (columns - 1) / kVector * kVector : 0;
    }

    // Copies one channel of a row to the block.
    void pick(const uint8_t* src) {
        if (channels_ == 1) {
            std::memcpy(block_, src, static_cast<size_t>(columns_));
            return;
        }
        ptrdiff_t x = 0;
        for (; x < columnsOfVectors(columns_); x += kVector) {
            VU channel, second, third;
            hn::LoadInterleaved3(du, src + 3 * x, channel, second, third);
            hn::Store(channel, du, block_ + x);
        }
        for (; x < columns_; ++x) block_[x] = src[x * channels_];
    }

    // Copies the block to one channel of a row. The others stay as they are.
    void put(uint8_t* dst) const {
        if (channels_ == 1) {
            std::memcpy(dst, block_, static_cast<size_t>(windows_));
            return;
        }
        ptrdiff_t x = 0;
        for (; x < columnsOfVectors(windows_); x += kVector) {
            VU channel, second, third;
            hn::LoadInterleaved3(du, dst + 3 * x, channel, second, third);
            hn::StoreInterleaved3(hn::Load(du, block_ + x), second, third, du, dst + 3 * x);
        }
        for (; x < windows_; ++x) dst[x * channels_] = block_[x];
    }

    // Finds the medians of the current row. They are then in `least_`.
    void search() {
        for (ptrdiff_t x = 0; x < kColumns; x += kVector) {
            hn::Store(hn::Zero(du), du, least_ + x);
            hn::Store(hn::Set(du, 255), du, most_ + x);
        }
        for (ptrdiff_t i = 0; i < tried_; ++i) update(thresholds_[i]);
        narrow(thresholds_, tried_);
        for (ptrdiff_t place = unfinished(); place >= 0; place = unfinished()) {
            uint8_t& threshold = thresholds_[tried_++];
            threshold = static_cast<uint8_t>((least_[place] + most_[place] + 1) / 2);
            update(threshold);
            narrow(&threshold, 1);
        }
    }

    // The place of a window whose bounds differ, or -1.
    ptrdiff_t unfinished() const {
        for (ptrdiff_t x = 0; x < kColumns; x += kVector) {
            const VU difference = hn::Sub(hn::Load(du, most_ + x), hn::Load(du, least_ + x));
            const auto differ = hn::Ne(hn::And(difference, hn::Load(du, inside_ + x)), hn::Zero(du));
            const ptrdiff_t lane = hn::FindFirstTrue(du, differ);
            if (lane >= 0) return x + lane;
        }
        return -1;
    }

    // Keeps the thresholds that bound a median of the row that was written last.
    void forgetUnused() {
        bool used[kThresholds + 1] = {};
        for (ptrdiff_t x = 0; x < windows_; ++x) used[block_[x]] = used[block_[x] + 1] = true;
        tried_ = std::remove_if(thresholds_, thresholds_ + tried_, [&](uint8_t t) { return !used[t]; }) - thresholds_;
    }

    static HWY_INLINE VU minusBelow(const int8_t* pixels, V threshold) {
        return minusLess(hn::Load(d, pixels), threshold);
    }

    // Brings the counts of a threshold to the current row.
    void update(int threshold) {
        const V t = hn::Set(d, static_cast<int8_t>(threshold - 128));
        uint8_t* counts = counts_[threshold];
        ptrdiff_t row = rowsOf_[threshold];
        rowsOf_[threshold] = row_;
        if (row_ - row > m_ / 2) {
            for (ptrdiff_t x = 0; x < kColumns; x += kVector) {
                VU count = hn::Zero(du);
                for (ptrdiff_t j = 0; j < m_; ++j) count = hn::Sub(count, minusBelow(keptRow(row_ + j) + x, t));
                hn::Store(count, du, counts + x);
            }
            row = row_;
        }
        for (; row < row_; ++row) {
            const int8_t* left = keptRow(row);
            const int8_t* entered = keptRow(row + m_);
            for (ptrdiff_t x = 0; x < kColumns; x += kVector) {
                const VU count = hn::Add(hn::Load(du, counts + x), minusBelow(left + x, t));
                hn::Store(hn::Sub(count, minusBelow(entered + x, t)), du, counts + x);
            }
        }
        for (ptrdiff_t x = 0; x < kPhase; x += kVector) {
            VU sum = hn::Load(du, counts + x);
            for (ptrdiff_t phase = 1; phase < kPhases; ++phase)
                sum = hn::Add(sum, hn::Load(du, counts + phase * kPhase + x));
            hn::Store(sum, du, counts + kColumns + x);
        }
    }

    // Narrows the bounds by thresholds, whose counts are those of the current row. Counts were stored some time before,
    // except for new thresholds: a load that overlaps a store partially waits for it.
    void narrow(const uint8_t* thresholds, ptrdiff_t count) {
        for (ptrdiff_t x = 0; x < kPhase; x += kVector) {
            Bounds phase0 = boundsAt(x);
            Bounds phase1 = boundsAt(x + kPhase);
            Bounds phase2 = boundsAt(x + 2 * kPhase);
            Bounds phase3 = boundsAt(x + 3 * kPhase);
            for (ptrdiff_t i = 0; i < count; ++i) {
                const uint8_t* counts = counts_[thresholds[i]] + x;
                const VU t = hn::Set(du, thresholds[i]);
                Sum sum = firstSum(counts);
                narrow(phase0, t, sum);
                advance(sum, counts, 0);
                narrow(phase1, t, sum);
                advance(sum, counts, 1);
                narrow(phase2, t, sum);
                advance(sum, counts, 2);
                narrow(phase3, t, sum);
            }
            store(phase0, x);
            store(phase1, x + kPhase);
            store(phase2, x + 2 * kPhase);
            store(phase3, x + 3 * kPhase);
        }
    }

    HWY_INLINE Bounds boundsAt(ptrdiff_t place) const {
        return {hn::Load(du, least_ + place), hn::Load(du, most_ + place)};
    }
    HWY_INLINE void store(const Bounds& bounds, ptrdiff_t place) {
        hn::Store(bounds.least, du, least_ + place);
        hn::Store(bounds.most, du, most_ + place);
    }

    // A median is at least the threshold, or at most the value below it.
    static HWY_INLINE void narrow(Bounds& bounds, VU threshold, const Sum& sum) {
        const auto isReached = sum.isNegative();
        const VU below = hn::Sub(threshold, hn::Set(du, 1));
        bounds.least = hn::IfThenElse(isReached, hn::Max(bounds.least, threshold), bounds.least);
        bounds.most = hn::IfThenElse(isReached, bounds.most, hn::Min(bounds.most, below));
    }

    // The sums of the windows that begin in the first phase. Sums of up to eight columns fit in a byte.
    HWY_INLINE Sum firstSum(const uint8_t* counts) const {
        const uint8_t* sums = counts + kColumns;    // of four columns
        const ptrdiff_t fours = m_ / kPhases;
        Sum sum(m_ * m_ / 2);
        for (ptrdiff_t i = 0; i + 2 <= fours; i += 2)
            sum.add(hn::Add(hn::LoadU(du, sums + i), hn::LoadU(du, sums + i + 1)));
        VU rest = hn::LoadU(du, counts + fours);
        for (ptrdiff_t phase = 1; phase < m_ % kPhases; ++phase)
            rest = hn::Add(rest, hn::LoadU(du, counts + phase * kPhase + fours));
        if (fours % 2 == 1) rest = hn::Add(rest, hn::LoadU(du, sums + fours - 1));
        sum.add(rest);
        return sum;
    }

    // To the windows that begin in the next phase.
    HWY_INLINE void advance(Sum& sum, const uint8_t* counts, ptrdiff_t phase) const {
        sum.subtract(hn::LoadU(du, counts + phase * kPhase));
        sum.add(hn::LoadU(du, counts + entering_[phase]));
    }

    ptrdiff_t m_;
    ptrdiff_t windows_;
    ptrdiff_t columns_;
    ptrdiff_t channels_;
    ptrdiff_t row_ = 0;                          // first row of the current windows
    ptrdiff_t entering_[kPhases - 1];            // place of the column that enters after each phase
    uint8_t thresholds_[kThresholds];            // that are tried
    ptrdiff_t tried_ = 0;                        // how many
    ptrdiff_t rowsOf_[kThresholds];              // row_ of the counts of each threshold
    HWY_ALIGN uint8_t block_[kColumns] = {};     // pixels to be read or written
    HWY_ALIGN uint8_t inside_[kColumns] = {};    // 255 for each window, by phase
    HWY_ALIGN uint8_t least_[kColumns];          // bounds, by phase
    HWY_ALIGN uint8_t most_[kColumns];
    HWY_ALIGN int8_t rows_[kRows][kColumns];    // row y at y % kRows, by phase
    // Of each threshold, by phase, and the sums over the phases. Sums are read beyond the end of these, for columns in
    // which no window begins.
    HWY_ALIGN uint8_t counts_[kThresholds + 1][kColumns + kPhase];
};

template <class Sum>
void filterStrips(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep, ptrdiff_t width,
                  ptrdiff_t height, int m, ptrdiff_t channels) {
    const ptrdiff_t most = kColumns - m + 1;
    const ptrdiff_t strips = (width + most - 1) / most;
    for (ptrdiff_t i = 0; i < strips; ++i) {
        const ptrdiff_t first = width * i / strips;
        Strip<Sum> strip(m, width * (i + 1) / strips - first, channels);
        strip.filter(src + first * channels, srcStep, dst + first * channels, dstStep, height);
    }
}

void filter(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep, ptrdiff_t width, ptrdiff_t height,
            int m, int channels) {
    const auto filterPlanes = m * m <= 255 ? filterStrips<NarrowSum> : filterStrips<WideSum>;
    for (int c = 0; c < channels; ++c)
        filterPlanes(src + c, srcStep, dst + c, dstStep, width / channels, height, m, channels);
}

}    // namespace HWY_NAMESPACE
}    // namespace
}    // namespace opcv
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace opcv {

namespace {
HWY_EXPORT(filter);
}    // namespace

bool hasCountingMedian(int m) { return m >= 11 && m <= 31 && m % 2 == 1; }

void countingMedian(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep, ptrdiff_t width,
                    ptrdiff_t height, int m, int channels) {
    HWY_DYNAMIC_DISPATCH(filter)(src, srcStep, dst, dstStep, width, height, m, channels);
}

}    // namespace opcv
#endif    // HWY_ONCE
