// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Look-ups of floats by bytes on the vectors of the target that the program runs.
#include <gtest/gtest.h>
#include <hwy/aligned_allocator.h>

#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "simd/float_table.h"
#include "support/random.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/table_lookup_test.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/table_lookup-inl.h"

HWY_BEFORE_NAMESPACE();
namespace {
namespace HWY_NAMESPACE {

ptrdiff_t vectorBytes() { return opcv::simd::HWY_NAMESPACE::kTableBytes; }

void lookUpRow(const opcv::simd::FloatTable& table, const uint8_t* bytes, ptrdiff_t count, float* found) {
    opcv::simd::HWY_NAMESPACE::lookUpRow(table, bytes, count, found);
}

}    // namespace HWY_NAMESPACE
}    // namespace
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace {
HWY_EXPORT(vectorBytes);
HWY_EXPORT(lookUpRow);

// Any bits at all, so that each byte of a float matters.
std::vector<uint32_t> anyBits(Random& random) {
    std::vector<uint32_t> bits(opcv::simd::FloatTable::kValues);
    for (uint32_t& value : bits) value = static_cast<uint32_t>(random.between(INT32_MIN, INT32_MAX));
    return bits;
}

opcv::simd::FloatTable tableOf(const std::vector<uint32_t>& bits) {
    opcv::simd::FloatTable table;
    table.fill([&](size_t byte) {
        float value = 0;
        std::memcpy(&value, &bits[byte], sizeof(value));
        return value;
    });
    return table;
}

constexpr uint32_t kCanary = 0xA5A5A5A5;

// Bits of the floats for a row, and of a vector's width of floats behind them.
std::vector<uint32_t> bitsFound(const opcv::simd::FloatTable& table, const std::vector<uint8_t>& bytes,
                                ptrdiff_t count) {
    const size_t floats = bytes.size() + static_cast<size_t>(HWY_DYNAMIC_DISPATCH(vectorBytes)());
    const auto found = hwy::AllocateAligned<float>(floats);
    std::vector<uint32_t> bits(floats, kCanary);
    std::memcpy(found.get(), bits.data(), floats * sizeof(float));
    HWY_DYNAMIC_DISPATCH(lookUpRow)(table, bytes.data(), count, found.get());
    std::memcpy(bits.data(), found.get(), floats * sizeof(float));
    return bits;
}

std::vector<uint32_t> bitsExpected(const std::vector<uint32_t>& bits, const std::vector<uint8_t>& bytes) {
    const auto behind = static_cast<size_t>(HWY_DYNAMIC_DISPATCH(vectorBytes)());
    std::vector<uint32_t> expected(bytes.size() + behind, kCanary);
    for (size_t i = 0; i < bytes.size(); ++i) expected[i] = bits[bytes[i]];
    return expected;
}

// Vectors of small bytes take another path than those with a large one.
TEST(TableLookup, GivesTheFloatOfEachByte) {
    Random random(1411);
    const ptrdiff_t vector = HWY_DYNAMIC_DISPATCH(vectorBytes)();
    for (int largest = 0; largest < 256; ++largest) {
        const std::vector<uint32_t> bits = anyBits(random);
        const opcv::simd::FloatTable table = tableOf(bits);
        std::vector<uint8_t> bytes(static_cast<size_t>(3 * vector));
        for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random.between(0, largest));
        EXPECT_EQ(bitsFound(table, bytes, 3 * vector), bitsExpected(bits, bytes)) << "up to " << largest;
    }
}

TEST(TableLookup, FindsOneLargeByteAnywhere) {
    Random random(1412);
    const auto vector = static_cast<size_t>(HWY_DYNAMIC_DISPATCH(vectorBytes)());
    for (const int large : {15, 16, 31, 32, 63, 64, 127, 128, 191, 192, 255})
        for (size_t position = 0; position < vector; ++position) {
            const std::vector<uint32_t> bits = anyBits(random);
            std::vector<uint8_t> bytes(vector);
            for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random.between(0, 7));
            bytes[position] = static_cast<uint8_t>(large);
            EXPECT_EQ(bitsFound(tableOf(bits), bytes, static_cast<ptrdiff_t>(vector)), bitsExpected(bits, bytes))
                << large << " at " << position;
        }
}

TEST(TableLookup, WritesWholeVectorsAndNothingElse) {
    Random random(1413);
    const std::vector<uint32_t> bits = anyBits(random);
    const opcv::simd::FloatTable table = tableOf(bits);
    const ptrdiff_t vector = HWY_DYNAMIC_DISPATCH(vectorBytes)();
    for (ptrdiff_t count = 0; count <= 2 * vector + 1; ++count) {
        std::vector<uint8_t> bytes(static_cast<size_t>((count + vector - 1) / vector * vector));
        for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random.between(0, count % 2 == 0 ? 20 : 255));
        EXPECT_EQ(bitsFound(table, bytes, count), bitsExpected(bits, bytes)) << count;
    }
}

}    // namespace
#endif    // HWY_ONCE
