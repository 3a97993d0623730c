// The vector width of kernels. Most kernels use the widest vectors of a target. A kernel that is slower with 64 bytes,
// the width of AVX3_DL, has its own tag here, with its time on 64 bytes divided by its time on 32 bytes. Differences
// below 3 % are ignored. Kernel files include this once per target.
#if defined(OPCV_DLIB_SIMD_VECTOR_SIZE_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef OPCV_DLIB_SIMD_VECTOR_SIZE_INL_H
#undef OPCV_DLIB_SIMD_VECTOR_SIZE_INL_H
#else
#define OPCV_DLIB_SIMD_VECTOR_SIZE_INL_H
#endif

#include <hwy/highway.h>

// No HWY_BEFORE_NAMESPACE: there are no functions here, and clang rejects an attribute without one.
namespace opcv::simd {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

template <class T>
using Widest = hn::ScalableTag<T>;

template <class T>
using AtMost32Bytes = hn::CappedTag<T, 32 / sizeof(T)>;

template <class T>
using RotationTag = AtMost32Bytes<T>;    // 1.2 for grey at 8 degrees and for colour at 7: 64 bytes span too many rows

template <class T>
using BilateralTag = AtMost32Bytes<T>;    // 1.65: each weight is a separate load from a block that was just stored

template <class T>
using ExtremumTag = AtMost32Bytes<T>;    // minimum and maximum of 3x3: page 1.14, tile 0.75; of 9x9: 1.10 and 1.27

template <class T>
using WeightedMedian3Tag = AtMost32Bytes<T>;    // page 1.15 to 1.24, tile 0.86

}    // namespace HWY_NAMESPACE
}    // namespace opcv::simd

#endif    // include guard of the target
