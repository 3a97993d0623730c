// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Copies and conversions of images of three 8-bit channels: a vector of each channel is loaded, passed through a
// formula and stored, from and to packed pixels or planes. The rest of a row goes through a block on the stack, so that
// no byte outside the region is accessed and a packed image can be converted in place.
//
// Both conversions are OpenCV's 14-bit fixed point, rearranged for 16-bit lanes. With [x] the nearest whole number,
// halves up, and constants in 1 / 16384:
//
//     Y = [4899 R + 9617 G + 1868 B]              = G + [4899 (R - G) + 1868 (B - G)]
//     U = 128 + [8061 (B - Y)]                      V = 128 + [14369 (R - Y)]
//     R = Y + [18678 v] = Y + v + [2294 v]          with u = U - 128, v = V - 128
//     B = Y + [33292 u] = Y + 2 u + [524 u]
//     G = Y + [-6472 u - 9519 v]
//
// A product with one constant is a rounding doubling high multiply, which takes the constant in 1 / 32768; two products
// are summed in 32 bits. Even and odd pixels are widened separately, so that no lane has to move.
#include "pixel/channel_kernels.h"

#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pixel/channel_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/row-inl.h"

HWY_BEFORE_NAMESPACE();
namespace opcv {
namespace {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using D8 = hn::ScalableTag<uint8_t>;
using D16 = hn::ScalableTag<int16_t>;
using D32 = hn::ScalableTag<int32_t>;
using V8 = hn::Vec<D8>;
using V16 = hn::Vec<D16>;
constexpr size_t kLanes = hn::MaxLanes(D8());

template <class V>
struct Channels {
    V a;
    V b;
    V c;
};

V16 even(V8 bytes) {
    const D16 d;
    return hn::And(hn::BitCast(d, bytes), hn::Set(d, 0xFF));
}

V16 odd(V8 bytes) {
    const hn::ScalableTag<uint16_t> d;
    return hn::BitCast(D16(), hn::ShiftRight<8>(hn::BitCast(d, bytes)));
}

V16 clampToByte(V16 value) {
    const D16 d;
    return hn::Min(hn::Max(value, hn::Zero(d)), hn::Set(d, 255));
}

V8 joinEvenOdd(V16 evenBytes, V16 oddBytes) { return hn::BitCast(D8(), hn::Or(evenBytes, hn::ShiftLeft<8>(oddBytes))); }

// [a weightOfA + b weightOfB], the weights in 1 / 16384.
V16 weightedSum(V16 a, int16_t weightOfA, V16 b, int16_t weightOfB) {
    const D16 d16;
    const D32 d32;
    const auto weights = hn::OddEven(hn::Set(d16, weightOfB), hn::Set(d16, weightOfA));
    const auto half = hn::Set(d32, 1 << 13);
    const auto sumOf = [&](V16 pairs) HWY_ATTR {
        auto rest = hn::Zero(d32);
        const auto products = hn::ReorderWidenMulAccumulate(d32, pairs, weights, hn::Zero(d32), rest);
        return hn::ShiftRight<14>(hn::Add(hn::RearrangeToOddPlusEven(products, rest), half));
    };
    // Both the interleaving and the narrowing work within blocks of 128 bits.
    return hn::ReorderDemote2To(d16, sumOf(hn::InterleaveLower(d16, a, b)), sumOf(hn::InterleaveUpper(d16, a, b)));
}

struct RgbToYuv {
    static Channels<V16> apply(const Channels<V16>& rgb) {
        const D16 d;
        const auto middle = hn::Set(d, 128);
        const V16 y = hn::Add(rgb.b, weightedSum(hn::Sub(rgb.a, rgb.b), 4899, hn::Sub(rgb.c, rgb.b), 1868));
        const V16 u = hn::MulFixedPoint15(hn::Sub(rgb.c, y), hn::Set(d, 2 * 8061));     // within +-112
        const V16 v = hn::MulFixedPoint15(hn::Sub(rgb.a, y), hn::Set(d, 2 * 14369));    // within +-157
        return {y, hn::Add(u, middle), clampToByte(hn::Add(v, middle))};
    }
};

struct YuvToRgb {
    static Channels<V16> apply(const Channels<V16>& yuv) {
        const D16 d;
        const auto middle = hn::Set(d, 128);
        const V16 y = yuv.a;
        const V16 u = hn::Sub(yuv.b, middle);
        const V16 v = hn::Sub(yuv.c, middle);
        const V16 r = hn::Add(hn::Add(y, v), hn::MulFixedPoint15(v, hn::Set(d, 2 * 2294)));
        const V16 b = hn::Add(hn::Add(y, hn::Add(u, u)), hn::MulFixedPoint15(u, hn::Set(d, 2 * 524)));
        const V16 g = hn::Add(y, weightedSum(u, -6472, v, -9519));
        return {clampToByte(r), clampToByte(g), clampToByte(b)};
    }
};

// Applies a 16-bit formula to bytes.
template <class Formula>
struct OnBytes {
    static Channels<V8> apply(const Channels<V8>& in) {
        const Channels<V16> evens = Formula::apply({even(in.a), even(in.b), even(in.c)});
        const Channels<V16> odds = Formula::apply({odd(in.a), odd(in.b), odd(in.c)});
        return {joinEvenOdd(evens.a, odds.a), joinEvenOdd(evens.b, odds.b), joinEvenOdd(evens.c, odds.c)};
    }
};

struct Copy {
    static Channels<V8> apply(const Channels<V8>& in) { return in; }
};

// Loads and stores a vector of pixels, or fewer, at a position in a row.
struct PackedRow {
    uint8_t* bytes;

    Channels<V8> load(ptrdiff_t x) const {
        const D8 d;
        V8 a = hn::Zero(d);
        V8 b = a;
        V8 c = a;
        hn::LoadInterleaved3(d, bytes + 3 * x, a, b, c);
        return {a, b, c};
    }
    void store(const Channels<V8>& v, ptrdiff_t x) const { hn::StoreInterleaved3(v.a, v.b, v.c, D8(), bytes + 3 * x); }

    Channels<V8> loadPart(ptrdiff_t x, ptrdiff_t count) const {
        uint8_t block[3 * kLanes] = {};
        std::memcpy(block, bytes + 3 * x, static_cast<size_t>(3 * count));
        return PackedRow{block}.load(0);
    }
    void storePart(const Channels<V8>& v, ptrdiff_t x, ptrdiff_t count) const {
        uint8_t block[3 * kLanes];
        PackedRow{block}.store(v, 0);
        std::memcpy(bytes + 3 * x, block, static_cast<size_t>(3 * count));
    }
};

struct PlanarRow {
    std::array<uint8_t*, 3> bytes;

    Channels<V8> load(ptrdiff_t x) const {
        const D8 d;
        return {hn::LoadU(d, bytes[0] + x), hn::LoadU(d, bytes[1] + x), hn::LoadU(d, bytes[2] + x)};
    }
    void store(const Channels<V8>& v, ptrdiff_t x) const {
        const D8 d;
        hn::StoreU(v.a, d, bytes[0] + x);
        hn::StoreU(v.b, d, bytes[1] + x);
        hn::StoreU(v.c, d, bytes[2] + x);
    }

    Channels<V8> loadPart(ptrdiff_t x, ptrdiff_t count) const {
        uint8_t block[3 * kLanes] = {};
        for (size_t i = 0; i < 3; ++i) std::memcpy(block + i * kLanes, bytes[i] + x, static_cast<size_t>(count));
        return PlanarRow{{block, block + kLanes, block + 2 * kLanes}}.load(0);
    }
    void storePart(const Channels<V8>& v, ptrdiff_t x, ptrdiff_t count) const {
        uint8_t block[3 * kLanes];
        PlanarRow{{block, block + kLanes, block + 2 * kLanes}}.store(v, 0);
        for (size_t i = 0; i < 3; ++i) std::memcpy(bytes[i] + x, block + i * kLanes, static_cast<size_t>(count));
    }
};

PackedRow firstRow(const PackedImage& image) { return {image.pixels}; }
PlanarRow firstRow(const PlanarImage& image) { return {image.planes}; }

template <class Formula, class From, class To>
void passRow(const From& from, const To& to, ptrdiff_t width) {
    simd::HWY_NAMESPACE::coverWithRest(
        width, kLanes, [&](ptrdiff_t x) HWY_ATTR { to.store(Formula::apply(from.load(x)), x); },
        [=](ptrdiff_t x, ptrdiff_t count)
            HWY_ATTR { to.storePart(Formula::apply(from.loadPart(x, count)), x, count); });
}

template <class Formula, class From, class To>
void pass(const From& from, const To& to, int width, int height) {
    for (int y = 0; y < height; ++y) passRow<Formula>(firstRow(from.below(y)), firstRow(to.below(y)), width);
}

void rgbToYuv(const PackedImage& from, const PackedImage& to, int width, int height) {
    pass<OnBytes<RgbToYuv>>(from, to, width, height);
}
void yuvToRgb(const PackedImage& from, const PackedImage& to, int width, int height) {
    pass<OnBytes<YuvToRgb>>(from, to, width, height);
}
void rgbToYuvPlanes(const PackedImage& from, const PlanarImage& to, int width, int height) {
    pass<OnBytes<RgbToYuv>>(from, to, width, height);
}
void yuvPlanesToRgb(const PlanarImage& from, const PackedImage& to, int width, int height) {
    pass<OnBytes<YuvToRgb>>(from, to, width, height);
}
void split(const PackedImage& from, const PlanarImage& to, int width, int height) {
    pass<Copy>(from, to, width, height);
}
void merge(const PlanarImage& from, const PackedImage& to, int width, int height) {
    pass<Copy>(from, to, width, height);
}

}    // namespace HWY_NAMESPACE
}    // namespace
}    // namespace opcv
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace opcv {

namespace {
HWY_EXPORT(rgbToYuv);
HWY_EXPORT(yuvToRgb);
HWY_EXPORT(rgbToYuvPlanes);
HWY_EXPORT(yuvPlanesToRgb);
HWY_EXPORT(split);
HWY_EXPORT(merge);
}    // namespace

void convertRgbToYuv(const PackedImage& rgb, const PackedImage& yuv, int width, int height) {
    HWY_DYNAMIC_DISPATCH(rgbToYuv)(rgb, yuv, width, height);
}

void convertYuvToRgb(const PackedImage& yuv, const PackedImage& rgb, int width, int height) {
    HWY_DYNAMIC_DISPATCH(yuvToRgb)(yuv, rgb, width, height);
}

void convertRgbToYuv(const PackedImage& rgb, const PlanarImage& yuv, int width, int height) {
    HWY_DYNAMIC_DISPATCH(rgbToYuvPlanes)(rgb, yuv, width, height);
}

void convertYuvToRgb(const PlanarImage& yuv, const PackedImage& rgb, int width, int height) {
    HWY_DYNAMIC_DISPATCH(yuvPlanesToRgb)(yuv, rgb, width, height);
}

void splitChannels(const PackedImage& packed, const PlanarImage& planes, int width, int height) {
    HWY_DYNAMIC_DISPATCH(split)(packed, planes, width, height);
}

void mergeChannels(const PlanarImage& planes, const PackedImage& packed, int width, int height) {
    HWY_DYNAMIC_DISPATCH(merge)(planes, packed, width, height);
}

}    // namespace opcv
#endif    // HWY_ONCE
