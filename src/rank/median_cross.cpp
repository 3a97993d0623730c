// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Medians over a plus sign: the 5 pixels of a 3x3 cross or the 9 pixels of a 5x5 cross.
//
// Branch-free networks of minimum and maximum, directly from the source rows. Two rows are computed at a time, because
// their crosses share the two or four pixels between them. Only bytes of the windows are read.
#include <cstddef>
#include <cstdint>

#include "OPCV_dlib.h"
#include "rank/fixed_window.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "rank/median_cross.cpp"
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

template <class V>
HWY_INLINE V medianOf3(V a, V b, V c) {
    return hn::Min(hn::Max(hn::Min(a, b), c), hn::Max(a, b));
}

template <class V>
struct Pair {
    V low, high;
};

template <class V>
HWY_INLINE Pair<V> sorted(V a, V b) {
    return {hn::Min(a, b), hn::Max(a, b)};
}

// The median of five values is the median of the fifth and the two middle ones of the other four.
template <class V>
HWY_INLINE V medianOf5(const Pair<V>& s, const Pair<V>& t, V fifth) {
    return medianOf3(hn::Min(s.high, t.high), hn::Max(s.low, t.low), fifth);
}

template <class V>
struct Triple {
    V low, middle, high;
};

template <class V>
HWY_INLINE Triple<V> sorted(V a, V b, V c) {
    const V low = hn::Min(a, b);
    const V high = hn::Max(a, b);
    return {hn::Min(low, c), hn::Max(low, hn::Min(high, c)), hn::Max(high, c)};
}

// Of nine values in three sorted triples, only these three can be the median.
template <class V>
HWY_INLINE V medianOf9(const Triple<V>& s, const Triple<V>& t, const Triple<V>& u) {
    return medianOf3(hn::Max(hn::Max(s.low, t.low), u.low), medianOf3(s.middle, t.middle, u.middle),
                     hn::Min(hn::Min(s.high, t.high), u.high));
}

// The positions of the two crosses. For a last row without a partner, the lower cross is not read where it would need
// more of the source; the lower result is then meaningless.
struct Crosses {
    Crosses(const RowPair& pair, ptrdiff_t srcStep, ptrdiff_t reach)
        : step(srcStep),
          upper(pair.upper),
          lower(pair.upper + srcStep),
          lowerSides(pair.hasLower ? lower : upper),
          lowest(upper + (reach + (pair.hasLower ? 1 : 0)) * srcStep) {}

    ptrdiff_t step;
    const uint8_t* upper;
    const uint8_t* lower;
    const uint8_t* lowerSides;
    const uint8_t* lowest;
};

struct Cross3x3 {
    static constexpr ptrdiff_t kReach = 1;

    template <class D>
    static HWY_INLINE void filterAt(D d, const Crosses& src, ptrdiff_t x, const RowPair& pair) {
        const auto at = [=](const uint8_t* row, ptrdiff_t dx) HWY_ATTR { return hn::LoadU(d, row + x + dx); };
        const auto sides = [=](const uint8_t* row) HWY_ATTR { return sorted(at(row, -1), at(row, 1)); };
        const auto centres = sorted(at(src.upper, 0), at(src.lower, 0));
        hn::StoreU(medianOf5(centres, sides(src.lowerSides), at(src.lowest, 0)), d, pair.lowerDst + x);
        hn::StoreU(medianOf5(centres, sides(src.upper), at(src.upper - src.step, 0)), d, pair.upperDst + x);
    }
};

struct Cross5x5 {
    static constexpr ptrdiff_t kReach = 2;

    template <class D>
    static HWY_INLINE void filterAt(D d, const Crosses& src, ptrdiff_t x, const RowPair& pair) {
        const auto at = [=](const uint8_t* row, ptrdiff_t dx) HWY_ATTR { return hn::LoadU(d, row + x + dx); };
        const auto sides = [=](const uint8_t* row) HWY_ATTR { return sorted(at(row, -2), at(row, -1), at(row, 1)); };
        const auto above = at(src.upper - src.step, 0);
        const auto below = at(src.lower + src.step, 0);
        const auto inner = sorted(above, at(src.upper, 0), at(src.lower, 0));
        const auto lowerRest = sorted(at(src.lowerSides, 2), below, at(src.lowest, 0));
        const auto upperRest = sorted(at(src.upper, 2), below, at(src.upper - 2 * src.step, 0));
        hn::StoreU(medianOf9(inner, sides(src.lowerSides), lowerRest), d, pair.lowerDst + x);
        hn::StoreU(medianOf9(inner, sides(src.upper), upperRest), d, pair.upperDst + x);
    }
};

template <class Cross>
HWY_INLINE void filterImage(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep, int width,
                            int height) {
    forEachRowPair(src, srcStep, dst, dstStep, height, [=](const RowPair& pair) HWY_ATTR {
        const Crosses crosses(pair, srcStep, Cross::kReach);
        coverPair(simd::HWY_NAMESPACE::FixedMedianTag<uint8_t>(), pair, width,
                  [=](auto d, ptrdiff_t x) HWY_ATTR { Cross::filterAt(d, crosses, x, pair); });
    });
}

void cross3x3(const uint8_t* src, int srcStep, uint8_t* dst, int dstStep, int width, int height) {
    filterImage<Cross3x3>(src, srcStep, dst, dstStep, width, height);
}

void cross5x5(const uint8_t* src, int srcStep, uint8_t* dst, int dstStep, int width, int height) {
    filterImage<Cross5x5>(src, srcStep, dst, dstStep, width, height);
}

}    // namespace HWY_NAMESPACE
}    // namespace
}    // namespace opcv
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace opcv {
namespace {
HWY_EXPORT(cross3x3);
HWY_EXPORT(cross5x5);

FixedWindowKernel kernelOf(int mask) {
    switch (mask) {
        case 33: return FilterMedianCross3x3_8u_C1R;
        case 55: return FilterMedianCross5x5_8u_C1R;
        default: return nullptr;
    }
}
}    // namespace
}    // namespace opcv

using namespace opcv;

void FilterMedianCross3x3_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst, int dstStep, int width,
                                 int height) {
    HWY_DYNAMIC_DISPATCH(cross3x3)(pSrc, srcStep, pDst, dstStep, width, height);
}

void FilterMedianCross5x5_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst, int dstStep, int width,
                                 int height) {
    HWY_DYNAMIC_DISPATCH(cross5x5)(pSrc, srcStep, pDst, dstStep, width, height);
}

IppStatus IPPShare_ippiFilterMedianCross_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst,
                                                int dstStep, IppiSize dstRoiSize, int mask) {
    return filterFixedWindow(kernelOf(mask), pSrc, srcStep, pDst, dstStep, dstRoiSize, 1);
}
#endif    // HWY_ONCE
