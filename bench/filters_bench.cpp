// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include <algorithm>
#include <memory>
#include <opencv2/core.hpp>
#include <vector>

#include "OPCV_dlib.h"
#include "oracle/plain_filters.h"
#include "support.h"

namespace {

// A blurring kernel whose cells all differ and are not zero.
std::vector<int> blur(int side) {
    std::vector<int> cells;
    for (int j = 0; j < side; ++j)
        for (int i = 0; i < side; ++i) cells.push_back(1 + std::min(i, side - 1 - i) + std::min(j, side - 1 - j));
    return cells;
}

std::vector<float> blur32f(int side, int kernels) {
    std::vector<float> cells;
    for (int k = 0; k < kernels; ++k)
        for (const int cell : blur(side))
            cells.push_back(static_cast<float>(cell + k) / static_cast<float>(3 * side * side));
    return cells;
}

std::string square(int side) { return std::to_string(side) + "x" + std::to_string(side); }

void compareFilter(const std::string& name, IppiSize size, int type, int side) {
    const auto pixel = static_cast<int>(CV_ELEM_SIZE(type));
    const bench::Page& src = bench::source(size, pixel);
    bench::Page& dst = bench::target(size, pixel);
    bench::Page& expected = bench::otherTarget(size, pixel);
    const IppiSize kernelSize = {side, side};
    const IppiPoint centre = {side / 2, side / 2};
    const std::vector<int> kernel = blur(side);
    bench::compare(
        {name, square(side), size, pixel},
        [=, &src, &dst] {
            ippiFilter(src.data(), src.step(), type, dst.data(), dst.step(), size, kernel.data(), kernelSize, centre,
                       3 * side * side);
        },
        bench::openCV([=, &src, &expected] {
            oracle::plainFilter(src.data(), src.step(), type, expected.data(), expected.step(), size, kernel.data(),
                                kernelSize, centre, 3 * side * side);
        }),
        [&dst, &expected] { return dst.sameRegion(expected); });
}

void compareFilter32f(IppiSize size, int side) {
    const bench::Page& src = bench::source(size, 3);
    bench::Page& dst = bench::target(size, 3);
    bench::Page& expected = bench::otherTarget(size, 3);
    const IppiSize kernelSize = {side, side};
    const IppiPoint centre = {side / 2, side / 2};
    const std::vector<float> kernel = blur32f(side, 1);
    bench::compare(
        {"IPPMini_ippiFilter32f_8u_C3R", square(side), size, 3},
        [=, &src, &dst] {
            IPPMini_ippiFilter32f_8u_C3R(src.data(), src.step(), dst.data(), dst.step(), size, kernel.data(),
                                         kernelSize, centre);
        },
        bench::openCV([=, &src, &expected] {
            oracle::plainFilter32f(src.data(), src.step(), CV_8UC3, expected.data(), expected.step(), size,
                                   kernel.data(), kernelSize, centre);
        }),
        [&dst, &expected] { return dst.sameRegion(expected); });
}

// In place: both overwrite their image, so that it becomes smoother from run to run. This does not change the path that
// either takes.
void compareBox(IppiSize size, int side) {
    bench::Page& image = bench::target(size, 3);
    bench::Page& other = bench::otherTarget(size, 3);
    const IppiSize mask = {side, side};
    const IppiPoint centre = {side / 2, side / 2};
    bench::compare(
        {"IPPMini_ippiFilterBox_8u_C3IR", square(side), size, 3},
        [=, &image] { IPPMini_ippiFilterBox_8u_C3IR(image.data(), image.step(), size, mask, centre); },
        bench::openCV([=, &other] { oracle::plainBox(other.data(), other.step(), size, mask, centre); }));
}

// Packed images, as the whole-image functions require.
struct Packed {
    Packed(IppiSize size, int pixelSize) : src(bench::bytesOf(size, pixelSize)), dst(src.size()), expected(src.size()) {
        const bench::Page& page = bench::source(size, pixelSize);
        for (int y = 0; y < size.height; ++y)
            std::copy_n(page.data() + ptrdiff_t{y} * page.step(), size.width * pixelSize,
                        src.data() + ptrdiff_t{y} * size.width * pixelSize);
    }

    std::vector<uint8_t> src;
    std::vector<uint8_t> dst;
    std::vector<uint8_t> expected;
};

void compareConvolution24(IppiSize size, int radius) {
    const auto image = std::make_shared<Packed>(size, 3);
    const int side = 2 * radius + 1;
    const std::vector<float> kernels = blur32f(side, 3);
    bench::compare(
        {"Convolution24", square(side), size, 3},
        [=] { Convolution24(image->src.data(), image->dst.data(), size, radius, kernels.data()); }, bench::openCV([=] {
            oracle::plainConvolution24(image->src.data(), image->expected.data(), size, radius, kernels.data());
        }),
        [=] { return image->dst == image->expected; });
}

void compareMonoFilter(IppiSize size, int radius) {
    const auto image = std::make_shared<Packed>(size, 3);
    const int side = 2 * radius + 1;
    const int step = 3 * size.width;
    const int offset = radius * (step + 3);
    const IppiSize inside = {size.width - 2 * radius, size.height - 2 * radius};
    const std::vector<float> kernel = blur32f(side, 1);
    bench::compare(
        {"Convolution24MonoFilter", square(side), size, 3},
        [=] { Convolution24MonoFilter(image->src.data(), image->dst.data(), size, radius, kernel.data()); },
        bench::openCV([=] {
            oracle::plainFilter32f(image->src.data() + offset, step, CV_8UC3, image->expected.data() + offset, step,
                                   inside, kernel.data(), {side, side}, {radius, radius});
        }),
        [=] { return image->dst == image->expected; });
}

void compareBilateral(IppiSize size, int side) {
    const bench::Page& src = bench::source(size, 1);
    bench::Page& dst = bench::target(size, 1);
    bench::Page& expected = bench::otherTarget(size, 1);
    bench::compare(
        {"OPCV_ippiFilterBilateral_8u_C1R", square(side), size, 1},
        [=, &src, &dst] {
            OPCV_ippiFilterBilateral_8u_C1R(src.data(), src.step(), dst.data(), dst.step(), size, {side, side}, 480,
                                            480);
        },
        bench::openCV([=, &src, &expected] {
            oracle::plainBilateral(src.data(), src.step(), expected.data(), expected.step(), size, side, 480, 480);
        }),
        [&dst, &expected] { return dst.sameRegion(expected); });
}

void compareNoiseReduction(IppiSize size, int side) {
    const auto grey = std::make_shared<Packed>(size, 1);
    const int half = side / 2;
    const int offset = half * (size.width + 1);
    const IppiSize inside = {size.width - 2 * half, size.height - 2 * half};
    bench::compare(
        {"DeosNr", square(side), size, 1}, [=] { DeosNr(grey->src.data(), grey->dst.data(), size, half, 5); },
        bench::openCV([=] {
            oracle::plainBilateral(grey->src.data() + offset, size.width, grey->expected.data() + offset, size.width,
                                   inside, side, 480, 480);
        }),
        [=] { return grey->dst == grey->expected; });

    const auto colour = std::make_shared<Packed>(size, 3);
    bench::compare(
        {"DeosNrRGB", square(side), size, 3},
        [=] { DeosNrRGB(colour->src.data(), colour->dst.data(), size.width, size.height, half, 5); },
        bench::openCV(
            [=] { oracle::plainNoiseReduction24(colour->src.data(), colour->expected.data(), size, side, 480); }),
        [=] { return colour->dst == colour->expected; });
}

void compareFilters() {
    for (const IppiSize size : bench::sizes())
        for (const int side : {3, 5}) {
            compareFilter("IPPShare_ippiFilter_8u_C1R", size, CV_8UC1, side);
            compareFilter("IPPShare_ippiFilter_8u_C3R", size, CV_8UC3, side);
            compareFilter("IPPShare_ippiFilter_16s_C1R", size, CV_16SC1, side);
            compareFilter32f(size, side);
            compareBox(size, side);
            compareMonoFilter(size, side / 2);
            compareConvolution24(size, side / 2);
            compareBilateral(size, side);
            compareNoiseReduction(size, side);
        }
}

const bench::Goals goals({
    {"IPPShare_ippiFilter_8u_C1R", "3x3", 0.47},
    {"IPPShare_ippiFilter_8u_C1R", "5x5", 0.47},
    {"IPPShare_ippiFilter_8u_C3R", "3x3", 0.47},
    {"IPPShare_ippiFilter_8u_C3R", "5x5", 0.47},
    {"IPPShare_ippiFilter_16s_C1R", "3x3", 0.2},
    {"IPPShare_ippiFilter_16s_C1R", "5x5", 0.2},
    {"IPPMini_ippiFilter32f_8u_C3R", "3x3", 0.47},
    {"IPPMini_ippiFilter32f_8u_C3R", "5x5", 0.47},
    {"IPPMini_ippiFilterBox_8u_C3IR", "3x3", 0.32},
    {"IPPMini_ippiFilterBox_8u_C3IR", "5x5", 0.3},
    {"Convolution24", "3x3", 0.5},
    {"Convolution24", "5x5", 0.5},
    {"Convolution24MonoFilter", "3x3", 0.5},
    {"Convolution24MonoFilter", "5x5", 0.5},
    {"OPCV_ippiFilterBilateral_8u_C1R", "3x3", 0.5},
    {"OPCV_ippiFilterBilateral_8u_C1R", "5x5", 0.75},
    {"DeosNr", "3x3", 0.5},
    {"DeosNr", "5x5", 0.75},
    {"DeosNrRGB", "3x3", 0.6},
    {"DeosNrRGB", "5x5", 0.8},
});

const bench::Registration registration("Linear filters and noise reduction", compareFilters);

}    // namespace
