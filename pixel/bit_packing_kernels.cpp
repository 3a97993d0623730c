// Bit packing between 1-bit rows (most significant bit first) and grey rows, in blocks of 128 pixels: 16 bytes of bits
// against 128 bytes of grey.
//
//     bit offset 3:   byte 0            byte 1                    byte 16
//                     . . . 0 1 2 3 4   5 6 7 8 9 10 11 12  ...   125 ...    (numbers: pixels of the region)
//                     |--------------- block 0 ---------------|   |--- block 1
//
// Blocks start at byte boundaries of the bits, so that a bit offset only moves the grey side, which is loaded and
// stored unaligned. A block that the region fills goes straight from row to row; the first and the last one go through
// a block on the stack. No byte outside the region's own is read or written on either side.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "OPCV_dlib.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pixel/bit_packing_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

constexpr ptrdiff_t kBlockBytes = 16;
constexpr ptrdiff_t kBlockPixels = 8 * kBlockBytes;

using D = hn::ScalableTag<uint8_t>;

// One block of bits to 0 and 255: each lane fetches the byte that holds its bit and tests the bit.
void expandBlock(const uint8_t* HWY_RESTRICT bits, uint8_t* HWY_RESTRICT grey) {
    const D d;
    const auto lanes = static_cast<ptrdiff_t>(hn::Lanes(d));
    HWY_ALIGN static constexpr uint8_t kBits[16] = {128, 64, 32, 16, 8, 4, 2, 1, 128, 64, 32, 16, 8, 4, 2, 1};
    const auto bit = hn::LoadDup128(d, kBits);
    HWY_ALIGN static constexpr uint8_t kByteOfLane[64] = {
        0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 1, 2, 2, 2, 2, 2, 2, 2, 2, 3, 3, 3, 3, 3, 3, 3, 3,
        4, 4, 4, 4, 4, 4, 4, 4, 5, 5, 5, 5, 5, 5, 5, 5, 6, 6, 6, 6, 6, 6, 6, 6, 7, 7, 7, 7, 7, 7, 7, 7};
    const auto block = hn::LoadDup128(d, bits);
    auto byteOfLane = hn::LoadU(d, kByteOfLane);
    for (ptrdiff_t x = 0; x < kBlockPixels; x += lanes) {
        const auto byte = hn::TableLookupBytes(block, byteOfLane);
        hn::StoreU(hn::VecFromMask(d, hn::TestBit(byte, bit)), d, grey + x);
        byteOfLane = hn::Add(byteOfLane, hn::Set(d, static_cast<uint8_t>(lanes / 8)));
    }
}

// One block of grey to bits. The comparison's lanes are collected from the lowest bit up, so each eight pixels are
// reversed first.
void packBlock(const uint8_t* HWY_RESTRICT grey, uint8_t threshold, uint8_t* HWY_RESTRICT bits) {
    const D d;
    const auto lanes = static_cast<ptrdiff_t>(hn::Lanes(d));
    HWY_ALIGN static constexpr uint8_t kReverse8[16] = {7, 6, 5, 4, 3, 2, 1, 0, 15, 14, 13, 12, 11, 10, 9, 8};
    const auto reverse8 = hn::LoadDup128(d, kReverse8);
    const auto level = hn::Set(d, threshold);
    for (ptrdiff_t x = 0; x < kBlockPixels; x += lanes) {
        const auto pixels = hn::TableLookupBytes(hn::LoadU(d, grey + x), reverse8);
        hn::StoreMaskBits(d, hn::Gt(pixels, level), bits + x / 8);
    }
}

// A row of bits as the region uses it.
struct BitRow {
    ptrdiff_t offset;
    ptrdiff_t width;

    ptrdiff_t end() const { return offset + width; }
    ptrdiff_t bytes() const { return (end() + 7) / 8; }
};

// The pixels of the region that lie in the block of bits that starts at a byte.
struct BlockSpan {
    BlockSpan(const BitRow& row, ptrdiff_t byte)
        : start(8 * byte - row.offset),
          first(std::max<ptrdiff_t>(start, 0)),
          last(std::min(start + kBlockPixels, row.width)) {}

    bool whole() const { return last - first == kBlockPixels; }
    ptrdiff_t lead() const { return first - start; }
    size_t count() const { return static_cast<size_t>(last - first); }

    ptrdiff_t start;    // of the block; before the region where its first byte is shared
    ptrdiff_t first;
    ptrdiff_t last;    // exclusive
};

void expandRow(const uint8_t* bits, const BitRow& row, uint8_t* grey) {
    uint8_t bitBlock[kBlockBytes] = {};
    uint8_t greyBlock[kBlockPixels];
    for (ptrdiff_t byte = 0; byte < row.bytes(); byte += kBlockBytes) {
        const BlockSpan span(row, byte);
        if (span.whole()) {
            expandBlock(bits + byte, grey + span.first);
        } else {
            std::memcpy(bitBlock, bits + byte, static_cast<size_t>(std::min(kBlockBytes, row.bytes() - byte)));
            expandBlock(bitBlock, greyBlock);
            std::memcpy(grey + span.first, greyBlock + span.lead(), span.count());
        }
    }
}

// Puts back the bits of a byte that lie around the region. They count as pixels of 255 or 0 and meet the same
// threshold, so that 255 clears them.
void keepBits(uint8_t& packed, uint8_t before, unsigned around, uint8_t threshold) {
    const unsigned kept = threshold == 255 ? 0U : before & around;
    packed = static_cast<uint8_t>((packed & ~around) | kept);
}

void packRow(const uint8_t* grey, const BitRow& row, uint8_t threshold, uint8_t* bits) {
    const unsigned beforeRegion = 0xFF00U >> row.offset & 0xFFU;
    const unsigned behindRegion = 0xFFU >> ((row.end() - 1) % 8 + 1);
    uint8_t greyBlock[kBlockPixels] = {};
    uint8_t bitBlock[kBlockBytes];
    for (ptrdiff_t byte = 0; byte < row.bytes(); byte += kBlockBytes) {
        const BlockSpan span(row, byte);
        if (span.whole()) {
            packBlock(grey + span.first, threshold, bits + byte);
        } else {
            std::memcpy(greyBlock + span.lead(), grey + span.first, span.count());
            packBlock(greyBlock, threshold, bitBlock);
            const ptrdiff_t count = std::min(kBlockBytes, row.bytes() - byte);
            if (byte == 0) keepBits(bitBlock[0], bits[0], beforeRegion, threshold);
            if (byte + count == row.bytes())
                keepBits(bitBlock[count - 1], bits[byte + count - 1], behindRegion, threshold);
            std::memcpy(bits + byte, bitBlock, static_cast<size_t>(count));
        }
    }
}

void expand(const uint8_t* src, int srcStep, int bitOffset, uint8_t* dst, int dstStep, int width, int height) {
    for (; height > 0; --height, src += srcStep, dst += dstStep) expandRow(src, {bitOffset, width}, dst);
}

void pack(const uint8_t* src, int srcStep, uint8_t* dst, int dstStep, int bitOffset, int width, int height,
          uint8_t threshold) {
    for (; height > 0; --height, src += srcStep, dst += dstStep) packRow(src, {bitOffset, width}, threshold, dst);
}

}    // namespace HWY_NAMESPACE
}    // namespace
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace {
HWY_EXPORT(expand);
HWY_EXPORT(pack);
}    // namespace

void Convert_1u8u_C1R(const unsigned char* src, int srcStep, int bitOffset, unsigned char* dst, int dstStep, int width,
                      int height) {
    HWY_DYNAMIC_DISPATCH(expand)(src, srcStep, bitOffset, dst, dstStep, width, height);
}

void Convert_8u1u_C1R(const unsigned char* src, int srcStep, unsigned char* dst, int dstStep, int bitOffset, int width,
                      int height, unsigned char threshold) {
    HWY_DYNAMIC_DISPATCH(pack)(src, srcStep, dst, dstStep, bitOffset, width, height, threshold);
}
#endif    // HWY_ONCE
