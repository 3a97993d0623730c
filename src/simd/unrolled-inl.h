// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Loops over arrays of vectors that stay in registers. Kernel files include this once per target.
#if defined(OPCV_DLIB_SIMD_UNROLLED_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef OPCV_DLIB_SIMD_UNROLLED_INL_H
#undef OPCV_DLIB_SIMD_UNROLLED_INL_H
#else
#define OPCV_DLIB_SIMD_UNROLLED_INL_H
#endif

#include <hwy/highway.h>

#include <cstddef>
#include <type_traits>
#include <utility>

// For the functions that are called so: all calls become part of the loop.
#ifndef OPCV_DLIB_INLINED
#define OPCV_DLIB_INLINED HWY_ATTR __attribute__((always_inline))
#endif

HWY_BEFORE_NAMESPACE();
namespace opcv::simd {
namespace HWY_NAMESPACE {

template <class F, size_t... kIndex>
HWY_INLINE void unrolledOver(const F& f, std::index_sequence<kIndex...> /*indices*/) {
    (f(std::integral_constant<size_t, kIndex>()), ...);
}

// Calls f(i) for each i below kCount, with constants: compilers keep an array in memory if an index is a variable.
template <size_t kCount, class F>
HWY_INLINE void unrolled(const F& f) {
    unrolledOver(f, std::make_index_sequence<kCount>());
}

}    // namespace HWY_NAMESPACE
}    // namespace opcv::simd
HWY_AFTER_NAMESPACE();

#endif    // include guard of the target
