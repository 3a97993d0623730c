// How wide a kernel's vectors are. The widest of a target serve most kernels; a kernel that loses by 64 bytes, the width of
// AVX3_DL, has a tag of its own here, with its time on those divided by its time on 32 bytes. A kernel that gains or loses
// less than 3 % stays with the widest. Included once a target by the kernel files.
#if defined(OPCV_DLIB_SIMD_VECTOR_SIZE_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef OPCV_DLIB_SIMD_VECTOR_SIZE_INL_H
#undef OPCV_DLIB_SIMD_VECTOR_SIZE_INL_H
#else
#define OPCV_DLIB_SIMD_VECTOR_SIZE_INL_H
#endif

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace opcv {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

template <class T>
using Widest = hn::ScalableTag<T>;

template <class T>
using AtMost32Bytes = hn::CappedTag<T, 32 / sizeof(T)>;

template <class T>
using RotationTag = AtMost32Bytes<T>;    // 1.2 for grey at 8 degrees and for colour at 7: 64 bytes span too many rows

template <class T>
using BilateralTag = AtMost32Bytes<T>;    // 1.65: each weight is looked up by itself, from a block that was just stored

}    // namespace HWY_NAMESPACE
}    // namespace opcv
HWY_AFTER_NAMESPACE();

#endif    // include guard of the target
