// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// In-place threshold: a pixel at or below the threshold is replaced. A vector of pixels is compared and blended. The
// last vector of a row is pulled back to end with the row; processing a pixel twice does not change the result, because
// a replaced pixel either is replaced by the same value again or stays.
#include <cstddef>
#include <cstdint>

#include "pixel/threshold_kernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pixel/threshold_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/row-inl.h"

HWY_BEFORE_NAMESPACE();
namespace opcv {
namespace {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Pixels are loaded and stored as bytes, because the step may leave 16-bit rows unaligned.
template <class D, typename T = hn::TFromD<D>>
HWY_INLINE void thresholdAt(D d, uint8_t* bytes, T threshold, T value) {
    const hn::Repartition<uint8_t, D> d8;
    const auto pixels = hn::BitCast(d, hn::LoadU(d8, bytes));
    const auto replaced = hn::IfThenElse(hn::Gt(pixels, hn::Set(d, threshold)), pixels, hn::Set(d, value));
    hn::StoreU(hn::BitCast(d8, replaced), d8, bytes);
}

template <typename T>
void thresholdImage(uint8_t* p, int step, int width, int height, T threshold, T value) {
    constexpr auto kPixelSize = static_cast<ptrdiff_t>(sizeof(T));
    for (; height > 0; --height, p += step)
        simd::HWY_NAMESPACE::coverRow(hn::ScalableTag<T>(), width, [=](auto d, ptrdiff_t x) HWY_ATTR {
            thresholdAt(d, p + kPixelSize * x, threshold, value);
        });
}

void threshold8u(uint8_t* p, int step, int width, int height, uint8_t threshold, uint8_t value) {
    thresholdImage(p, step, width, height, threshold, value);
}

void threshold16s(uint8_t* p, int step, int width, int height, int16_t threshold, int16_t value) {
    thresholdImage(p, step, width, height, threshold, value);
}

}    // namespace HWY_NAMESPACE
}    // namespace
}    // namespace opcv
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace opcv {

namespace {
HWY_EXPORT(threshold8u);
HWY_EXPORT(threshold16s);
}    // namespace

void thresholdBytes(unsigned char* p, int step, int width, int height, unsigned char threshold, unsigned char value) {
    HWY_DYNAMIC_DISPATCH(threshold8u)(p, step, width, height, threshold, value);
}

void thresholdSamples(short* p, int step, int width, int height, short threshold, short value) {
    HWY_DYNAMIC_DISPATCH(threshold16s)(reinterpret_cast<uint8_t*>(p), step, width, height, threshold, value);
}

}    // namespace opcv
#endif    // HWY_ONCE
