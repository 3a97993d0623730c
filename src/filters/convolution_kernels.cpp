// Convolution by the definition: each result is the rounded, saturated sum of pixel x weight over the kernel's cells in
// raster order. Sums are 32-bit floats with fused multiply-add, starting from 0: equal to OpenCV's to the last bit.
//
// The region is filtered in strips of columns, as wide as fits on the stack. The source rows of a window are converted
// to floats once, into a ring of rows:
//
//     ring row (y + j) mod rows:  | element 0 | 1 | 2 | ... | strip | reach |     j = 0 .. rows - 1
//                                       |<-- tap -->| read at element + tap.element
//
// Only pixels of the windows are read.
#include "filters/convolution_kernels.h"

#include <algorithm>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/convolution_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;
using filters::Shape;
using filters::Tap;
using filters::Taps;

using D = hn::ScalableTag<float>;
using V = hn::Vec<D>;
constexpr size_t kLanes = hn::MaxLanes(D());
constexpr size_t kVectors = 6;    // summed together: two periods of the three alignments of a vector to pixels
constexpr size_t kBlock = kVectors * kLanes;
constexpr size_t kRingFloats = 24576;    // holds whole rows of an A4 page for most kernels; narrower strips cost time

// One weight for all elements.
struct EqualWeights {
    explicit EqualWeights(const Taps& all) : taps(all) {}
    V at(int tap, size_t /*place*/) const { return hn::Set(D(), taps.taps[static_cast<size_t>(tap)].weights[0]); }

    const Taps& taps;
};

// A weight for each element of a pixel: vectors with period 3, in three alignments.
struct PixelWeights {
    explicit PixelWeights(const Taps& all) {
        for (size_t tap = 0; tap < static_cast<size_t>(all.count); ++tap)
            for (size_t i = 0; i < 3 * kLanes; ++i) table[tap][i] = all.taps[tap].weights[i % 3];
    }
    V at(int tap, size_t place) const { return hn::Load(D(), table[tap] + place * kLanes); }

    HWY_ALIGN float table[Taps::kMost][3 * kLanes];
};

template <class Pixel>
void convertRow(const Pixel* HWY_RESTRICT src, size_t count, float* HWY_RESTRICT dst) {
    const D d;
    const hn::RebindToSigned<D> d32;
    const hn::Rebind<Pixel, D> dPixel;
    size_t x = 0;
    for (; x + kLanes <= count; x += kLanes)
        hn::StoreU(hn::ConvertTo(d, hn::PromoteTo(d32, hn::LoadU(dPixel, src + x))), d, dst + x);
    for (; x < count; ++x) dst[x] = static_cast<float>(src[x]);
    hn::StoreU(hn::Zero(d), d, dst + x);    // the last vector of a strip reads past it
}

// Sums of N vectors whose taps read at `x`; the first one has its own alignment to pixels.
template <size_t N, class Weights>
HWY_INLINE void sumTaps(const Weights& weights, const float* const* HWY_RESTRICT taps, int count, size_t x,
                        size_t place, V* sums) {
    const D d;
    for (size_t v = 0; v < N; ++v) sums[v] = hn::Zero(d);
    for (int tap = 0; tap < count; ++tap)
        for (size_t v = 0; v < N; ++v)
            sums[v] = hn::MulAdd(hn::LoadU(d, taps[tap] + x + v * kLanes), weights.at(tap, (place + v) % 3), sums[v]);
}

// To bytes by way of 16 bits: straight from 32 bits, values from 32768 on lose their saturation on AVX2.
HWY_INLINE auto roundedTo16(V sum) {
    const hn::Rebind<int16_t, D> d16;
    return hn::DemoteTo(d16, hn::NearestInt(sum));
}

HWY_INLINE void storeRounded(V sum, int16_t* dst) { hn::StoreU(roundedTo16(sum), hn::Rebind<int16_t, D>(), dst); }

HWY_INLINE void storeRounded(V sum, uint8_t* dst) {
    const hn::Rebind<uint8_t, D> d8;
    hn::StoreU(hn::DemoteTo(d8, roundedTo16(sum)), d8, dst);
}

template <class Pixel, class Weights>
void convolveNarrowRow(const Weights& weights, const float* const* HWY_RESTRICT taps, int count, size_t width,
                       Pixel* HWY_RESTRICT dst) {
    for (size_t x = 0; x < width; x += kLanes) {
        V sum[1];
        sumTaps<1>(weights, taps, count, x, x / kLanes % 3, sum);
        // The ring has room for a whole vector, the destination does not.
        Pixel results[kLanes];
        storeRounded(sum[0], results);
        std::memcpy(dst + x, results, std::min(kLanes, width - x) * sizeof(Pixel));
    }
}

// The last block is moved back to end with the row, by whole pixels where weights differ: both lengths are multiples of
// three then.
template <class Pixel, class Weights>
void convolveRow(const Weights& weights, const float* const* HWY_RESTRICT taps, int count, size_t width,
                 Pixel* HWY_RESTRICT dst) {
    if (width < kBlock) return convolveNarrowRow(weights, taps, count, width, dst);
    for (size_t i = 0; i < width; i += kBlock) {
        const size_t x = std::min(i, width - kBlock);
        V sums[kVectors];
        sumTaps<kVectors>(weights, taps, count, x, 0, sums);
        for (size_t v = 0; v < kVectors; ++v) storeRounded(sums[v], dst + x + v * kLanes);
    }
}

template <class Pixel>
const Pixel* behind(const Pixel* row, ptrdiff_t bytes) {
    return reinterpret_cast<const Pixel*>(reinterpret_cast<const uint8_t*>(row) + bytes);
}

template <class Pixel>
Pixel* behind(Pixel* row, ptrdiff_t bytes) {
    return reinterpret_cast<Pixel*>(reinterpret_cast<uint8_t*>(row) + bytes);
}

// Elements of a strip: an equal share of a row, rounded to whole pixels of three and whole vectors.
size_t stripOf(size_t elements, size_t most) {
    constexpr size_t kUnit = 3 * kLanes;
    const size_t strips = (elements - 1) / (most / kUnit * kUnit) + 1;
    return ((elements - 1) / strips / kUnit + 1) * kUnit;
}

template <class Pixel, class Weights>
void convolveWith(const Weights& weights, const Pixel* src, ptrdiff_t srcStep, Pixel* dst, ptrdiff_t dstStep,
                  Shape region, const Taps& taps) {
    HWY_ALIGN float ring[kRingFloats];
    const auto rows = static_cast<size_t>(taps.rows);
    const auto reach = static_cast<size_t>(taps.reach);
    const size_t pitch = kRingFloats / rows / kLanes * kLanes;
    const auto elements = static_cast<size_t>(region.elements);
    const size_t strip = stripOf(elements, pitch - reach - kLanes);
    for (size_t left = 0; left < elements; left += strip) {
        const size_t width = std::min(strip, elements - left);
        const auto convert = [&](size_t row) {
            const Pixel* from = behind(src, static_cast<ptrdiff_t>(row) * srcStep) + left;
            convertRow(from, width + reach, ring + row % rows * pitch);
        };
        for (size_t row = 0; row + 1 < rows; ++row) convert(row);
        for (size_t y = 0; y < static_cast<size_t>(region.rows); ++y) {
            convert(y + rows - 1);
            const size_t top = y % rows;
            const float* reads[Taps::kMost];
            for (size_t i = 0; i < static_cast<size_t>(taps.count); ++i) {
                const Tap& tap = taps.taps[i];
                const size_t row = top + static_cast<size_t>(tap.row);
                reads[i] = ring + (row < rows ? row : row - rows) * pitch + tap.element;
            }
            convolveRow(weights, reads, taps.count, width, behind(dst, static_cast<ptrdiff_t>(y) * dstStep) + left);
        }
    }
}

template <class Pixel>
void convolve(const Pixel* src, ptrdiff_t srcStep, Pixel* dst, ptrdiff_t dstStep, Shape region, const Taps& taps) {
    if (taps.alike)
        convolveWith(EqualWeights(taps), src, srcStep, dst, dstStep, region, taps);
    else
        convolveWith(PixelWeights(taps), src, srcStep, dst, dstStep, region, taps);
}

void convolve8u(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep, Shape region,
                const Taps& taps) {
    convolve(src, srcStep, dst, dstStep, region, taps);
}

void convolve16s(const int16_t* src, ptrdiff_t srcStep, int16_t* dst, ptrdiff_t dstStep, Shape region,
                 const Taps& taps) {
    convolve(src, srcStep, dst, dstStep, region, taps);
}

}    // namespace HWY_NAMESPACE
}    // namespace
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace {
HWY_EXPORT(convolve8u);
HWY_EXPORT(convolve16s);
}    // namespace

void filters::convolve8u(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep, Shape region,
                         const Taps& taps) {
    HWY_DYNAMIC_DISPATCH(convolve8u)(src, srcStep, dst, dstStep, region, taps);
}

void filters::convolve16s(const int16_t* src, ptrdiff_t srcStep, int16_t* dst, ptrdiff_t dstStep, Shape region,
                          const Taps& taps) {
    HWY_DYNAMIC_DISPATCH(convolve16s)(src, srcStep, dst, dstStep, region, taps);
}
#endif    // HWY_ONCE
