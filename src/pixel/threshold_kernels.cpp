// In-place threshold: a pixel at or below the threshold is replaced. A vector of pixels is compared and blended; the
// last vector of a row is moved back to end with the row, as a second pass over a pixel changes nothing: a replaced
// pixel is either replaced by the same value again or stays. Rows shorter than a vector go through one on the stack.
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "OPCV_dlib.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pixel/threshold_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using Bytes = hn::ScalableTag<uint8_t>;

// Pixels are moved as bytes, because a step may leave 16-bit rows unaligned.
template <typename T>
void thresholdVector(uint8_t* HWY_RESTRICT bytes, T threshold, T value) {
    const Bytes d8;
    const hn::ScalableTag<T> d;
    const auto pixels = hn::BitCast(d, hn::LoadU(d8, bytes));
    const auto replaced = hn::IfThenElse(hn::Gt(pixels, hn::Set(d, threshold)), pixels, hn::Set(d, value));
    hn::StoreU(hn::BitCast(d8, replaced), d8, bytes);
}

template <typename T>
void thresholdRow(uint8_t* row, ptrdiff_t rowBytes, T threshold, T value) {
    const auto lanes = static_cast<ptrdiff_t>(hn::Lanes(Bytes()));
    if (rowBytes < lanes) {
        uint8_t block[hn::MaxLanes(Bytes())] = {};
        std::memcpy(block, row, static_cast<size_t>(rowBytes));
        thresholdVector(block, threshold, value);
        std::memcpy(row, block, static_cast<size_t>(rowBytes));
        return;
    }
    ptrdiff_t x = 0;
    for (; x + lanes <= rowBytes; x += lanes) thresholdVector(row + x, threshold, value);
    if (x < rowBytes) thresholdVector(row + rowBytes - lanes, threshold, value);
}

template <typename T>
void thresholdImage(uint8_t* p, int step, int width, int height, T threshold, T value) {
    if (width <= 0) return;
    const ptrdiff_t rowBytes = ptrdiff_t{width} * static_cast<ptrdiff_t>(sizeof(T));
    for (; height > 0; --height, p += step) thresholdRow(p, rowBytes, threshold, value);
}

void threshold8u(uint8_t* p, int step, int width, int height, uint8_t threshold, uint8_t value) {
    thresholdImage(p, step, width, height, threshold, value);
}

void threshold16s(uint8_t* p, int step, int width, int height, int16_t threshold, int16_t value) {
    thresholdImage(p, step, width, height, threshold, value);
}

}    // namespace HWY_NAMESPACE
}    // namespace
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace {
HWY_EXPORT(threshold8u);
HWY_EXPORT(threshold16s);
}    // namespace

void Threshold_LTVal_8u_C1IR(unsigned char* p, int step, int width, int height, unsigned char threshold,
                             unsigned char value) {
    HWY_DYNAMIC_DISPATCH(threshold8u)(p, step, width, height, threshold, value);
}

void Threshold_LTVal_16s_C1IR(short* p, int step, int width, int height, short threshold, short value) {
    HWY_DYNAMIC_DISPATCH(threshold16s)(reinterpret_cast<uint8_t*>(p), step, width, height, threshold, value);
}
#endif    // HWY_ONCE
