// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Covers a row with whole vectors, or blocks of vectors, and the remaining columns by the rule that the kernel selects.
// Kernel files include this once per target.
//
//     rule            last part of a row                               for
//     coverRow        the last vector is pulled back to end with       results that may be stored twice: apart from the
//     coverPulledBack the row, so some columns are done twice         source, or the same when computed again
//     coverRowOnce    the rest goes one lane at a time                 sums and other changes in place
//     coverWithRest   the caller takes the rest in one call            vectors that go through a block on the stack
//     coverBeyond     the last vector runs on past the end             buffers with room for it
//
// In a row shorter than a vector, no vector can be pulled back: coverRow processes it one lane at a time, and
// coverPulledBack passes it to the caller in one call.
#if defined(OPCV_DLIB_SIMD_ROW_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef OPCV_DLIB_SIMD_ROW_INL_H
#undef OPCV_DLIB_SIMD_ROW_INL_H
#else
#define OPCV_DLIB_SIMD_ROW_INL_H
#endif

#include <hwy/cache_control.h>
#include <hwy/highway.h>

#include <cstddef>
#include <cstdint>

HWY_BEFORE_NAMESPACE();
namespace opcv::simd {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Calls `blockAt(x)` for the first column of each block. A row shorter than a block is one call of `shortRow()`.
// `blockAt` is instantiated once because blocks are long formulas; coverRow instantiates its formula twice.
template <class BlockAt, class ShortRow>
HWY_INLINE void coverPulledBack(ptrdiff_t width, ptrdiff_t block, const BlockAt& blockAt, const ShortRow& shortRow) {
    if (width < block) {
        shortRow();
        return;
    }
    for (ptrdiff_t x = 0; x < width; x += block) blockAt(HWY_MIN(x, width - block));
}

// Calls `blockAt(x)` for the first column of each block that lies completely in the row, then `restAt(x, count)` for
// the remaining columns, if any.
template <class BlockAt, class RestAt>
HWY_INLINE void coverWithRest(ptrdiff_t width, ptrdiff_t block, const BlockAt& blockAt, const RestAt& restAt) {
    ptrdiff_t x = 0;
    for (; x + block <= width; x += block) blockAt(x);
    if (x < width) restAt(x, width - x);
}

// Calls `blockAt(x)` for the first column of each block that begins within the row.
template <class BlockAt>
HWY_INLINE void coverBeyond(ptrdiff_t width, ptrdiff_t block, const BlockAt& blockAt) {
    for (ptrdiff_t x = 0; x < width; x += block) blockAt(x);
}

template <class D>
HWY_INLINE ptrdiff_t lanesOf(D d) {
    return static_cast<ptrdiff_t>(hn::Lanes(d));
}

// Calls `at(tag, x)`: the tag is `d`, or one for a single lane.
template <class D, class At>
HWY_INLINE void coverRow(D d, ptrdiff_t width, const At& at) {
    const hn::CappedTag<hn::TFromD<D>, 1> one;
    const ptrdiff_t last = width - lanesOf(d);
    if (last < 0) {
        for (ptrdiff_t x = 0; x < width; ++x) at(one, x);
        return;
    }
    for (ptrdiff_t x = 0; x < last; x += lanesOf(d)) at(d, x);
    at(d, last);
}

// Calls `at(tag, x)` so that each column is processed once.
template <class D, class At>
HWY_INLINE void coverRowOnce(D d, ptrdiff_t width, const At& at) {
    const hn::CappedTag<hn::TFromD<D>, 1> one;
    coverWithRest(
        width, lanesOf(d), [&](ptrdiff_t x) HWY_ATTR { at(d, x); },
        [&](ptrdiff_t x, ptrdiff_t count) HWY_ATTR {
            for (ptrdiff_t i = 0; i < count; ++i) at(one, x + i);
        });
}

// Rows are too short for the hardware prefetcher to recognise that the next one follows a step later.
HWY_INLINE void prefetchRow(const uint8_t* row, ptrdiff_t width) {
    constexpr ptrdiff_t kCacheLine = 64;
    for (ptrdiff_t i = 0; i < width; i += kCacheLine) hwy::Prefetch(row + i);
}

// Brings the cache lines of bytes that are about to be written. Any address is allowed.
HWY_INLINE void prefetchToWrite(const uint8_t* first, ptrdiff_t bytes) {
    constexpr ptrdiff_t kCacheLine = 64;
    for (ptrdiff_t i = 0; i < bytes; i += kCacheLine) __builtin_prefetch(first + i, 1);
    __builtin_prefetch(first + bytes - 1, 1);    // the lines begin anywhere
}

}    // namespace HWY_NAMESPACE
}    // namespace opcv::simd
HWY_AFTER_NAMESPACE();

#endif    // include guard of the target
