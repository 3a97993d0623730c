// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// 3x3 medians in which the centre counts 3 or 5 times.
//
// Such a median is the centre clamped between two order statistics of its eight neighbours: of 8 + 3 values the 6th is
// the centre unless fewer than 3 neighbours lie on one side of it, so the bounds are the 3rd and the 6th neighbour;
// with weight 5 they are the 2nd and the 7th.
//
// Two rows are computed at a time. The four pixels beside the two centres are neighbours of both and are sorted once:
//
//     a a a        a: neighbours of the upper centre only; so is the lower centre
//     s 0 s        s: shared
//     s 1 s
//     b b b        b: neighbours of the lower centre only; so is the upper centre
#include <cstddef>
#include <cstdint>

#include "OPCV_dlib.h"
#include "rank/fixed_window.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "rank/median_weighted_center.cpp"
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

using hn::Max;
using hn::Min;

// Four values, lowest first.
template <class V>
struct Four {
    V v0, v1, v2, v3;
};

template <class V>
HWY_INLINE Four<V> sorted(V a, V b, V c, V d) {
    const V ab = Min(a, b), cd = Min(c, d), AB = Max(a, b), CD = Max(c, d);
    const V low = Max(ab, cd), high = Min(AB, CD);
    return {Min(ab, cd), Min(low, high), Max(low, high), Max(AB, CD)};
}

struct Weight3 {
    template <class V>
    static HWY_INLINE V median(V centre, const Four<V>& a, const Four<V>& b) {
        const V third = Max(Min(a.v1, b.v1), Min(Min(a.v2, b.v2), Max(a.v0, b.v0)));
        const V sixth = Min(Max(a.v2, b.v2), Max(Min(a.v3, b.v3), Max(a.v1, b.v1)));
        return Max(third, Min(centre, sixth));
    }
};

struct Weight5 {
    template <class V>
    static HWY_INLINE V median(V centre, const Four<V>& a, const Four<V>& b) {
        const V second = Min(Min(a.v1, b.v1), Max(a.v0, b.v0));
        const V seventh = Max(Max(a.v2, b.v2), Min(a.v3, b.v3));
        return Max(second, Min(centre, seventh));
    }
};

struct Rows {
    const uint8_t* above;
    const uint8_t* upper;
    const uint8_t* lower;
    const uint8_t* below;
};

template <class Weight, class D>
HWY_INLINE void filterAt(D d, const Rows& src, ptrdiff_t x, const RowPair& pair) {
    const auto at = [=](const uint8_t* row, ptrdiff_t dx) HWY_ATTR { return hn::LoadU(d, row + x + dx); };
    const auto upper = at(src.upper, 0);
    const auto lower = at(src.lower, 0);
    const auto sides = sorted(at(src.upper, -1), at(src.upper, 1), at(src.lower, -1), at(src.lower, 1));
    const auto over = sorted(at(src.above, -1), at(src.above, 0), at(src.above, 1), lower);
    const auto under = sorted(at(src.below, -1), at(src.below, 0), at(src.below, 1), upper);
    hn::StoreU(Weight::median(lower, sides, under), d, pair.lowerDst + x);
    hn::StoreU(Weight::median(upper, sides, over), d, pair.upperDst + x);
}

template <class Weight>
HWY_INLINE void filterImage(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep, int width,
                            int height) {
    forEachRowPair(src, srcStep, dst, dstStep, height, [=](const RowPair& pair) HWY_ATTR {
        const uint8_t* lower = pair.upper + srcStep;
        const Rows rows = {pair.upper - srcStep, pair.upper, lower, pair.hasLower ? lower + srcStep : lower};
        coverPair(simd::HWY_NAMESPACE::FixedMedianTag<uint8_t>(), pair, width,
                  [=](auto d, ptrdiff_t x) HWY_ATTR { filterAt<Weight>(d, rows, x, pair); });
    });
}

void weight3(const uint8_t* src, int srcStep, uint8_t* dst, int dstStep, int width, int height) {
    filterImage<Weight3>(src, srcStep, dst, dstStep, width, height);
}

void weight5(const uint8_t* src, int srcStep, uint8_t* dst, int dstStep, int width, int height) {
    filterImage<Weight5>(src, srcStep, dst, dstStep, width, height);
}

}    // namespace HWY_NAMESPACE
}    // namespace
}    // namespace opcv
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace opcv {
namespace {
HWY_EXPORT(weight3);
HWY_EXPORT(weight5);

FixedWindowKernel kernelOf(int weight) {
    switch (weight) {
        case 3: return FilterMedianWeightedCenter3x3_3_8u_C1R;
        case 5: return FilterMedianWeightedCenter3x3_5_8u_C1R;
        default: return nullptr;
    }
}
}    // namespace
}    // namespace opcv

using namespace opcv;

void FilterMedianWeightedCenter3x3_3_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst, int dstStep,
                                            int width, int height) {
    HWY_DYNAMIC_DISPATCH(weight3)(pSrc, srcStep, pDst, dstStep, width, height);
}

void FilterMedianWeightedCenter3x3_5_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst, int dstStep,
                                            int width, int height) {
    HWY_DYNAMIC_DISPATCH(weight5)(pSrc, srcStep, pDst, dstStep, width, height);
}

IppStatus IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst,
                                                            int dstStep, IppiSize dstRoiSize, int weight) {
    return filterFixedWindow(kernelOf(weight), pSrc, srcStep, pDst, dstStep, dstRoiSize, 1);
}
#endif    // HWY_ONCE
