// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Bilinear rotation at angles that are too steep for groups of bytes, by the formula of rotate_groups.cpp. The target is
// computed in strips of columns. In each row of a strip
//
//     1. vectors compute the address of the upper left tap of each pixel;
//     2. the taps are copied into a buffer, as bytes or pixels side by side, from two rows of the source;
//     3. vectors interpolate, with one channel of one pixel in each 32-bit lane:
//
//            bytes           p00 p01 p10 p11
//            16-bit lanes    h0 = (32 - fx) * p00 + fx * p01, h1 = (32 - fx) * p10 + fx * p11
//            32-bit lane     (32 - fy) * h0 + fy * h1
//
// Scalar copies take less time than gather instructions and need no bytes but the taps. A row of the target crosses many
// rows of the source, which no processor foresees, so both are prefetched.
//
// Along a row the source position moves in one direction only, so the pixels whose taps are all inside the source are
// an interval. From its ends on, pixels are computed one by one as long as they have a tap inside. The rest is border.
#include "geometry/rotate_kernel.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "geometry/rotate_pixels.cpp"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/row-inl.h"

HWY_BEFORE_NAMESPACE();
namespace opcv {
namespace {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using simd::HWY_NAMESPACE::coverBeyond;
using simd::HWY_NAMESPACE::coverWithRest;
using simd::HWY_NAMESPACE::lanesOf;
using simd::HWY_NAMESPACE::prefetchToWrite;

using D32 = hn::ScalableTag<int32_t>;
using V32 = hn::Vec<D32>;

constexpr int kStripPixels = 128;
constexpr int kMoreLanes = static_cast<int>(hn::MaxLanes(D32()));    // of the last vector, beyond the strip

// The lanes of one pixel: one for grey, otherwise four.
template <int kChannels>
constexpr int kLanes = kChannels == 1 ? 1 : 4;

// Part of the target's columns: the column part of each pixel's position.
struct Strip {
    Strip(const RotationJob& job, int firstColumn, int columns) : first(firstColumn), count(columns) {
        for (int i = 0; i < count; ++i) {
            const MapPosition at = job.map.column(first + i);
            x[i] = at.x;
            y[i] = at.y;
        }
    }

    MapPosition at(int pixel) const { return {x[pixel], y[pixel]}; }

    int first;
    int count;
    HWY_ALIGN int32_t x[kStripPixels + kMoreLanes]{};
    HWY_ALIGN int32_t y[kStripPixels + kMoreLanes]{};
};

struct Interval {
    int first;
    int end;
};

// What is computed of the pixels of an interval in one row.
template <int kChannels>
struct PixelRow {
    static constexpr int kBytes = kLanes<kChannels> * kStripPixels + kMoreLanes;

    HWY_ALIGN int32_t offsets[kStripPixels + kMoreLanes];     // of the upper left taps, in the source
    HWY_ALIGN int32_t xWeights[kStripPixels + kMoreLanes];    // fx, fx in 16-bit lanes
    HWY_ALIGN int32_t yWeights[kStripPixels + kMoreLanes];    // 32 - fy, fy
    HWY_ALIGN uint8_t taps[4 * kBytes];
    HWY_ALIGN uint8_t values[kBytes];
};

template <int kChannels>
void locate(const RotationJob& job, const Strip& strip, const Interval& pixels, MapPosition row,
            PixelRow<kChannels>& out) {
    const D32 d;
    const V32 step = hn::Set(d, static_cast<int32_t>(job.sourceStep));
    const V32 pixelSize = hn::Set(d, kChannels);
    const auto fraction = [&](V32 at) HWY_ATTR { return hn::And(hn::ShiftRight<kMapBits - 5>(at), hn::Set(d, 31)); };
    coverBeyond(pixels.end - pixels.first, lanesOf(d), [&](ptrdiff_t i) HWY_ATTR {
        const V32 x = hn::Add(hn::LoadU(d, strip.x + pixels.first + i), hn::Set(d, row.x));
        const V32 y = hn::Add(hn::LoadU(d, strip.y + pixels.first + i), hn::Set(d, row.y));
        const V32 column = hn::ShiftRight<kMapBits>(x);
        const V32 inRow = kChannels == 1 ? column : hn::Mul(column, pixelSize);
        hn::Store(hn::Add(hn::Mul(hn::ShiftRight<kMapBits>(y), step), inRow), d, out.offsets + i);
        const V32 fx = fraction(x);
        const V32 fy = fraction(y);
        hn::Store(hn::Or(fx, hn::ShiftLeft<16>(fx)), d, out.xWeights + i);
        hn::Store(hn::Add(hn::Sub(hn::ShiftLeft<16>(fy), fy), hn::Set(d, 32)), d, out.yWeights + i);
    });
}

// Brings the taps of a later row of the strip into the cache. A cache line holds taps for many rows, so that those of
// every eighth pixel are enough. The first pixel takes each value in eight rows, with a changing difference: at any
// angle, others follow the source rows that cross the strip.
// Must be inlined: gcc drops calls of a function that only prefetches.
template <int kChannels>
HWY_INLINE void prefetchTaps(const RotationJob& job, const int32_t* offsets, int y, int count) {
    constexpr int kRowsAhead = 16;
    constexpr unsigned kEvery = 8;
    const auto rows = static_cast<ptrdiff_t>(kRowsAhead * job.map.xPerColumn());
    const auto columns = static_cast<ptrdiff_t>(-kRowsAhead * job.map.yPerColumn());
    const ptrdiff_t ahead = rows * job.sourceStep + columns * kChannels;
    const ptrdiff_t last = (job.sourceHeight - 1) * job.sourceStep;
    const unsigned row = static_cast<unsigned>(y) % (2 * kEvery);
    for (int i = static_cast<int>(row * (row + 1) / 2 % kEvery); i < count; i += kEvery)
        hwy::Prefetch(job.source + std::clamp<ptrdiff_t>(offsets[i] + ahead, 0, last));
}

// With three channels, two bytes of the next pixel are copied too.
template <int kChannels>
void copyTaps(const RotationJob& job, int count, PixelRow<kChannels>& row) {
    constexpr ptrdiff_t kBytes = 2 * kLanes<kChannels>;
    const auto copy = [&](ptrdiff_t i) {
        const uint8_t* const upper = job.source + row.offsets[i];
        std::memcpy(row.taps + 2 * i * kBytes, upper, kBytes);
        std::memcpy(row.taps + (2 * i + 1) * kBytes, upper + job.sourceStep, kBytes);
    };
    constexpr ptrdiff_t kUnrolled = 4;    // a copy takes so few instructions that those of a loop would count
    coverWithRest(
        count, kUnrolled,
        [&](ptrdiff_t i) {
            for (ptrdiff_t k = 0; k < kUnrolled; ++k) copy(i + k);
        },
        [&](ptrdiff_t i, ptrdiff_t rest) {
            for (ptrdiff_t k = 0; k < rest; ++k) copy(i + k);
        });
}

// The taps in the order of the lanes.
template <int kChannels>
HWY_INLINE V32 loadTaps(const uint8_t* taps) {
    const hn::Repartition<uint8_t, D32> d8;
    const auto bytes = hn::Load(d8, taps);
    if constexpr (kChannels == 1) {
        return hn::BitCast(D32(), bytes);
    } else {
        HWY_ALIGN static constexpr uint8_t kThree[16] = {0, 3, 8, 11, 1, 4, 9, 12, 2, 5, 10, 13, 2, 5, 10, 13};
        HWY_ALIGN static constexpr uint8_t kFour[16] = {0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15};
        const auto order = hn::LoadDup128(d8, kChannels == 3 ? kThree : kFour);
        return hn::BitCast(D32(), hn::TableLookupBytes(bytes, order));
    }
}

// The weights of one pixel in all its lanes.
template <int kChannels>
HWY_INLINE hn::Vec<hn::Repartition<int16_t, D32>> loadWeights(const int32_t* weights) {
    const hn::Repartition<int16_t, D32> d16;
    if constexpr (kChannels == 1) {
        return hn::BitCast(d16, hn::Load(D32(), weights));
    } else {
        HWY_ALIGN static constexpr uint8_t kPixelOfBlock[64] = {
            0, 1, 2,  3,  0,  1,  2,  3,  0,  1,  2,  3,  0,  1,  2,  3,  4,  5,  6,  7, 4,  5,
            6, 7, 4,  5,  6,  7,  4,  5,  6,  7,  8,  9,  10, 11, 8,  9,  10, 11, 8,  9, 10, 11,
            8, 9, 10, 11, 12, 13, 14, 15, 12, 13, 14, 15, 12, 13, 14, 15, 12, 13, 14, 15};
        static_assert(HWY_MAX_BYTES <= sizeof(kPixelOfBlock));
        const hn::Repartition<uint8_t, D32> d8;
        const auto pixels = hn::BitCast(d8, hn::LoadDup128(D32(), weights));
        return hn::BitCast(d16, hn::TableLookupBytes(pixels, hn::Load(d8, kPixelOfBlock)));
    }
}

template <int kChannels>
void interpolate(int count, PixelRow<kChannels>& row) {
    const D32 d;
    const hn::Repartition<int16_t, D32> d16;
    const hn::Repartition<uint16_t, D32> u16;
    const hn::Rebind<uint8_t, D32> bytes;
    coverBeyond(kLanes<kChannels> * count, lanesOf(d), [&](ptrdiff_t i) HWY_ATTR {
        const ptrdiff_t pixel = i / kLanes<kChannels>;
        const V32 taps = loadTaps<kChannels>(row.taps + 4 * i);
        const auto fx = loadWeights<kChannels>(row.xWeights + pixel);
        const auto left = hn::BitCast(d16, hn::And(taps, hn::Set(d, 0x00FF00FF)));
        const auto right = hn::BitCast(d16, hn::ShiftRight<8>(hn::BitCast(u16, taps)));
        const auto h = hn::Add(hn::ShiftLeft<5>(left), hn::Mul(fx, hn::Sub(right, left)));
        V32 rest = hn::Zero(d);
        const V32 sums =
            hn::ReorderWidenMulAccumulate(d, h, loadWeights<kChannels>(row.yWeights + pixel), hn::Zero(d), rest);
        const V32 value = hn::Add(hn::RearrangeToOddPlusEven(sums, rest), hn::Set(d, 512));
        hn::StoreU(hn::DemoteTo(bytes, hn::ShiftRight<10>(value)), bytes, row.values + i);
    });
}

// Drops every fourth byte.
void packThreeChannels(int count, uint8_t* values) {
    HWY_ALIGN static constexpr uint8_t kKept[16] = {0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, 3, 7, 11, 15};
    const hn::FixedTag<uint8_t, 16> d;
    for (ptrdiff_t i = 0; i < count; i += 4)
        hn::StoreU(hn::TableLookupBytes(hn::Load(d, values + 4 * i), hn::Load(d, kKept)), d, values + 3 * i);
}

// Pixels of row `y` whose taps are all inside the source.
template <int kChannels>
void rotateInside(const RotationJob& job, const Strip& strip, const Interval& pixels, int y, uint8_t* out) {
    const int count = pixels.end - pixels.first;
    PixelRow<kChannels> row;
    locate<kChannels>(job, strip, pixels, job.map.row(y), row);
    prefetchTaps<kChannels>(job, row.offsets, y, count);
    copyTaps<kChannels>(job, count, row);
    interpolate<kChannels>(count, row);
    if (kChannels == 3) packThreeChannels(count, row.values);
    std::memcpy(out, row.values, static_cast<size_t>(count) * kChannels);
}

const uint8_t* tapAt(const RotationJob& job, int x, int y) {
    const bool inside = x >= 0 && x < job.sourceWidth && y >= 0 && y < job.sourceHeight;
    return inside ? job.source + y * job.sourceStep + ptrdiff_t{x} * job.channels : job.border.data();
}

template <int kChannels>
void rotatePixel(const RotationJob& job, MapPosition at, uint8_t* out) {
    const int x = at.x >> kMapBits;
    const int y = at.y >> kMapBits;
    const int fx = at.x >> (kMapBits - 5) & 31;
    const int fy = at.y >> (kMapBits - 5) & 31;
    const uint8_t* const p00 = tapAt(job, x, y);
    const uint8_t* const p01 = tapAt(job, x + 1, y);
    const uint8_t* const p10 = tapAt(job, x, y + 1);
    const uint8_t* const p11 = tapAt(job, x + 1, y + 1);
    for (int k = 0; k < kChannels; ++k) {
        const int h0 = 32 * p00[k] + fx * (p01[k] - p00[k]);
        const int h1 = 32 * p10[k] + fx * (p11[k] - p10[k]);
        out[k] = static_cast<uint8_t>((32 * h0 + fy * (h1 - h0) + 512) >> 10);
    }
}

template <int kChannels>
void fillWithBorder(const RotationJob& job, int count, uint8_t* out) {
    for (int i = 0; i < count; ++i) std::memcpy(out + ptrdiff_t{i} * kChannels, job.border.data(), kChannels);
}

// Whether all taps of the pixels between two positions are beyond the same edge.
bool isOutside(const RotationJob& job, MapPosition a, MapPosition b) {
    const auto outside = [](int one, int other, int size) {
        return std::max(one, other) >> kMapBits < -1 || std::min(one, other) >> kMapBits >= size;
    };
    return outside(a.x, b.x, job.sourceWidth) || outside(a.y, b.y, job.sourceHeight);
}

// Of the positions, which rise or fall, those from 0 to `size`, exclusive.
Interval within(const int32_t* columnParts, int count, int rowPart, int size) {
    const int low = -rowPart;
    const int high = (size << kMapBits) - rowPart;
    const auto isWithin = [&](int part) { return part >= low && part < high; };
    if (isWithin(columnParts[0]) && isWithin(columnParts[count - 1])) return {0, count};
    const bool rising = columnParts[0] < columnParts[count - 1];
    const auto firstFrom = [&](int bound) {
        const auto isBefore = [&](int part) { return (part < bound) == rising; };
        return static_cast<int>(std::partition_point(columnParts, columnParts + count, isBefore) - columnParts);
    };
    return rising ? Interval{firstFrom(low), firstFrom(high)} : Interval{firstFrom(high), firstFrom(low)};
}

// The pixels of a row of the strip whose taps can be copied from the source: none if an offset would not fit in a lane.
template <int kChannels>
Interval insideOf(const RotationJob& job, const Strip& strip, MapPosition row) {
    if (int64_t{job.sourceStep} * job.sourceHeight > INT32_MAX) return {0, 0};
    const int lastColumns = kChannels == 3 ? 2 : 1;    // whose taps or next bytes are outside
    const Interval byX = within(strip.x, strip.count, row.x, std::max(job.sourceWidth - lastColumns, 0));
    const Interval byY = within(strip.y, strip.count, row.y, job.sourceHeight - 1);
    return {std::max(byX.first, byY.first), std::min(byX.end, byY.end)};
}

template <int kChannels>
void rotateRow(const RotationJob& job, const Strip& strip, int y, uint8_t* out) {
    const MapPosition row = job.map.row(y);
    const auto positionOf = [&](int i) { return row + strip.at(i); };
    const auto isPixelOutside = [&](int i) { return isOutside(job, positionOf(i), positionOf(i)); };
    const auto outOf = [&](int i) { return out + ptrdiff_t{i} * kChannels; };
    const auto rotateOne = [&](int i) { rotatePixel<kChannels>(job, positionOf(i), outOf(i)); };

    if (isOutside(job, positionOf(0), positionOf(strip.count - 1))) {
        fillWithBorder<kChannels>(job, strip.count, out);
        return;
    }
    const Interval inside = insideOf<kChannels>(job, strip, row);
    if (inside.first >= inside.end) {
        for (int i = 0; i < strip.count; ++i) rotateOne(i);
        return;
    }
    rotateInside<kChannels>(job, strip, inside, y, outOf(inside.first));
    int before = inside.first;
    while (before > 0 && !isPixelOutside(before - 1)) rotateOne(--before);
    fillWithBorder<kChannels>(job, before, out);
    int end = inside.end;
    while (end < strip.count && !isPixelOutside(end)) rotateOne(end++);
    fillWithBorder<kChannels>(job, strip.count - end, outOf(end));
}

template <int kChannels>
void rotateRowsOf(const RotationJob& job, int firstRow, int endRow) {
    constexpr int kRowsAhead = 4;
    for (int first = 0; first < job.targetWidth; first += kStripPixels) {
        const Strip strip(job, first, std::min(kStripPixels, job.targetWidth - first));
        uint8_t* const top = job.target + ptrdiff_t{first} * kChannels;
        for (int y = firstRow; y < endRow; ++y) {
            prefetchToWrite(top + std::min(y + kRowsAhead, endRow - 1) * job.targetStep,
                            ptrdiff_t{strip.count} * kChannels);
            rotateRow<kChannels>(job, strip, y, top + y * job.targetStep);
        }
    }
}

void rotate(const RotationJob& job, int firstRow, int endRow) {
    if (job.channels == 1) return rotateRowsOf<1>(job, firstRow, endRow);
    if (job.channels == 3) return rotateRowsOf<3>(job, firstRow, endRow);
    rotateRowsOf<4>(job, firstRow, endRow);
}

}    // namespace HWY_NAMESPACE
}    // namespace
}    // namespace opcv
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace opcv {
namespace {
HWY_EXPORT(rotate);
}    // namespace

void rotateByPixel(const RotationJob& job, int firstRow, int endRow) {
    HWY_DYNAMIC_DISPATCH(rotate)(job, firstRow, endRow);
}

}    // namespace opcv
#endif    // HWY_ONCE
