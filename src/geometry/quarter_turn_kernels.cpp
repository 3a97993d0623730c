// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Quarter turns as transpositions. A turn is a transposition and a mirror, and the caller mirrors by the sign of a
// step.
//
// Blocks of 16 x 16 pixels are transposed in registers. Interleaving the lanes of rows i and i + n/2 of n rows into
// rows 2i and 2i + 1 moves the highest bit of a row's index to the lowest bit of a lane's index, and the highest bit of
// the lane's index to the row's; after log2(n) such rounds rows and lanes are swapped. Pixels of 3 bytes are widened to
// 4 for this. Blocks are processed in narrow tiles, so that whole cache lines of the target are written at a time. The
// last block of a row or column is pulled back over the one before it. No byte outside the rasters is read or written.
#include "geometry/quarter_turn_kernels.h"

#include <algorithm>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "geometry/quarter_turn_kernels.cpp"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/row-inl.h"
#include "simd/vector_size-inl.h"

HWY_BEFORE_NAMESPACE();
namespace opcv {
namespace {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using simd::HWY_NAMESPACE::prefetchToWrite;

constexpr int kBlock = 16;                     // pixels
constexpr int kTileRows = 128;                 // of the source, in tiles of one block of columns
constexpr int kColumnsAhead = 64;              // of the source
constexpr int kCacheLine = 64;                 // bytes
constexpr ptrdiff_t kCachedBytes = 1 << 18;    // of a source that is probably in the second-level cache

using D8 = hn::FixedTag<uint8_t, 16>;
using D32 = hn::FixedTag<uint32_t, 4>;
using WideBlock = simd::HWY_NAMESPACE::AtMost32Bytes<uint8_t>;    // for pixels of one byte
using V8 = hn::Vec<D8>;
using V32 = hn::Vec<D32>;

template <class D, size_t kRows>
HWY_INLINE void transposeLanes(D d, hn::Vec<D> (&rows)[kRows]) {
    hn::Vec<D> mixed[kRows];
    for (size_t round = 1; round < kRows; round *= 2) {
        for (size_t i = 0; i < kRows / 2; ++i) {
            mixed[2 * i] = hn::InterleaveLower(d, rows[i], rows[i + kRows / 2]);
            mixed[2 * i + 1] = hn::InterleaveUpper(d, rows[i], rows[i + kRows / 2]);
        }
        for (size_t i = 0; i < kRows; ++i) rows[i] = mixed[i];
    }
}

template <int kPixelSize>
struct Pixels;

// Four pixels of four bytes in one vector; the sixteen pixels of a block's row or column in four vectors.
template <>
struct Pixels<4> {
    static V32 loadFour(const uint8_t* row, int four) {
        return hn::BitCast(D32(), hn::LoadU(D8(), row + ptrdiff_t{16} * four));
    }
    static void storeSixteen(const V32 (&v)[4], uint8_t* row) {
        for (int i = 0; i < 4; ++i) hn::StoreU(hn::BitCast(D8(), v[i]), D8(), row + ptrdiff_t{16} * i);
    }
};

// The same for pixels of three bytes: sixteen of them are 48 bytes, three full vectors.
template <>
struct Pixels<3> {
    static constexpr uint8_t kNone = 0x80;

    static V32 loadFour(const uint8_t* row, int four) {
        HWY_ALIGN static constexpr uint8_t kWiden[16] = {0, 1, 2, kNone, 3, 4,  5,  kNone,
                                                         6, 7, 8, kNone, 9, 10, 11, kNone};
        HWY_ALIGN static constexpr uint8_t kWidenLast[16] = {4,  5,  6,  kNone, 7,  8,  9,  kNone,
                                                             10, 11, 12, kNone, 13, 14, 15, kNone};
        // The last twelve bytes are the upper ones of their vector.
        const bool last = four == 3;
        const V8 bytes = hn::LoadU(D8(), row + (last ? 32 : 12 * four));
        return hn::BitCast(D32(), hn::TableLookupBytesOr0(bytes, hn::Load(D8(), last ? kWidenLast : kWiden)));
    }

    // The bytes that one vector takes from two neighbouring ones.
    struct Seam {
        HWY_ALIGN uint8_t first[16];
        HWY_ALIGN uint8_t second[16];
    };
    static void storeSixteen(const V32 (&v)[4], uint8_t* row) {
        constexpr uint8_t n = kNone;
        static constexpr Seam kSeams[3] = {
            {{0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, n, n, n, n}, {n, n, n, n, n, n, n, n, n, n, n, n, 0, 1, 2, 4}},
            {{5, 6, 8, 9, 10, 12, 13, 14, n, n, n, n, n, n, n, n}, {n, n, n, n, n, n, n, n, 0, 1, 2, 4, 5, 6, 8, 9}},
            {{10, 12, 13, 14, n, n, n, n, n, n, n, n, n, n, n, n},
             {n, n, n, n, 0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14}}};
        for (int i = 0; i < 3; ++i) {
            const V8 first = hn::TableLookupBytesOr0(hn::BitCast(D8(), v[i]), hn::Load(D8(), kSeams[i].first));
            const V8 second = hn::TableLookupBytesOr0(hn::BitCast(D8(), v[i + 1]), hn::Load(D8(), kSeams[i].second));
            hn::StoreU(hn::Or(first, second), D8(), row + ptrdiff_t{16} * i);
        }
    }
};

template <int kPixelSize>
HWY_INLINE void transposeBlock(const SourceRows& from, const TargetRows& to) {
    for (int four = 0; four < kBlock / 4; ++four) {
        V32 columns[4][4];    // by column, then by four rows
        for (int i = 0; i < kBlock / 4; ++i) {
            V32 v[4];
            for (int j = 0; j < 4; ++j) v[j] = Pixels<kPixelSize>::loadFour(from.first + (4 * i + j) * from.step, four);
            transposeLanes(D32(), v);
            for (int j = 0; j < 4; ++j) columns[j][i] = v[j];
        }
        for (int j = 0; j < 4; ++j) Pixels<kPixelSize>::storeSixteen(columns[j], to.first + (4 * four + j) * to.step);
    }
}

// One row of the target from each 16 bytes of a vector.
template <class D>
HWY_INLINE void storeRows(D d, hn::Vec<D> v, const TargetRows& to) {
    if constexpr (hn::MaxLanes(d) == kBlock) {
        hn::StoreU(v, d, to.first);
    } else {
        const hn::Half<D> half;
        constexpr ptrdiff_t kRows = hn::MaxLanes(half);
        storeRows(half, hn::LowerHalf(half, v), to);
        storeRows(half, hn::UpperHalf(half, v), {to.first + kRows * to.step, to.step});
    }
}

// Lanes are interleaved within 16 bytes, so that wider vectors hold several blocks side by side.
template <class D>
HWY_INLINE void transposeBytes(D d, const SourceRows& from, const TargetRows& to) {
    hn::Vec<D> rows[kBlock];
    for (int i = 0; i < kBlock; ++i) rows[i] = hn::LoadU(d, from.first + i * from.step);
    transposeLanes(d, rows);
    for (int i = 0; i < kBlock; ++i) storeRows(d, rows[i], {to.first + i * to.step, to.step});
}

template <int kPixelSize, int kColumns>
void transposeBlocks(SourceRows from, TargetRows to, int width, int height) {
    const auto at = [&](int x, int y) { return from.first + y * from.step + ptrdiff_t{x} * kPixelSize; };
    const auto turned = [&](int x, int y) { return to.first + x * to.step + ptrdiff_t{y} * kPixelSize; };
    // Neighbouring rows are on different memory pages, for which no processor prefetches on its own. The loops are not in
    // functions of their own: gcc drops calls that only prefetch.
    constexpr int kLinePixels = kCacheLine / kPixelSize / kBlock * kBlock;
    const bool isLarge = ptrdiff_t{width} * height * kPixelSize > kCachedBytes;
    for (int top = 0; top < height; top += kTileRows)
        for (int left = 0; left < width; left += kColumns)
            for (int row = top; row < std::min(top + kTileRows, height); row += kBlock) {
                const int x = std::min(left, width - kColumns);
                const int y = std::min(row, height - kBlock);
                if (isLarge && x % kLinePixels == 0 && x + kColumnsAhead < width)
                    for (int i = 0; i < kBlock; ++i) hwy::Prefetch(at(x + kColumnsAhead, y + i));
                if (isLarge && y % kLinePixels == 0 && x + 2 * kColumns <= width)
                    for (int i = kColumns; i < 2 * kColumns; ++i)
                        prefetchToWrite(turned(x + i, y), kLinePixels * kPixelSize);
                const SourceRows block = {at(x, y), from.step};
                const TargetRows turnedBlock = {turned(x, y), to.step};
                if constexpr (kPixelSize == 1)
                    transposeBytes(hn::FixedTag<uint8_t, kColumns>(), block, turnedBlock);
                else
                    transposeBlock<kPixelSize>(block, turnedBlock);
            }
}

template <int kPixelSize>
void transposeAll(SourceRows from, TargetRows to, int width, int height) {
    constexpr int kWide = static_cast<int>(hn::MaxLanes(WideBlock()));
    if (width < kBlock || height < kBlock) {
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                std::memcpy(to.first + x * to.step + ptrdiff_t{y} * kPixelSize,
                            from.first + y * from.step + ptrdiff_t{x} * kPixelSize, kPixelSize);
    } else if (kPixelSize == 1 && width >= kWide) {
        transposeBlocks<kPixelSize, kPixelSize == 1 ? kWide : kBlock>(from, to, width, height);
    } else {
        transposeBlocks<kPixelSize, kBlock>(from, to, width, height);
    }
}

using Wide = hn::ScalableTag<uint8_t>;

// Pixels of 1 or 4 bytes in reverse order.
template <int kPixelSize>
HWY_INLINE hn::Vec<Wide> reverse(hn::Vec<Wide> pixels) {
    HWY_ALIGN static constexpr uint8_t kBytes[16] = {15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0};
    HWY_ALIGN static constexpr uint8_t kFours[16] = {12, 13, 14, 15, 8, 9, 10, 11, 4, 5, 6, 7, 0, 1, 2, 3};
    const auto order = hn::LoadDup128(Wide(), kPixelSize == 1 ? kBytes : kFours);
    return hn::ReverseBlocks(Wide(), hn::TableLookupBytes(pixels, order));
}

// A block of a row, mirrored.
template <int kPixelSize>
struct Mirror {
    static constexpr int kPixels = static_cast<int>(hn::MaxLanes(Wide())) / kPixelSize;

    static void block(const uint8_t* from, uint8_t* to) {
        hn::StoreU(reverse<kPixelSize>(hn::LoadU(Wide(), from)), Wide(), to);
    }
};

template <>
struct Mirror<3> {
    static constexpr int kPixels = static_cast<int>(hn::MaxLanes(Wide()));

    static void block(const uint8_t* from, uint8_t* to) {
        hn::Vec<Wide> r;
        hn::Vec<Wide> g;
        hn::Vec<Wide> b;
        hn::LoadInterleaved3(Wide(), from, r, g, b);
        hn::StoreInterleaved3(reverse<1>(r), reverse<1>(g), reverse<1>(b), Wide(), to);
    }
};

template <int kPixelSize>
void mirrorRow(const uint8_t* from, uint8_t* to, int width) {
    constexpr ptrdiff_t kPixels = Mirror<kPixelSize>::kPixels;
    const uint8_t* const end = from + width * ptrdiff_t{kPixelSize};
    // Writing the target forwards is twice as fast if memory bandwidth is the limit.
    simd::HWY_NAMESPACE::coverPulledBack(
        width, kPixels,
        [=](ptrdiff_t x) HWY_ATTR { Mirror<kPixelSize>::block(end - (x + kPixels) * kPixelSize, to + x * kPixelSize); },
        [=] {
            for (ptrdiff_t x = 0; x < width; ++x)
                std::memcpy(to + x * kPixelSize, end - (x + 1) * kPixelSize, kPixelSize);
        });
}

template <int kPixelSize>
void mirrorAll(SourceRows from, TargetRows to, int width, int height) {
    for (int y = 0; y < height; ++y) mirrorRow<kPixelSize>(from.first + y * from.step, to.first + y * to.step, width);
}

void transposePixels(SourceRows from, TargetRows to, int width, int height, int pixelSize) {
    switch (pixelSize) {
        case 1: return transposeAll<1>(from, to, width, height);
        case 3: return transposeAll<3>(from, to, width, height);
        default: return transposeAll<4>(from, to, width, height);
    }
}

void mirrorPixels(SourceRows from, TargetRows to, int width, int height, int pixelSize) {
    switch (pixelSize) {
        case 1: return mirrorAll<1>(from, to, width, height);
        case 3: return mirrorAll<3>(from, to, width, height);
        default: return mirrorAll<4>(from, to, width, height);
    }
}

}    // namespace HWY_NAMESPACE
}    // namespace
}    // namespace opcv
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace opcv {

namespace {
HWY_EXPORT(transposePixels);
HWY_EXPORT(mirrorPixels);
}    // namespace

void transpose(SourceRows from, TargetRows to, int sourceWidth, int sourceHeight, int pixelSize) {
    HWY_DYNAMIC_DISPATCH(transposePixels)(from, to, sourceWidth, sourceHeight, pixelSize);
}

void mirror(SourceRows from, TargetRows to, int width, int height, int pixelSize) {
    HWY_DYNAMIC_DISPATCH(mirrorPixels)(from, to, width, height, pixelSize);
}

}    // namespace opcv
#endif    // HWY_ONCE
