// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// A vector that is loaded once. Kernel files include this once per target.
#if defined(OPCV_DLIB_SIMD_IN_REGISTER_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef OPCV_DLIB_SIMD_IN_REGISTER_INL_H
#undef OPCV_DLIB_SIMD_IN_REGISTER_INL_H
#else
#define OPCV_DLIB_SIMD_IN_REGISTER_INL_H
#endif

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace opcv::simd {
namespace HWY_NAMESPACE {

// The vector, in a register. On x86-64, GCC otherwise loads a vector again for each operation that uses it, as an operand
// in memory; loads, not arithmetic, then limit the speed. The letter for AVX-512 allows its registers 16 to 31.
template <class V>
HWY_INLINE V inRegister(V vector) {
#if HWY_TARGET <= HWY_AVX3 && HWY_ARCH_X86
    asm("" : "+v"(vector.raw));
#elif HWY_ARCH_X86
    asm("" : "+x"(vector.raw));
#endif
    return vector;
}

}    // namespace HWY_NAMESPACE
}    // namespace opcv::simd
HWY_AFTER_NAMESPACE();

#endif    // include guard of the target
