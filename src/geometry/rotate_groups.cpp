// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Bilinear rotation of 8-bit pixels, identical to OpenCV's affine warp of the whole image. A position has five bits of
// fraction on each axis, so that
//
//     value = ((32 - fy) * ((32 - fx) * p00 + fx * p01) + fy * ((32 - fx) * p10 + fx * p11) + 512) >> 10
//
// and a tap outside the source has the border colour. Only the target's pixels are computed, and only source pixels
// between the taps of neighbouring pixels are read.
//
// At small angles, the taps of a group of neighbouring target bytes are almost contiguous in memory, so no gather is
// needed. Along a group the source column advances by 1 and is repeated once at most; the source row changes a few
// times:
//
//     target    0 1 2 3 4 5 6 7
//     row r     a b c d                    group of 8 pixels, turned counter-clockwise: its upper left taps are
//     row r+1           e e f              in two rows, and one column occurs twice
//
// Each of these rows is loaded from the group's first column and from one pixel further, and the lanes select from
// these loads. Lanes after the repeated column use loads from one pixel earlier. Positions relative to the group's
// first pixel are in tables of 16-bit lanes, the even bytes of a group before its odd bytes.
//
// A group that extends beyond the edge of the source reads a small patch that is filled with the border colour.
#include "geometry/rotate_kernel.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "geometry/rotate_groups.cpp"
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

constexpr int kFractionMask = (1 << kMapBits) - 1;
constexpr int kStripBytes = 2048;    // of the target, so that few memory pages are used at a time
constexpr int kMaxTopRows = 12;      // largest number of source rows for the upper taps of one group
constexpr double kMostRowsPerByte = 0.5;
constexpr int kSmallestGroup = 16;    // bytes
constexpr int kRowsAhead = 8;      // source rows that are prefetched; neighbouring rows are on different memory pages
constexpr int kBytesAhead = 32;    // of these rows, the bytes for which one address is prefetched
constexpr int kTargetRowsAhead = 4;

struct Group {
    MapPosition start;    // column part of its first pixel's position
    int phase;            // bytes of that pixel before the group
    int lastPixel;        // counted from its first pixel
    int lastBehind;       // of its last byte, as in the strip's tables
    int lastDown;
};

// Part of the target's columns. The tables hold, in 1/1024 pixel relative to the group's first pixel, by how much the
// source column of a byte is behind one column per pixel (never positive), and how far below its source row is.
struct Strip {
    HWY_ALIGN int16_t behind[kStripBytes];
    HWY_ALIGN int16_t down[kStripBytes];
    Group groups[kStripBytes / kSmallestGroup];
};

template <class D>
int groupBytes(D d) {
    return static_cast<int>(hn::Lanes(d));
}

// The index of a byte of a group in the tables.
template <class D>
int tableIndex(D d, int byte) {
    return byte / 2 + (byte % 2 != 0 ? groupBytes(d) / 2 : 0);
}

template <class D>
void prepareGroup(D d, const RotationJob& job, int firstByte, Group& group, int16_t* behind, int16_t* down) {
    const int firstPixel = firstByte / job.channels;
    group.start = job.map.column(firstPixel);
    group.phase = firstByte % job.channels;
    for (int i = 0; i < groupBytes(d); ++i) {
        group.lastPixel = (group.phase + i) / job.channels;
        const MapPosition at = job.map.column(firstPixel + group.lastPixel);
        group.lastBehind = at.x - group.start.x - (group.lastPixel << kMapBits);
        group.lastDown = at.y - group.start.y;
        behind[tableIndex(d, i)] = static_cast<int16_t>(group.lastBehind);
        down[tableIndex(d, i)] = static_cast<int16_t>(group.lastDown);
    }
}

// The taps of one group.
struct Window {
    const uint8_t* first;    // upper left tap of the first byte, if it were in the top row
    ptrdiff_t step;
    int pixelSize;
    int topRows;    // rows with upper taps
    int topRow;     // the first of them, relative to the row of the first byte's tap
    int xFraction;
    int yFraction;
    bool someBehind;
};

// Left and right taps of all lanes in one row.
template <class V>
struct TapRow {
    V left;
    V right;
};

// v = value of the formula at the top, in 16-bit lanes. The floor of the vertical part is the high half of a product:
// 2 (h1 - h0) * 1024 fy = (h1 - h0) * fy / 32 * 2^16.
template <class V>
V interpolate(V p00, V p01, V p10, V p11, V fx, V fyTimes1024, V half) {
    const V h0 = hn::Add(hn::ShiftLeft<5>(p00), hn::Mul(fx, hn::Sub(p01, p00)));
    const V h1 = hn::Add(hn::ShiftLeft<5>(p10), hn::Mul(fx, hn::Sub(p11, p10)));
    const V rise = hn::Sub(h1, h0);
    return hn::ShiftRight<5>(hn::Add(hn::Add(h0, half), hn::MulHigh(hn::Add(rise, rise), fyTimes1024)));
}

template <class D>
HWY_INLINE hn::Vec<D> rotateGroup(D d, const Window& w, const int16_t* HWY_RESTRICT behind,
                                  const int16_t* HWY_RESTRICT down) {
    const hn::RebindToSigned<D> s8;
    const hn::RepartitionToWide<decltype(s8)> s16;
    using V = hn::Vec<D>;
    using V16 = hn::Vec<decltype(s16)>;
    const size_t odd = hn::Lanes(s16);
    const auto join = [&](V16 evens, V16 odds) HWY_ATTR {
        return hn::BitCast(d, hn::Or(hn::And(evens, hn::Set(s16, 0xFF)), hn::ShiftLeft<8>(odds)));
    };

    const V16 xStart = hn::Set(s16, static_cast<int16_t>(w.xFraction));
    const V16 yStart = hn::Set(s16, static_cast<int16_t>(w.yFraction));
    const V16 xEven = hn::Add(xStart, hn::Load(s16, behind));
    const V16 xOdd = hn::Add(xStart, hn::Load(s16, behind + odd));
    const V16 yEven = hn::Add(yStart, hn::Load(s16, down));
    const V16 yOdd = hn::Add(yStart, hn::Load(s16, down + odd));

    const auto tapsOf = [&](int row) HWY_ATTR {
        const uint8_t* at = w.first + row * w.step;
        TapRow<V> taps = {hn::LoadU(d, at), hn::LoadU(d, at + w.pixelSize)};
        if (w.someBehind) {
            const auto columns = join(hn::ShiftRight<kMapBits>(xEven), hn::ShiftRight<kMapBits>(xOdd));
            const auto isBehind = hn::RebindMask(d, hn::Lt(hn::BitCast(s8, columns), hn::Zero(s8)));
            taps.right = hn::IfThenElse(isBehind, taps.left, taps.right);
            taps.left = hn::IfThenElse(isBehind, hn::LoadU(d, at - w.pixelSize), taps.left);
        }
        return taps;
    };

    TapRow<V> upper = tapsOf(0);
    TapRow<V> next = tapsOf(1);
    TapRow<V> lower = next;
    if (w.topRows > 1) {
        const auto row = hn::BitCast(s8, join(hn::ShiftRight<kMapBits>(yEven), hn::ShiftRight<kMapBits>(yOdd)));
        for (int i = 1; i < w.topRows; ++i) {
            const auto fromHere = hn::RebindMask(d, hn::Gt(row, hn::Set(s8, static_cast<int8_t>(w.topRow + i - 1))));
            upper.left = hn::IfThenElse(fromHere, next.left, upper.left);
            upper.right = hn::IfThenElse(fromHere, next.right, upper.right);
            next = tapsOf(i + 1);
            lower.left = hn::IfThenElse(fromHere, next.left, lower.left);
            lower.right = hn::IfThenElse(fromHere, next.right, lower.right);
        }
    }

    const V16 half = hn::Set(s16, 16);
    const V16 lowByte = hn::Set(s16, 0xFF);
    const auto even = [&](V v) HWY_ATTR { return hn::And(hn::BitCast(s16, v), lowByte); };
    const auto odds = [&](V v) HWY_ATTR {
        const hn::RebindToUnsigned<decltype(s16)> u16;
        return hn::BitCast(s16, hn::ShiftRight<8>(hn::BitCast(u16, v)));
    };
    const auto fx = [&](V16 x) HWY_ATTR { return hn::And(hn::ShiftRight<5>(x), hn::Set(s16, 31)); };
    const auto fy = [&](V16 y) HWY_ATTR { return hn::ShiftLeft<5>(hn::And(y, hn::Set(s16, 31 << 5))); };
    return join(interpolate(even(upper.left), even(upper.right), even(lower.left), even(lower.right), fx(xEven),
                            fy(yEven), half),
                interpolate(odds(upper.left), odds(upper.right), odds(lower.left), odds(lower.right), fx(xOdd),
                            fy(yOdd), half));
}

// Border colour, pixel after pixel.
struct BorderRow {
    static constexpr int kPixels = 2 * HWY_MAX_BYTES;

    explicit BorderRow(const RotationJob& job) {
        for (int i = 0; i < kPixels * job.channels; ++i) bytes[i] = job.border[static_cast<size_t>(i % job.channels)];
    }

    uint8_t bytes[kPixels * RotationJob::kMaxChannels];
};

// The bounds of the taps of a group, one column wider on either side; inclusive.
struct Surroundings {
    Surroundings(MapPosition at, const Group& group, const Window& w)
        : left((at.x >> kMapBits) - 1),
          right((at.x >> kMapBits) + group.lastPixel + 1),
          top((at.y >> kMapBits) + w.topRow),
          bottom(top + w.topRows) {}

    bool inside(const RotationJob& job) const {
        return left >= 0 && right < job.sourceWidth && top >= 0 && bottom < job.sourceHeight;
    }
    bool outside(const RotationJob& job) const {
        return right < 0 || left >= job.sourceWidth || bottom < 0 || top >= job.sourceHeight;
    }

    int left;
    int right;
    int top;
    int bottom;
};

// The part of the source around a group, extended with the border colour. Rows are copied by whole vectors, two of which
// cover a row; the bytes that they write around it are overwritten by the next rows or not used.
struct Patch {
    static constexpr int kStep = 2 * HWY_MAX_BYTES + 4 * RotationJob::kMaxChannels;

    template <class D>
    void fill(D d, const RotationJob& job, const BorderRow& border, const Surroundings& s) {
        const int size = groupBytes(d);
        const int rowBytes = job.sourceWidth * job.channels;
        const int left = s.left * job.channels;
        const int first = std::clamp(left, 0, rowBytes);
        const int end = std::clamp((s.right + 1) * job.channels, first, rowBytes);
        const int one = std::min(first, rowBytes - size);
        const int other = std::max(end - size, one);
        uint8_t* out = rows();
        for (int y = s.top; y <= s.bottom; ++y, out += kStep) {
            hn::StoreU(hn::LoadU(d, border.bytes), d, out);
            hn::StoreU(hn::LoadU(d, border.bytes + size), d, out + size);
            if (y < 0 || y >= job.sourceHeight) continue;
            const uint8_t* row = job.source + y * job.sourceStep;
            if (rowBytes < size) {
                std::memcpy(out + (first - left), row + first, static_cast<size_t>(end - first));
            } else {
                hn::StoreU(hn::LoadU(d, row + one), d, out + (one - left));
                hn::StoreU(hn::LoadU(d, row + other), d, out + (other - left));
            }
        }
    }

    uint8_t* rows() { return bytes + HWY_MAX_BYTES; }

    uint8_t bytes[HWY_MAX_BYTES + (kMaxTopRows + 1) * kStep];
};

// Everything about a group but the address of its taps, which may be in the source or in a patch.
HWY_INLINE Window windowOf(const RotationJob& job, MapPosition at, const Group& group) {
    Window w;
    w.pixelSize = job.channels;
    w.xFraction = at.x & kFractionMask;
    w.yFraction = at.y & kFractionMask;
    w.someBehind = w.xFraction + group.lastBehind < 0;
    const int lastRow = (w.yFraction + group.lastDown) >> kMapBits;
    w.topRow = std::min(0, lastRow);
    w.topRows = std::abs(lastRow) + 1;
    return w;
}

// A group that is not inside the source. A separate function, so that the patch does not slow down the others.
template <class D>
HWY_NOINLINE void rotateGroupAtEdge(D d, const RotationJob& job, const BorderRow& border, MapPosition at,
                                    const Group& group, const int16_t* behind, const int16_t* down, uint8_t* out) {
    Window w = windowOf(job, at, group);
    const Surroundings around(at, group, w);
    if (around.outside(job)) {
        hn::StoreU(hn::LoadU(d, border.bytes + group.phase), d, out);
        return;
    }
    Patch patch;
    patch.fill(d, job, border, around);
    w.first = patch.rows() + job.channels + group.phase;
    w.step = Patch::kStep;
    hn::StoreU(rotateGroup(d, w, behind, down), d, out);
}

template <class D>
HWY_INLINE void rotateGroupAt(D d, const RotationJob& job, const BorderRow& border, MapPosition at, const Group& group,
                              const int16_t* behind, const int16_t* down, uint8_t* out) {
    Window w = windowOf(job, at, group);
    const Surroundings around(at, group, w);
    if (!around.inside(job)) {
        rotateGroupAtEdge(d, job, border, at, group, behind, down, out);
        return;
    }
    const uint8_t* column = job.source + ptrdiff_t{around.left + 1} * job.channels + group.phase;
    for (int i = 0; i < groupBytes(d); i += kBytesAhead) {
        const int ahead = around.top + w.topRows * i / groupBytes(d) + kRowsAhead;
        hwy::Prefetch(column + i + std::min(ahead, job.sourceHeight - 1) * job.sourceStep);
    }
    w.first = column + around.top * job.sourceStep;
    w.step = job.sourceStep;
    hn::StoreU(rotateGroup(d, w, behind, down), d, out);
}

// The columns of one strip in all rows. A partial group goes through a block on the stack.
template <class D>
void rotateStrip(D d, const RotationJob& job, const BorderRow& border, int firstByte, int bytes, int firstRow,
                 int endRow) {
    Strip strip;
    HWY_ALIGN uint8_t block[HWY_MAX_BYTES];
    const int size = groupBytes(d);
    const int rest = bytes % size;
    for (int i = 0; i < bytes; i += size)
        prepareGroup(d, job, firstByte + i, strip.groups[i / size], strip.behind + i, strip.down + i);
    for (int y = firstRow; y < endRow; ++y) {
        const MapPosition row = job.map.row(y);
        uint8_t* out = job.target + y * job.targetStep + firstByte;
        simd::HWY_NAMESPACE::prefetchToWrite(
            job.target + std::min(y + kTargetRowsAhead, endRow - 1) * job.targetStep + firstByte, bytes);
        simd::HWY_NAMESPACE::coverBeyond(bytes, size, [&](ptrdiff_t i) HWY_ATTR {
            const Group& group = strip.groups[i / size];
            uint8_t* const to = i + size <= bytes ? out + i : block;
            rotateGroupAt(d, job, border, row + group.start, group, strip.behind + i, strip.down + i, to);
        });
        std::memcpy(out + (bytes - rest), block, static_cast<size_t>(rest));
    }
}

// Whether a group of this many bytes repeats one column at most and does not have too many rows. A group takes a time
// that grows with its rows, so that small groups with many of them are slower than pixels one by one. Each position may
// be off by one unit, because both ends of a distance are rounded.
template <class D>
bool groupsFit(D d, const RotationJob& job) {
    const double mostTopRows = std::min<double>(kMaxTopRows, kMostRowsPerByte * groupBytes(d));
    const int lastPixel = (groupBytes(d) + job.channels - 2) / job.channels;
    const double behind = lastPixel * (1 - job.map.xPerColumn());
    const double down = lastPixel * std::abs(job.map.yPerColumn());
    return behind * kMapScale + 1 <= kMapScale && down + 2 <= mostTopRows;
}

template <class D>
bool rotateIfGroupsFit(D d, const RotationJob& job, int firstRow, int endRow) {
    if (!groupsFit(d, job)) return false;
    const BorderRow border(job);
    const int rowBytes = job.targetWidth * job.channels;
    for (int first = 0; first < rowBytes; first += kStripBytes)
        rotateStrip(d, job, border, first, std::min(kStripBytes, rowBytes - first), firstRow, endRow);
    return true;
}

bool rotate(const RotationJob& job, int firstRow, int endRow) {
    const simd::HWY_NAMESPACE::Widest<uint8_t> widest;
    const simd::HWY_NAMESPACE::AtMost32Bytes<uint8_t> medium;
    const hn::CappedTag<uint8_t, kSmallestGroup> smallest;
    return rotateIfGroupsFit(widest, job, firstRow, endRow) || rotateIfGroupsFit(medium, job, firstRow, endRow) ||
           rotateIfGroupsFit(smallest, job, firstRow, endRow);
}

}    // namespace HWY_NAMESPACE
}    // namespace
}    // namespace opcv
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace opcv {
namespace {
HWY_EXPORT(rotate);
}    // namespace

bool rotateInGroups(const RotationJob& job, int firstRow, int endRow) {
    return HWY_DYNAMIC_DISPATCH(rotate)(job, firstRow, endRow);
}

}    // namespace opcv
#endif    // HWY_ONCE
