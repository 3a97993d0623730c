// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Medians and morphology, compared with their definitions.
#include <algorithm>
#include <array>
#include <cstdlib>

#include "oracle/median.h"
#include "oracle/morphology.h"
#include "support.h"

namespace {

using fuzz::Call;
using fuzz::Draw;
using fuzz::Image;
using fuzz::Margin;
using fuzz::require;

// Calls `check(window, result)` with the first byte of each sample's window, `dx` columns and `dy` rows away.
template <class Check>
void forEachSample(Image& source, Image& target, int dx, int dy, Check check) {
    const int ps = target.pixelSize();
    for (int y = 0; y < target.height(); ++y)
        for (int i = 0; i < target.width() * ps; ++i)
            check(source.region() + ptrdiff_t{y + dy} * source.step() + i + ptrdiff_t{dx} * ps,
                  target.region()[ptrdiff_t{y} * target.step() + i]);
}

// The margin of the windows of a mask with this anchor.
Margin reachOf(IppiSize mask, IppiPoint anchor) {
    return {anchor.x, anchor.y, mask.width - 1 - anchor.x, mask.height - 1 - anchor.y};
}

// An anchor, mostly within the mask.
IppiPoint anyAnchor(Draw& draw, IppiSize mask) {
    const int beyond = draw.chance(4) ? 3 : 0;
    const int x = draw.between(-beyond, mask.width - 1 + beyond);
    return {x, draw.between(-beyond, mask.height - 1 + beyond)};
}

void squareMedian(Draw& draw) {
    const int pixelSize = draw.chance(2) ? 1 : 3;
    const int m = 2 * draw.between(0, draw.chance(4) ? 12 : 4) + 1;
    const IppiPoint anchor = anyAnchor(draw, {m, m});
    const IppiSize size = fuzz::anySize(draw, 40);
    Image source(draw, size, pixelSize, reachOf({m, m}, anchor));
    Image target(draw, size, pixelSize);
    const Call call(draw, source, target);
    constexpr decltype(&IPPShare_ippiFilterMedian_8u_C1R) kGrey[] = {IPPShare_ippiFilterMedian_8u_C1R,
                                                                     IPPMini_ippiFilterMedian_8u_C1R};
    const auto function = pixelSize == 3 ? IPPShare_ippiFilterMedian_8u_C3R : kGrey[draw.between(0, 1)];
    call.requireStatus(function(call.src, call.srcStep, call.dst, call.dstStep, call.roi, {m, m}, anchor), target);
    if (call.broken || m > 9) return;
    forEachSample(source, target, -anchor.x, -anchor.y, [&](const uint8_t* corner, uint8_t result) {
        require(oracle::squareMedian(corner, source.step(), m, pixelSize) == result, "square median");
    });
}

// 16-bit and float pixels, for which OpenCV has the masks 3 and 5, and types for which it throws.
void medianOfOtherTypes(Draw& draw) {
    const int type = draw.between(0, 7) + 8 * draw.between(0, 3);
    const int m = 2 * draw.between(0, 3) + 1;
    const auto pixelSize = static_cast<int>(CV_ELEM_SIZE(type));
    const IppiSize size = fuzz::anySize(draw, 20);
    const IppiPoint anchor = {m / 2, m / 2};
    Image source(draw, size, pixelSize, reachOf({m, m}, anchor));
    Image target(draw, size, pixelSize);
    const Call call(draw, source, target);
    int status = 0;
    if (fuzz::survives([&] {
            status = ippiFilterMedian(call.src, call.srcStep, type, call.dst, call.dstStep, call.roi, {m, m}, anchor);
        }))
        call.requireStatus(status, target);
    else
        target.requireUntouched();
}

void refusedMasks(Draw& draw) {
    const IppiSize size = fuzz::anySize(draw, 20);
    Image source(draw, size, 1, {9, 9, 9, 9});
    Image target(draw, size, 1);
    const IppiSize mask = {draw.anyInt(), draw.anyInt()};
    const bool oddSquare = mask.width > 0 && mask.width % 2 == 1 && mask.width == mask.height;
    const auto run = [&](auto function, int m) {
        return function(source.region(), source.step(), target.region(), target.step(), size, m);
    };
    if (!oddSquare)
        require(IPPShare_ippiFilterMedian_8u_C1R(source.region(), source.step(), target.region(), target.step(), size,
                                                 mask, {0, 0}) != 0,
                "masks are odd squares");
    const int m = draw.anyInt();
    if (m != 33 && m != 55) require(run(IPPShare_ippiFilterMedianCross_8u_C1R, m) != 0, "unknown cross");
    if (m != 33) require(run(IPPShare_ippiFilterMedianColor_8u_C3R, m) != 0, "unknown colour mask");
    if (m != 3 && m != 5) require(run(IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R, m) != 0, "unknown weight");
    target.requireUntouched();
}

void crossMedian(Draw& draw) {
    const int reach = draw.between(1, 2);
    const IppiSize size = fuzz::anySize(draw);
    Image source(draw, size, 1, {reach, reach, reach, reach});
    Image target(draw, size, 1);
    const Call call(draw, source, target, false);
    if (!call.broken && draw.chance(4)) {
        const auto kernel = reach == 1 ? FilterMedianCross3x3_8u_C1R : FilterMedianCross5x5_8u_C1R;
        kernel(call.src, call.srcStep, call.dst, call.dstStep, size.width, size.height);
        target.requireUntouchedAroundRegion();
    } else {
        call.requireStatus(IPPShare_ippiFilterMedianCross_8u_C1R(call.src, call.srcStep, call.dst, call.dstStep,
                                                                 call.roi, reach == 1 ? 33 : 55),
                           target);
    }
    if (call.broken) return;
    forEachSample(source, target, 0, 0, [&](const uint8_t* centre, uint8_t result) {
        require(oracle::crossMedian(centre, source.step(), reach) == result, "cross median");
    });
}

void weightedMedian(Draw& draw) {
    const int weight = draw.chance(2) ? 3 : 5;
    const IppiSize size = fuzz::anySize(draw);
    Image source(draw, size, 1, {1, 1, 1, 1});
    Image target(draw, size, 1);
    const Call call(draw, source, target, false);
    if (!call.broken && draw.chance(4)) {
        const auto kernel =
            weight == 3 ? FilterMedianWeightedCenter3x3_3_8u_C1R : FilterMedianWeightedCenter3x3_5_8u_C1R;
        kernel(call.src, call.srcStep, call.dst, call.dstStep, size.width, size.height);
        target.requireUntouchedAroundRegion();
    } else {
        call.requireStatus(IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R(call.src, call.srcStep, call.dst,
                                                                             call.dstStep, call.roi, weight),
                           target);
    }
    if (call.broken) return;
    forEachSample(source, target, 0, 0, [&](const uint8_t* centre, uint8_t result) {
        require(oracle::weightedMedian(centre, source.step(), weight) == result, "weighted median");
    });
}

void colourMedian(Draw& draw) {
    const IppiSize size = fuzz::anySize(draw);
    Image source(draw, size, 3, {1, 1, 1, 1});
    Image target(draw, size, 3);
    const Call call(draw, source, target, false);
    if (!call.broken && draw.chance(4)) {
        FilterMedianColor3x3_8u_C3R(call.src, call.srcStep, call.dst, call.dstStep, size.width, size.height);
        target.requireUntouchedAroundRegion();
    } else {
        call.requireStatus(
            IPPShare_ippiFilterMedianColor_8u_C3R(call.src, call.srcStep, call.dst, call.dstStep, call.roi, 33),
            target);
    }
    if (call.broken) return;
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            const oracle::ColorWindow window(source.region() + ptrdiff_t{y} * source.step() + 3 * x, source.step());
            require(std::equal(window.winner(), window.winner() + 3,
                               target.region() + ptrdiff_t{y} * target.step() + 3 * x),
                    "colour median");
        }
}

void morphology(Draw& draw) {
    const bool largest = draw.chance(2);
    const bool full = draw.chance(2);
    const IppiSize mask = {draw.between(1, draw.chance(4) ? 40 : 9), draw.between(1, 9)};
    const IppiPoint anchor = anyAnchor(draw, mask);
    const IppiSize size = fuzz::anySize(draw);
    std::vector<uint8_t> cells(static_cast<size_t>(mask.width * mask.height));
    draw.fill(cells.data(), cells.size());
    if (draw.chance(2))
        for (uint8_t& cell : cells) cell &= 1;
    if (full) std::fill(cells.begin(), cells.end(), uint8_t{1});

    Margin margin = reachOf(mask, anchor);
    margin.right += mask.width % 2 == 0;    // OpenCV's masks have odd sides
    margin.bottom += mask.height % 2 == 0;
    Image source(draw, size, 1, margin);
    Image target(draw, size, 1);
    const Call call(draw, source, target);
    int status = 0;
    if (full) {
        const auto function = largest ? IPPMini_ippiFilterMax_8u_C1R : IPPMini_ippiFilterMin_8u_C1R;
        status = function(call.src, call.srcStep, call.dst, call.dstStep, call.roi, mask, anchor);
    } else {
        const auto function = largest ? IPPShare_ippiDilate_8u_C1R : IPPShare_ippiErode_8u_C1R;
        status = function(call.src, call.srcStep, call.dst, call.dstStep, call.roi, cells.data(), mask, anchor);
    }
    call.requireStatus(status, target);
    const bool selectsAny = std::any_of(cells.begin(), cells.end(), [](int cell) { return cell; });
    if (call.broken || !selectsAny) return;
    forEachSample(source, target, -anchor.x, -anchor.y, [&](const uint8_t* corner, uint8_t result) {
        require(oracle::extremeUnder(corner, source.step(), cells.data(), mask.width, mask.height, largest) == result,
                "dilation or erosion");
    });
}

// Source and destination are one image.
void inPlace(Draw& draw) {
    const bool median = draw.chance(2);
    const int side = median ? 2 * draw.between(0, 4) + 1 : draw.between(1, 9);
    const IppiSize mask = {side, median ? side : draw.between(1, 9)};
    const IppiPoint anchor = {draw.between(0, mask.width - 1), draw.between(0, mask.height - 1)};
    Margin margin = reachOf(mask, anchor);
    margin.right += mask.width % 2 == 0;
    margin.bottom += mask.height % 2 == 0;
    Image image(draw, fuzz::anySize(draw, 40), 1, margin);
    const std::vector<uint8_t> before = image.bytes();
    const auto function = median ? IPPShare_ippiFilterMedian_8u_C1R : IPPMini_ippiFilterMax_8u_C1R;
    require(function(image.region(), image.step(), image.region(), image.step(), image.size(), mask, anchor) == 0,
            "a good call");
    image.requireUntouchedAroundRegion();
    const std::vector<uint8_t> cells(static_cast<size_t>(mask.width * mask.height), 1);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const uint8_t* corner = before.data() + ptrdiff_t{y} * image.step() + x;
            const uint8_t expected =
                median ? oracle::squareMedian(corner, image.step(), side, 1)
                       : oracle::extremeUnder(corner, image.step(), cells.data(), mask.width, mask.height, true);
            require(image.region()[ptrdiff_t{y} * image.step() + x] == expected, "in place");
        }
}

}    // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Draw draw(data, size);
    constexpr std::array kOperations = {squareMedian,   medianOfOtherTypes, refusedMasks, crossMedian,
                                        weightedMedian, colourMedian,       morphology,   inPlace};
    fuzz::runOneOf(kOperations, draw);
    return 0;
}
