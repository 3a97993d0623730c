// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Bit packing, depth, thresholds, fill, colour and planes.
#include <array>

#include "catalogue/catalogue.h"

namespace {

constexpr int kBitOffsets = 8;

int bytesOfBits(int offset, int width) { return (offset + width + 7) / 8; }

Image bitSource(Case& c) { return c.source({{bytesOfBits(c.variant, c.size.width), c.size.height}}); }
Image bitTarget(Case& c) { return c.target({{bytesOfBits(c.variant, c.size.width), c.size.height}}); }

void expand(Case& c) {
    const Image src = bitSource(c);
    const Image dst = c.target({c.size});
    const auto expandFrom = [](int offset) {
        return [offset](const Regions& r) {
            return IPPShare_ippiConvert_1u8u_C1R(r.src.data, r.src.step, offset, r.dst.data, r.dst.step, r.size);
        };
    };
    const Regions regions = {src, dst, c.size};
    c.callOn(regions, {bytesOfBits(c.variant, c.size.width), c.size.width}, expandFrom(c.variant));
    for (const int offset : {-1, kBitOffsets})
        c.refuse("an offset outside the byte", ippStsBadArgErr, [=] { return expandFrom(offset)(regions); });
}

void expandUnchecked(Case& c) {
    const Image src = bitSource(c);
    const Image dst = c.target({c.size});
    c.callOn({src, dst, c.size}, [offset = c.variant](const Regions& r) {
        Convert_1u8u_C1R(r.src.data, r.src.step, offset, r.dst.data, r.dst.step, r.size.width, r.size.height);
        return 0;
    });
}

void reduce(Case& c) {
    const Image src = c.source({c.size});
    const Image dst = bitTarget(c);
    const uint8_t threshold = c.random.byte();
    const auto reduceTo = [threshold](int offset) {
        return [offset, threshold](const Regions& r) {
            return IPPShare_ippiReduceBits_8u1u_C1R(r.src.data, r.src.step, r.dst.data, r.dst.step, offset, r.size, 0,
                                                    0, 0, threshold);
        };
    };
    const Regions regions = {src, dst, c.size};
    c.callOn(regions, {c.size.width, bytesOfBits(c.variant, c.size.width)}, reduceTo(c.variant));
    for (const int offset : {-1, kBitOffsets})
        c.refuse("an offset outside the byte", ippStsBadArgErr, [=] { return reduceTo(offset)(regions); });
}

void reduceUnchecked(Case& c) {
    const Image src = c.source({c.size});
    const Image dst = bitTarget(c);
    const uint8_t threshold = c.random.byte();
    c.callOn({src, dst, c.size}, [offset = c.variant, threshold](const Regions& r) {
        Convert_8u1u_C1R(r.src.data, r.src.step, r.dst.data, r.dst.step, offset, r.size.width, r.size.height,
                         threshold);
        return 0;
    });
}

void widen(Case& c) {
    const Image src = c.source({c.size});
    const Image dst = c.target({c.size, 2});
    c.callOn({src, dst, c.size}, {c.size.width, 2 * c.size.width}, [](const Regions& r) {
        return IPPShare_ippiConvert_8u16s_C1R(r.src.data, r.src.step, r.dst.as<short>(), r.dst.step, r.size);
    });
}

void narrow(Case& c) {
    const Image src = c.source({c.size, 2});
    const Image dst = c.target({c.size});
    c.callOn({src, dst, c.size}, {2 * c.size.width, c.size.width}, [](const Regions& r) {
        return IPPShare_ippiConvert_16s8u_C1R(r.src.as<short>(), r.src.step, r.dst.data, r.dst.step, r.size);
    });
}

void threshold8(Case& c) {
    const Image both = c.sourceAndTarget({c.size});
    const uint8_t limit = c.random.byte();
    c.callOn({{}, both, c.size}, {0, c.size.width}, [limit](const Regions& r) {
        return IPPShare_ippiThreshold_LTVal_8u_C1IR(r.dst.data, r.dst.step, r.size, limit, 77);
    });
}

void threshold8Unchecked(Case& c) {
    const Image both = c.sourceAndTarget({c.size});
    const uint8_t limit = c.random.byte();
    c.callOn({{}, both, c.size}, [limit](const Regions& r) {
        Threshold_LTVal_8u_C1IR(r.dst.data, r.dst.step, r.size.width, r.size.height, limit, 77);
        return 0;
    });
}

// The rows of 16-bit images may go upwards.
Image directed(const Case& c, const Image& image) {
    if (c.variant == 0) return image;
    return {image.data + ptrdiff_t{c.size.height - 1} * image.step, -image.step};
}

void threshold16(Case& c) {
    const Image both = directed(c, c.sourceAndTarget({c.size, 2}));
    const auto limit = static_cast<short>(c.random.between(-300, 300));
    c.callOn({{}, both, c.size}, {0, 2 * c.size.width}, [limit](const Regions& r) {
        return IPPShare_ippiThreshold_LTVal_16s_C1IR(r.dst.as<short>(), r.dst.step, r.size, limit, -7777);
    });
}

void threshold16Unchecked(Case& c) {
    const Image both = directed(c, c.sourceAndTarget({c.size, 2}));
    const auto limit = static_cast<short>(c.random.between(-300, 300));
    c.callOn({{}, both, c.size}, [limit](const Regions& r) {
        Threshold_LTVal_16s_C1IR(r.dst.as<short>(), r.dst.step, r.size.width, r.size.height, limit, -7777);
        return 0;
    });
}

void fill(Case& c) {
    const Image dst = c.target({c.size});
    c.callOn({{}, dst, c.size}, {0, c.size.width},
             [](const Regions& r) { return IPPShare_ippiSet_8u_C1R(200, r.dst.data, r.dst.step, r.size); });
}

// Apart, and in place.
constexpr int kPackedColourVariants = 2;

using PackedColour = IppStatus (*)(const unsigned char*, int, unsigned char*, int, IppiSize);

std::function<void(Case&)> packedColour(PackedColour convert) {
    return [convert](Case& c) {
        const bool inPlace = c.variant == 1;
        const Image dst = inPlace ? c.sourceAndTarget({c.size, 3}) : c.target({c.size, 3});
        const Image src = inPlace ? dst : c.source({c.size, 3});
        c.callOn({src, dst, c.size}, {3 * c.size.width, 3 * c.size.width}, [convert](const Regions& r) {
            return convert(r.src.data, r.src.step, r.dst.data, r.dst.step, r.size);
        });
    };
}

// Three planes with one step, each in a separate block.
struct Planes {
    std::array<unsigned char*, 3> data;
    int step;
};

Planes planesOf(Case& c, Image (Case::*make)(const Layout&)) {
    const Layout layout = {c.size, 1, {}, c.random.between(0, 5)};
    const Image first = (c.*make)(layout);
    const Image second = (c.*make)(layout);
    const Image third = (c.*make)(layout);
    return {{first.data, second.data, third.data}, first.step};
}

// A null pointer instead of the array, and an array with a null pointer.
template <class Call>
void refuseNullPlanes(Case& c, const Planes& planes, Call call) {
    c.refuse("null planes", ippStsBadArgErr, [call] { return call(nullptr); });
    for (size_t i = 0; i < planes.data.size(); ++i)
        c.refuse("a null plane", ippStsBadArgErr, [call, pointers = planes.data, i]() mutable {
            pointers[i] = nullptr;
            return call(pointers.data());
        });
}

using Split = IppStatus (*)(const unsigned char*, int, unsigned char* const[3], int, IppiSize);

std::function<void(Case&)> intoPlanes(Split split, int statusOfEmptyRegion) {
    return [=](Case& c) {
        const Image src = c.source({c.size, 3});
        const Planes dst = planesOf(c, &Case::target);
        auto* pointers = c.sourceOf(dst.data);
        c.callOn({src, {reinterpret_cast<uint8_t*>(pointers), dst.step}, c.size},
                 {3 * c.size.width, c.size.width, ippStsBadArgErr, statusOfEmptyRegion}, [split](const Regions& r) {
                     return split(r.src.data, r.src.step, r.dst.as<unsigned char*>(), r.dst.step, r.size);
                 });
        refuseNullPlanes(c, dst, [=, &c](unsigned char* const* planes) {
            return split(src.data, src.step, planes, dst.step, c.size);
        });
    };
}

using Merge = IppStatus (*)(const unsigned char* const[3], int, unsigned char*, int, IppiSize);

std::function<void(Case&)> fromPlanes(Merge merge, int statusOfEmptyRegion) {
    return [=](Case& c) {
        const Planes src = planesOf(c, &Case::source);
        const Image dst = c.target({c.size, 3});
        auto* pointers = c.sourceOf(src.data);
        c.callOn({{reinterpret_cast<uint8_t*>(pointers), src.step}, dst, c.size},
                 {c.size.width, 3 * c.size.width, ippStsBadArgErr, statusOfEmptyRegion}, [merge](const Regions& r) {
                     return merge(r.src.as<unsigned char*>(), r.src.step, r.dst.data, r.dst.step, r.size);
                 });
        refuseNullPlanes(c, src, [=, &c](unsigned char* const* planes) {
            return merge(planes, src.step, dst.data, dst.step, c.size);
        });
    };
}

}    // namespace

Entries pixelEntries() {
    const OutOfMemory framed = OutOfMemory::answersOrThrows(ippStsNoMemErr);
    const OutOfMemory never = OutOfMemory::never();
    const std::vector<Shape> any = {{"", 0}};
    const std::vector<Shape> offset = {{"offset 3", 3}};
    return {
        {"IPPShare_ippiConvert_1u8u_C1R", kBitOffsets, never, expand, offset},
        {"IPPShare_ippiReduceBits_8u1u_C1R", kBitOffsets, never, reduce, offset},
        {"Convert_1u8u_C1R", kBitOffsets, never, expandUnchecked, offset, "IPPShare_ippiConvert_1u8u_C1R"},
        {"Convert_8u1u_C1R", kBitOffsets, never, reduceUnchecked, offset, "IPPShare_ippiReduceBits_8u1u_C1R"},
        {"IPPShare_ippiConvert_8u16s_C1R", 1, framed, widen},
        {"IPPShare_ippiConvert_16s8u_C1R", 1, framed, narrow},
        {"IPPShare_ippiThreshold_LTVal_8u_C1IR", 1, never, threshold8},
        {"IPPShare_ippiThreshold_LTVal_16s_C1IR", 2, never, threshold16},
        {"Threshold_LTVal_8u_C1IR", 1, never, threshold8Unchecked, any, "IPPShare_ippiThreshold_LTVal_8u_C1IR"},
        {"Threshold_LTVal_16s_C1IR", 2, never, threshold16Unchecked, any, "IPPShare_ippiThreshold_LTVal_16s_C1IR"},
        {"IPPShare_ippiSet_8u_C1R", 1, never, fill},
        {"IPPShare_ippiRGBToYUV_8u_C3R", kPackedColourVariants, framed, packedColour(IPPShare_ippiRGBToYUV_8u_C3R)},
        {"IPPShare_ippiYUVToRGB_8u_C3R", kPackedColourVariants, framed, packedColour(IPPShare_ippiYUVToRGB_8u_C3R)},
        {"IPPMini_ippiRGBToYUV_8u_C3P3R", 1, framed, intoPlanes(IPPMini_ippiRGBToYUV_8u_C3P3R, ippStsNoMemErr)},
        {"IPPMini_ippiYUVToRGB_8u_P3C3R", 1, framed, fromPlanes(IPPMini_ippiYUVToRGB_8u_P3C3R, ippStsNoMemErr)},
        {"IPPMini_ippiCopy_8u_C3P3R", 1, framed, intoPlanes(IPPMini_ippiCopy_8u_C3P3R, ippStsBadArgErr)},
        {"IPPMini_ippiCopy_8u_P3C3R", 1, framed, fromPlanes(IPPMini_ippiCopy_8u_P3C3R, ippStsBadArgErr)},
    };
}
