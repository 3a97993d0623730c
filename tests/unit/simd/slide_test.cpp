// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Unaligned vectors from two in registers, on the target that the program runs.
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <numeric>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/slide_test.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/slide-inl.h"

HWY_BEFORE_NAMESPACE();
namespace {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;
namespace simd = opcv::simd::HWY_NAMESPACE;

template <size_t kBytes>
void slide(const uint8_t* from, uint8_t* to) {
    const hn::ScalableTag<uint8_t> d;
    if constexpr (kBytes <= hn::MaxLanes(d))
        hn::StoreU(simd::slid<kBytes>(d, hn::LoadU(d, from), hn::LoadU(d, from + hn::MaxLanes(d))), d, to);
}

size_t slideBy(size_t bytes, const uint8_t* from, uint8_t* to) {
    switch (bytes) {
        case 1: slide<1>(from, to); break;
        case 2: slide<2>(from, to); break;
        case 8: slide<8>(from, to); break;
        case 15: slide<15>(from, to); break;
        case 16: slide<16>(from, to); break;
        case 17: slide<17>(from, to); break;
        case 31: slide<31>(from, to); break;
        case 32: slide<32>(from, to); break;
        case 63: slide<63>(from, to); break;
        default: slide<64>(from, to);
    }
    return hn::MaxLanes(hn::ScalableTag<uint8_t>());
}

}    // namespace HWY_NAMESPACE
}    // namespace
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace {
HWY_EXPORT(slideBy);

constexpr size_t kMostLanes = 64;

TEST(Slide, TakesTheBytesBetweenTwoVectors) {
    std::array<uint8_t, 2 * kMostLanes> from{};
    std::iota(from.begin(), from.end(), static_cast<uint8_t>(1));
    for (const size_t bytes : std::initializer_list<size_t>{1, 2, 8, 15, 16, 17, 31, 32, 63, 64}) {
        std::array<uint8_t, kMostLanes> to{};
        const size_t lanes = HWY_DYNAMIC_DISPATCH(slideBy)(bytes, from.data(), to.data());
        ASSERT_LE(lanes, kMostLanes);
        if (bytes > lanes) continue;
        for (size_t i = 0; i < lanes; ++i) EXPECT_EQ(to[i], from[bytes + i]) << bytes << ' ' << i;
    }
}

}    // namespace
#endif    // HWY_ONCE
