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

// a * b + c, rounded once.
struct AnySum {
    template <class D, class V = hn::Vec<D>>
    static HWY_INLINE V fusedMulAdd(D d, V a, V b, V c) {
        return HWY_NAMESPACE::fusedMulAdd(d, a, b, c);
    }
};

#if HWY_NATIVE_FMA

using ExactSum = AnySum;

#else

// The same, if doubles hold the product and the exact sum.
struct ExactSum {
    template <class D, class V = hn::Vec<D>>
    static HWY_INLINE V fusedMulAdd(D d, V a, V b, V c) {
        const hn::Half<D> half;
        const hn::Rebind<double, decltype(half)> doubles;
        const auto ofHalves = [&](auto halfA, auto halfB, auto halfC) HWY_ATTR {
            const auto product = hn::Mul(hn::PromoteTo(doubles, halfA), hn::PromoteTo(doubles, halfB));
            return hn::DemoteTo(half, hn::Add(product, hn::PromoteTo(doubles, halfC)));
        };
        const auto lower = ofHalves(hn::LowerHalf(half, a), hn::LowerHalf(half, b), hn::LowerHalf(half, c));
        const auto upper = ofHalves(hn::UpperHalf(half, a), hn::UpperHalf(half, b), hn::UpperHalf(half, c));
        return hn::Combine(d, upper, lower);
    }
};

#endif    // HWY_NATIVE_FMA

// Adding this to a value of at most 22 bits makes the float's last bit count ones.
constexpr float kRounder = 12582912.0F;    // 1.5 x 2^23

// The integers nearest to values of at most 22 bits, halves to even.
template <class D, class V = hn::Vec<D>>
HWY_INLINE hn::Vec<hn::RebindToSigned<D>> nearestSmall(D d, V values) {
    const hn::RebindToSigned<D> integers;
    const V rounder = hn::Set(d, kRounder);
    return hn::Sub(hn::BitCast(integers, hn::Add(values, rounder)), hn::BitCast(integers, rounder));
}

// The integers nearest to two vectors of values of at most 15 bits and a sign, halves to even. The lower 16 bits of the
// rounder are 0.
template <class D, class V = hn::Vec<D>>
HWY_INLINE hn::Vec<hn::Repartition<int16_t, D>> nearestShorts(D d, V lower, V upper) {
    const hn::Repartition<uint16_t, D> bits;
    const hn::Repartition<int16_t, D> shorts;
    const V rounder = hn::Set(d, kRounder);
    return hn::BitCast(shorts, hn::ConcatEven(bits, hn::BitCast(bits, hn::Add(upper, rounder)),
                                              hn::BitCast(bits, hn::Add(lower, rounder))));
}

// The integers nearest to values, halves to even, saturated to a range within 22 bits. NaN gives the range's low end.
template <class D, class V = hn::Vec<D>>
HWY_INLINE hn::Vec<hn::RebindToSigned<D>> nearestWithin(D d, V values, float low, float high) {
    const V lowEnd = hn::Set(d, low);
    return nearestSmall(d, hn::Min(hn::IfThenElse(hn::Ge(values, lowEnd), values, lowEnd), hn::Set(d, high)));
}

}    // namespace HWY_NAMESPACE
}    // namespace opcv::simd
HWY_AFTER_NAMESPACE();

#endif    // include guard of the target
