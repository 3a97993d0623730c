// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Bit packing between 1-bit rows (most significant bit first) and grey rows.
//
//     bit offset 3:   byte 0            byte 1                   byte 2                      last byte
//                     . . . 0 1 2 3 4   5 6 7 8 9 10 11 12       13 14 15 16 17 18 19 20     21 22 . . . . . .
//                     |--- head ----|   |------------- whole bytes ------------------|      |--- tail ---|
//
// Whole bytes are processed in blocks that start at byte boundaries of the packed row, so that a bit offset only moves
// the grey side, which is loaded and stored unaligned. Head and tail are the first and the last eight pixels of the
// region, shifted within their byte. Only bytes of the region are read and written on either side.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "pixel/bit_packing_kernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pixel/bit_packing_kernels.cpp"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using D = hn::ScalableTag<uint8_t>;
using DByte = hn::CappedTag<uint8_t, 8>;    // the pixels of one byte

constexpr ptrdiff_t kBlockBytes = 16;    // of packed bits, the reach of a table lookup
constexpr size_t kBlockPixels = 8 * kBlockBytes;

// Prefetches the pixels of a later block: the hardware prefetcher stops at the end of each memory page.
HWY_INLINE void fetchAhead(const uint8_t* grey) {
    constexpr size_t kAhead = 1024;
    constexpr size_t kCacheLine = 64;
    for (size_t pixel = 0; pixel < kBlockPixels; pixel += kCacheLine) hwy::Prefetch(grey + kAhead + pixel);
}

// Calls `blockAt` for the first byte of each block, the last one pulled back to end with the bytes; fewer bytes than
// that go one at a time.
template <class BlockAt, class ByteAt>
HWY_INLINE void coverBytes(ptrdiff_t bytes, const BlockAt& blockAt, const ByteAt& byteAt) {
    if (bytes < kBlockBytes) {
        for (ptrdiff_t byte = 0; byte < bytes; ++byte) byteAt(byte);
        return;
    }
    for (ptrdiff_t byte = 0; byte < bytes - kBlockBytes; byte += kBlockBytes) blockAt(byte);
    blockAt(bytes - kBlockBytes);
}

// Bits to 0 and 255: each lane fetches the byte that holds its bit and tests the bit.
template <class DPixels, class V>
HWY_INLINE void expandVector(DPixels d, V bits, V byteOfLane, uint8_t* HWY_RESTRICT grey) {
    HWY_ALIGN static constexpr uint8_t kBits[16] = {128, 64, 32, 16, 8, 4, 2, 1, 128, 64, 32, 16, 8, 4, 2, 1};
    const auto byte = hn::TableLookupBytes(bits, byteOfLane);
    hn::StoreU(hn::VecFromMask(d, hn::TestBit(byte, hn::LoadDup128(d, kBits))), d, grey);
}

HWY_INLINE void expandByte(unsigned bits, uint8_t* HWY_RESTRICT grey) {
    const DByte d;
    expandVector(d, hn::Set(d, static_cast<uint8_t>(bits)), hn::Zero(d), grey);
}

void expandBytes(const uint8_t* HWY_RESTRICT bits, ptrdiff_t bytes, uint8_t* HWY_RESTRICT grey) {
    const D d;
    static_assert(hn::MaxLanes(d) <= kBlockPixels, "a block holds whole vectors");
    const auto byteOfLane = hn::ShiftRight<3>(hn::Iota(d, 0));
    const auto expandBlock = [=](ptrdiff_t byte) HWY_ATTR {
        fetchAhead(grey + 8 * byte);
        const auto block = hn::LoadDup128(d, bits + byte);
        for (size_t pixel = 0; pixel < kBlockPixels; pixel += hn::Lanes(d))
            expandVector(d, block, hn::Add(byteOfLane, hn::Set(d, static_cast<uint8_t>(pixel / 8))),
                         grey + 8 * byte + pixel);
    };
    coverBytes(bytes, expandBlock, [=](ptrdiff_t byte) HWY_ATTR { expandByte(bits[byte], grey + 8 * byte); });
}

// Pixels above the level to bits. The lanes of a comparison are collected starting at the lowest bit, so every eight
// pixels are reversed first.
template <class DPixels>
HWY_INLINE void packVector(DPixels d, const uint8_t* HWY_RESTRICT grey, uint8_t level, uint8_t* HWY_RESTRICT bits) {
    HWY_ALIGN static constexpr uint8_t kReverse8[16] = {7, 6, 5, 4, 3, 2, 1, 0, 15, 14, 13, 12, 11, 10, 9, 8};
    const auto pixels = hn::TableLookupBytes(hn::LoadU(d, grey), hn::LoadDup128(d, kReverse8));
    hn::StoreMaskBits(d, hn::Gt(pixels, hn::Set(d, level)), bits);
}

HWY_INLINE unsigned packByte(const uint8_t* HWY_RESTRICT grey, uint8_t level) {
    uint8_t bits = 0;
    packVector(DByte(), grey, level, &bits);
    return bits;
}

void packBytes(const uint8_t* HWY_RESTRICT grey, ptrdiff_t bytes, uint8_t level, uint8_t* HWY_RESTRICT bits) {
    const auto packBlock = [=](ptrdiff_t byte) HWY_ATTR {
        const D d;
        fetchAhead(grey + 8 * byte);
        for (size_t pixel = 0; pixel < kBlockPixels; pixel += hn::Lanes(d))
            packVector(d, grey + 8 * byte + pixel, level, bits + byte + pixel / 8);
    };
    coverBytes(bytes, packBlock,
               [=](ptrdiff_t byte) HWY_ATTR { packVector(DByte(), grey + 8 * byte, level, bits + byte); });
}

// The part of a packed row that belongs to the region.
struct BitRow {
    BitRow(ptrdiff_t bitOffset, ptrdiff_t pixels)
        : offset(bitOffset),
          width(pixels),
          lead(-bitOffset & 7),
          wholeBytes(std::max<ptrdiff_t>(pixels - lead, 0) / 8) {}

    ptrdiff_t lastByte() const { return (offset + width - 1) / 8; }
    // Bits of the last byte that belong to the region; 8 if they all do.
    ptrdiff_t endOfLastByte() const { return (offset + width - 1) % 8 + 1; }
    unsigned bitsBefore() const { return 0xFF00U >> offset & 0xFFU; }
    unsigned bitsBehind() const { return 0xFFU >> endOfLastByte(); }

    ptrdiff_t offset;
    ptrdiff_t width;
    ptrdiff_t lead;    // pixels that end at the first byte boundary
    ptrdiff_t wholeBytes;
};

// Two packed bytes as a number; the second one is read only if it belongs to the row.
HWY_INLINE unsigned pairAt(const uint8_t* bits, ptrdiff_t byte, ptrdiff_t last) {
    return static_cast<unsigned>(bits[byte]) << 8 | (byte < last ? bits[byte + 1] : 0U);
}

void expandRow(const uint8_t* bits, const BitRow& row, uint8_t* grey) {
    const ptrdiff_t last = row.lastByte();
    const unsigned first = pairAt(bits, 0, last) << row.offset >> 8;
    if (row.width < 8) {
        uint8_t pixels[8];
        expandByte(first, pixels);
        std::memcpy(grey, pixels, static_cast<size_t>(row.width));
        return;
    }
    if (row.lead != 0) expandByte(first, grey);
    expandBytes(bits + (row.lead != 0), row.wholeBytes, grey + row.lead);
    if (row.endOfLastByte() != 8)
        expandByte(pairAt(bits, last - 1, last) >> (8 - row.endOfLastByte()), grey + row.width - 8);
}

// Writes the bits of a byte that belong to the region. The other bits count as pixels of 255 or 0 and are compared with
// the same threshold, so that 255 clears them.
HWY_INLINE void writeBits(unsigned packed, unsigned around, uint8_t threshold, uint8_t& byte) {
    const unsigned kept = threshold == 255 ? 0U : byte & around;
    byte = static_cast<uint8_t>((packed & ~around) | kept);
}

void packRow(const uint8_t* grey, const BitRow& row, uint8_t threshold, uint8_t* bits) {
    const ptrdiff_t last = row.lastByte();
    if (row.width < 8) {
        uint8_t pixels[8] = {};
        std::memcpy(pixels, grey, static_cast<size_t>(row.width));
        const unsigned packed = packByte(pixels, threshold) << 8 >> row.offset;
        writeBits(packed >> 8, last == 0 ? row.bitsBefore() | row.bitsBehind() : row.bitsBefore(), threshold, bits[0]);
        if (last != 0) writeBits(packed, row.bitsBehind(), threshold, bits[1]);
        return;
    }
    if (row.lead != 0) writeBits(packByte(grey, threshold) >> row.offset, row.bitsBefore(), threshold, bits[0]);
    packBytes(grey + row.lead, row.wholeBytes, threshold, bits + (row.lead != 0));
    if (row.endOfLastByte() != 8)
        writeBits(packByte(grey + row.width - 8, threshold) << (8 - row.endOfLastByte()), row.bitsBehind(), threshold,
                  bits[last]);
}

void expand(const uint8_t* src, int srcStep, int bitOffset, uint8_t* dst, int dstStep, int width, int height) {
    if (width <= 0) return;
    const BitRow row(bitOffset, width);
    for (; height > 0; --height, src += srcStep, dst += dstStep) expandRow(src, row, dst);
}

void pack(const uint8_t* src, int srcStep, uint8_t* dst, int dstStep, int bitOffset, int width, int height,
          uint8_t threshold) {
    if (width < 0 || bitOffset + width == 0) return;    // with an offset, the bits before it are still processed
    const BitRow row(bitOffset, width);
    for (; height > 0; --height, src += srcStep, dst += dstStep) packRow(src, row, threshold, dst);
}

}    // namespace HWY_NAMESPACE
}    // namespace
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace {
HWY_EXPORT(expand);
HWY_EXPORT(pack);
}    // namespace

void opcv::expandBits(const unsigned char* src, int srcStep, int bitOffset, unsigned char* dst, int dstStep, int width,
                      int height) {
    HWY_DYNAMIC_DISPATCH(expand)(src, srcStep, bitOffset, dst, dstStep, width, height);
}

void opcv::packBits(const unsigned char* src, int srcStep, unsigned char* dst, int dstStep, int bitOffset, int width,
                    int height, unsigned char threshold) {
    HWY_DYNAMIC_DISPATCH(pack)(src, srcStep, dst, dstStep, bitOffset, width, height, threshold);
}
#endif    // HWY_ONCE
