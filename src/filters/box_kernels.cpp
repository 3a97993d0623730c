// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Box filter of three interleaved 8-bit channels, in place. Each column of the mask has a sum: the new row is added and
// the row that leaves the mask is subtracted. A ring keeps these rows, because the image may have been overwritten:
//
//     ring:     row y | y + 1 | ... | y + mask height - 1      rows under the mask, as they were
//     columns:  their sum for each element, in 16 bits (hence masks of up to 256 pixels)
//     result:   mean of columns[x], [x + 3], ... , one for each column of the mask
//
// OpenCV's mean of a sum s over d pixels is ((s + e) q) >> 23 with a reciprocal q of 23 bits. One 16-bit high multiply
// gives the same result for all sums; its constant is checked once per call.
#include "filters/box_kernels.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "core/ownership.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/box_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/row-inl.h"

HWY_BEFORE_NAMESPACE();
namespace {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;
using filters::BoxRegion;
using filters::MeanRule;
using opcv::simd::HWY_NAMESPACE::coverRow;
using opcv::simd::HWY_NAMESPACE::coverRowOnce;

using D = hn::ScalableTag<uint16_t>;

// Replaces a row of the ring by a new one and updates the column sums.
template <class Sums>
HWY_INLINE void exchangeAt(Sums d, const uint8_t* src, ptrdiff_t x, uint8_t* ring, uint16_t* columns) {
    const hn::Rebind<uint8_t, Sums> bytes;
    const auto added = hn::LoadU(bytes, src + x);
    const auto left = hn::PromoteTo(d, hn::LoadU(bytes, ring + x));
    hn::StoreU(added, bytes, ring + x);
    hn::StoreU(hn::Sub(hn::Add(hn::LoadU(d, columns + x), hn::PromoteTo(d, added)), left), d, columns + x);
}

void exchangeRow(const uint8_t* src, size_t count, uint8_t* ring, uint16_t* columns) {
    coverRowOnce(D(), static_cast<ptrdiff_t>(count),
                 [=](auto d, ptrdiff_t x) HWY_ATTR { exchangeAt(d, src, x, ring, columns); });
}

template <class Sums>
HWY_INLINE void meanAt(Sums d, const uint16_t* columns, ptrdiff_t x, int maskWidth, const MeanRule& rule,
                       uint8_t* dst) {
    auto sum = hn::Set(d, rule.addend);
    for (int column = 0; column < maskWidth; ++column) sum = hn::Add(sum, hn::LoadU(d, columns + x + 3 * column));
    const auto mean = hn::ShiftRightSame(hn::MulHigh(sum, hn::Set(d, rule.multiplier)), rule.shift);
    const hn::RebindToSigned<Sums> signedSums;
    const hn::Rebind<uint8_t, Sums> bytes;
    hn::StoreU(hn::DemoteTo(bytes, hn::BitCast(signedSums, mean)), bytes, dst + x);
}

void meanRow(const uint16_t* columns, size_t count, int maskWidth, const MeanRule& rule, uint8_t* dst) {
    coverRow(D(), static_cast<ptrdiff_t>(count),
             [=, &rule](auto d, ptrdiff_t x) HWY_ATTR { meanAt(d, columns, x, maskWidth, rule, dst); });
}

// `ring` and `columns` hold zeros.
void filterBox(const BoxRegion& region, IppiSize mask, const MeanRule& rule, uint8_t* ring, uint16_t* columns) {
    const auto elements = static_cast<size_t>(region.elements);
    const size_t read = elements + 3 * static_cast<size_t>(mask.width - 1);
    const auto exchange = [&](int row) {
        exchangeRow(region.window + row * region.step, read, ring + static_cast<size_t>(row % mask.height) * read,
                    columns);
    };
    for (int row = 0; row + 1 < mask.height; ++row) exchange(row);
    for (int y = 0; y < region.rows; ++y) {
        exchange(y + mask.height - 1);
        meanRow(columns, elements, mask.width, rule, region.pixels + y * region.step);
    }
}

}    // namespace HWY_NAMESPACE
}    // namespace
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace {
HWY_EXPORT(filterBox);

// OpenCV's reciprocal.
struct Reciprocal {
    explicit Reciprocal(int64_t area) {
        constexpr int64_t kOne = int64_t{1} << 23;
        const bool roundedUp = 2 * (kOne % area) >= area;
        multiplier = kOne / area + (roundedUp ? 1 : 0);
        addend = area / 2 + (roundedUp ? 0 : 1);
    }
    int64_t meanOf(int64_t sum) const { return ((sum + addend) * multiplier) >> 23; }

    int64_t multiplier;
    int64_t addend;
};

int64_t meanOf(int64_t sum, const filters::MeanRule& rule) {
    return ((sum + rule.addend) * rule.multiplier) >> (16 + rule.shift);
}

// Both rules are monotonic in the sum, so they agree if each mean begins at the same sum.
bool agree(const filters::MeanRule& rule, const Reciprocal& reciprocal, int64_t area) {
    const int64_t largest = 255 * area;
    if (meanOf(0, rule) != reciprocal.meanOf(0) || meanOf(largest, rule) != reciprocal.meanOf(largest)) return false;
    for (int64_t mean = 1; mean <= 255; ++mean) {
        const int64_t from = ((mean << 23) + reciprocal.multiplier - 1) / reciprocal.multiplier - reciprocal.addend;
        if (from <= 0 || from > largest) continue;
        if (meanOf(from, rule) != mean || meanOf(from - 1, rule) != mean - 1) return false;
    }
    return true;
}

}    // namespace

std::optional<filters::MeanRule> filters::meanRuleOf(int64_t area) {
    if (area < 3 || area > 256) return std::nullopt;
    const Reciprocal reciprocal(area);
    int dropped = 0;
    while (reciprocal.multiplier >> dropped > UINT16_MAX) ++dropped;
    MeanRule rule;
    rule.addend = static_cast<uint16_t>(reciprocal.addend);
    rule.shift = 23 - 16 - dropped;
    // For every area, either the multiplier rounded up or the one rounded down works.
    for (const int64_t multiplier : {-(-reciprocal.multiplier >> dropped), reciprocal.multiplier >> dropped}) {
        rule.multiplier = static_cast<uint16_t>(multiplier);
        if (multiplier <= UINT16_MAX && agree(rule, reciprocal, area)) return rule;
    }
    return std::nullopt;
}

bool filters::filterBox24(const BoxRegion& region, IppiSize mask, const MeanRule& rule) {
    const size_t read = static_cast<size_t>(region.elements) + 3 * static_cast<size_t>(mask.width - 1);
    const std::unique_ptr<uint16_t, opcv::FreeDeleter> columns(
        static_cast<uint16_t*>(std::calloc(read, sizeof(uint16_t))));
    const opcv::PixelBlock ring(static_cast<uint8_t*>(std::calloc(read, static_cast<size_t>(mask.height))));
    if (!columns || !ring) return false;
    HWY_DYNAMIC_DISPATCH(filterBox)(region, mask, rule, ring.get(), columns.get());
    return true;
}
#endif    // HWY_ONCE
