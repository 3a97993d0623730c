// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Convolution by the definition: each result is the rounded, saturated sum of pixel x weight over the kernel's cells in
// raster order. The sum is a 32-bit float; it starts at 0, and each product is added with fused multiply-add. Sums are
// rounded to the nearest integer, halves to even. NaN, which results only from weights of NaN or infinity, becomes the
// least value of the type.
//
// The region is filtered in strips of columns, as wide as fits into the scratch memory. The source rows of the windows
// are converted to floats once, into a ring of rows. Channels with kernels of their own are planes in it, side by side:
//
//     ring row (y + j) mod rows:  | element 0 | 1 | 2 | ... | strip | reach |     j = 0 .. rows - 1
//                                       |<-- tap -->| read at element + tap.element
//
// kTogether rows are summed in one pass, so that a loaded pixel enters several sums. 4 rows under 3 x 3 cells:
//
//     row of the ring         0    1    2    3    4    5
//     enters sums of rows     0   0-1  0-2  1-3  2-3   3
//
// A cell of weight 0 adds nothing: no sum is ever -0, and pixels are finite. So kernels with many such cells are
// filtered without them, one row at a time. Only pixels of the windows are read.
#include "filters/convolution_kernels.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/convolution_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "filters/convolution_taps.h"
#include "simd/exact_float-inl.h"
#include "simd/in_register-inl.h"
#include "simd/row-inl.h"
#include "simd/unrolled-inl.h"
#include "simd/vector_size-inl.h"

HWY_BEFORE_NAMESPACE();
namespace {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;
namespace simd = opcv::simd::HWY_NAMESPACE;
using filters::ConvolvedRows;
using filters::Scratch;
using filters::Tap;
using filters::Taps;
using filters::TurnedKernel;

using D = simd::Widest<float>;
using V = hn::Vec<D>;
constexpr size_t kLanes = hn::MaxLanes(D());
constexpr size_t kVectors = 6;    // of each row, in a block
constexpr size_t kBlock = kVectors * kLanes;
constexpr size_t kTogether = simd::kVectorRegisters / 8;    // sums fill three of four registers
static_assert(kBlock <= filters::kMostBlock && kTogether <= filters::kMostTogether, "the scratch suffices");

template <class T>
T* below(T* row, ptrdiff_t bytes) {
    using Byte = std::conditional_t<std::is_const_v<T>, const uint8_t, uint8_t>;
    return reinterpret_cast<T*>(reinterpret_cast<Byte*>(row) + bytes);
}

// What the sums of one or more rows add: the first window's rows in the ring, those that follow them, and the taps.
struct Window {
    const float* const* rows;
    Taps taps;
};

// Adds the taps from `begin` to `end` to the sums of the rows kFirst to kLast.
template <class Sum, size_t kFirst, size_t kLast, size_t kRows>
HWY_INLINE void addTaps(const Window& window, ptrdiff_t begin, ptrdiff_t end, size_t x, V (&sums)[kRows][kVectors]) {
    const D d;
    for (ptrdiff_t i = begin; i < end; ++i) {
        const Tap tap = window.taps.taps[i];
        const float* const from = window.rows[tap.row] + static_cast<size_t>(tap.element) + x;
        simd::unrolled<kVectors>([&](auto v) OPCV_DLIB_INLINED {
            V pixels = hn::LoadU(d, from + v * kLanes);
            if (kFirst < kLast) pixels = simd::inRegister(pixels);
            simd::unrolled<kLast - kFirst + 1>([&](auto j) OPCV_DLIB_INLINED {
                constexpr size_t row = kFirst + j;
                const float weight = window.taps.weights[i - static_cast<ptrdiff_t>(row) * window.taps.perRow];
                sums[row][v] = Sum::fusedMulAdd(d, pixels, hn::Set(d, weight), sums[row][v]);
            });
        });
    }
}

template <class Pixel>
HWY_INLINE void storeSmall(const V (&sums)[kVectors], Pixel* to) {
    const D d;
    const hn::Rebind<Pixel, D> pixels;
    simd::unrolled<kVectors>([&](auto v) OPCV_DLIB_INLINED {
        hn::StoreU(hn::DemoteTo(pixels, simd::nearestSmall(d, sums[v])), pixels, to + v * kLanes);
    });
}

HWY_INLINE void storeSmall(const V (&sums)[kVectors], uint8_t* to) {
    const hn::Twice<hn::Rebind<uint8_t, D>> pixels;
    simd::unrolled<kVectors / 2>([&](auto pair) OPCV_DLIB_INLINED {
        const auto shorts = simd::nearestShorts(D(), sums[2 * pair], sums[2 * pair + 1]);
        hn::StoreU(hn::DemoteTo(pixels, shorts), pixels, to + 2 * pair * kLanes);
    });
}

template <class Pixel>
HWY_INLINE void storeRow(const V (&sums)[kVectors], bool isSmall, Pixel* to) {
    if (isSmall) return storeSmall(sums, to);
    using Limits = std::numeric_limits<Pixel>;
    const hn::Rebind<Pixel, D> pixels;
    simd::unrolled<kVectors>([&](auto v) OPCV_DLIB_INLINED {
        const auto rounded = simd::nearestWithin(D(), sums[v], float{Limits::min()}, float{Limits::max()});
        hn::StoreU(hn::DemoteTo(pixels, rounded), pixels, to + v * kLanes);
    });
}

// Filters a block of columns of a row and of kOthers rows below it, which are numbered from 0.
template <class Sum, class Pixel, size_t... kOthers>
HWY_NOINLINE void filterBlock(const Window& window, size_t x, Pixel* to, ptrdiff_t step,
                              std::index_sequence<kOthers...> /*others*/) {
    constexpr size_t kLast = sizeof...(kOthers);
    V sums[kLast + 1][kVectors];
    simd::unrolled<(kLast + 1) * kVectors>([&](auto i)
                                               OPCV_DLIB_INLINED { sums[i / kVectors][i % kVectors] = hn::Zero(D()); });
    const Taps& taps = window.taps;
    const auto row = [&](size_t i) { return static_cast<ptrdiff_t>(i) * taps.perRow; };
    (addTaps<Sum, 0, kOthers>(window, row(kOthers), row(kOthers + 1), x, sums), ...);
    addTaps<Sum, 0, kLast>(window, row(kLast), taps.count, x, sums);
    (addTaps<Sum, kOthers + 1, kLast>(window, taps.count + row(kOthers), taps.count + row(kOthers + 1), x, sums), ...);
    storeRow(sums[0], taps.isSmall, to);
    (storeRow(sums[kOthers + 1], taps.isSmall, below(to, static_cast<ptrdiff_t>(kOthers + 1) * step)), ...);
}

template <class Pixel>
void convertRow(const Pixel* HWY_RESTRICT src, size_t count, float* HWY_RESTRICT dst) {
    const D d;
    const hn::RebindToSigned<D> d32;
    const hn::Rebind<Pixel, D> dPixel;
    size_t x = 0;
    for (; x + kLanes <= count; x += kLanes)
        hn::StoreU(hn::ConvertTo(d, hn::PromoteTo(d32, hn::LoadU(dPixel, src + x))), d, dst + x);
    for (; x < count; ++x) dst[x] = static_cast<float>(src[x]);
}

// The elements of a row as they are.
template <class PixelType>
struct Packed {
    using Pixel = PixelType;
    static constexpr size_t kPlanes = 1;

    static void toFloats(const Pixel* src, size_t count, float* dst, size_t /*plane*/) { convertRow(src, count, dst); }

    template <class Sum, size_t kRows>
    static HWY_INLINE void filter(const Window& window, size_t x, size_t /*plane*/, Pixel* to, ptrdiff_t step) {
        filterBlock<Sum>(window, x, to, step, std::make_index_sequence<kRows - 1>());
    }
};

// Pixels of three bytes, taken apart: each channel has its own kernel.
struct Planes {
    using Pixel = uint8_t;
    static constexpr size_t kPlanes = 3;

    static void toFloats(const uint8_t* src, size_t count, float* dst, size_t plane) {
        const simd::Widest<uint8_t> d;
        uint8_t bytes[kPlanes][hn::MaxLanes(d)];
        const auto convert = [&](ptrdiff_t x, ptrdiff_t pixels) {
            for (size_t i = 0; i < kPlanes; ++i) convertRow(bytes[i], static_cast<size_t>(pixels), dst + i * plane + x);
        };
        simd::coverWithRest(
            static_cast<ptrdiff_t>(count), simd::lanesOf(d),
            [&](ptrdiff_t x) HWY_ATTR {
                hn::Vec<decltype(d)> first;
                hn::Vec<decltype(d)> second;
                hn::Vec<decltype(d)> third;
                hn::LoadInterleaved3(d, src + 3 * x, first, second, third);
                hn::StoreU(first, d, bytes[0]);
                hn::StoreU(second, d, bytes[1]);
                hn::StoreU(third, d, bytes[2]);
                convert(x, simd::lanesOf(d));
            },
            [&](ptrdiff_t x, ptrdiff_t rest) HWY_ATTR {
                for (ptrdiff_t i = 0; i < rest; ++i)
                    for (ptrdiff_t j = 0; j < 3; ++j) bytes[j][i] = src[3 * (x + i) + j];
                convert(x, rest);
            });
    }

    template <class Sum, size_t kRows>
    static HWY_INLINE void filter(const Window& window, size_t x, size_t plane, uint8_t* to, ptrdiff_t step) {
        uint8_t bytes[kPlanes][kRows * kBlock];
        Window ofPlane = window;
        for (size_t i = 0; i < kPlanes; ++i) {
            filterBlock<Sum>(ofPlane, x + i * plane, bytes[i], kBlock, std::make_index_sequence<kRows - 1>());
            ofPlane.taps.weights += window.taps.count;
        }
        const hn::Twice<hn::Rebind<uint8_t, D>> d;
        for (size_t row = 0; row < kRows; ++row)
            for (size_t i = 0; i < kBlock; i += 2 * kLanes) {
                const auto at = [&](size_t j) HWY_ATTR { return hn::LoadU(d, bytes[j] + row * kBlock + i); };
                hn::StoreInterleaved3(at(0), at(1), at(2), d, below(to, static_cast<ptrdiff_t>(row) * step) + 3 * i);
            }
    }
};

template <class Layout, class Sum>
class RegionFilter {
    using Pixel = typename Layout::Pixel;

public:
    RegionFilter(const ConvolvedRows<Pixel>& rows, int windowRows, const Taps& taps, const Scratch& scratch)
        : rows_(rows),
          window_{scratch.rows, taps},
          scratch_(scratch),
          windowRows_(static_cast<size_t>(windowRows)),
          ringRows_(windowRows_ + (taps.hasAllCells ? kTogether - 1 : 0)) {}

    // `columns` are elements, or pixels if they are taken apart; `reach` is the number of a window's that follow its first.
    void filter(size_t columns, size_t reach) {
        reach_ = reach;
        const size_t strip = stripOf(columns, scratch_.ringFloats / ringRows_ / Layout::kPlanes - reach - kLanes);
        plane_ = (strip + reach) / kLanes * kLanes + kLanes;
        for (left_ = 0; left_ < columns; left_ += strip) {
            width_ = std::min(strip, columns - left_);
            filterStrip();
        }
    }

private:
    // Columns of a strip: an equal share of a row, rounded to whole blocks.
    static size_t stripOf(size_t columns, size_t most) {
        const size_t strips = (columns - 1) / (most / kBlock * kBlock) + 1;
        return ((columns - 1) / strips / kBlock + 1) * kBlock;
    }

    const Pixel* source(size_t row) const {
        return below(rows_.src, static_cast<ptrdiff_t>(row) * rows_.srcStep) + Layout::kPlanes * left_;
    }
    float* ringRow(size_t row) const { return scratch_.ring + row % ringRows_ * Layout::kPlanes * plane_; }

    // A row that is shorter than a block is filtered as one, so floats have to follow it.
    void convert(size_t row) {
        Layout::toFloats(source(row), width_ + reach_, ringRow(row), plane_);
        for (size_t i = 0; i < Layout::kPlanes; ++i) {
            float* const afterReach = ringRow(row) + i * plane_ + reach_;
            std::fill(afterReach + std::min(width_, kBlock), afterReach + kBlock, 0.0F);
        }
    }

    void filterStrip() {
        const auto height = static_cast<size_t>(rows_.height);
        size_t converted = 0;
        for (size_t y = 0; y < height;) {
            const bool isTogether = window_.taps.hasAllCells && y + kTogether <= height;
            const size_t rows = isTogether ? kTogether : 1;
            for (; converted < y + windowRows_ + rows - 1; ++converted) convert(converted);
            for (size_t i = 0; i < windowRows_ + rows - 1; ++i) scratch_.rows[i] = ringRow(y + i);
            next_ = y + rows + kTogether <= height ? source(converted) : nullptr;
            if (isTogether)
                filterRows<kTogether>(y);
            else
                filterRows<1>(y);
            y += rows;
        }
    }

    template <size_t kRows>
    void filterRows(size_t y) {
        Pixel* const dst = below(rows_.dst, static_cast<ptrdiff_t>(y) * rows_.dstStep) + Layout::kPlanes * left_;
        simd::coverPulledBack(
            static_cast<ptrdiff_t>(width_), kBlock,
            [&](ptrdiff_t i) HWY_ATTR {
                const auto x = static_cast<size_t>(i);
                if (next_)    // rows are too short for the hardware prefetcher
                    for (size_t row = 0; row < kRows; ++row)
                        simd::prefetchRow(
                            reinterpret_cast<const uint8_t*>(
                                below(next_ + Layout::kPlanes * x, static_cast<ptrdiff_t>(row) * rows_.srcStep)),
                            Layout::kPlanes * kBlock * sizeof(Pixel));
                Layout::template filter<Sum, kRows>(window_, x, plane_, dst + Layout::kPlanes * x, rows_.dstStep);
            },
            [&]() HWY_ATTR {
                Pixel results[kRows * Layout::kPlanes * kBlock];
                constexpr ptrdiff_t kStep = sizeof(results) / kRows;
                Layout::template filter<Sum, kRows>(window_, 0, plane_, results, kStep);
                for (ptrdiff_t row = 0; row < ptrdiff_t{kRows}; ++row)
                    std::memcpy(below(dst, row * rows_.dstStep), below(results, row * kStep),
                                width_ * Layout::kPlanes * sizeof(Pixel));
            });
    }

    ConvolvedRows<Pixel> rows_;
    Window window_;
    Scratch scratch_;
    size_t windowRows_;
    size_t ringRows_;
    size_t reach_ = 0;
    size_t plane_ = 0;    // floats from one plane of a ring's row to the next
    size_t left_ = 0;     // of the strip
    size_t width_ = 0;
    const Pixel* next_ = nullptr;    // the rows that are converted next, if there are enough
};

template <class Layout>
void convolve(const ConvolvedRows<typename Layout::Pixel>& rows, const TurnedKernel& kernel, const Taps& taps,
              const Scratch& scratch) {
    const size_t elements = Layout::kPlanes == 1 ? static_cast<size_t>(rows.channels) : 1;
    const auto run = [&](auto sum) {
        RegionFilter<Layout, decltype(sum)>(rows, kernel.height, taps, scratch)
            .filter(static_cast<size_t>(rows.width) * elements, static_cast<size_t>(kernel.width - 1) * elements);
    };
    if (taps.isExact)
        run(simd::ExactSum());
    else
        run(simd::AnySum());
}

void convolve8uWith(const ConvolvedRows<uint8_t>& rows, const TurnedKernel& kernel, const Taps& taps,
                    const Scratch& scratch) {
    if (kernel.ofChannels)
        convolve<Planes>(rows, kernel, taps, scratch);
    else
        convolve<Packed<uint8_t>>(rows, kernel, taps, scratch);
}

void convolve16uWith(const ConvolvedRows<uint16_t>& rows, const TurnedKernel& kernel, const Taps& taps,
                     const Scratch& scratch) {
    convolve<Packed<uint16_t>>(rows, kernel, taps, scratch);
}

void convolve16sWith(const ConvolvedRows<int16_t>& rows, const TurnedKernel& kernel, const Taps& taps,
                     const Scratch& scratch) {
    convolve<Packed<int16_t>>(rows, kernel, taps, scratch);
}

}    // namespace HWY_NAMESPACE
}    // namespace
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace {
HWY_EXPORT(convolve8uWith);
HWY_EXPORT(convolve16uWith);
HWY_EXPORT(convolve16sWith);

// False if allocating scratch fails.
template <class Rows, class Run>
bool withScratch(const Rows& rows, const filters::TurnedKernel& kernel, const Run& run) {
    filters::ScratchMemory memory(kernel, kernel.ofChannels ? 1 : rows.channels);
    if (!memory.scratch().ring) return false;
    run(filters::prepareTaps(kernel, kernel.ofChannels ? 1 : rows.channels, memory.scratch()), memory.scratch());
    return true;
}

}    // namespace

bool filters::convolve8u(const ConvolvedRows<uint8_t>& rows, const TurnedKernel& kernel) {
    return withScratch(rows, kernel, [&](const filters::Taps& taps, const filters::Scratch& scratch) {
        HWY_DYNAMIC_DISPATCH(convolve8uWith)(rows, kernel, taps, scratch);
    });
}

bool filters::convolve16u(const ConvolvedRows<uint16_t>& rows, const TurnedKernel& kernel) {
    return withScratch(rows, kernel, [&](const filters::Taps& taps, const filters::Scratch& scratch) {
        HWY_DYNAMIC_DISPATCH(convolve16uWith)(rows, kernel, taps, scratch);
    });
}

bool filters::convolve16s(const ConvolvedRows<int16_t>& rows, const TurnedKernel& kernel) {
    return withScratch(rows, kernel, [&](const filters::Taps& taps, const filters::Scratch& scratch) {
        HWY_DYNAMIC_DISPATCH(convolve16sWith)(rows, kernel, taps, scratch);
    });
}
#endif    // HWY_ONCE
