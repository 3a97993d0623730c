// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Unaligned vectors, from two adjacent ones in registers. Kernel files include this once per target.
#if defined(OPCV_DLIB_SIMD_SLIDE_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef OPCV_DLIB_SIMD_SLIDE_INL_H
#undef OPCV_DLIB_SIMD_SLIDE_INL_H
#else
#define OPCV_DLIB_SIMD_SLIDE_INL_H
#endif

#include <hwy/highway.h>

#include <cstddef>

HWY_BEFORE_NAMESPACE();
namespace opcv::simd {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// The vector of bytes that begins kBytes after the first byte of `here`; `next` follows `here`.
#if HWY_TARGET == HWY_AVX3_DL

template <size_t kBytes, class D, class V = hn::Vec<D>>
HWY_INLINE V slid(D d, V here, V next) {
    static_assert(hn::MaxLanes(d) == 64 && kBytes <= 64, "of a whole vector");
    const V order = hn::Iota(d, kBytes);
    return V{_mm512_permutex2var_epi8(here.raw, order.raw, next.raw)};
}

#else

template <size_t kBytes, class D, class V = hn::Vec<D>>
HWY_INLINE V slid(D d, V here, V next) {
    constexpr size_t kBlock = 16;    // within which Highway shifts
    static_assert(hn::MaxLanes(d) <= 2 * kBlock && kBytes <= hn::MaxLanes(d), "at most two blocks");
    if constexpr (kBytes == hn::MaxLanes(d)) {
        return next;
    } else if constexpr (hn::MaxLanes(d) == kBlock) {
        return hn::CombineShiftRightBytes<kBytes>(d, next, here);
    } else {
        const V middle = hn::ConcatLowerUpper(d, next, here);
        if constexpr (kBytes == kBlock)
            return middle;
        else if constexpr (kBytes < kBlock)
            return hn::CombineShiftRightBytes<kBytes>(d, middle, here);
        else
            return hn::CombineShiftRightBytes<kBytes - kBlock>(d, next, middle);
    }
}

#endif

}    // namespace HWY_NAMESPACE
}    // namespace opcv::simd
HWY_AFTER_NAMESPACE();

#endif    // include guard of the target
