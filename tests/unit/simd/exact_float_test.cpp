// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Float arithmetic on the vectors of the target that the program runs, beside the C library's.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

#include "support/random.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/exact_float_test.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/exact_float-inl.h"

HWY_BEFORE_NAMESPACE();
namespace {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

constexpr size_t kCount = 16;    // a multiple of every target's lanes

void fusedMulAdd(const float* a, const float* b, const float* c, float* sums) {
    const hn::ScalableTag<float> d;
    static_assert(kCount % hn::MaxLanes(d) == 0, "whole vectors");
    for (size_t i = 0; i < kCount; i += hn::Lanes(d))
        hn::StoreU(
            opcv::simd::HWY_NAMESPACE::fusedMulAdd(d, hn::LoadU(d, a + i), hn::LoadU(d, b + i), hn::LoadU(d, c + i)), d,
            sums + i);
}

void exactMulAdd(const float* a, const float* b, const float* c, float* sums) {
    const hn::ScalableTag<float> d;
    for (size_t i = 0; i < kCount; i += hn::Lanes(d))
        hn::StoreU(opcv::simd::HWY_NAMESPACE::ExactSum::fusedMulAdd(d, hn::LoadU(d, a + i), hn::LoadU(d, b + i),
                                                                    hn::LoadU(d, c + i)),
                   d, sums + i);
}

void nearestSmall(const float* values, int32_t* nearest) {
    const hn::ScalableTag<float> d;
    for (size_t i = 0; i < kCount; i += hn::Lanes(d))
        hn::StoreU(opcv::simd::HWY_NAMESPACE::nearestSmall(d, hn::LoadU(d, values + i)),
                   hn::RebindToSigned<decltype(d)>(), nearest + i);
}

// Of two vectors at a time: kCount values and kCount more.
void nearestShorts(const float* values, int16_t* nearest) {
    const hn::ScalableTag<float> d;
    const size_t lanes = hn::Lanes(d);
    for (size_t i = 0; i < 2 * kCount; i += 2 * lanes)
        hn::StoreU(
            opcv::simd::HWY_NAMESPACE::nearestShorts(d, hn::LoadU(d, values + i), hn::LoadU(d, values + i + lanes)),
            hn::Repartition<int16_t, decltype(d)>(), nearest + i);
}

void nearestWithin(const float* values, float low, float high, int32_t* nearest) {
    const hn::ScalableTag<float> d;
    for (size_t i = 0; i < kCount; i += hn::Lanes(d))
        hn::StoreU(opcv::simd::HWY_NAMESPACE::nearestWithin(d, hn::LoadU(d, values + i), low, high),
                   hn::RebindToSigned<decltype(d)>(), nearest + i);
}

}    // namespace HWY_NAMESPACE
}    // namespace
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace {
HWY_EXPORT(fusedMulAdd);
HWY_EXPORT(exactMulAdd);
HWY_EXPORT(nearestSmall);
HWY_EXPORT(nearestShorts);
HWY_EXPORT(nearestWithin);

constexpr size_t kFloats = 16;
using Floats = std::array<float, kFloats>;

float withBits(uint32_t bits) {
    float value = 0;
    std::memcpy(&value, &bits, sizeof(value));
    return value;
}

uint32_t bitsOf(float value) {
    uint32_t bits = 0;
    std::memcpy(&bits, &value, sizeof(bits));
    return bits;
}

bool same(float a, float b) { return std::isnan(a) ? std::isnan(b) : bitsOf(a) == bitsOf(b); }

void expectFused(const Floats& a, const Floats& b, const Floats& c) {
    Floats sums{};
    HWY_DYNAMIC_DISPATCH(fusedMulAdd)(a.data(), b.data(), c.data(), sums.data());
    for (size_t i = 0; i < kFloats; ++i)
        ASSERT_TRUE(same(sums[i], std::fma(a[i], b[i], c[i])))
            << a[i] << " * " << b[i] << " + " << c[i] << " gave " << sums[i];
}

// Any bits at all: infinities, NaN and denormal numbers are among them.
TEST(FusedMulAdd, RoundsOnceWhateverTheFloats) {
    Random random(1401);
    const auto anyFloat = [&] { return withBits(static_cast<uint32_t>(random.between(INT32_MIN, INT32_MAX))); };
    for (int round = 0; round < 20000; ++round) {
        Floats a{};
        Floats b{};
        Floats c{};
        std::generate(a.begin(), a.end(), anyFloat);
        std::generate(b.begin(), b.end(), anyFloat);
        std::generate(c.begin(), c.end(), anyFloat);
        expectFused(a, b, c);
        if (HasFatalFailure()) return;
    }
}

// Sums of a product and a number of about its size, or one that is so small that it decides between two floats only.
TEST(FusedMulAdd, RoundsOnceBetweenTwoFloats) {
    Random random(1402);
    for (int round = 0; round < 20000; ++round) {
        Floats a{};
        Floats b{};
        Floats c{};
        for (size_t i = 0; i < kFloats; ++i) {
            a[i] = static_cast<float>(random.between(-65535, 65535));
            b[i] = static_cast<float>(random.between(-(1 << 24), 1 << 24)) * std::ldexp(1.0F, random.between(-40, 3));
            c[i] = static_cast<float>(random.between(-(1 << 24), 1 << 24)) * std::ldexp(1.0F, random.between(-60, 20));
        }
        expectFused(a, b, c);
        if (HasFatalFailure()) return;
    }
}

// 2^24 + 1 lies halfway between two floats; what is added is below a double's last bit there, on either side.
TEST(FusedMulAdd, TheSmallestRestDecidesATie) {
    const float tiny = std::ldexp(1.0F, -60);
    Floats a{};
    Floats b{};
    Floats c{};
    a.fill(4097.0F);    // 4097 * 4095 = 2^24 - 1
    b.fill(4095.0F);
    for (size_t i = 0; i < kFloats; ++i) c[i] = (i % 2 == 0 ? 1.0F : -1.0F) * tiny;
    expectFused(a, b, c);
    a.fill(257.0F);    // 257 * 65281 = 2^24 + 1
    b.fill(65281.0F);
    expectFused(a, b, c);
    a.fill(-257.0F);
    expectFused(a, b, c);
}

// Sums whose bits doubles hold: all are multiples of 2^-44 and below 2^8. Many lie near the middle between two floats.
TEST(ExactSum, RoundsOnceIfDoublesHoldTheSum) {
    Random random(1404);
    for (int round = 0; round < 20000; ++round) {
        Floats a{};
        Floats b{};
        Floats c{};
        Floats sums{};
        for (size_t i = 0; i < kFloats; ++i) {
            a[i] = static_cast<float>(random.between(0, 255));
            b[i] = std::ldexp(static_cast<float>(random.between(-(1 << 24), 1 << 24)), -44 + random.between(0, 12));
            c[i] = std::ldexp(static_cast<float>(random.between(-(1 << 24), 1 << 24)), -44 + random.between(0, 26));
        }
        HWY_DYNAMIC_DISPATCH(exactMulAdd)(a.data(), b.data(), c.data(), sums.data());
        for (size_t i = 0; i < kFloats; ++i)
            ASSERT_TRUE(same(sums[i], std::fma(a[i], b[i], c[i]))) << a[i] << " * " << b[i] << " + " << c[i];
    }
}

std::array<int32_t, kFloats> nearestOf(const Floats& values, float low, float high) {
    std::array<int32_t, kFloats> nearest{};
    HWY_DYNAMIC_DISPATCH(nearestWithin)(values.data(), low, high, nearest.data());
    return nearest;
}

TEST(NearestWithin, RoundsHalvesToEvenAndSaturates) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    const Floats values = {0.5F,   1.5F,   2.5F,  -0.5F,     254.5F,     255.5F, -1e30F, 1e30F,
                           2.499F, 1e-40F, -0.0F, kInfinity, -kInfinity, kNan,   -kNan,  65535.5F};
    EXPECT_EQ(nearestOf(values, 0, 255),
              (std::array<int32_t, kFloats>{0, 2, 2, 0, 254, 255, 0, 255, 2, 0, 0, 255, 0, 0, 0, 255}));
    EXPECT_EQ(nearestOf(values, -32768, 32767),
              (std::array<int32_t, kFloats>{0, 2, 2, 0, 254, 256, -32768, 32767, 2, 0, 0, 32767, -32768, -32768, -32768,
                                            32767}));
    EXPECT_EQ(nearestOf(values, 0, 65535),
              (std::array<int32_t, kFloats>{0, 2, 2, 0, 254, 256, 0, 65535, 2, 0, 0, 65535, 0, 0, 0, 65535}));
}

TEST(NearestWithin, RoundsAsTheProcessorDoes) {
    Random random(1403);
    for (int round = 0; round < 10000; ++round) {
        Floats values{};
        for (float& value : values) value = static_cast<float>(random.real(-70000, 70000));
        const auto nearest = nearestOf(values, -32768, 65535);
        for (size_t i = 0; i < kFloats; ++i)
            ASSERT_EQ(nearest[i], std::clamp(static_cast<int>(std::nearbyint(values[i])), -32768, 65535)) << values[i];
    }
}

TEST(NearestSmall, RoundsAsTheProcessorDoes) {
    Random random(1405);
    for (int round = 0; round < 10000; ++round) {
        constexpr int kEnd = (1 << 22) - 1;
        Floats values{};
        for (float& value : values)
            value = random.chance(50) ? static_cast<float>(random.between(-2 * kEnd, 2 * kEnd)) / 2
                                      : static_cast<float>(random.real(-kEnd, kEnd));
        std::array<int32_t, kFloats> nearest{};
        HWY_DYNAMIC_DISPATCH(nearestSmall)(values.data(), nearest.data());
        for (size_t i = 0; i < kFloats; ++i) ASSERT_EQ(nearest[i], std::nearbyint(values[i])) << values[i];
    }
}

TEST(NearestShorts, RoundsAsTheProcessorDoesAndKeepsTheOrder) {
    Random random(1406);
    for (int round = 0; round < 10000; ++round) {
        std::array<float, 2 * kFloats> values{};
        for (float& value : values)
            value = random.chance(50) ? static_cast<float>(random.between(-65535, 65534)) / 2
                                      : static_cast<float>(random.real(-32768, 32767));
        std::array<int16_t, 2 * kFloats> nearest{};
        HWY_DYNAMIC_DISPATCH(nearestShorts)(values.data(), nearest.data());
        for (size_t i = 0; i < values.size(); ++i) ASSERT_EQ(nearest[i], std::nearbyint(values[i])) << values[i];
    }
}

}    // namespace
#endif    // HWY_ONCE
