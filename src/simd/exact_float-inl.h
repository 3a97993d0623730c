// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Float arithmetic with the same bits on every target. Kernel files include this once per target.
#if defined(OPCV_DLIB_SIMD_EXACT_FLOAT_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef OPCV_DLIB_SIMD_EXACT_FLOAT_INL_H
#undef OPCV_DLIB_SIMD_EXACT_FLOAT_INL_H
#else
#define OPCV_DLIB_SIMD_EXACT_FLOAT_INL_H
#endif

#include <hwy/highway.h>

#include <cstdint>

HWY_BEFORE_NAMESPACE();
namespace opcv::simd {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

#if HWY_NATIVE_FMA

// a * b + c, rounded once.
template <class D, class V = hn::Vec<D>>
HWY_INLINE V fusedMulAdd(D /*d*/, V a, V b, V c) {
    return hn::MulAdd(a, b, c);
}

#else

// The sum of two doubles, rounded to odd: truncated, with the last bit set if anything was lost. Rounding this to a
// float gives the same result as rounding the exact sum (Boldo and Melquiond, "Emulation of a FMA and correctly rounded
// sums", 2008).
template <class D, class V = hn::Vec<D>>
HWY_INLINE V sumRoundedToOdd(D d, V a, V b) {
    const hn::RebindToSigned<D> bits;
    const V sum = hn::Add(a, b);
    const V aPart = hn::Sub(sum, b);
    const V lost = hn::Add(hn::Sub(a, aPart), hn::Sub(b, hn::Sub(sum, aPart)));    // exact (Knuth)
    const auto isLost =
        hn::VecFromMask(bits, hn::RebindMask(bits, hn::Gt(hn::Abs(lost), hn::Zero(d))));    // not if NaN
    // Rounded away from zero: one unit back.
    const auto sumBits = hn::BitCast(bits, sum);
    const auto isAway = hn::And(isLost, hn::BroadcastSignBit(hn::Xor(sumBits, hn::BitCast(bits, lost))));
    return hn::BitCast(d, hn::Or(hn::Add(sumBits, isAway), hn::And(isLost, hn::Set(bits, 1))));
}

// a * b + c, rounded once. A product of floats is exact in doubles.
template <class D, class V = hn::Vec<D>>
HWY_INLINE V fusedMulAdd(D d, V a, V b, V c) {
    const hn::Half<D> half;
    const hn::Rebind<double, decltype(half)> doubles;
    const auto ofHalves = [&](auto halfA, auto halfB, auto halfC) HWY_ATTR {
        const auto product = hn::Mul(hn::PromoteTo(doubles, halfA), hn::PromoteTo(doubles, halfB));
        return hn::DemoteTo(half, sumRoundedToOdd(doubles, product, hn::PromoteTo(doubles, halfC)));
    };
    const auto lower = ofHalves(hn::LowerHalf(half, a), hn::LowerHalf(half, b), hn::LowerHalf(half, c));
    const auto upper = ofHalves(hn::UpperHalf(half, a), hn::UpperHalf(half, b), hn::UpperHalf(half, c));
    return hn::Combine(d, upper, lower);
}

#endif    // HWY_NATIVE_FMA

// The integers nearest to values, halves to even, saturated to a range within 22 bits. NaN gives the range's low end.
template <class D, class V = hn::Vec<D>>
HWY_INLINE hn::Vec<hn::RebindToSigned<D>> nearestWithin(D d, V values, float low, float high) {
    constexpr float kRounder = 12582912.0F;    // 1.5 x 2^23: the sum's last bit counts ones
    const hn::RebindToSigned<D> integers;
    const V lowEnd = hn::Set(d, low);
    const V saturated = hn::Min(hn::IfThenElse(hn::Ge(values, lowEnd), values, lowEnd), hn::Set(d, high));
    const V rounder = hn::Set(d, kRounder);
    return hn::Sub(hn::BitCast(integers, hn::Add(saturated, rounder)), hn::BitCast(integers, rounder));
}

}    // namespace HWY_NAMESPACE
}    // namespace opcv::simd
HWY_AFTER_NAMESPACE();

#endif    // include guard of the target
