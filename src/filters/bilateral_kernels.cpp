// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Bilateral filter over the pixels within a radius of 1 or 2. The weight of a pair of pixels is the same for both, so
// it is looked up once and kept for the later pixel:
//
//     radius 1:   . u .        radius 2:   . . u . .       u, l, v: cells before the centre o, whose weights are known
//                 l o r                    . v u v .       r, d, e: cells after it; their weights are looked up now
//                 . d .                    l l o r r
//                                          . e d e .
//                                          . . d . .
//
// The sums are floats. Their order is part of the result: the cells in raster order, each product added with fused
// multiply-add; in the last (width of the view) mod 8 columns of the view, four cells at a time instead. This equals
// OpenCV on x86-64 with AVX2, whose vectors hold eight floats. All processors compute it in this way.
//
// The region is filtered in strips, from a copy of the source rows under the window, as bytes for the differences and as
// floats for the sums. Only the pixels within the radius are read.
#include "filters/bilateral_kernels.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "core/row_bands.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/bilateral_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/exact_float-inl.h"
#include "simd/row-inl.h"
#include "simd/table_lookup-inl.h"

HWY_BEFORE_NAMESPACE();
namespace {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;
using filters::BilateralRegion;
using filters::BilateralWeights;
using opcv::simd::HWY_NAMESPACE::coverBeyond;
using opcv::simd::HWY_NAMESPACE::coverWithRest;
using opcv::simd::HWY_NAMESPACE::fusedMulAdd;
using opcv::simd::HWY_NAMESPACE::lookUpRow;
using opcv::simd::HWY_NAMESPACE::nearestShorts;
using opcv::simd::HWY_NAMESPACE::prefetchRow;

using D = hn::ScalableTag<float>;
using V = hn::Vec<D>;
using Bytes = hn::ScalableTag<uint8_t>;
constexpr ptrdiff_t kLanes = hn::MaxLanes(D());
constexpr ptrdiff_t kByteLanes = hn::MaxLanes(Bytes());

// A cell after the centre and, by symmetry, the opposite cell. The weights are kept for as many rows as there are
// between the two.
struct Pair {
    int dx;
    int dy;
    BilateralWeights::Distance distance;
    int firstRow;    // among all rows of weights
};

// In raster order.
template <int kRadius>
struct Window;

template <>
struct Window<1> {
    static constexpr int kPairs = 2;
    static constexpr int kWeightRows = 3;
    static constexpr Pair kPair[kPairs] = {{1, 0, BilateralWeights::kOne, 0}, {0, 1, BilateralWeights::kOne, 1}};
};

template <>
struct Window<2> {
    static constexpr int kPairs = 6;
    static constexpr int kWeightRows = 11;
    static constexpr Pair kPair[kPairs] = {
        {1, 0, BilateralWeights::kOne, 0},        {2, 0, BilateralWeights::kTwo, 1},
        {-1, 1, BilateralWeights::kRootOfTwo, 2}, {0, 1, BilateralWeights::kOne, 4},
        {1, 1, BilateralWeights::kRootOfTwo, 6},  {0, 2, BilateralWeights::kTwo, 8},
    };
};

// The rows of a strip under the window and the weights of their pairs. Rows and elements count from the strip's first.
template <int kRadius>
class Strip {
public:
    // The floats roughly fill a first-level cache. In narrower strips, sums wait until the weights that have just been
    // looked up are stored: with a width of 256, an element takes a third longer.
    static constexpr ptrdiff_t kWidth = kRadius == 1 ? 1536 : 512;

    Strip(const BilateralRegion& region, const BilateralWeights& weights, ptrdiff_t left, ptrdiff_t width)
        : region_(region), weights_(weights), left_(left), width_(width) {}

    // Bytes are copied one row before they are used: loads that overlap several stores wait until these have left the
    // processor's store buffer.
    void filter(int firstRow, int endRow) {
        for (int row = firstRow - kRadius; row <= firstRow; ++row) copyRow(row);
        for (int row = firstRow - kRadius; row < firstRow; ++row) convertRow(row);
        for (int row = firstRow - kRadius; row < endRow; ++row) {
            const int last = row + kRadius;
            if (last + 1 < endRow + kRadius) copyRow(last + 1);
            convertRow(last);
            const bool isAbove = row < firstRow;
            for (const Pair& pair : W::kPair)
                if (pair.dy > 0 || !isAbove) lookUp(pair, row);
            if (!isAbove) filterRow(row);
        }
    }

private:
    using W = Window<kRadius>;
    static constexpr int kRows = 2 * kRadius + 1;
    static constexpr ptrdiff_t kMargin = 16;    // more than the window needs, so that rows are aligned to vectors
    static constexpr ptrdiff_t kPitch = kMargin + kWidth + kByteLanes + kMargin;    // vectors run past the end
    static_assert(kMargin % kLanes == 0 && kPitch % kLanes == 0, "rows are aligned");

    uint8_t* row(int y) { return rows_[(y + kRows) % kRows] + kMargin; }
    float* floats(int y) { return floats_[(y + kRows) % kRows] + kMargin; }
    float* weightsOf(const Pair& pair, int y) {
        return pairWeights_[pair.firstRow + (y + kRadius) % (pair.dy + 1)] + kMargin;
    }

    void copyRow(int y) {
        const ptrdiff_t margin = ptrdiff_t{kRadius} * region_.channels;
        const uint8_t* from = region_.src + y * region_.srcStep + left_ - margin;
        const ptrdiff_t count = width_ + 2 * margin;
        uint8_t* bytes = row(y);
        std::memcpy(bytes - margin, from, static_cast<size_t>(count));
        prefetchRow(from + region_.srcStep, count);
    }

    void convertRow(int y) {
        const ptrdiff_t end = width_ + ptrdiff_t{kRadius} * region_.channels;
        const uint8_t* bytes = row(y);
        float* converted = floats(y);
        for (ptrdiff_t x = -kMargin; x < end; x += kLanes) hn::Store(toFloat(bytes + x), D(), converted + x);
    }

    // Weights of the pixels of a row and their partners, where at least one of them is in the strip.
    void lookUp(const Pair& pair, int y) {
        const Bytes bytes;
        const ptrdiff_t shift = ptrdiff_t{pair.dx} * region_.channels;
        const ptrdiff_t first = shift > 0 ? -kMargin : 0;
        const ptrdiff_t count = width_ + std::max<ptrdiff_t>(-shift, 0) - first;
        const uint8_t* here = row(y) + first;
        const uint8_t* there = row(y + pair.dy) + first + shift;
        coverBeyond(count, kByteLanes, [&](ptrdiff_t x) HWY_ATTR {
            const auto a = hn::LoadU(bytes, here + x);
            const auto b = hn::LoadU(bytes, there + x);
            hn::Store(hn::Or(hn::SaturatedSub(a, b), hn::SaturatedSub(b, a)), bytes, differences_ + x);
        });
        lookUpRow(weights_.at[pair.distance], differences_, count, weightsOf(pair, y) + first);
    }

    void filterRow(int y) {
        // Cells before the centre: the same pairs in reverse order, from the other pixel.
        Cell cells[2 * W::kPairs];
        for (int i = 0; i < W::kPairs; ++i) {
            const Pair& pair = W::kPair[i];
            const ptrdiff_t shift = ptrdiff_t{pair.dx} * region_.channels;
            cells[W::kPairs - 1 - i] = {floats(y - pair.dy) - shift, weightsOf(pair, y - pair.dy) - shift};
            cells[W::kPairs + i] = {floats(y + pair.dy) + shift, weightsOf(pair, y)};
        }
        const float* centre = floats(y);
        uint8_t* dst = region_.dst + y * region_.dstStep + left_;
        coverWithRest(
            width_, kByteLanes, [&](ptrdiff_t x) HWY_ATTR { storeMeans(cells, centre, x, dst + x); },
            [&](ptrdiff_t x, ptrdiff_t count) HWY_ATTR {
                uint8_t last[kByteLanes];
                storeMeans(cells, centre, x, last);
                std::memcpy(dst + x, last, static_cast<size_t>(count));
            });
    }

    struct Cell {
        const float* pixels;
        const float* weights;
    };

    // The means of a vector of bytes. The sums of its parts are formed side by side because each is one long chain.
    static HWY_NOINLINE void storeMeans(const Cell* cells, const float* centre, ptrdiff_t x, uint8_t* means) {
        constexpr ptrdiff_t kParts = kByteLanes / kLanes;
        const D d;
        V sums[kParts];
        V weightSums[kParts];
        for (ptrdiff_t part = 0; part < kParts; ++part) sums[part] = weightSums[part] = hn::Zero(d);
        const auto add = [&](const Cell* first) HWY_ATTR {
#pragma GCC unroll 1    // GCC otherwise completes `sums` first, then loads all weights again for `weightSums`
            for (const Cell* cell = first; cell < first + W::kPairs; ++cell)
                for (ptrdiff_t part = 0; part < kParts; ++part) {
                    const V weight = hn::LoadU(d, cell->weights + x + part * kLanes);
                    const V pixel = hn::LoadU(d, cell->pixels + x + part * kLanes);
                    weightSums[part] = hn::Add(weightSums[part], weight);
                    sums[part] = fusedMulAdd(d, pixel, weight, sums[part]);
                }
        };
        add(cells);
        for (ptrdiff_t part = 0; part < kParts; ++part) {
            weightSums[part] = hn::Add(weightSums[part], hn::Set(d, 1.0F));
            sums[part] = hn::Add(sums[part], hn::Load(d, centre + x + part * kLanes));
        }
        add(cells + W::kPairs);
        const auto mean = [&](ptrdiff_t part) HWY_ATTR {
            const V quotient = hn::Div(sums[part], weightSums[part]);
            return hn::IfThenElseZero(hn::Ge(quotient, hn::Zero(d)), quotient);    // 0 for NaN
        };
        const hn::Twice<hn::Rebind<uint8_t, D>> bytes;
        for (ptrdiff_t part = 0; part < kParts; part += 2)
            hn::StoreU(hn::DemoteTo(bytes, nearestShorts(d, mean(part), mean(part + 1))), bytes, means + part * kLanes);
    }

    static V toFloat(const uint8_t* pixels) {
        const D d;
        const hn::RebindToSigned<D> d32;
        const hn::Rebind<uint8_t, D> bytes;
        return hn::ConvertTo(d, hn::PromoteTo(d32, hn::LoadU(bytes, pixels)));
    }

    const BilateralRegion& region_;
    const BilateralWeights& weights_;
    ptrdiff_t left_;
    ptrdiff_t width_;
    HWY_ALIGN float pairWeights_[W::kWeightRows][kPitch];
    HWY_ALIGN float floats_[kRows][kPitch];
    HWY_ALIGN uint8_t differences_[kPitch];
    uint8_t rows_[kRows][kPitch] = {};    // vectors read more bytes than are copied
};

// One pixel of the last columns, summed four cells at a time: the first and third, the second and fourth, then both
// sums. The remaining cell is added with fused multiply-add.
template <int kRadius>
uint8_t meanInFours(const BilateralRegion& region, const BilateralWeights& weights, const uint8_t* centre) {
    using W = Window<kRadius>;
    constexpr int kCells = 2 * W::kPairs + 1;
    static_assert(kCells % 4 == 1, "one cell is left");
    float pixel[kCells];
    float weight[kCells];
    const auto place = [&](int cell, const uint8_t* neighbour, BilateralWeights::Distance distance) {
        pixel[cell] = static_cast<float>(*neighbour);
        weight[cell] = weights.at[distance].values[std::abs(*neighbour - *centre)];
    };
    for (int i = 0; i < W::kPairs; ++i) {
        const Pair& pair = W::kPair[i];
        const ptrdiff_t away = pair.dy * region.srcStep + ptrdiff_t{pair.dx} * region.channels;
        place(W::kPairs - 1 - i, centre - away, pair.distance);
        place(W::kPairs + 1 + i, centre + away, pair.distance);
    }
    pixel[W::kPairs] = static_cast<float>(*centre);
    weight[W::kPairs] = 1.0F;

    float sum = 0;
    float weightSum = 0;
    for (int cell = 0; cell + 4 <= kCells; cell += 4) {
        const float* w = weight + cell;
        const float* p = pixel + cell;
        weightSum += (w[0] + w[2]) + (w[1] + w[3]);
        sum += (p[0] * w[0] + p[2] * w[2]) + (p[1] * w[1] + p[3] * w[3]);
    }
    weightSum += weight[kCells - 1];
    sum = std::fma(pixel[kCells - 1], weight[kCells - 1], sum);
    const float mean = sum / weightSum;
    return std::isnan(mean) ? 0 : static_cast<uint8_t>(std::nearbyint(mean));
}

template <int kRadius>
void filterRows(const BilateralRegion& region, const BilateralWeights& weights, int firstRow, int endRow) {
    // The view is wider than the region by the radius on each side.
    constexpr int kInRasterOrder = 8;
    const int inRasterOrder = (region.width + 2 * kRadius) / kInRasterOrder * kInRasterOrder - kRadius;
    const ptrdiff_t body = ptrdiff_t{std::clamp(inRasterOrder, 0, region.width)} * region.channels;
    for (ptrdiff_t left = 0; left < body; left += Strip<kRadius>::kWidth) {
        Strip<kRadius> strip(region, weights, left, std::min(Strip<kRadius>::kWidth, body - left));
        strip.filter(firstRow, endRow);
    }
    for (int y = firstRow; y < endRow; ++y)
        for (ptrdiff_t x = body; x < ptrdiff_t{region.width} * region.channels; ++x)
            region.dst[y * region.dstStep + x] =
                meanInFours<kRadius>(region, weights, region.src + y * region.srcStep + x);
}

void filterBand(const BilateralRegion& region, const BilateralWeights& weights, int firstRow, int endRow) {
    if (region.radius == 1)
        filterRows<1>(region, weights, firstRow, endRow);
    else
        filterRows<2>(region, weights, firstRow, endRow);
}

}    // namespace HWY_NAMESPACE
}    // namespace
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace {
HWY_EXPORT(filterBand);
}    // namespace

// The same steps as in OpenCV, so that the weights are equal to the last bit.
filters::BilateralWeights::BilateralWeights(double sigmaColor, double sigmaSpace) {
    if (sigmaColor <= 0) sigmaColor = 1;
    if (sigmaSpace <= 0) sigmaSpace = 1;
    const double colorCoefficient = -0.5 / (sigmaColor * sigmaColor);
    const double spaceCoefficient = -0.5 / (sigmaSpace * sigmaSpace);
    float colorWeights[256];
    for (int difference = 0; difference < 256; ++difference)
        colorWeights[difference] = static_cast<float>(std::exp(difference * difference * colorCoefficient));
    const double distances[kDistances] = {1.0, std::sqrt(2.0), 2.0};
    for (int i = 0; i < kDistances; ++i) {
        const auto spaceWeight = static_cast<float>(std::exp(distances[i] * distances[i] * spaceCoefficient));
        at[i].fill([&](size_t difference) { return spaceWeight * colorWeights[difference]; });
    }
}

void filters::filterBilateral(const BilateralRegion& region, const BilateralWeights& weights) {
    const double elements = double{1} * region.width * region.channels * region.height;
    opcv::forEachBand(region.height, elements, [&](int firstRow, int endRow) {
        HWY_DYNAMIC_DISPATCH(filterBand)(region, weights, firstRow, endRow);
    });
}
#endif    // HWY_ONCE
