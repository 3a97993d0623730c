// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Convolution, box, bilateral and noise reduction, matrix product and cosine transform.
#include <algorithm>
#include <array>
#include <opencv2/core.hpp>
#include <type_traits>

#include "catalogue/catalogue.h"

namespace {

const std::vector<Window>& kernelWindows() {
    static const std::vector<Window> windows =
        windowsOf({{3, 3}, {1, 1}, {2, 2}, {4, 1}, {1, 3}, {5, 5}}, {{4, 4}, {7, 7}, {8, 5}, {9, 9}, {3, 21}});
    return windows;
}

// With this number of cells or more, OpenCV may read pixels to the right of those that it needs.
constexpr int kFewestCellsThatLookFurther = 50;

bool looksFurther(const Window& w) {
    return (w.mask.width / 2 * 2 + 1) * (w.mask.height / 2 * 2 + 1) >= kFewestCellsThatLookFurther;
}

Margin marginOf(const Window& w) {
    const int halfWidth = w.mask.width / 2;
    const int halfHeight = w.mask.height / 2;
    const int further = looksFurther(w) ? halfWidth : 0;
    return {2 * halfWidth - w.anchor.x, 2 * halfHeight - w.anchor.y, w.anchor.x + further, w.anchor.y};
}

Margin withRegion(const Margin& m) {
    return {std::max(m.left, 0), std::max(m.top, 0), std::max(m.right, 0), std::max(m.bottom, 0)};
}

struct Images {
    Image src;
    Image dst;
};

Images imagesUnder(Case& c, int pixelSize, const Margin& margin) {
    if (c.worksInPlace()) {
        const Image both = c.sourceAndTarget({c.size, pixelSize, withRegion(margin)});
        c.lostByOpenCV = 1;
        return {both, both};
    }
    return {c.source({c.size, pixelSize, margin}), c.target({c.size, pixelSize})};
}

size_t cellsOf(IppiSize s) { return static_cast<size_t>(s.width) * static_cast<size_t>(s.height); }

// On a page a blur, so that every cell counts.
const int* integers(Case& c, size_t count) {
    std::vector<int> cells(count, 1);
    if (!c.isPage())
        for (int& cell : cells) cell = c.random.between(-3, 5);
    return c.sourceOf(cells);
}

int divisorFor(const Case& c, size_t cells, int otherwise) { return c.isPage() ? static_cast<int>(cells) : otherwise; }

const float* floats(Case& c, size_t count) {
    std::vector<float> cells(count, 1 / static_cast<float>(count));
    if (!c.isPage())
        for (float& cell : cells) cell = static_cast<float>(c.random.real(-0.5, 1));
    return c.sourceOf(cells);
}

// The kernel and the divisor; invalid ones are rejected.
template <class Cell>
struct Kernel {
    const Cell* cells;
    Window window;
    int divisor = 1;
};

// `filter` creates a function of regions from a kernel.
template <class Cell, class Filter>
void convolve(Case& c, const Images& images, int pixelSize, const Kernel<Cell>& good, Filter filter) {
    const Regions regions = {images.src, images.dst, c.size};
    const int row = pixelSize * c.size.width;
    const int srcRow = row + pixelSize * (good.window.mask.width / 2 * 2);
    c.callOn(regions, {srcRow, row}, filter(good));
    const auto refuse = [&](const char* what, auto change) {
        Kernel<Cell> wrong = good;
        change(wrong);
        c.refuse(what, ippStsBadArgErr, [=] { return filter(wrong)(regions); });
    };
    refuse("a null kernel", [](Kernel<Cell>& k) { k.cells = nullptr; });
    for (const int side : {0, -1}) {
        refuse("a kernel without columns", [side](Kernel<Cell>& k) { k.window.mask.width = side; });
        refuse("a kernel without rows", [side](Kernel<Cell>& k) { k.window.mask.height = side; });
    }
    if (std::is_same_v<Cell, int>) refuse("a divisor of 0", [](Kernel<Cell>& k) { k.divisor = 0; });
}

template <class T>
using Convolution = IppStatus (*)(const T*, int, T*, int, IppiSize, const int*, IppiSize, IppiPoint, int);

template <class T>
std::function<void(Case&)> convolution(Convolution<T> filter, int pixelSize) {
    return [filter, pixelSize](Case& c) {
        const Window& w = pick(kernelWindows(), c.variant);
        const Images images = imagesUnder(c, pixelSize, marginOf(w));
        const int* cells = integers(c, cellsOf(w.mask));
        const int divisor = divisorFor(c, cellsOf(w.mask), pick<int>({1, -7, 9}, c.random.between(0, 2)));
        convolve<int>(c, images, pixelSize, {cells, w, divisor}, [filter](const Kernel<int>& k) {
            return [filter, k](const Regions& r) {
                return filter(r.src.template as<T>(), r.src.step, r.dst.template as<T>(), r.dst.step, r.size, k.cells,
                              k.window.mask, k.window.anchor, k.divisor);
            };
        });
    };
}

void convolution32f(Case& c) {
    const Window& w = pick(kernelWindows(), c.variant);
    const Images images = imagesUnder(c, 3, marginOf(w));
    convolve<float>(c, images, 3, {floats(c, cellsOf(w.mask)), w}, [](const Kernel<float>& k) {
        return [k](const Regions& r) {
            return IPPMini_ippiFilter32f_8u_C3R(r.src.data, r.src.step, r.dst.data, r.dst.step, r.size, k.cells,
                                                k.window.mask, k.window.anchor);
        };
    });
}

const std::vector<int> kTypes = {CV_8UC1, CV_8UC3, CV_16SC1, CV_8UC4};

int typeOf(const Case& c) { return pick(kTypes, c.variant / static_cast<int>(kernelWindows().size())); }

void convolutionOfAnyType(Case& c) {
    const Window& w = pick(kernelWindows(), c.variant);
    const int type = typeOf(c);
    const int pixelSize = static_cast<int>(CV_ELEM_SIZE(type));
    const Images images = imagesUnder(c, pixelSize, marginOf(w));
    const int divisor = divisorFor(c, cellsOf(w.mask), 4);
    convolve<int>(c, images, pixelSize, {integers(c, cellsOf(w.mask)), w, divisor}, [type](const Kernel<int>& k) {
        return [type, k](const Regions& r) {
            return ippiFilter(r.src.data, r.src.step, type, r.dst.data, r.dst.step, r.size, k.cells, k.window.mask,
                              k.window.anchor, k.divisor);
        };
    });
}

void convolution32fOfAnyType(Case& c) {
    const Window& w = pick(kernelWindows(), c.variant);
    const int type = typeOf(c);
    const int pixelSize = static_cast<int>(CV_ELEM_SIZE(type));
    const Images images = imagesUnder(c, pixelSize, marginOf(w));
    convolve<float>(c, images, pixelSize, {floats(c, cellsOf(w.mask)), w}, [type](const Kernel<float>& k) {
        return [type, k](const Regions& r) {
            return ippiFilter32f(r.src.data, r.src.step, type, r.dst.data, r.dst.step, r.size, k.cells, k.window.mask,
                                 k.window.anchor);
        };
    });
}

// The cells of the mask, starting at minus the anchor, and one more column and row if its sides are even.
void box(Case& c) {
    const Window& good = pick(kernelWindows(), c.variant);
    const IppiSize even = {good.mask.width / 2 * 2, good.mask.height / 2 * 2};
    const Margin margin = {good.anchor.x, good.anchor.y, even.width - good.anchor.x, even.height - good.anchor.y};
    const Image both = c.sourceAndTarget({c.size, 3, withRegion(margin)});
    const auto under = [](const Window& w) {
        return [w](const Regions& r) {
            return IPPMini_ippiFilterBox_8u_C3IR(r.dst.data, r.dst.step, r.size, w.mask, w.anchor);
        };
    };
    const Regions regions = {{}, both, c.size};
    c.callOn(regions, {0, 3 * (c.size.width + even.width)}, under(good));
    for (const IppiSize mask : {IppiSize{0, 3}, IppiSize{3, 0}, IppiSize{-1, 3}, IppiSize{3, -1}})
        c.refuse("an empty mask", ippStsBadArgErr, [=] { return under({mask, {0, 0}})(regions); });
}

const std::vector<int> kBilateralSides = {3, 5, 1, 7, 9};
constexpr int kBilateralVariants = 20;

void bilateral(Case& c) {
    const int side = pick(kBilateralSides, c.variant);
    const Margin margin = side == 1 ? Margin{0, 0, 1, 0} : Margin::all(side / 2);
    const auto [src, dst] = imagesUnder(c, 1, margin);
    const float colour = pick<float>({400, 0, 1, 25000}, c.variant / 5);
    const float space = pick<float>({400, 1, 0, 30}, c.variant / 5);
    const bool direct = (side == 3 || side == 5) && colour > 0 && space > 0;
    if (!direct) c.lostByOpenCV = 1;
    const auto under = [colour, space](IppiSize kernel) {
        return [=](const Regions& r) {
            return OPCV_ippiFilterBilateral_8u_C1R(r.src.data, r.src.step, r.dst.data, r.dst.step, r.size, kernel,
                                                   colour, space);
        };
    };
    const Regions regions = {src, dst, c.size};
    c.callOn(regions, {c.size.width + side / 2 * 2, c.size.width}, under({side, side}));
    for (const IppiSize kernel : {IppiSize{4, 4}, IppiSize{3, 5}, IppiSize{0, 0}, IppiSize{-1, -1}})
        c.refuse("a kernel that is no odd square", ippStsBadArgErr, [=] { return under(kernel)(regions); });
}

// Whole packed images; the outermost pixels may not be filtered.

IppiSize wider(IppiSize s, int ring) { return {s.width + 2 * ring, s.height + 2 * ring}; }

constexpr int kRadii = 5;
constexpr int kLargestDirectRadius = 3;

// On arm64 OpenCV uses a Fourier transform for 50 cells or more, on x86-64 only for kernels larger than these. It also
// leaks the tables of its transforms.
#if defined(__aarch64__)
constexpr size_t kLostInTransforms = 8;
#else
constexpr size_t kLostInTransforms = 1;
#endif

// Of which the first half has two images and the second works in place.
bool isInPlace(const Case& c, int half) { return c.variant >= half; }

// An image of the case's size with a ring around it that is read but not written.
struct Ringed {
    Image src;             // from the ring's first pixel
    unsigned char* dst;    // likewise
    IppiSize whole;
};

Ringed ringedImages(Case& c, int pixelSize, int ring, bool inPlace) {
    const Layout inside = {c.size, pixelSize, Margin::all(ring), Layout::kPacked};
    const IppiSize whole = wider(c.size, ring);
    const Image dst = inPlace ? c.sourceAndTarget(inside) : c.target(inside);
    unsigned char* first = dst.data - ptrdiff_t{ring} * (dst.step + pixelSize);
    if (inPlace) return {{first, dst.step}, first, whole};
    return {c.source({whole, pixelSize, {}, Layout::kPacked}), first, whole};
}

// Images that are written completely.
Images wholeImages(Case& c, IppiSize whole, bool inPlace) {
    const Layout layout = {whole, 3, {}, Layout::kPacked};
    const Image dst = inPlace ? c.sourceAndTarget(layout) : c.target(layout);
    return {inPlace ? dst : c.source(layout), dst};
}

void monoConvolution(Case& c) {
    const int radius = c.variant % kRadii;
    const bool inPlace = isInPlace(c, kRadii);
    const Ringed images = ringedImages(c, 3, radius, inPlace);
    const float* kernel = floats(c, cellsOf({2 * radius + 1, 2 * radius + 1}));
    if (inPlace) c.lostByOpenCV = 1;
    if (radius > kLargestDirectRadius) c.lostByOpenCV = kLostInTransforms;
    const auto filter = [=](const unsigned char* src, unsigned char* dst, IppiSize size, int reach,
                            const float* cells) {
        return [=] {
            Convolution24MonoFilter(src, dst, size, reach, cells);
            return 0;
        };
    };
    c.call = filter(images.src.data, images.dst, images.whole, radius, kernel);
    c.refuse("a null source", 0, filter(nullptr, images.dst, images.whole, radius, kernel));
    c.refuse("a null target", 0, filter(images.src.data, nullptr, images.whole, radius, kernel));
    c.refuse("a null kernel", 0, filter(images.src.data, images.dst, images.whole, radius, nullptr));
    c.refuse("no radius", 0, filter(images.src.data, images.dst, images.whole, -1, kernel));
    c.refuse("an image within the ring", 0,
             filter(images.src.data, images.dst, {2 * radius, images.whole.height}, radius, kernel));
}

void colourConvolution(Case& c) {
    const int radius = c.variant % kRadii;
    const IppiSize whole = wider(c.size, radius);
    const auto [src, dst] = wholeImages(c, whole, isInPlace(c, kRadii));
    const float* kernels = floats(c, 3 * cellsOf({2 * radius + 1, 2 * radius + 1}));
    if (radius > kLargestDirectRadius) c.lostByOpenCV = kLostInTransforms;
    const auto filter = [](const unsigned char* from, unsigned char* to, IppiSize size, int reach, const float* cells) {
        return [=] { return Convolution24(from, to, size, reach, cells) ? 0 : ippStsNoMemErr; };
    };
    c.call = filter(src.data, dst.data, whole, radius, kernels);
    c.refuse("a null source", ippStsNoMemErr, filter(nullptr, dst.data, whole, radius, kernels));
    c.refuse("a null target", ippStsNoMemErr, filter(src.data, nullptr, whole, radius, kernels));
    c.refuse("null kernels", ippStsNoMemErr, filter(src.data, dst.data, whole, radius, nullptr));
    c.refuse("no radius", ippStsNoMemErr, filter(src.data, dst.data, whole, -1, kernels));
    c.refuse("an empty image", ippStsNoMemErr, filter(src.data, dst.data, {0, whole.height}, radius, kernels));
}

constexpr int kNoises = 6;    // modes at two strengths

int modeOf(const Case& c) { return c.variant % 3; }
int strengthOf(const Case& c) { return 5 * (c.variant / 3 % 2); }

void reduceNoise(Case& c) {
    const bool inPlace = isInPlace(c, kNoises);
    const Ringed images = ringedImages(c, 1, modeOf(c) == 2 ? 2 : 1, inPlace);
    if (inPlace) c.lostByOpenCV = 1;
    const auto reduce = [](const unsigned char* src, unsigned char* dst, IppiSize size, int mode, int strength) {
        return [=] {
            DeosNr(src, dst, size, mode, strength);
            return 0;
        };
    };
    const int mode = modeOf(c);
    const int strength = strengthOf(c);
    c.call = reduce(images.src.data, images.dst, images.whole, mode, strength);
    c.refuse("a null source", 0, reduce(nullptr, images.dst, images.whole, mode, strength));
    c.refuse("a null target", 0, reduce(images.src.data, nullptr, images.whole, mode, strength));
    c.refuse("an image within the ring", 0, reduce(images.src.data, images.dst, {2, 2}, mode, strength));
}

void reduceColourNoise(Case& c) {
    const IppiSize whole = {(c.size.width + 3) / 4 * 4, c.size.height};
    const auto [src, dst] = wholeImages(c, whole, isInPlace(c, kNoises));
    const auto reduce = [](const unsigned char* from, unsigned char* to, IppiSize size, int mode, int strength) {
        return [=] { return DeosNrRGB(from, to, size.width, size.height, mode, strength); };
    };
    const int mode = modeOf(c);
    const int strength = strengthOf(c);
    c.call = reduce(src.data, dst.data, whole, mode, strength);
    c.refuse("a null source", 0, reduce(nullptr, dst.data, whole, mode, strength));
    c.refuse("a null target", 0, reduce(src.data, nullptr, whole, mode, strength));
    c.refuse("no rows", 0, reduce(src.data, dst.data, {whole.width, 0}, mode, strength));
    for (const int none : {-1, 3}) c.refuse("an unknown mode", 1, reduce(src.data, dst.data, whole, none, strength));
    for (const int none : {-1, 11}) c.refuse("an unknown strength", 2, reduce(src.data, dst.data, whole, mode, none));
    c.refuse("a width that is not a multiple of 4", 3,
             reduce(src.data, dst.data, {whole.width - 1, whole.height}, mode, strength));
}

constexpr int kProductVariants = 8;    // orders and transpositions

// A matrix of rows x columns as it is stored.
Layout matrix(int rows, int columns, bool standing) {
    const IppiSize size = standing ? IppiSize{columns, rows} : IppiSize{rows, columns};
    return {size, sizeof(float), {}, Layout::kAnyPadding, Layout::Content::kFloats};
}

void product(Case& c) {
    const bool rowMajor = c.variant % 2 == 0;
    const bool plainA = c.variant / 2 % 2 == 0;
    const bool plainB = c.variant / 4 == 0;
    const int m = c.size.height;
    const int n = c.size.width;
    const int k = c.random.between(1, 9);
    const Image a = c.source(matrix(m, k, rowMajor == plainA));
    const Image b = c.source(matrix(k, n, rowMajor == plainB));
    const Image result = c.target(matrix(m, n, rowMajor));
    const auto beta = static_cast<float>(c.random.between(0, 1));
    const auto elements = [](const Image& i) { return i.step / static_cast<int>(sizeof(float)); };
    c.call = [=] {
        OPCV_cblas_sgemm(rowMajor ? 101 : 102, plainA ? 111 : 112, plainB ? 111 : 112, m, n, k, 1.5F, a.as<float>(),
                         elements(a), b.as<float>(), elements(b), beta, result.as<float>(), elements(result));
        return 0;
    };
}

void cosineTransform(Case& c) {
    constexpr int kLongest = 12;    // odd sides take time
    constexpr int kPageSide = 256;
    const int n = c.size.width > 1000 ? kPageSide : 1 + (c.size.width - 1) % kLongest;
    const bool inverse = c.variant % 2 != 0;
    const bool inOneBlock = c.variant >= 2;
    const auto values = [&c](int count) {
        std::vector<double> drawn(static_cast<size_t>(count));
        for (double& value : drawn) value = c.random.real(-100, 100);
        return drawn;
    };
    double* const block = inOneBlock ? c.targetOf(values(n * n)) : nullptr;
    std::vector<double*> rows(static_cast<size_t>(n));
    for (int y = 0; y < n; ++y)
        rows[static_cast<size_t>(y)] = inOneBlock ? block + ptrdiff_t{y} * n : c.targetOf(values(n));
    auto* const* pointers = c.sourceOf(rows);
    c.call = [pointers, n, inverse] {
        ddct(inverse ? -1 : 0, const_cast<double**>(pointers), n);
        return 0;
    };
}

}    // namespace

Entries filterEntries() {
    const OutOfMemory framed = OutOfMemory::answersOrThrows(ippStsNoMemErr);
    const OutOfMemory silent = OutOfMemory::saysNothing();
    const auto windows = static_cast<int>(kernelWindows().size());
    const int ofAllTypes = windows * static_cast<int>(kTypes.size());
    const std::vector<IppiSize> shown = {{3, 3}, {4, 4}, {9, 9}};
    const std::vector<Shape> kernels = shapesOf(kernelWindows(), shown);
    const std::vector<Shape> colourKernels = shapesOf(kernelWindows(), shown, ", C3", windows);
    const std::vector<Shape> radii = {{"radius 1", 1}, {"radius 4", 4}};
    const std::vector<Shape> modes = {{"mode 1, strength 5", 4}, {"mode 2, strength 5", 5}};
    const std::string colour32f = "IPPMini_ippiFilter32f_8u_C3R";
    return {
        {"IPPShare_ippiFilter_8u_C1R", windows, framed, convolution<unsigned char>(IPPShare_ippiFilter_8u_C1R, 1),
         kernels},
        {"IPPShare_ippiFilter_8u_C3R", windows, framed, convolution<unsigned char>(IPPShare_ippiFilter_8u_C3R, 3),
         kernels},
        {"IPPShare_ippiFilter_16s_C1R", windows, framed, convolution<short>(IPPShare_ippiFilter_16s_C1R, 2), kernels},
        {colour32f, windows, framed, convolution32f, kernels},
        {"ippiFilter", ofAllTypes, framed, convolutionOfAnyType, colourKernels, "IPPShare_ippiFilter_8u_C3R"},
        {"ippiFilter32f", ofAllTypes, framed, convolution32fOfAnyType, colourKernels, colour32f},
        {"IPPMini_ippiFilterBox_8u_C3IR", windows, framed, box, shapesOf(kernelWindows(), {{3, 3}, {9, 9}})},
        {"Convolution24MonoFilter", 2 * kRadii, silent, monoConvolution, radii},
        {"Convolution24", 2 * kRadii, framed.as("false"), colourConvolution, radii},
        {"OPCV_ippiFilterBilateral_8u_C1R",
         kBilateralVariants,
         framed,
         bilateral,
         {{"3 x 3", 0}, {"5 x 5", 1}, {"9 x 9", 4}}},
        {"DeosNr", 2 * kNoises, silent, reduceNoise, modes},
        {"DeosNrRGB", 2 * kNoises, silent, reduceColourNoise, modes},
        {"OPCV_cblas_sgemm", kProductVariants, silent, product, {{"K up to 9", 0}}, {}, Entry::Output::kFloats},
        {"ddct", 4, silent, cosineTransform, {{"256 x 256", 2}}, {}, Entry::Output::kDoubles},
    };
}
