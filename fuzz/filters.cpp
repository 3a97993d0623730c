// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Convolutions, box and bilateral filters and noise reduction, compared with plain OpenCV calls; the matrix product,
// compared with its definition; and the cosine transform, forward and inverse.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "oracle/bilateral.h"
#include "oracle/convolution.h"
#include "oracle/plain_filters.h"
#include "support.h"

namespace {

using fuzz::Call;
using fuzz::Draw;
using fuzz::Image;
using fuzz::Margin;
using fuzz::require;

// The pixels that a convolution reads: anchor.x - 2 half to the region's width - 1 + anchor.x, rows likewise.
Margin reachOf(IppiSize kernel, IppiPoint anchor) {
    return {kernel.width / 2 * 2 - anchor.x, kernel.height / 2 * 2 - anchor.y, anchor.x, anchor.y};
}

// Large kernels may read the padding of a row.
Image::LastRow lastRowFor(IppiSize kernel) {
    constexpr int kLarge = 50;
    return (kernel.width | 1) * (kernel.height | 1) >= kLarge ? Image::LastRow::kWhole : Image::LastRow::kUsed;
}

IppiSize anyKernelSize(Draw& draw) {
    const int most = draw.chance(8) ? 15 : 6;
    const int width = draw.between(1, most);
    return {width, draw.between(1, most)};
}

IppiPoint anyAnchor(Draw& draw, IppiSize mask) {
    const int beyond = draw.chance(4) ? 3 : 0;
    const int x = draw.between(-beyond, mask.width - 1 + beyond);
    return {x, draw.between(-beyond, mask.height - 1 + beyond)};
}

size_t cellsOf(IppiSize size) { return static_cast<size_t>(size.width) * static_cast<size_t>(size.height); }

// Exactly the cells of the kernel, so that a read past them is detected.
template <typename T>
using Cells = std::vector<T>;

float anyWeight(Draw& draw, bool& tame) {
    if (!draw.chance(40)) return static_cast<float>(draw.real(-2, 2));
    tame = false;
    const int bits = draw.anyInt();
    float weight = 0;
    std::memcpy(&weight, &bits, sizeof(weight));
    return weight;
}

Cells<float> anyWeights(Draw& draw, size_t count, bool& tame) {
    Cells<float> weights(count);
    for (float& weight : weights) weight = anyWeight(draw, tame);
    return weights;
}

void requireSameRegion(Image& target, std::vector<uint8_t>& expected, const char* what) {
    const auto rowBytes = static_cast<size_t>(target.width()) * static_cast<size_t>(target.pixelSize());
    for (int y = 0; y < target.height(); ++y)
        require(std::equal(expected.begin() + static_cast<ptrdiff_t>(rowBytes) * y,
                           expected.begin() + static_cast<ptrdiff_t>(rowBytes) * (y + 1),
                           target.region() + ptrdiff_t{y} * target.step()),
                what);
}

std::vector<uint8_t> blankRegion(const Image& target) {
    return std::vector<uint8_t>(cellsOf(target.size()) * static_cast<size_t>(target.pixelSize()));
}

// A copy for the plain calls, which read the rest of the view's last row and the rows below it.
struct Wider {
    Wider(Image& image, Margin margin) : bytes(image.bytes()) {
        bytes.resize(bytes.size() + static_cast<size_t>(image.step()));
        region = bytes.data() + ptrdiff_t{margin.top} * image.step() + ptrdiff_t{margin.left} * image.pixelSize();
    }
    std::vector<uint8_t> bytes;
    uint8_t* region;
};

void integerConvolution(Draw& draw) {
    const int type = std::array{CV_8UC1, CV_8UC3, CV_16SC1}[static_cast<size_t>(draw.between(0, 2))];
    const auto pixelSize = static_cast<int>(CV_ELEM_SIZE(type));
    const IppiSize kernelSize = anyKernelSize(draw);
    const IppiPoint anchor = anyAnchor(draw, kernelSize);
    const IppiSize size = fuzz::anySize(draw, 40);
    Cells<int> kernel(cellsOf(kernelSize));
    const bool wild = draw.chance(8);
    for (int& cell : kernel) cell = wild ? draw.anyInt() : draw.between(-4, 8);
    const int divisor = draw.chance(8) ? draw.anyInt() : draw.between(1, 40);
    Image source(draw, size, pixelSize, reachOf(kernelSize, anchor), lastRowFor(kernelSize));
    Image target(draw, size, pixelSize);
    Call call(draw, source, target);
    call.broken = call.broken || divisor == 0;
    const auto run = [&]() -> IppStatus {
        if (type == CV_8UC1)
            return IPPShare_ippiFilter_8u_C1R(call.src, call.srcStep, call.dst, call.dstStep, call.roi, kernel.data(),
                                              kernelSize, anchor, divisor);
        if (type == CV_8UC3)
            return IPPShare_ippiFilter_8u_C3R(call.src, call.srcStep, call.dst, call.dstStep, call.roi, kernel.data(),
                                              kernelSize, anchor, divisor);
        return IPPShare_ippiFilter_16s_C1R(reinterpret_cast<const short*>(call.src), call.srcStep,
                                           reinterpret_cast<short*>(call.dst), call.dstStep, call.roi, kernel.data(),
                                           kernelSize, anchor, divisor);
    };
    call.requireStatus(run(), target);
    // Sums outside the range of int saturate here; in OpenCV the result depends on the processor.
    if (call.broken || wild) return;
    std::vector<uint8_t> expected = blankRegion(target);
    const Wider wider(source, reachOf(kernelSize, anchor));
    oracle::convolve(wider.region, source.step(), type, expected.data(), size.width * pixelSize, size, kernel.data(),
                     kernelSize, anchor, divisor);
    requireSameRegion(target, expected, "convolution with integers");
}

void floatConvolution(Draw& draw) {
    const IppiSize kernelSize = anyKernelSize(draw);
    const IppiPoint anchor = anyAnchor(draw, kernelSize);
    const IppiSize size = fuzz::anySize(draw, 40);
    bool tame = true;
    const Cells<float> kernel = anyWeights(draw, cellsOf(kernelSize), tame);
    Image source(draw, size, 3, reachOf(kernelSize, anchor), lastRowFor(kernelSize));
    Image target(draw, size, 3);
    const Call call(draw, source, target);
    call.requireStatus(IPPMini_ippiFilter32f_8u_C3R(call.src, call.srcStep, call.dst, call.dstStep, call.roi,
                                                    kernel.data(), kernelSize, anchor),
                       target);
    if (call.broken || !tame) return;
    std::vector<uint8_t> expected = blankRegion(target);
    const Wider wider(source, reachOf(kernelSize, anchor));
    oracle::convolve32f(wider.region, source.step(), CV_8UC3, expected.data(), size.width * 3, size, kernel.data(),
                        kernelSize, anchor);
    requireSameRegion(target, expected, "convolution with floats");
}

// The depths that OpenCV's linear filter supports. For some of the others it calls a null pointer.
void convolutionOfOtherTypes(Draw& draw) {
    constexpr std::array kDepths = {CV_8U, CV_16U, CV_16S, CV_32F, CV_64F};
    const int type = CV_MAKETYPE(kDepths[static_cast<size_t>(draw.between(0, 4))], draw.between(1, 4));
    const auto pixelSize = static_cast<int>(CV_ELEM_SIZE(type));
    const IppiSize kernelSize = anyKernelSize(draw);
    const IppiPoint anchor = anyAnchor(draw, kernelSize);
    const IppiSize size = fuzz::anySize(draw, 20);
    bool tame = true;
    const Cells<float> weights = anyWeights(draw, cellsOf(kernelSize), tame);
    Cells<int> kernel(weights.size());
    for (int& cell : kernel) cell = draw.between(-4, 8);
    const int divisor = draw.between(1, 40);
    const bool integers = draw.chance(2);
    Image source(draw, size, pixelSize, reachOf(kernelSize, anchor), lastRowFor(kernelSize));
    Image target(draw, size, pixelSize);
    const Call call(draw, source, target);
    int status = 0;
    if (fuzz::survives([&] {
            status = integers ? ippiFilter(call.src, call.srcStep, type, call.dst, call.dstStep, call.roi,
                                           kernel.data(), kernelSize, anchor, divisor)
                              : ippiFilter32f(call.src, call.srcStep, type, call.dst, call.dstStep, call.roi,
                                              weights.data(), kernelSize, anchor);
        }))
        call.requireStatus(status, target);
    else
        target.requireUntouched();
}

void boxFilter(Draw& draw) {
    const IppiSize mask = {draw.between(1, draw.chance(4) ? 24 : 9), draw.between(1, 9)};
    const IppiPoint anchor = anyAnchor(draw, mask);
    const IppiSize size = fuzz::anySize(draw, 40);
    const Margin margin = {anchor.x, anchor.y, mask.width / 2 * 2 - anchor.x, mask.height / 2 * 2 - anchor.y};
    // The block contains the windows and the region, which are apart if the anchor is outside the mask.
    const Margin both = {std::max(margin.left, 0), std::max(margin.top, 0), std::max(margin.right, 0),
                         std::max(margin.bottom, 0)};
    Image image(draw, size, 3, both);
    Image plain(image);
    const Call call(draw, image, image, false);
    if (!call.src || (call.broken && call.dstStep != image.step())) return;
    call.requireStatus(IPPMini_ippiFilterBox_8u_C3IR(call.dst, call.dstStep, call.roi, mask, anchor), image);
    if (call.broken) return;
    Wider wider(plain, both);
    oracle::plainBox(wider.region, plain.step(), size, mask, anchor);
    require(std::equal(image.bytes().begin(), image.bytes().end(), wider.bytes.begin()), "box filter");
}

void bilateral(Draw& draw) {
    const int side = 2 * draw.between(0, 4) + 1;
    const int half = side / 2;
    const IppiSize size = fuzz::anySize(draw, 40);
    const float colour = draw.chance(8) ? 0 : static_cast<float>(draw.real(0.01, 2000));
    const float space = draw.chance(8) ? 0 : static_cast<float>(draw.real(0.01, 2000));
    Image source(draw, size, 1, {half, half, half, half}, side == 1 ? Image::LastRow::kWhole : Image::LastRow::kUsed);
    Image target(draw, size, 1);
    const Call call(draw, source, target);
    call.requireStatus(OPCV_ippiFilterBilateral_8u_C1R(call.src, call.srcStep, call.dst, call.dstStep, call.roi,
                                                       {side, side}, colour, space),
                       target);
    if (call.broken || side == 1) return;
    std::vector<uint8_t> expected = blankRegion(target);
    const Wider wider(source, {half, half, half, half});
    const auto filter = side <= 5 ? oracle::bilateral : oracle::plainBilateral;    // OpenCV filters larger windows
    filter(wider.region, source.step(), expected.data(), size.width, size, side, colour, space);
    requireSameRegion(target, expected, "bilateral filter");
}

// Any squared sigmas, including NaN.
void wildBilateral(Draw& draw) {
    const int half = draw.between(1, 3);
    const int side = 2 * half + 1;
    Image source(draw, fuzz::anySize(draw, 20), 1, {half, half, half, half});
    Image target(draw, source.size(), 1);
    bool tame = true;
    const float colour = anyWeight(draw, tame);
    const float space = anyWeight(draw, tame);
    fuzz::survives([&] {
        OPCV_ippiFilterBilateral_8u_C1R(source.region(), source.step(), target.region(), target.step(), target.size(),
                                        {side, side}, colour, space);
    });
    target.requireUntouchedAroundRegion();
}

// Images without padding, in separate blocks, that are filtered as a whole.
struct Packed {
    Packed(Draw& draw, IppiSize given, int channels)
        : size(given), source(cellsOf(given) * static_cast<size_t>(channels)), target(source.size()) {
        draw.fill(source.data(), source.size());
        draw.fill(target.data(), target.size());
        inPlace = draw.chance(4);
        before = source;
    }
    uint8_t* destination() { return inPlace ? source.data() : target.data(); }

    IppiSize size;
    std::vector<uint8_t> source;
    std::vector<uint8_t> target;
    bool inPlace = false;
    std::vector<uint8_t> before;
};

void colourConvolution(Draw& draw) {
    const int radius = draw.between(draw.chance(8) ? -2 : 0, 5);
    const int side = 2 * std::abs(radius) + 1;
    bool tame = true;
    const Cells<float> kernels = anyWeights(draw, 3 * static_cast<size_t>(side * side), tame);
    Packed image(draw, fuzz::anySize(draw, 40), 3);
    const bool possible = radius >= 0 && image.size.width > 2 * radius && image.size.height > 2 * radius;
    if (draw.chance(3)) {
        Convolution24MonoFilter(image.source.data(), image.destination(), image.size, radius, kernels.data());
        return;
    }
    const bool done = Convolution24(image.source.data(), image.destination(), image.size, radius, kernels.data());
    require(done == possible, "images larger than the kernel are filtered");
    if (!done || !tame) return;
    std::vector<uint8_t> expected(image.source.size());
    oracle::convolve24(image.before.data(), expected.data(), image.size, radius, kernels.data());
    require(std::equal(expected.begin(), expected.end(), image.destination()), "colour convolution");
}

void noiseReduction(Draw& draw) {
    const int mode = draw.chance(8) ? draw.anyInt() : draw.between(0, 2);
    const int strength = draw.chance(8) ? draw.anyInt() : draw.between(0, 10);
    IppiSize size = fuzz::anySize(draw, 40);
    if (draw.chance(2)) {
        Packed image(draw, size, 1);
        fuzz::survives([&] { DeosNr(image.source.data(), image.destination(), size, mode, strength); });
        return;
    }
    if (!draw.chance(8)) size.width = (size.width + 3) / 4 * 4;
    Packed image(draw, size, 3);
    const int status = DeosNrRGB(image.source.data(), image.destination(), size.width, size.height, mode, strength);
    const int expectedStatus = mode < 0 || mode > 2            ? 1
                               : strength < 0 || strength > 10 ? 2
                               : size.width % 4 != 0           ? 3
                                                               : 0;
    require(status == expectedStatus, "status of the noise reduction");
    const int half = mode == 2 ? 2 : 1;
    if (status != 0 || size.width <= 2 * half || size.height <= 2 * half) return;
    std::vector<uint8_t> expected(image.source.size());
    oracle::noiseReduction24(image.before.data(), expected.data(), size, 2 * half + 1,
                             strength == 0 ? 1.0F : 96.0F * static_cast<float>(strength));
    require(std::equal(expected.begin(), expected.end(), image.destination()), "noise reduction");
}

// A matrix in a block that ends with its last element.
struct Matrix {
    Matrix(Draw& draw, int lines, int perLine) : leading(perLine + draw.between(0, 3)) {
        values = std::vector<float>(static_cast<size_t>((lines - 1) * leading + perLine));
        for (float& value : values) value = static_cast<float>(draw.between(-8, 8));
    }

    int leading;
    std::vector<float> values;
};

void matrixProduct(Draw& draw) {
    const bool rowMajor = draw.chance(2);
    const bool turnA = draw.chance(2);
    const bool turnB = draw.chance(2);
    const int m = draw.between(1, 9);
    const int n = draw.between(1, 9);
    const int k = draw.between(1, 9);
    // Stored lines of each matrix: rows if row-major, columns otherwise.
    const auto make = [&](int rows, int columns) {
        return rowMajor ? Matrix(draw, rows, columns) : Matrix(draw, columns, rows);
    };
    Matrix a = turnA ? make(k, m) : make(m, k);
    Matrix b = turnB ? make(n, k) : make(k, n);
    Matrix c = make(m, n);
    Matrix expected = c;
    const auto alpha = static_cast<float>(draw.between(-3, 3));
    const auto beta = static_cast<float>(draw.between(-3, 3));
    const auto at = [rowMajor](Matrix& matrix, int row, int column) -> float& {
        return matrix
            .values[static_cast<size_t>(rowMajor ? row * matrix.leading + column : column * matrix.leading + row)];
    };
    OPCV_cblas_sgemm(rowMajor ? 101 : 102, turnA ? 112 : 111, turnB ? 112 : 111, m, n, k, alpha, a.values.data(),
                     a.leading, b.values.data(), b.leading, beta, c.values.data(), c.leading);
    // Sums of small whole numbers are exact, whatever their order.
    for (int i = 0; i < m; ++i)
        for (int j = 0; j < n; ++j) {
            float sum = 0;
            for (int l = 0; l < k; ++l)
                sum += (turnA ? at(a, l, i) : at(a, i, l)) * (turnB ? at(b, j, l) : at(b, l, j));
            at(expected, i, j) = alpha * sum + beta * at(expected, i, j);
        }
    require(c.values == expected.values, "matrix product");
}

// Random sizes, leading dimensions and layouts, over matrices of one element: all other sizes must be rejected.
void refusedProduct(Draw& draw) {
    float a = 1;
    float b = 1;
    float c = 1;
    int sizes[3];
    for (int& size : sizes) size = draw.chance(2) ? draw.between(-1, 2) : draw.anyInt();
    int leading[3];
    for (int& l : leading) l = draw.between(-2, 0);
    OPCV_cblas_sgemm(draw.anyInt(), draw.anyInt(), draw.anyInt(), sizes[0], sizes[1], sizes[2], 1, &a, leading[0], &b,
                     leading[1], 1, &c, leading[2]);
    require(c == 1, "short leading dimensions are refused");
}

void cosineTransform(Draw& draw) {
    const int n = draw.between(1, 12);
    std::vector<std::vector<double>> table(static_cast<size_t>(n), std::vector<double>(static_cast<size_t>(n)));
    std::vector<double*> rows;
    for (std::vector<double>& row : table) {
        for (double& value : row) value = draw.real(-300, 300);
        rows.push_back(row.data());
    }
    const std::vector<std::vector<double>> before = table;
    const int forward = draw.between(0, 9);
    ddct(forward, rows.data(), n);
    ddct(-1 - forward, rows.data(), n);
    for (size_t i = 0; i < table.size(); ++i)
        for (size_t j = 0; j < table.size(); ++j)
            require(std::abs(table[i][j] - before[i][j]) < 1e-6, "there and back");
    rows[static_cast<size_t>(draw.between(0, n - 1))] = nullptr;
    ddct(0, rows.data(), n);
    ddct(0, rows.data(), -draw.between(0, 99));
    ddct(0, nullptr, n);
}

}    // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Draw draw(data, size);
    constexpr std::array kOperations = {integerConvolution, floatConvolution, convolutionOfOtherTypes, boxFilter,
                                        bilateral,          wildBilateral,    colourConvolution,       noiseReduction,
                                        matrixProduct,      refusedProduct,   cosineTransform};
    fuzz::runOneOf(kOperations, draw);
    return 0;
}
