// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Looks up the floats of a row of bytes. Kernel files include this once per target.
//
// Vectors hold the first floats of the table as four planes of bytes: all 256 floats with AVX3_DL, 64 with NEON, 32 with
// AVX2 and SSSE3. A look-up shuffles each plane and interleaves the bytes. If a vector has a byte beyond these floats,
// its bytes are looked up one by one, which takes less time than AVX2's gathers on an AMD EPYC.
#if defined(OPCV_DLIB_SIMD_TABLE_LOOKUP_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef OPCV_DLIB_SIMD_TABLE_LOOKUP_INL_H
#undef OPCV_DLIB_SIMD_TABLE_LOOKUP_INL_H
#else
#define OPCV_DLIB_SIMD_TABLE_LOOKUP_INL_H
#endif

#include <hwy/highway.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "simd/float_table.h"
#include "simd/unrolled-inl.h"

HWY_BEFORE_NAMESPACE();
namespace opcv::simd {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using TableBytes = hn::ScalableTag<uint8_t>;
using TableVector = hn::Vec<TableBytes>;
constexpr ptrdiff_t kTableBytes = hn::MaxLanes(TableBytes());

// The first `kValues` bytes of a plane.
#if HWY_TARGET == HWY_AVX3_DL

class ShuffledPlane {
public:
    static constexpr size_t kValues = 256;

    explicit ShuffledPlane(const uint8_t* plane) {
        for (size_t i = 0; i < 4; ++i) parts_[i] = hn::Load(TableBytes(), plane + i * hn::MaxLanes(TableBytes())).raw;
    }

    HWY_INLINE TableVector at(TableVector bytes) const {
        const __m512i lower = _mm512_permutex2var_epi8(parts_[0], bytes.raw, parts_[1]);
        const __m512i upper = _mm512_permutex2var_epi8(parts_[2], bytes.raw, parts_[3]);
        return TableVector{_mm512_mask_blend_epi8(_mm512_movepi8_mask(bytes.raw), lower, upper)};
    }

private:
    __m512i parts_[4];
};

#elif HWY_ARCH_ARM_A64

class ShuffledPlane {
public:
    static constexpr size_t kValues = 64;

    explicit ShuffledPlane(const uint8_t* plane) : parts_(vld1q_u8_x4(plane)) {}

    HWY_INLINE TableVector at(TableVector bytes) const { return TableVector(vqtbl4q_u8(parts_, bytes.raw)); }

private:
    uint8x16x4_t parts_;
};

#else

class ShuffledPlane {
public:
    static constexpr size_t kValues = 32;

    explicit ShuffledPlane(const uint8_t* plane)
        : lower_(hn::LoadDup128(TableBytes(), plane)), upper_(hn::LoadDup128(TableBytes(), plane + 16)) {}

    // A shuffle gives 0 for an index of 128 or more.
    HWY_INLINE TableVector at(TableVector bytes) const {
        const TableBytes d;
        return hn::Or(hn::TableLookupBytesOr0(lower_, hn::SaturatedAdd(bytes, hn::Set(d, 0x80 - 16))),
                      hn::TableLookupBytesOr0(upper_, hn::Sub(bytes, hn::Set(d, 16))));
    }

private:
    TableVector lower_;
    TableVector upper_;
};

#endif

// Stores the floats whose bytes are in four vectors.
HWY_INLINE void storeFloats(TableVector lowest, TableVector low, TableVector high, TableVector highest, float* found) {
    const TableBytes d;
    const hn::RepartitionToWide<TableBytes> d16;
    const hn::RepartitionToWide<decltype(d16)> d32;
    const hn::Repartition<float, TableBytes> floats;
    const auto store = [&](auto lowHalves, auto highHalves, float* to) HWY_ATTR {
        const auto lower = hn::BitCast(d16, lowHalves);
        const auto upper = hn::BitCast(d16, highHalves);
        hn::Store(hn::BitCast(floats, hn::InterleaveLower(d16, lower, upper)), floats, to);
        hn::Store(hn::BitCast(floats, hn::InterleaveUpper(d16, lower, upper)), floats, to + hn::MaxLanes(d32));
    };
    store(hn::InterleaveLower(d, lowest, low), hn::InterleaveLower(d, high, highest), found);
    store(hn::InterleaveUpper(d, lowest, low), hn::InterleaveUpper(d, high, highest), found + 2 * hn::MaxLanes(d32));
}

// Interleaving works within blocks of 16 bytes. This order of groups of four bytes makes storeFloats() store their floats
// in the order of `bytes`.
HWY_INLINE TableVector inBlockOrder(TableVector bytes) {
    const TableBytes d;
    const hn::Repartition<uint32_t, TableBytes> d32;
    constexpr uint32_t kGroups = hn::MaxLanes(d32);
    constexpr uint32_t kBlocks = kGroups / 4;
    if (kBlocks == 1) return bytes;
    HWY_ALIGN uint32_t order[kGroups];
    for (uint32_t i = 0; i < kGroups; ++i) order[i] = i % 4 * kBlocks + i / 4;
    return hn::BitCast(d, hn::TableLookupLanes(hn::BitCast(d32, bytes), hn::SetTableIndices(d32, order)));
}

// Writes the floats of a row of bytes. The row is read and written by whole vectors of bytes, so both sides must have room
// for the last one. `found` is aligned to a vector.
HWY_NOINLINE inline void lookUpRow(const FloatTable& table, const uint8_t* bytes, ptrdiff_t count, float* found) {
    const TableBytes d;
    constexpr auto kLast = static_cast<uint8_t>(ShuffledPlane::kValues - 1);
    const ShuffledPlane lowest(table.planes[0]);
    const ShuffledPlane low(table.planes[1]);
    const ShuffledPlane high(table.planes[2]);
    const ShuffledPlane highest(table.planes[3]);
    for (ptrdiff_t x = 0; x < count; x += kTableBytes) {
        const TableVector some = hn::LoadU(d, bytes + x);
        if (kLast == 255 || hn::AllTrue(d, hn::Eq(hn::Min(some, hn::Set(d, kLast)), some))) {
            const TableVector ordered = inBlockOrder(some);
            storeFloats(lowest.at(ordered), low.at(ordered), high.at(ordered), highest.at(ordered), found + x);
            continue;
        }
        unrolled<kTableBytes>([&](auto i) OPCV_DLIB_INLINED {
            uint32_t bits = 0;
            std::memcpy(&bits, &table.values[(bytes + x)[i]], sizeof(bits));
            asm("" : "+r"(bits));    // GCC otherwise collects the floats in vectors, which takes longer
            std::memcpy(found + x + i, &bits, sizeof(bits));
        });
    }
}

}    // namespace HWY_NAMESPACE
}    // namespace opcv::simd
HWY_AFTER_NAMESPACE();

#endif    // include guard of the target
