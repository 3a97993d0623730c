// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The vector width of kernels. Most kernels use the widest vectors of a target. A kernel that is slower with 64 bytes,
// the width of AVX3_DL, has its own tag here, with its time on AVX3_DL divided by its time on AVX2. Differences below
// 3 % are ignored. Kernel files include this once per target.
//
// Measured on an AMD EPYC with AVX-512, one thread: minima of at least 11 runs, taken in turn, of a page of 2480 x 3508
// pixels and a tile of 256 x 256.
#if defined(OPCV_DLIB_SIMD_VECTOR_SIZE_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef OPCV_DLIB_SIMD_VECTOR_SIZE_INL_H
#undef OPCV_DLIB_SIMD_VECTOR_SIZE_INL_H
#else
#define OPCV_DLIB_SIMD_VECTOR_SIZE_INL_H
#endif

#include <hwy/highway.h>

#include <cstddef>

// No HWY_BEFORE_NAMESPACE: there are no functions here, and clang rejects an attribute without one.
namespace opcv::simd {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Registers of a target, as far as kernels keep sums in them.
constexpr size_t kVectorRegisters = HWY_ARCH_ARM_A64 || HWY_TARGET == HWY_AVX3_DL ? 32 : 16;

template <class T>
using Widest = hn::ScalableTag<T>;

template <class T>
using AtMost32Bytes = hn::CappedTag<T, 32 / sizeof(T)>;

// Minimum and maximum of 3x3: page 1.14, tile 0.75. Larger rectangles, whose neighbours are in registers, use Widest.
template <class T>
using ExtremumTag = AtMost32Bytes<T>;

// Page: 3x3 cross 1.06 to 1.45, 5x5 cross 1.06 to 1.33, weight 3 1.17 to 1.24, weight 5 0.96 to 1.23; tile 0.74 to 0.92.
// On 32 bytes both take 1.00 to 1.03.
template <class T>
using FixedMedianTag = AtMost32Bytes<T>;

}    // namespace HWY_NAMESPACE
}    // namespace opcv::simd

#endif    // include guard of the target
