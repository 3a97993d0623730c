// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Medians and morphology.
#include <opencv2/core.hpp>

#include "catalogue/catalogue.h"

namespace {

// The margin that the windows of a region read.
Margin marginOf(const Window& w) {
    return {w.anchor.x, w.anchor.y, w.mask.width - 1 - w.anchor.x, w.mask.height - 1 - w.anchor.y};
}

// The windows and the region, for calls in place.
Margin marginInPlace(const Margin& m) {
    return {std::max(m.left, 0), std::max(m.top, 0), std::max(m.right, 0), std::max(m.bottom, 0)};
}

struct Images {
    Image src;
    Image dst;
};

Images imagesUnder(Case& c, int pixelSize, const Margin& margin, const Margin& marginOfCopy) {
    // Rows are long enough for the larger of the two.
    const int padding = pixelSize * (marginOfCopy.right - margin.right + c.random.between(0, 3));
    if (c.worksInPlace()) {
        const Image both = c.sourceAndTarget({c.size, pixelSize, marginInPlace(marginOfCopy), padding});
        c.lostByOpenCV = 1;
        return {both, both};
    }
    return {c.source({c.size, pixelSize, margin, padding}), c.target({c.size, pixelSize})};
}

const std::vector<Window>& medianWindows() {
    static const std::vector<Window> windows =
        windowsOf({{3, 3}, {5, 5}, {1, 1}}, {{7, 7}, {9, 9}, {11, 11}, {17, 17}});
    return windows;
}

void noteLostBlock(Case& c, const Window& w) {
    constexpr int kLargestOwn = 31;
    if (w.mask.width > kLargestOwn) c.lostByOpenCV = 1;
}

// The checks of a median of an odd square.
Checks checksUnder(const Case& c, int pixelSize, const Window& w) {
    return {pixelSize * (c.size.width + w.mask.width - 1), pixelSize * c.size.width};
}

const std::vector<IppiSize> kNoMedianMasks = {{2, 2}, {3, 5}, {0, 0}, {-1, -1}};

using Median = IppStatus (*)(const unsigned char*, int, unsigned char*, int, IppiSize, IppiSize, IppiPoint);

std::function<void(Case&)> median(Median filter, int pixelSize) {
    return [filter, pixelSize](Case& c) {
        const Window& w = pick(medianWindows(), c.variant);
        const auto [src, dst] = imagesUnder(c, pixelSize, marginOf(w), marginOf(w));
        noteLostBlock(c, w);
        const auto under = [filter](const Window& window) {
            return [filter, window](const Regions& r) {
                return filter(r.src.data, r.src.step, r.dst.data, r.dst.step, r.size, window.mask, window.anchor);
            };
        };
        const Regions regions = {src, dst, c.size};
        c.callOn(regions, checksUnder(c, pixelSize, w), under(w));
        for (const IppiSize mask : kNoMedianMasks)
            c.refuse("a mask that is no odd square", ippStsBadArgErr, [=] { return under({mask, {0, 0}})(regions); });
    };
}

// OpenCV supports 16 bits up to 5 x 5 only; those windows come first.
void medianOfAnyType(Case& c) {
    constexpr int kWindowsOfAnyType = 25 + 49 + 9;
    const int windows = static_cast<int>(medianWindows().size());
    const bool wide = c.variant >= 2 * windows;
    const int type = wide ? CV_16UC1 : c.variant >= windows ? CV_8UC4 : CV_8UC1;
    const int pixelSize = static_cast<int>(CV_ELEM_SIZE(type));
    const Window& w = pick(medianWindows(), wide ? (c.variant - 2 * windows) % kWindowsOfAnyType : c.variant);
    const auto [src, dst] = imagesUnder(c, pixelSize, marginOf(w), marginOf(w));
    if (type != CV_8UC1) c.lostByOpenCV = 1;
    noteLostBlock(c, w);
    const auto under = [type](const Window& window) {
        return [type, window](const Regions& r) {
            return ippiFilterMedian(r.src.data, r.src.step, type, r.dst.data, r.dst.step, r.size, window.mask,
                                    window.anchor);
        };
    };
    const Regions regions = {src, dst, c.size};
    c.callOn(regions, checksUnder(c, pixelSize, w), under(w));
    for (const IppiSize mask : kNoMedianMasks)
        c.refuse("a mask that is no odd square", ippStsBadArgErr, [=] { return under({mask, {0, 0}})(regions); });
}

using CodedMedian = IppStatus (*)(const unsigned char*, int, unsigned char*, int, IppiSize, int);

// A fixed window; the code is a mask or a weight.
std::function<void(Case&)> codedMedian(CodedMedian filter, const std::vector<int>& codes, int pixelSize) {
    return [=](Case& c) {
        const int good = pick(codes, c.variant);
        const Image src = c.source({c.size, pixelSize, Margin::all(good == 55 ? 2 : 1)});
        const Image dst = c.target({c.size, pixelSize});
        const auto coded = [filter](int code) {
            return [filter, code](const Regions& r) {
                return filter(r.src.data, r.src.step, r.dst.data, r.dst.step, r.size, code);
            };
        };
        const Regions regions = {src, dst, c.size};
        c.callOn(regions, {0, pixelSize * c.size.width}, coded(good));
        for (const int code : {0, 4, 34, -33, good + 1})
            c.refuse("a code that is none", ippStsBadArgErr, [=] { return coded(code)(regions); });
    };
}

using UncheckedMedian = void (*)(const unsigned char*, int, unsigned char*, int, int, int);

std::function<void(Case&)> uncheckedMedian(UncheckedMedian filter, int reach, int pixelSize) {
    return [=](Case& c) {
        const Image src = c.source({c.size, pixelSize, Margin::all(reach)});
        const Image dst = c.target({c.size, pixelSize});
        c.callOn({src, dst, c.size}, [filter](const Regions& r) {
            filter(r.src.data, r.src.step, r.dst.data, r.dst.step, r.size.width, r.size.height);
            return 0;
        });
    };
}

const std::vector<Window>& morphologyWindows() {
    static const std::vector<Window> windows =
        windowsOf({{3, 3}, {1, 1}, {2, 2}, {4, 1}, {1, 3}, {5, 5}}, {{8, 8}, {9, 17}, {33, 3}, {66, 66}});
    return windows;
}

// Where OpenCV does the work, an even mask reads one more pixel.
Margin marginOfOpenCV(const Window& w) {
    Margin m = marginOf(w);
    m.right += 1 - w.mask.width % 2;
    m.bottom += 1 - w.mask.height % 2;
    return m;
}

Images imagesUnderMask(Case& c, const Window& w, bool large) {
    return imagesUnder(c, 1, large ? marginOfOpenCV(w) : marginOf(w), marginOfOpenCV(w));
}

Checks checksUnderMask(const Case& c, const Window& w) { return {c.size.width + w.mask.width / 2 * 2, c.size.width}; }

const std::vector<IppiSize> kEmptyMasks = {{0, 3}, {3, 0}, {-1, 3}, {3, -1}};

using Rectangle = IppStatus (*)(const unsigned char*, int, unsigned char*, int, IppiSize, IppiSize, IppiPoint);

std::function<void(Case&)> underRectangle(Rectangle filter) {
    return [filter](Case& c) {
        const Window& w = pick(morphologyWindows(), c.variant);
        const auto [src, dst] = imagesUnderMask(c, w, w.mask.width > 64);
        const auto under = [filter](const Window& window) {
            return [filter, window](const Regions& r) {
                return filter(r.src.data, r.src.step, r.dst.data, r.dst.step, r.size, window.mask, window.anchor);
            };
        };
        const Regions regions = {src, dst, c.size};
        c.callOn(regions, checksUnderMask(c, w), under(w));
        for (const IppiSize mask : kEmptyMasks)
            c.refuse("an empty mask", ippStsBadArgErr, [=] { return under({mask, {0, 0}})(regions); });
    };
}

using Masked = IppStatus (*)(const unsigned char*, int, unsigned char*, int, IppiSize, const unsigned char*, IppiSize,
                             IppiPoint);

std::function<void(Case&)> underMask(Masked filter) {
    return [filter](Case& c) {
        const Window& w = pick(morphologyWindows(), c.variant);
        Bytes cells(static_cast<size_t>(w.mask.width) * static_cast<size_t>(w.mask.height));
        const int percent = c.random.chance(50) ? 100 : 60;
        for (uint8_t& cell : cells) cell = c.random.chance(percent) ? 7 : 0;
        cells[cells.size() / 2] = 1;
        const unsigned char* mask = c.sourceOf(cells);
        const auto [src, dst] = imagesUnderMask(c, w, cells.size() > 256);
        const auto under = [filter](const unsigned char* table, const Window& window) {
            return [filter, table, window](const Regions& r) {
                return filter(r.src.data, r.src.step, r.dst.data, r.dst.step, r.size, table, window.mask,
                              window.anchor);
            };
        };
        const Regions regions = {src, dst, c.size};
        c.callOn(regions, checksUnderMask(c, w), under(mask, w));
        c.refuse("a null mask", ippStsBadArgErr, [=] { return under(nullptr, w)(regions); });
        for (const IppiSize empty : kEmptyMasks)
            c.refuse("an empty mask", ippStsBadArgErr, [=] { return under(mask, {empty, {0, 0}})(regions); });
    };
}

}    // namespace

Entries rankEntries() {
    const auto medians = static_cast<int>(medianWindows().size());
    const auto masks = static_cast<int>(morphologyWindows().size());
    const OutOfMemory framed = OutOfMemory::answersOrThrows(ippStsNoMemErr);
    const OutOfMemory never = OutOfMemory::never();
    const std::vector<Shape> squares = shapesOf(medianWindows(), {{3, 3}, {9, 9}, {11, 11}});
    const std::vector<Shape> rectangles = shapesOf(morphologyWindows(), {{3, 3}, {9, 17}, {66, 66}});
    const std::vector<Shape> crosses = {{"mask 33", 0}, {"mask 55", 1}};
    const std::vector<Shape> weights = {{"weight 3", 0}, {"weight 5", 1}};
    const std::vector<Shape> any = {{"", 0}};
    const std::string grey = "IPPShare_ippiFilterMedian_8u_C1R";
    const std::string cross = "IPPShare_ippiFilterMedianCross_8u_C1R";
    const std::string weighted = "IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R";
    const std::string colour = "IPPShare_ippiFilterMedianColor_8u_C3R";
    return {
        {grey, medians, framed, median(IPPShare_ippiFilterMedian_8u_C1R, 1), squares},
        {"IPPShare_ippiFilterMedian_8u_C3R", medians, framed, median(IPPShare_ippiFilterMedian_8u_C3R, 3), squares},
        {"IPPMini_ippiFilterMedian_8u_C1R", medians, framed, median(IPPMini_ippiFilterMedian_8u_C1R, 1), squares, grey},
        {"ippiFilterMedian", 3 * medians, framed, medianOfAnyType, squares, grey},
        {cross, 2, never, codedMedian(IPPShare_ippiFilterMedianCross_8u_C1R, {33, 55}, 1), crosses},
        {weighted, 2, never, codedMedian(IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R, {3, 5}, 1), weights},
        {colour, 1, never, codedMedian(IPPShare_ippiFilterMedianColor_8u_C3R, {33}, 3)},
        {"FilterMedianCross3x3_8u_C1R", 1, never, uncheckedMedian(FilterMedianCross3x3_8u_C1R, 1, 1), any, cross},
        {"FilterMedianCross5x5_8u_C1R", 1, never, uncheckedMedian(FilterMedianCross5x5_8u_C1R, 2, 1), any, cross},
        {"FilterMedianWeightedCenter3x3_3_8u_C1R", 1, never,
         uncheckedMedian(FilterMedianWeightedCenter3x3_3_8u_C1R, 1, 1), any, weighted},
        {"FilterMedianWeightedCenter3x3_5_8u_C1R", 1, never,
         uncheckedMedian(FilterMedianWeightedCenter3x3_5_8u_C1R, 1, 1), any, weighted},
        {"FilterMedianColor3x3_8u_C3R", 1, never, uncheckedMedian(FilterMedianColor3x3_8u_C3R, 1, 3), any, colour},
        {"IPPShare_ippiDilate_8u_C1R", masks, framed, underMask(IPPShare_ippiDilate_8u_C1R),
         shapesOf(morphologyWindows(), {{3, 3}, {9, 17}})},
        {"IPPShare_ippiErode_8u_C1R", masks, framed, underMask(IPPShare_ippiErode_8u_C1R),
         shapesOf(morphologyWindows(), {{3, 3}, {9, 17}})},
        {"IPPMini_ippiFilterMax_8u_C1R", masks, framed, underRectangle(IPPMini_ippiFilterMax_8u_C1R), rectangles},
        {"IPPMini_ippiFilterMin_8u_C1R", masks, framed, underRectangle(IPPMini_ippiFilterMin_8u_C1R), rectangles},
    };
}
