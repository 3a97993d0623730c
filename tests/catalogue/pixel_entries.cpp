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
    c.call = [&c, src, dst] {
        return IPPShare_ippiConvert_1u8u_C1R(src.data, src.step, c.variant, dst.data, dst.step, c.size);
    };
}

void expandUnchecked(Case& c) {
    const Image src = bitSource(c);
    const Image dst = c.target({c.size});
    c.call = [&c, src, dst] {
        Convert_1u8u_C1R(src.data, src.step, c.variant, dst.data, dst.step, c.size.width, c.size.height);
        return 0;
    };
}

void reduce(Case& c) {
    const Image src = c.source({c.size});
    const Image dst = bitTarget(c);
    const uint8_t threshold = c.random.byte();
    c.call = [&c, src, dst, threshold] {
        return IPPShare_ippiReduceBits_8u1u_C1R(src.data, src.step, dst.data, dst.step, c.variant, c.size, 0, 0, 0,
                                                threshold);
    };
}

void reduceUnchecked(Case& c) {
    const Image src = c.source({c.size});
    const Image dst = bitTarget(c);
    const uint8_t threshold = c.random.byte();
    c.call = [&c, src, dst, threshold] {
        Convert_8u1u_C1R(src.data, src.step, dst.data, dst.step, c.variant, c.size.width, c.size.height, threshold);
        return 0;
    };
}

void widen(Case& c) {
    const Image src = c.source({c.size});
    const Image dst = c.target({c.size, 2});
    c.call = [&c, src, dst] {
        return IPPShare_ippiConvert_8u16s_C1R(src.data, src.step, dst.as<short>(), dst.step, c.size);
    };
}

void narrow(Case& c) {
    const Image src = c.source({c.size, 2});
    const Image dst = c.target({c.size});
    c.call = [&c, src, dst] {
        return IPPShare_ippiConvert_16s8u_C1R(src.as<short>(), src.step, dst.data, dst.step, c.size);
    };
}

void threshold8(Case& c) {
    const Image both = c.sourceAndTarget({c.size});
    const uint8_t limit = c.random.byte();
    c.call = [&c, both, limit] {
        return IPPShare_ippiThreshold_LTVal_8u_C1IR(both.data, both.step, c.size, limit, 77);
    };
}

void threshold8Unchecked(Case& c) {
    const Image both = c.sourceAndTarget({c.size});
    const uint8_t limit = c.random.byte();
    c.call = [&c, both, limit] {
        Threshold_LTVal_8u_C1IR(both.data, both.step, c.size.width, c.size.height, limit, 77);
        return 0;
    };
}

// 16-bit rows may be walked upwards.
struct Upwards {
    short* first;
    int step;
};

Upwards directed(const Case& c, const Image& image) {
    if (c.variant == 0) return {image.as<short>(), image.step};
    return {reinterpret_cast<short*>(image.data + ptrdiff_t{c.size.height - 1} * image.step), -image.step};
}

void threshold16(Case& c) {
    const Upwards both = directed(c, c.sourceAndTarget({c.size, 2}));
    const auto limit = static_cast<short>(c.random.between(-300, 300));
    c.call = [&c, both, limit] {
        return IPPShare_ippiThreshold_LTVal_16s_C1IR(both.first, both.step, c.size, limit, -7777);
    };
}

void threshold16Unchecked(Case& c) {
    const Upwards both = directed(c, c.sourceAndTarget({c.size, 2}));
    const auto limit = static_cast<short>(c.random.between(-300, 300));
    c.call = [&c, both, limit] {
        Threshold_LTVal_16s_C1IR(both.first, both.step, c.size.width, c.size.height, limit, -7777);
        return 0;
    };
}

void fill(Case& c) {
    const Image dst = c.target({c.size});
    c.call = [&c, dst] { return IPPShare_ippiSet_8u_C1R(200, dst.data, dst.step, c.size); };
}

// Apart, and in place.
constexpr int kPackedColourVariants = 2;

using PackedColour = IppStatus (*)(const unsigned char*, int, unsigned char*, int, IppiSize);

std::function<void(Case&)> packedColour(PackedColour convert) {
    return [convert](Case& c) {
        const bool inPlace = c.variant == 1;
        const Image dst = inPlace ? c.sourceAndTarget({c.size, 3}) : c.target({c.size, 3});
        const Image src = inPlace ? dst : c.source({c.size, 3});
        c.call = [&c, convert, src, dst] { return convert(src.data, src.step, dst.data, dst.step, c.size); };
    };
}

// Three planes with one step, each fenced by itself.
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

using Split = IppStatus (*)(const unsigned char*, int, unsigned char* const[3], int, IppiSize);

std::function<void(Case&)> intoPlanes(Split split) {
    return [split](Case& c) {
        const Image src = c.source({c.size, 3});
        const Planes dst = planesOf(c, &Case::target);
        auto* pointers = c.sourceOf(dst.data);
        c.call = [&c, split, src, dst, pointers] {
            return split(src.data, src.step, pointers->data(), dst.step, c.size);
        };
    };
}

using Merge = IppStatus (*)(const unsigned char* const[3], int, unsigned char*, int, IppiSize);

std::function<void(Case&)> fromPlanes(Merge merge) {
    return [merge](Case& c) {
        const Planes src = planesOf(c, &Case::source);
        const Image dst = c.target({c.size, 3});
        auto* pointers = c.sourceOf(src.data);
        c.call = [&c, merge, src, dst, pointers] {
            return merge(pointers->data(), src.step, dst.data, dst.step, c.size);
        };
    };
}

}    // namespace

Entries pixelEntries() {
    const OutOfMemory framed = OutOfMemory::answersOrThrows(ippStsNoMemErr);
    const OutOfMemory never = OutOfMemory::never();
    return {
        {"IPPShare_ippiConvert_1u8u_C1R", kBitOffsets, never, expand},
        {"IPPShare_ippiReduceBits_8u1u_C1R", kBitOffsets, never, reduce},
        {"Convert_1u8u_C1R", kBitOffsets, never, expandUnchecked},
        {"Convert_8u1u_C1R", kBitOffsets, never, reduceUnchecked},
        {"IPPShare_ippiConvert_8u16s_C1R", 1, framed, widen},
        {"IPPShare_ippiConvert_16s8u_C1R", 1, framed, narrow},
        {"IPPShare_ippiThreshold_LTVal_8u_C1IR", 1, never, threshold8},
        {"IPPShare_ippiThreshold_LTVal_16s_C1IR", 2, never, threshold16},
        {"Threshold_LTVal_8u_C1IR", 1, never, threshold8Unchecked},
        {"Threshold_LTVal_16s_C1IR", 2, never, threshold16Unchecked},
        {"IPPShare_ippiSet_8u_C1R", 1, never, fill},
        {"IPPShare_ippiRGBToYUV_8u_C3R", kPackedColourVariants, framed, packedColour(IPPShare_ippiRGBToYUV_8u_C3R)},
        {"IPPShare_ippiYUVToRGB_8u_C3R", kPackedColourVariants, framed, packedColour(IPPShare_ippiYUVToRGB_8u_C3R)},
        {"IPPMini_ippiRGBToYUV_8u_C3P3R", 1, framed, intoPlanes(IPPMini_ippiRGBToYUV_8u_C3P3R)},
        {"IPPMini_ippiYUVToRGB_8u_P3C3R", 1, framed, fromPlanes(IPPMini_ippiYUVToRGB_8u_P3C3R)},
        {"IPPMini_ippiCopy_8u_C3P3R", 1, framed, intoPlanes(IPPMini_ippiCopy_8u_C3P3R)},
        {"IPPMini_ippiCopy_8u_P3C3R", 1, framed, fromPlanes(IPPMini_ippiCopy_8u_P3C3R)},
    };
}
