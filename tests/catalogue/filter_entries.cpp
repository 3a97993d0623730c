// Convolution, box, bilateral and noise reduction, matrix product and cosine transform.
#include <algorithm>
#include <array>
#include <opencv2/core.hpp>

#include "catalogue/catalogue.h"

namespace {

const std::vector<Window>& kernelWindows() {
    static const std::vector<Window> windows =
        windowsOf({{3, 3}, {1, 1}, {2, 2}, {4, 1}, {1, 3}, {5, 5}}, {{4, 4}, {7, 7}, {8, 5}, {9, 9}, {3, 21}});
    return windows;
}

// From this number of cells on OpenCV may look at what lies right of the columns that count.
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

// One call in eight is in place.
Images imagesUnder(Case& c, int pixelSize, const Margin& margin) {
    if (c.random.between(1, 8) == 1) {
        const Image both = c.sourceAndTarget({c.size, pixelSize, withRegion(margin)});
        c.lostByOpenCV = 1;
        return {both, both};
    }
    return {c.source({c.size, pixelSize, margin}), c.target({c.size, pixelSize})};
}

size_t cellsOf(IppiSize s) { return static_cast<size_t>(s.width) * static_cast<size_t>(s.height); }

const int* integers(Case& c, size_t count) {
    std::vector<int> cells(count);
    for (int& cell : cells) cell = c.random.between(-3, 5);
    return c.sourceOf(cells);
}

const float* floats(Case& c, size_t count) {
    std::vector<float> cells(count);
    for (float& cell : cells) cell = static_cast<float>(c.random.real(-0.5, 1));
    return c.sourceOf(cells);
}

template <class T>
using Convolution = IppStatus (*)(const T*, int, T*, int, IppiSize, const int*, IppiSize, IppiPoint, int);

template <class T>
std::function<void(Case&)> convolution(Convolution<T> filter, int pixelSize) {
    return [filter, pixelSize](Case& c) {
        const Window& w = pick(kernelWindows(), c.variant);
        const auto [src, dst] = imagesUnder(c, pixelSize, marginOf(w));
        const int* kernel = integers(c, cellsOf(w.mask));
        const int divisor = pick<int>({1, -7, 9}, c.random.between(0, 2));
        c.call = [&c, &w, filter, kernel, divisor, src = src, dst = dst] {
            return filter(src.template as<T>(), src.step, dst.template as<T>(), dst.step, c.size, kernel, w.mask,
                          w.anchor, divisor);
        };
    };
}

void convolution32f(Case& c) {
    const Window& w = pick(kernelWindows(), c.variant);
    const auto [src, dst] = imagesUnder(c, 3, marginOf(w));
    const float* kernel = floats(c, cellsOf(w.mask));
    c.call = [&c, &w, kernel, src = src, dst = dst] {
        return IPPMini_ippiFilter32f_8u_C3R(src.data, src.step, dst.data, dst.step, c.size, kernel, w.mask, w.anchor);
    };
}

const std::vector<int> kTypes = {CV_8UC1, CV_8UC3, CV_16SC1, CV_8UC4};

int typeOf(const Case& c) { return pick(kTypes, c.variant / static_cast<int>(kernelWindows().size())); }

void convolutionOfAnyType(Case& c) {
    const Window& w = pick(kernelWindows(), c.variant);
    const int type = typeOf(c);
    const auto [src, dst] = imagesUnder(c, static_cast<int>(CV_ELEM_SIZE(type)), marginOf(w));
    const int* kernel = integers(c, cellsOf(w.mask));
    c.call = [&c, &w, type, kernel, src = src, dst = dst] {
        return ippiFilter(src.data, src.step, type, dst.data, dst.step, c.size, kernel, w.mask, w.anchor, 4);
    };
}

void convolution32fOfAnyType(Case& c) {
    const Window& w = pick(kernelWindows(), c.variant);
    const int type = typeOf(c);
    const auto [src, dst] = imagesUnder(c, static_cast<int>(CV_ELEM_SIZE(type)), marginOf(w));
    const float* kernel = floats(c, cellsOf(w.mask));
    c.call = [&c, &w, type, kernel, src = src, dst = dst] {
        return ippiFilter32f(src.data, src.step, type, dst.data, dst.step, c.size, kernel, w.mask, w.anchor);
    };
}

// The mask's cells from minus the anchor on, and one column and row more if its sides are even.
void box(Case& c) {
    const Window& w = pick(kernelWindows(), c.variant);
    const Margin margin = {w.anchor.x, w.anchor.y, w.mask.width / 2 * 2 - w.anchor.x,
                           w.mask.height / 2 * 2 - w.anchor.y};
    const Image both = c.sourceAndTarget({c.size, 3, withRegion(margin)});
    c.call = [&c, &w, both] { return IPPMini_ippiFilterBox_8u_C3IR(both.data, both.step, c.size, w.mask, w.anchor); };
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
    c.call = [&c, side, colour, space, src = src, dst = dst] {
        return OPCV_ippiFilterBilateral_8u_C1R(src.data, src.step, dst.data, dst.step, c.size, {side, side}, colour,
                                               space);
    };
}

// Whole packed images, of which a ring may be left out of the result.

IppiSize wider(IppiSize s, int ring) { return {s.width + 2 * ring, s.height + 2 * ring}; }

constexpr int kRadii = 5;
constexpr int kLargestDirectRadius = 3;

// On arm64 OpenCV takes a Fourier transform from 50 cells on, on x86-64 only above what is tried here. It forgets what its
// transforms have set up as well.
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

// Images of which all is written.
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
    c.call = [=] {
        Convolution24MonoFilter(images.src.data, images.dst, images.whole, radius, kernel);
        return 0;
    };
}

void colourConvolution(Case& c) {
    const int radius = c.variant % kRadii;
    const IppiSize whole = wider(c.size, radius);
    const auto [src, dst] = wholeImages(c, whole, isInPlace(c, kRadii));
    const float* kernels = floats(c, 3 * cellsOf({2 * radius + 1, 2 * radius + 1}));
    if (radius > kLargestDirectRadius) c.lostByOpenCV = kLostInTransforms;
    c.call = [=, src = src, dst = dst] {
        return Convolution24(src.data, dst.data, whole, radius, kernels) ? 0 : ippStsNoMemErr;
    };
}

constexpr int kNoises = 6;    // modes at two strengths

int modeOf(const Case& c) { return c.variant % 3; }
int strengthOf(const Case& c) { return 5 * (c.variant / 3 % 2); }

void reduceNoise(Case& c) {
    const bool inPlace = isInPlace(c, kNoises);
    const Ringed images = ringedImages(c, 1, modeOf(c) == 2 ? 2 : 1, inPlace);
    if (inPlace) c.lostByOpenCV = 1;
    c.call = [&c, images] {
        DeosNr(images.src.data, images.dst, images.whole, modeOf(c), strengthOf(c));
        return 0;
    };
}

void reduceColourNoise(Case& c) {
    const IppiSize whole = {(c.size.width + 3) / 4 * 4, c.size.height};
    const auto [src, dst] = wholeImages(c, whole, isInPlace(c, kNoises));
    c.call = [&c, whole, src = src, dst = dst] {
        return DeosNrRGB(src.data, dst.data, whole.width, whole.height, modeOf(c), strengthOf(c));
    };
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
    const int n = 1 + (c.size.width - 1) % kLongest;
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
    return {
        {"IPPShare_ippiFilter_8u_C1R", windows, framed, convolution<unsigned char>(IPPShare_ippiFilter_8u_C1R, 1)},
        {"IPPShare_ippiFilter_8u_C3R", windows, framed, convolution<unsigned char>(IPPShare_ippiFilter_8u_C3R, 3)},
        {"IPPShare_ippiFilter_16s_C1R", windows, framed, convolution<short>(IPPShare_ippiFilter_16s_C1R, 2)},
        {"IPPMini_ippiFilter32f_8u_C3R", windows, framed, convolution32f},
        {"ippiFilter", ofAllTypes, framed, convolutionOfAnyType},
        {"ippiFilter32f", ofAllTypes, framed, convolution32fOfAnyType},
        {"IPPMini_ippiFilterBox_8u_C3IR", windows, framed, box},
        {"Convolution24MonoFilter", 2 * kRadii, silent, monoConvolution},
        {"Convolution24", 2 * kRadii, framed.as("false"), colourConvolution},
        {"OPCV_ippiFilterBilateral_8u_C1R", kBilateralVariants, framed, bilateral},
        {"DeosNr", 2 * kNoises, silent, reduceNoise},
        {"DeosNrRGB", 2 * kNoises, silent, reduceColourNoise},
        {"OPCV_cblas_sgemm", kProductVariants, silent, product, Entry::Output::kFloats},
        {"ddct", 4, silent, cosineTransform, Entry::Output::kDoubles},
    };
}
