// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Convolution by the definition: each result is the rounded, saturated sum of pixel x weight over the kernel's cells in
// raster order. The sum is a 32-bit float; it starts at 0, and each product is added with fused multiply-add. Sums are
// rounded to the nearest integer, halves to even. NaN, which results only from weights of NaN or infinity, becomes the
// least value of the type.
//
// The region is filtered in strips of columns, as wide as fits into the scratch memory. The source rows of a window are
// converted to floats once, into a ring of rows:
//
//     ring row (y + j) mod rows:  | element 0 | 1 | 2 | ... | strip | reach |     j = 0 .. rows - 1
//                                       |<-- tap -->| read at element + tap.element
//
// Only pixels of the windows are read.
#include "filters/convolution_kernels.h"

#include <algorithm>
#include <cstring>
#include <limits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/convolution_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/exact_float-inl.h"
#include "simd/vector_size-inl.h"

#ifndef OPCV_DLIB_CONVOLUTION_SCRATCH
#define OPCV_DLIB_CONVOLUTION_SCRATCH
namespace {

constexpr size_t kMostLanes = 16;    // of floats, on any target

// The scratch memory of a kernel.
struct Scratch {
    float* ring;
    size_t ringFloats;
    const float** reads;    // for each tap, its position in the ring
    float* weights;         // for each tap, three vectors, if elements differ in weight
};

}    // namespace
#endif

HWY_BEFORE_NAMESPACE();
namespace {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;
using filters::Shape;
using filters::Tap;
using filters::Taps;

using opcv::simd::HWY_NAMESPACE::fusedMulAdd;
using opcv::simd::HWY_NAMESPACE::nearestWithin;

using D = opcv::simd::HWY_NAMESPACE::Widest<float>;
using V = hn::Vec<D>;
constexpr size_t kLanes = hn::MaxLanes(D());
constexpr size_t kVectors = 6;    // summed together: two periods of the three alignments of a vector to pixels
constexpr size_t kBlock = kVectors * kLanes;
static_assert(kLanes <= kMostLanes, "the weights of a tap fill three vectors of kMostLanes at most");

// One weight for all elements.
struct EqualWeights {
    V at(int tap, size_t /*place*/) const { return hn::Set(D(), taps[tap].weights[0]); }

    const Tap* taps;
};

// A weight for each element of a pixel: vectors with period 3, in three alignments.
struct PixelWeights {
    PixelWeights(const Tap* taps, int count, float* weights) : table(weights) {
        for (ptrdiff_t tap = 0; tap < count; ++tap)
            for (size_t i = 0; i < 3 * kLanes; ++i)
                weights[static_cast<size_t>(tap) * 3 * kLanes + i] = taps[tap].weights[i % 3];
    }
    V at(int tap, size_t place) const { return hn::Load(D(), table + (static_cast<size_t>(tap) * 3 + place) * kLanes); }

    const float* table;
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
            sums[v] =
                fusedMulAdd(d, hn::LoadU(d, taps[tap] + x + v * kLanes), weights.at(tap, (place + v) % 3), sums[v]);
}

template <class Pixel>
HWY_INLINE void storeRounded(V sum, Pixel* dst) {
    using Limits = std::numeric_limits<Pixel>;
    const hn::Rebind<Pixel, D> pixels;
    const auto rounded = nearestWithin(D(), sum, float{Limits::min()}, float{Limits::max()});
    hn::StoreU(hn::DemoteTo(pixels, rounded), pixels, dst);
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
                  Shape region, const Taps& taps, const Tap* tap, const Scratch& scratch) {
    const auto rows = static_cast<size_t>(taps.rows);
    const auto reach = static_cast<size_t>(taps.reach);
    const size_t pitch = scratch.ringFloats / rows / kLanes * kLanes;
    const auto elements = static_cast<size_t>(region.elements);
    const size_t strip = stripOf(elements, pitch - reach - kLanes);
    for (size_t left = 0; left < elements; left += strip) {
        const size_t width = std::min(strip, elements - left);
        const auto convert = [&](size_t row) {
            const Pixel* from = behind(src, static_cast<ptrdiff_t>(row) * srcStep) + left;
            convertRow(from, width + reach, scratch.ring + row % rows * pitch);
        };
        for (size_t row = 0; row + 1 < rows; ++row) convert(row);
        for (size_t y = 0; y < static_cast<size_t>(region.rows); ++y) {
            convert(y + rows - 1);
            const size_t top = y % rows;
            for (ptrdiff_t i = 0; i < taps.count; ++i) {
                const size_t row = top + static_cast<size_t>(tap[i].row);
                scratch.reads[i] = scratch.ring + (row < rows ? row : row - rows) * pitch + tap[i].element;
            }
            convolveRow(weights, scratch.reads, taps.count, width,
                        behind(dst, static_cast<ptrdiff_t>(y) * dstStep) + left);
        }
    }
}

template <class Pixel>
void convolve(const Pixel* src, ptrdiff_t srcStep, Pixel* dst, ptrdiff_t dstStep, Shape region, Taps& taps,
              const Scratch& scratch) {
    const Tap* tap = taps.taps.get();
    if (taps.alike)
        convolveWith(EqualWeights{tap}, src, srcStep, dst, dstStep, region, taps, tap, scratch);
    else
        convolveWith(PixelWeights(tap, taps.count, scratch.weights), src, srcStep, dst, dstStep, region, taps, tap,
                     scratch);
}

void convolve8uWith(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep, Shape region, Taps& taps,
                    const Scratch& scratch) {
    convolve(src, srcStep, dst, dstStep, region, taps, scratch);
}

void convolve16uWith(const uint16_t* src, ptrdiff_t srcStep, uint16_t* dst, ptrdiff_t dstStep, Shape region, Taps& taps,
                     const Scratch& scratch) {
    convolve(src, srcStep, dst, dstStep, region, taps, scratch);
}

void convolve16sWith(const int16_t* src, ptrdiff_t srcStep, int16_t* dst, ptrdiff_t dstStep, Shape region, Taps& taps,
                     const Scratch& scratch) {
    convolve(src, srcStep, dst, dstStep, region, taps, scratch);
}

}    // namespace HWY_NAMESPACE
}    // namespace
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace {
HWY_EXPORT(convolve8uWith);
HWY_EXPORT(convolve16uWith);
HWY_EXPORT(convolve16sWith);

// Runs a kernel with its scratch; false if allocating that fails. The kernels of usual sizes need no heap.
template <class Kernel>
bool withScratch(const filters::Taps& taps, filters::Shape region, const Kernel& kernel) {
    constexpr size_t kRingFloats =
        24576;    // holds whole rows of an A4 page for most kernels; narrower strips cost time
    constexpr size_t kNarrowestStrip = 480;
    constexpr size_t kTaps = 129;
    const auto narrowest = std::min(kNarrowestStrip, static_cast<size_t>(region.elements));
    const size_t pitch = static_cast<size_t>(taps.reach) + narrowest + 5 * kMostLanes;    // a strip is whole vectors
    const size_t ringFloats = std::max(kRingFloats, static_cast<size_t>(taps.rows) * pitch);
    const auto count = static_cast<size_t>(taps.count);
    filters::SmallBuffer<float, kRingFloats> ring(ringFloats);
    filters::SmallBuffer<const float*, kTaps> reads(count);
    filters::SmallBuffer<float, kTaps * 3 * kMostLanes> weights(taps.alike ? 0 : count * 3 * kMostLanes);
    if (!ring.get() || !reads.get() || !weights.get()) return false;
    kernel({ring.get(), ringFloats, reads.get(), weights.get()});
    return true;
}

}    // namespace

bool filters::convolve8u(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep, Shape region,
                         Taps& taps) {
    return withScratch(taps, region, [&](const Scratch& scratch) {
        HWY_DYNAMIC_DISPATCH(convolve8uWith)(src, srcStep, dst, dstStep, region, taps, scratch);
    });
}

bool filters::convolve16u(const uint16_t* src, ptrdiff_t srcStep, uint16_t* dst, ptrdiff_t dstStep, Shape region,
                          Taps& taps) {
    return withScratch(taps, region, [&](const Scratch& scratch) {
        HWY_DYNAMIC_DISPATCH(convolve16uWith)(src, srcStep, dst, dstStep, region, taps, scratch);
    });
}

bool filters::convolve16s(const int16_t* src, ptrdiff_t srcStep, int16_t* dst, ptrdiff_t dstStep, Shape region,
                          Taps& taps) {
    return withScratch(taps, region, [&](const Scratch& scratch) {
        HWY_DYNAMIC_DISPATCH(convolve16sWith)(src, srcStep, dst, dstStep, region, taps, scratch);
    });
}
#endif    // HWY_ONCE
