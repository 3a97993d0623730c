// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Pixel conversions: bit packing, depth, thresholds, fill, colour and plane layout, compared with their definitions.
#include <algorithm>
#include <array>
#include <climits>

#include "oracle/bit_packing.h"
#include "oracle/colour.h"
#include "oracle/threshold.h"
#include "support.h"

namespace {

using fuzz::Call;
using fuzz::Draw;
using fuzz::Image;
using fuzz::require;

// Packed 1-bit rows in a block of bytes; one byte plays the role of a pixel.
IppiSize bytesOfBits(IppiSize size, int offset) { return {(offset + size.width + 7) / 8, size.height}; }

// One in sixteen is null, which makes the call invalid.
int anyOffset(Draw& draw, int offset, Call& call) {
    if (call.broken || !draw.chance(16)) return offset;
    call.broken = true;
    return draw.chance(2) ? -draw.between(1, INT_MAX) : draw.between(8, INT_MAX);
}

void expandBits(Draw& draw) {
    const IppiSize size = fuzz::anySize(draw);
    const int offset = draw.between(0, 7);
    Image source(draw, bytesOfBits(size, offset), 1);
    Image target(draw, size, 1);
    Call call(draw, source, target);
    if (!call.broken && draw.chance(4)) {
        Convert_1u8u_C1R(call.src, call.srcStep, offset, call.dst, call.dstStep, size.width, size.height);
    } else {
        const int given = anyOffset(draw, offset, call);
        const IppStatus status =
            IPPShare_ippiConvert_1u8u_C1R(call.src, call.srcStep, given, call.dst, call.dstStep, call.roi);
        call.requireStatus(status, target);
        if (call.broken) return;
    }
    std::vector<uint8_t> expected(static_cast<size_t>(size.width));
    for (int y = 0; y < size.height; ++y) {
        oracle::expandRow(source.region() + y * source.step(), offset, expected.data(), size.width);
        require(std::equal(expected.begin(), expected.end(), target.region() + y * target.step()), "bits are expanded");
    }
}

void packBits(Draw& draw) {
    const IppiSize size = fuzz::anySize(draw);
    const int offset = draw.between(0, 7);
    const uint8_t threshold = draw.chance(4) ? 255 : draw.byte();
    Image source(draw, size, 1);
    Image target(draw, bytesOfBits(size, offset), 1);
    std::vector<uint8_t> expected(static_cast<size_t>(target.width() * target.height()));
    for (int y = 0; y < size.height; ++y) {
        uint8_t* row = expected.data() + y * target.width();
        std::copy_n(target.region() + y * target.step(), target.width(), row);
        oracle::packRow(source.region() + y * source.step(), row, offset, size.width, threshold);
    }
    Call call(draw, source, target);
    if (call.roi.width > 0) call.roi.width = size.width;
    if (!call.broken && draw.chance(4)) {
        Convert_8u1u_C1R(call.src, call.srcStep, call.dst, call.dstStep, offset, size.width, size.height, threshold);
    } else {
        const int given = anyOffset(draw, offset, call);
        const IppStatus status = IPPShare_ippiReduceBits_8u1u_C1R(call.src, call.srcStep, call.dst, call.dstStep, given,
                                                                  call.roi, 0, 0, 0, threshold);
        call.requireStatus(status, target);
        if (call.broken) return;
    }
    for (int y = 0; y < size.height; ++y)
        require(std::equal(expected.begin() + y * target.width(), expected.begin() + (y + 1) * target.width(),
                           target.region() + y * target.step()),
                "bits are packed");
}

void widen(Draw& draw) {
    const IppiSize size = fuzz::anySize(draw);
    Image source(draw, size, 1);
    Image target(draw, size, 2);
    const Call call(draw, source, target);
    auto* dst = reinterpret_cast<short*>(call.dst);
    call.requireStatus(IPPShare_ippiConvert_8u16s_C1R(call.src, call.srcStep, dst, call.dstStep, call.roi), target);
    if (call.broken) return;
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x)
            require(oracle::pixelAt<short>(target.region(), target.step(), x, y) ==
                        oracle::pixelAt<uint8_t>(source.region(), source.step(), x, y),
                    "pixels are widened");
}

void narrow(Draw& draw) {
    const IppiSize size = fuzz::anySize(draw);
    Image source(draw, size, 2);
    Image target(draw, size, 1);
    const Call call(draw, source, target);
    const auto* src = reinterpret_cast<const short*>(call.src);
    call.requireStatus(IPPShare_ippiConvert_16s8u_C1R(src, call.srcStep, call.dst, call.dstStep, call.roi), target);
    if (call.broken) return;
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x)
            require(oracle::pixelAt<uint8_t>(target.region(), target.step(), x, y) ==
                        oracle::saturated(oracle::pixelAt<short>(source.region(), source.step(), x, y)),
                    "pixels are narrowed");
}

template <typename T>
std::vector<T> pixelsOf(Image& image) {
    std::vector<T> pixels;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            pixels.push_back(oracle::pixelAt<T>(image.region(), image.step(), x, y));
    return pixels;
}

void thresholdBytes(Draw& draw) {
    Image image(draw, fuzz::anySize(draw), 1);
    const uint8_t level = draw.byte();
    const uint8_t value = draw.byte();
    std::vector<uint8_t> expected = pixelsOf<uint8_t>(image);
    oracle::threshold<uint8_t>(expected.data(), image.width(), image.width(), image.height(), level, value);
    const Call call(draw, image, image, false);
    if (!call.src) return;
    const bool unchecked = !call.broken && draw.chance(4);
    if (unchecked)
        Threshold_LTVal_8u_C1IR(call.dst, call.dstStep, call.roi.width, call.roi.height, level, value);
    else
        call.requireStatus(IPPShare_ippiThreshold_LTVal_8u_C1IR(call.dst, call.dstStep, call.roi, level, value), image);
    if (!call.broken) require(pixelsOf<uint8_t>(image) == expected, "bytes are thresholded");
}

// A step of either sign: the first row is the top one or the bottom one.
void thresholdShorts(Draw& draw) {
    Image image(draw, fuzz::anySize(draw), 2);
    const auto level = static_cast<short>(draw.anyInt());
    const auto value = static_cast<short>(draw.anyInt());
    std::vector<short> expected = pixelsOf<short>(image);
    oracle::threshold<short>(reinterpret_cast<uint8_t*>(expected.data()), ptrdiff_t{2} * image.width(), image.width(),
                             image.height(), level, value);
    const bool upwards = draw.chance(2);
    uint8_t* first = image.region() + (upwards ? ptrdiff_t{image.height() - 1} * image.step() : 0);
    const int step = upwards ? -image.step() : image.step();
    auto* pixels = reinterpret_cast<short*>(first);
    if (draw.chance(4))
        Threshold_LTVal_16s_C1IR(pixels, step, image.width(), image.height(), level, value);
    else
        require(IPPShare_ippiThreshold_LTVal_16s_C1IR(pixels, step, image.size(), level, value) == 0, "a good call");
    image.requireUntouchedAroundRegion();
    require(pixelsOf<short>(image) == expected, "shorts are thresholded");
    require(IPPShare_ippiThreshold_LTVal_16s_C1IR(pixels, draw.between(0, image.usedRow() - 1), image.size(), level,
                                                  value) != 0,
            "a short step is refused");
}

void fillRegion(Draw& draw) {
    Image image(draw, fuzz::anySize(draw), 1);
    const uint8_t value = draw.byte();
    const Call call(draw, image, image, false);
    if (!call.src) return;
    call.requireStatus(IPPShare_ippiSet_8u_C1R(value, call.dst, call.dstStep, call.roi), image);
    if (call.broken) return;
    for (const uint8_t pixel : pixelsOf<uint8_t>(image)) require(pixel == value, "the region is filled");
}

using Triple = oracle::Triple;
using Conversion = Triple (*)(const uint8_t*);

Triple same(const uint8_t* pixel) { return {pixel[0], pixel[1], pixel[2]}; }

std::vector<Triple> converted(Image& image, Conversion conversion) {
    std::vector<Triple> pixels;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) pixels.push_back(conversion(image.region() + y * image.step() + 3 * x));
    return pixels;
}

void packedColour(Draw& draw) {
    const bool toYuv = draw.chance(2);
    const auto function = toYuv ? IPPShare_ippiRGBToYUV_8u_C3R : IPPShare_ippiYUVToRGB_8u_C3R;
    const IppiSize size = fuzz::anySize(draw);
    Image source(draw, size, 3);
    Image other(draw, size, 3);
    Image& target = draw.chance(4) ? source : other;
    const std::vector<Triple> expected = converted(source, toYuv ? oracle::yuvOf : oracle::rgbOf);
    const Call call(draw, source, target);
    call.requireStatus(function(call.src, call.srcStep, call.dst, call.dstStep, call.roi), target);
    if (!call.broken) require(converted(target, same) == expected, "colour is converted");
}

// Three planes with the same step: separate images with rows of equal length.
struct Planes {
    Planes(Draw& draw, IppiSize size) : step(size.width + draw.between(0, 5)) {
        for (std::vector<uint8_t>& plane : block) {
            plane = std::vector<uint8_t>(static_cast<size_t>((size.height - 1) * step + size.width));
            draw.fill(plane.data(), plane.size());
        }
    }
    Triple at(int x, int y) const {
        const auto i = static_cast<size_t>(y) * static_cast<size_t>(step) + static_cast<size_t>(x);
        return {block[0][i], block[1][i], block[2][i]};
    }

    int step;
    std::array<std::vector<uint8_t>, 3> block;
};

void toPlanes(Draw& draw) {
    const bool toYuv = draw.chance(2);
    const IppiSize size = fuzz::anySize(draw);
    Image source(draw, size, 3);
    Planes planes(draw, size);
    uint8_t* dst[3] = {planes.block[0].data(), planes.block[1].data(), planes.block[2].data()};
    const auto function = toYuv ? IPPMini_ippiRGBToYUV_8u_C3P3R : IPPMini_ippiCopy_8u_C3P3R;
    require(function(source.region(), source.step(), dst, planes.step, size) == 0, "a good call");
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            const uint8_t* pixel = source.region() + y * source.step() + 3 * x;
            require(planes.at(x, y) == (toYuv ? oracle::yuvOf(pixel) : same(pixel)), "channels become planes");
        }
    dst[draw.between(0, 2)] = nullptr;
    require(function(source.region(), source.step(), dst, planes.step, size) != 0, "a missing plane is refused");
}

void fromPlanes(Draw& draw) {
    const bool toRgb = draw.chance(2);
    const IppiSize size = fuzz::anySize(draw);
    const Planes planes(draw, size);
    Image target(draw, size, 3);
    const uint8_t* src[3] = {planes.block[0].data(), planes.block[1].data(), planes.block[2].data()};
    const auto function = toRgb ? IPPMini_ippiYUVToRGB_8u_P3C3R : IPPMini_ippiCopy_8u_P3C3R;
    require(function(src, planes.step, target.region(), target.step(), size) == 0, "a good call");
    target.requireUntouchedAroundRegion();
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            const Triple triple = planes.at(x, y);
            const Triple expected = toRgb ? oracle::rgbOf(triple.data()) : triple;
            require(same(target.region() + y * target.step() + 3 * x) == expected, "planes become channels");
        }
    src[draw.between(0, 2)] = nullptr;
    require(function(src, planes.step, target.region(), target.step(), size) != 0, "a missing plane is refused");
}

}    // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Draw draw(data, size);
    constexpr std::array kOperations = {expandBits,      packBits,   widen,        narrow,   thresholdBytes,
                                        thresholdShorts, fillRegion, packedColour, toPlanes, fromPlanes};
    fuzz::runOneOf(kOperations, draw);
    return 0;
}
