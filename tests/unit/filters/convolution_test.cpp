// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <cstring>
#include <vector>

#include "filters/convolution_call.h"
#include "oracle/convolution.h"
#include "oracle/filters.h"
#include "support/guarded_image.h"
#include "support/random.h"

namespace {

int valueAt(const GuardedImage& image, const PixelType& type, int channel, int x, int y) {
    const uint8_t* pixel = image.at(x, y);
    if (type.depthBytes == 1) return pixel[channel];
    int16_t value = 0;
    std::memcpy(&value, pixel, sizeof(value));
    return value;
}

IppiSize anyKernelSize(Random& random) {
    switch (random.between(0, 5)) {
        case 0: return {random.between(1, 20), 1};
        case 1: return {1, random.between(1, 20)};
        case 2: return {3, 3};
        case 3: return {5, 5};
        default: return {random.between(1, 7), random.between(1, 7)};
    }
}

IppiPoint anyAnchor(Random& random, IppiSize size) {
    if (random.chance(50)) return {size.width / 2, size.height / 2};
    return {random.between(-2, size.width + 1), random.between(-2, size.height + 1)};
}

// Cells of 0, small, or so large that both ends of the range are met.
Kernel<int> anyKernel(Random& random) {
    const IppiSize size = anyKernelSize(random);
    const int reach = std::array{3, 60, 40000}[static_cast<size_t>(random.between(0, 2))];
    return kernelOf<int>(size, anyAnchor(random, size),
                         [&] { return random.chance(20) ? 0 : random.between(-reach / 3, reach); });
}

// Sums stay below 2^31; beyond that float sums are too coarse for the error that is allowed.
int anyDivisor(Random& random, const PixelType& type, const Kernel<int>& kernel) {
    int sum = 0;
    for (const int cell : kernel.cells) sum += cell;
    const std::array<int, 6> divisors = {sum, 1, -1, random.between(1, 100), random.between(-100000, -1), 1 << 20};
    const int divisor = divisors[static_cast<size_t>(random.between(0, 5))];
    const double smallest = kernel.magnitude() * (type.high + 1) / INT_MAX;
    return std::abs(divisor) > smallest ? divisor : static_cast<int>(smallest) + 1;
}

Kernel<float> anyKernel32f(Random& random) {
    const IppiSize size = anyKernelSize(random);
    const double reach = random.chance(70) ? 4.0 / (size.width * size.height) : 500;
    return kernelOf<float>(size, anyAnchor(random, size), [&] {
        return random.chance(20) ? 0.0F : static_cast<float>(random.real(-reach / 4, reach));
    });
}

IppiSize anyRegion(Random& random, const PixelType& type) {
    return {random.between(1, 250 / type.channels), random.between(1, 9)};
}

// The largest error against the definition, beyond what sums of floats of the kernel's magnitude lose. Every third pixel
// is looked at.
template <typename T>
double worstError(const PixelType& type, const GuardedImage& src, const GuardedImage& dst, const Kernel<T>& kernel,
                  int divisor) {
    double worst = 0;
    for (int channel = 0; channel < type.channels; ++channel) {
        const auto at = [&](int x, int y) { return valueAt(src, type, channel, x, y); };
        for (int y = 0; y < dst.size().height; ++y)
            for (int x = y % 3; x < dst.size().width; x += 3) {
                const double sum =
                    oracle::convolutionSum(at, x, y, kernel.cells.data(), kernel.size, kernel.anchor) / divisor;
                worst =
                    std::max(worst, oracle::roundingError(valueAt(dst, type, channel, x, y), sum, type.low, type.high));
            }
    }
    return worst - 1e-6 * kernel.magnitude() * type.high / std::abs(divisor);
}

template <typename T>
void expectConvolution(Random& random, const PixelType& type, IppiSize size, const Kernel<T>& kernel, int divisor) {
    const GuardedImage src(random, size, anyLayout(random, type, kernel.margin()), random.anyValues());
    GuardedImage dst(random, size, anyLayout(random, type, 0));
    GuardedImage expected(random, size, {type.bytes(), 0, 0, 0});
    ASSERT_EQ(filter(type, src, dst, kernel, divisor), ippStsNoErr);
    ASSERT_TRUE(dst.untouchedOutsideRegion());
    filterByDefinition(type, src, expected, kernel, divisor);
    const auto shape = [&] {
        return testing::Message() << "type " << type.code << " region " << size.width << "x" << size.height
                                  << " kernel " << kernel.size.width << "x" << kernel.size.height << " anchor "
                                  << kernel.anchor.x << "," << kernel.anchor.y << " divisor " << divisor;
    };
    ASSERT_TRUE(sameRegion(dst, expected)) << shape();
    ASSERT_LE(worstError(type, src, dst, kernel, divisor), 0.5) << shape();
}

TEST(Convolution, IntegerKernelsGiveWhatTheDefinitionGives) {
    Random random(601);
    for (const PixelType& type : {k8uC1, k8uC3, k16sC1, k8uC4})
        for (int round = 0; round < 100; ++round) {
            const Kernel<int> kernel = anyKernel(random);
            expectConvolution(random, type, anyRegion(random, type), kernel, anyDivisor(random, type, kernel));
            if (HasFatalFailure()) return;
        }
}

TEST(Convolution, FloatKernelsGiveWhatTheDefinitionGives) {
    Random random(602);
    for (const PixelType& type : {k8uC1, k8uC3, k16sC1, k8uC4})
        for (int round = 0; round < 100; ++round) {
            expectConvolution(random, type, anyRegion(random, type), anyKernel32f(random), 1);
            if (HasFatalFailure()) return;
        }
}

TEST(Convolution, EveryWidthIsFilteredToItsEnd) {
    Random random(603);
    for (const PixelType& type : {k8uC1, k8uC3, k16sC1})
        for (int width = 1; width <= 200; ++width) {
            const auto kernel = kernelOf<int>({3, 3}, {1, 1}, [&] { return random.between(-10, 20); });
            expectConvolution(random, type, {width, width % 6 + 1}, kernel, 37);
            if (HasFatalFailure()) return;
        }
}

// Rows are filtered several at a time, with what remains one by one. The first kernel has few cells that are not 0.
TEST(Convolution, EveryHeightIsFilteredToItsEnd) {
    Random random(615);
    for (const PixelType& type : {k8uC1, k8uC3, k16sC1})
        for (const IppiSize side : {IppiSize{3, 3}, {5, 5}, {3, 1}, {1, 3}, {4, 4}, {1, 7}})
            for (const int zeros : {70, 30, 0})
                for (int height = 1; height <= 13; ++height) {
                    const auto kernel = kernelOf<int>(side, {side.width / 2, side.height / 2}, [&] {
                        return random.chance(zeros) ? 0 : random.between(-10, 20);
                    });
                    expectConvolution(random, type, {random.between(1, 110), height}, kernel, 37);
                    if (HasFatalFailure()) return;
                }
}

// Rows that are too long for one strip of columns, and the kernel heights that leave least room.
TEST(Convolution, LongRowsAreFilteredInStrips) {
    Random random(613);
    for (const PixelType& type : {k8uC1, k8uC3, k16sC1})
        for (const IppiSize side : {IppiSize{3, 3}, {5, 5}, {7, 7}, {1, 49}, {3, 43}}) {
            const auto kernel =
                kernelOf<int>(side, {side.width / 2, side.height / 2}, [&] { return random.between(-10, 20); });
            const int longest = 25000 / side.height;
            for (const int elements : {longest - 500, longest + 100, 3 * longest}) {
                const IppiSize size = {elements / type.channels, 6};
                const GuardedImage src(random, size, {type.bytes(), 50, 0, 0});
                GuardedImage dst(random, size, {type.bytes(), 0, 0, 0});
                GuardedImage expected(random, size, {type.bytes(), 0, 0, 0});
                ASSERT_EQ(filter(type, src, dst, kernel, 60), ippStsNoErr);
                ASSERT_TRUE(dst.untouchedOutsideRegion());
                filterByDefinition(type, src, expected, kernel, 60);
                ASSERT_TRUE(sameRegion(dst, expected)) << "type " << type.code << " kernel " << side.width << "x"
                                                       << side.height << " width " << size.width;
            }
        }
}

// From 50 or 130 cells on OpenCV may transform the image; here the sum stays the same. The last kernel needs scratch from
// the heap.
TEST(Convolution, LargeKernelsGiveWhatTheDefinitionGives) {
    Random random(604);
    for (const PixelType& type : {k8uC1, k8uC3, k16sC1})
        for (const IppiSize size : {IppiSize{7, 7},
                                    {49, 1},
                                    {1, 49},
                                    {50, 1},
                                    {1, 50},
                                    {10, 5},
                                    {8, 7},
                                    {43, 3},
                                    {129, 1},
                                    {1, 129},
                                    {131, 1},
                                    {13, 10},
                                    {15, 15},
                                    {31, 33}}) {
            const auto kernel = kernelOf<float>(size, {size.width / 2, size.height / 2}, [&] {
                return static_cast<float>(random.real(-1, 3)) / static_cast<float>(size.width * size.height);
            });
            for (const bool wholeRows : {false, true}) {
                const IppiSize region = {random.between(1, 150), random.between(1, 5)};
                const int margin = std::max(size.width, size.height);
                const GuardedImage::Layout layout = anyLayout(random, type, margin);
                const GuardedImage wide(random, region, layout);
                // Rows as long as the view: its first column is the row's first.
                const IppiSize whole = {region.width + size.width / 2 * 2, region.height + size.height / 2 * 2};
                const GuardedImage exact(random, whole, {type.bytes(), 0, 0, 0});
                const uint8_t* source = wholeRows ? exact.at(size.width / 2, size.height / 2) : wide.data();
                const int step = wholeRows ? exact.step() : wide.step();
                GuardedImage dst(random, region, {type.bytes(), 0, 0, 0});
                GuardedImage expected(random, region, {type.bytes(), 0, 0, 0});
                ASSERT_EQ(filterAnyType({source, step, type.code, dst.data(), dst.step(), region}, kernel.cells.data(),
                                        kernel.size, kernel.anchor),
                          ippStsNoErr);
                oracle::convolve32f(source, step, type.code, expected.data(), expected.step(), region,
                                    kernel.cells.data(), kernel.size, kernel.anchor);
                ASSERT_TRUE(sameRegion(dst, expected)) << "type " << type.code << " kernel " << size.width << "x"
                                                       << size.height << " whole rows " << wholeRows;
            }
        }
}

TEST(Convolution, OtherChannelsAndUnsigned16BitPixelsAreFilteredAlike) {
    Random random(605);
    for (const PixelType& type : {PixelType{CV_16UC1, 1, 2, 0, 65535},
                                  {CV_16UC3, 3, 2, 0, 65535},
                                  {CV_16SC3, 3, 2, -32768, 32767},
                                  {CV_8UC2, 2, 1, 0, 255}})
        for (int width = 1; width <= 120; width += 7) {
            const auto kernel = kernelOf<int>({3, 3}, {1, 1}, [&] { return random.between(-10, 20); });
            const GuardedImage src(random, {width, 3}, {type.bytes(), 4, 0, 0});
            GuardedImage dst(random, {width, 3}, {type.bytes(), 0, 0, 0});
            GuardedImage expected(random, {width, 3}, {type.bytes(), 0, 0, 0});
            ASSERT_EQ(filter(type, src, dst, kernel, 50), ippStsNoErr);
            filterByDefinition(type, src, expected, kernel, 50);
            EXPECT_TRUE(sameRegion(dst, expected)) << type.code << " width " << width;
        }
}

// OpenCV rounds the last columns of a row otherwise in some versions, and transforms under large kernels.
TEST(Convolution, StaysWithinOneOfOpenCV) {
    Random random(614);
    for (const PixelType& type : {k8uC1, k8uC3})
        for (const int side : {3, 5, 7, 13, 21}) {
            const IppiSize size = {150, 20};
            const auto kernel = kernelOf<float>({side, side}, {side / 2, side / 2}, [&] {
                return static_cast<float>(random.real(-1, 3)) / static_cast<float>(side * side);
            });
            const GuardedImage src(random, size, {type.bytes(), side, 0, 0});
            GuardedImage dst(random, size, {type.bytes(), 0, 0, 0});
            GuardedImage plain(random, size, {type.bytes(), 0, 0, 0});
            ASSERT_EQ(filter(type, src, dst, kernel, 1), ippStsNoErr);
            oracle::plainFilter32f(src.data(), src.step(), type.code, plain.data(), plain.step(), size,
                                   kernel.cells.data(), kernel.size, kernel.anchor);
            for (int y = 0; y < size.height; ++y)
                for (int i = 0; i < size.width * type.channels; ++i)
                    ASSERT_LE(std::abs(dst.at(0, y)[i] - plain.at(0, y)[i]), 1) << "side " << side;
        }
}

TEST(Convolution, FloatPixelsAreOpenCVs) {
    const std::vector<float> src = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    const std::vector<float> kernel = {0, 0.5F, 0, 0.25F, 1, -0.25F, 0, -0.5F, 0};
    float dst = 0;
    ASSERT_EQ(filterAnyType({&src[4], 12, CV_32FC1, &dst, 4, {1, 1}}, kernel.data(), {3, 3}, {1, 1}), ippStsNoErr);
    EXPECT_EQ(dst, 8 * 0.5F + 6 * 0.25F + 5 - 4 * 0.25F - 2 * 0.5F);
}

}    // namespace
