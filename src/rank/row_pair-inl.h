// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Rows that are filtered two at a time. Kernel files include this once per target.
#if defined(OPCV_DLIB_RANK_ROW_PAIR_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef OPCV_DLIB_RANK_ROW_PAIR_INL_H
#undef OPCV_DLIB_RANK_ROW_PAIR_INL_H
#else
#define OPCV_DLIB_RANK_ROW_PAIR_INL_H
#endif

#include "simd/row-inl.h"

HWY_BEFORE_NAMESPACE();
namespace opcv::rank {
namespace HWY_NAMESPACE {

using simd::HWY_NAMESPACE::coverRow;

// Two rows that are filtered together, because their windows share pixels. A last row without a partner is paired with
// itself: both results go to the same place, so the upper one must be stored last.
struct RowPair {
    const uint8_t* upper;    // first source pixel
    bool hasLower;
    uint8_t* upperDst;
    uint8_t* lowerDst;
    const uint8_t* next[4];    // rows first used by the next pair: two to read, two to write
};

template <class FilterPair>
HWY_INLINE void forEachRowPair(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep, int height,
                               const FilterPair& filterPair) {
    for (; height > 0; height -= 2, src += 2 * srcStep, dst += 2 * dstStep) {
        RowPair pair{src, height > 1, dst, height > 1 ? dst + dstStep : dst, {src, src, dst, dst}};
        if (height > 3)
            for (ptrdiff_t i = 0; i < 2; ++i) {
                pair.next[i] = src + (3 + i) * srcStep;
                pair.next[2 + i] = dst + (2 + i) * dstStep;
            }
        filterPair(pair);
    }
}

// coverRow for both rows of a pair. It also prefetches the pixels of the next pair, one vector at a time: rows are too
// short for the hardware prefetcher, and prefetching them all at once would stall the arithmetic.
template <class D, class FilterAt>
HWY_INLINE void coverPair(D full, const RowPair& pair, ptrdiff_t width, const FilterAt& filterAt) {
    coverRow(full, width, [&](auto d, ptrdiff_t x) HWY_ATTR {
        for (const uint8_t* row : pair.next) hwy::Prefetch(row + x);
        filterAt(d, x);
    });
}

}    // namespace HWY_NAMESPACE
}    // namespace opcv::rank
HWY_AFTER_NAMESPACE();

#endif    // include guard of the target
