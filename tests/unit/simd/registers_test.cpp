// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Vectors that are kept in registers, on the target that the program runs.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <numeric>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/registers_test.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/in_register-inl.h"
#include "simd/unrolled-inl.h"

HWY_BEFORE_NAMESPACE();
namespace {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;
namespace simd = opcv::simd::HWY_NAMESPACE;

constexpr size_t kVectors = 3;

// Copies some vectors, the last one first, and returns the number of floats.
size_t copyThroughRegisters(const float* from, float* to) {
    const hn::ScalableTag<float> d;
    hn::Vec<decltype(d)> vectors[kVectors];
    size_t next = 0;
    simd::unrolled<kVectors>([&](auto i) OPCV_DLIB_INLINED {
        static_assert(i < kVectors, "a constant");
        if (i == next++) vectors[kVectors - 1 - i] = simd::inRegister(hn::LoadU(d, from + i * hn::Lanes(d)));
    });
    simd::unrolled<kVectors>([&](auto i) OPCV_DLIB_INLINED { hn::StoreU(vectors[i], d, to + i * hn::Lanes(d)); });
    return next * hn::Lanes(d);
}

}    // namespace HWY_NAMESPACE
}    // namespace
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace {
HWY_EXPORT(copyThroughRegisters);

constexpr size_t kFloats = 48;

TEST(Registers, KeepTheVectorsOfAnUnrolledLoop) {
    std::array<float, kFloats> from{};
    std::array<float, kFloats> to{};
    std::iota(from.begin(), from.end(), 1.0F);
    const size_t count = HWY_DYNAMIC_DISPATCH(copyThroughRegisters)(from.data(), to.data());
    ASSERT_LE(count, kFloats);
    ASSERT_EQ(count % 3, 0U);
    for (size_t i = 0; i < count; ++i) {
        const size_t vector = i / (count / 3);
        EXPECT_EQ(to[i], from[(2 - vector) * (count / 3) + i % (count / 3)]);
    }
}

}    // namespace
#endif    // HWY_ONCE
