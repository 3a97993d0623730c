// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "oracle/colour.h"

#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <cstdint>
#include <cstring>
#include <opencv2/imgproc.hpp>
#include <ostream>
#include <vector>

#include "OPCV_dlib.h"
#include "support/cv_views.h"
#include "support/fenced_memory.h"
#include "support/fenced_planes.h"
#include "support/guarded_image.h"
#include "support/guarded_planes.h"
#include "support/planar_colour.h"
#include "support/random.h"

namespace {

// Both directions of the packed and of the planar conversion.
struct Direction {
    const char* name;
    decltype(&IPPShare_ippiRGBToYUV_8u_C3R) packed;
    int code;
    oracle::Triple (*exact)(const uint8_t*);
    oracle::RealTriple (*real)(const uint8_t*);

    // Without it, failure messages print the bytes of the structure, including padding.
    friend std::ostream& operator<<(std::ostream& out, const Direction& d) { return out << d.name; }
};

class Colour : public testing::TestWithParam<Direction> {};

INSTANTIATE_TEST_SUITE_P(BothWays, Colour,
                         testing::Values(Direction{"FromRgb", IPPShare_ippiRGBToYUV_8u_C3R, cv::COLOR_RGB2YUV,
                                                   oracle::yuvOf, oracle::realYuvOf},
                                         Direction{"ToRgb", IPPShare_ippiYUVToRGB_8u_C3R, cv::COLOR_YUV2RGB,
                                                   oracle::rgbOf, oracle::realRgbOf}),
                         [](const auto& info) { return info.param.name; });

IppiSize anySize(Random& random) { return {random.between(1, 200), random.between(1, 4)}; }

TEST_P(Colour, ConvertsEveryTriple) {
    const int side = 4096;
    cv::Mat all(side, side, CV_8UC3);
    for (int i = 0; i < side * side; ++i)
        for (int c = 0; c < 3; ++c) all.data[3 * i + c] = static_cast<uint8_t>(i >> (8 * c));
    cv::Mat converted(side, side, CV_8UC3);
    ASSERT_EQ(GetParam().packed(all.data, 3 * side, converted.data, 3 * side, {side, side}), ippStsNoErr);

    cv::Mat expected;
    cv::cvtColor(all, expected, GetParam().code);
    EXPECT_EQ(std::memcmp(converted.data, expected.data, expected.total() * expected.elemSize()), 0);

    // Steps that share no factor with a channel's range reach all of it; every triple would take a minute on an
    // emulated processor.
    int wrong = 0;
    int farOff = 0;
    for (int i = 0; i < side * side; i += 5) {
        const uint8_t* from = all.data + ptrdiff_t{3} * i;
        const uint8_t* to = converted.data + ptrdiff_t{3} * i;
        const oracle::Triple exact = GetParam().exact(from);
        wrong += to[0] != exact[0] || to[1] != exact[1] || to[2] != exact[2];
        if (i % 7 == 0) farOff += !oracle::withinOneLevel(to, GetParam().real(from));
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(farOff, 0);
}

TEST_P(Colour, ConvertsLikeTheDefinition) {
    Random random(501);
    for (int round = 0; round < 500; ++round) {
        const IppiSize size = anySize(random);
        const GuardedImage from(random, size, GuardedImage::anyLayout(random, 3), random.anyValues());
        GuardedImage to(random, size, GuardedImage::anyLayout(random, 3));
        ASSERT_EQ(GetParam().packed(from.data(), from.step(), to.data(), to.step(), size), ippStsNoErr);
        ASSERT_TRUE(to.untouchedOutsideRegion());
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x)
                ASSERT_EQ((oracle::Triple{to.at(x, y)[0], to.at(x, y)[1], to.at(x, y)[2]}),
                          GetParam().exact(from.at(x, y)))
                    << "round " << round << " at " << x << ' ' << y;
        cv::Mat expected;
        cv::cvtColor(viewOf(from, CV_8UC3), expected, GetParam().code);
        ASSERT_EQ(firstDifferentRow(to, expected), -1);
    }
}

TEST_P(Colour, ConvertsInPlace) {
    Random random(502);
    std::vector<IppiSize> sizes = {{640, 480}};
    for (int width = 1; width <= 140; ++width) sizes.push_back({width, 2});
    for (const IppiSize size : sizes) {
        GuardedImage image(random, size, GuardedImage::anyLayout(random, 3));
        cv::Mat expected;
        cv::cvtColor(viewOf(image, CV_8UC3), expected, GetParam().code);
        ASSERT_EQ(GetParam().packed(image.data(), image.step(), image.data(), image.step(), size), ippStsNoErr);
        ASSERT_TRUE(image.untouchedOutsideRegion());
        ASSERT_EQ(firstDifferentRow(image, expected), -1) << size.width;
    }
}

// The length of a packed row is step / pixel size whole pixels.
TEST_P(Colour, StepsNotAMultipleOf3DisplaceRows) {
    Random random(503);
    const GuardedImage from(random, {17, 4}, {});
    GuardedImage to(random, {20, 4}, {});
    ASSERT_EQ(GetParam().packed(from.data(), 17, to.data(), 20, {5, 4}), ippStsNoErr);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 5; ++x) {
            const uint8_t* pixel = to.data() + 18 * y + 3 * x;
            ASSERT_EQ((oracle::Triple{pixel[0], pixel[1], pixel[2]}), GetParam().exact(from.data() + 15 * y + 3 * x));
        }
}

TEST_P(Colour, ReadsAndWritesNoByteTooMany) {
    for (const auto fence : {FencedMemory::Fence::kBehind, FencedMemory::Fence::kInFront})
        for (int width = 1; width <= 140; ++width) {
            FencedMemory from(3 * static_cast<size_t>(width), fence);
            FencedMemory to(3 * static_cast<size_t>(width), fence);
            ASSERT_EQ(GetParam().packed(from.data(), 3 * width, to.data(), 3 * width, {width, 1}), ippStsNoErr);
        }
}

TEST_P(Colour, RefusesBadArguments) {
    Random random(504);
    const std::vector<uint8_t> from(96);
    GuardedImage to(random, {16, 2}, {3});
    const auto call = [&](const uint8_t* src, int srcStep, uint8_t* dst, int dstStep, IppiSize size) {
        const IppStatus status = GetParam().packed(src, srcStep, dst, dstStep, size);
        EXPECT_TRUE(to.untouched());
        return status;
    };
    EXPECT_EQ(call(nullptr, 48, to.data(), 48, {16, 2}), ippStsBadArgErr);
    EXPECT_EQ(call(from.data(), 48, nullptr, 48, {16, 2}), ippStsBadArgErr);
    for (const IppiSize size : {IppiSize{0, 1}, {1, 0}, {-1, 1}, {1, -1}})
        EXPECT_EQ(call(from.data(), 48, to.data(), 48, size), ippStsBadArgErr);
    for (const int step : {47, 2, 0, -48, INT_MIN}) {
        EXPECT_EQ(call(from.data(), step, to.data(), 48, {16, 2}), ippStsBadArgErr) << step;
        EXPECT_EQ(call(from.data(), 48, to.data(), step, {16, 2}), ippStsBadArgErr) << step;
    }
}

TEST(PlanarColour, ConvertsToPlanesLikeTheDefinition) {
    Random random(511);
    for (int round = 0; round < 500; ++round) {
        const IppiSize size = round == 0 ? IppiSize{517, 300} : anySize(random);
        const GuardedImage rgb(random, size, GuardedImage::anyLayout(random, 3), random.anyValues());
        GuardedPlanes yuv(random, size);
        ASSERT_EQ(toYuvPlanes(rgb.data(), rgb.step(), yuv.pointers(), yuv.step(), size), ippStsNoErr);
        ASSERT_TRUE(yuv.untouchedOutsideRegion());
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x) {
                const oracle::Triple pixel = {*yuv[0].at(x, y), *yuv[1].at(x, y), *yuv[2].at(x, y)};
                ASSERT_EQ(pixel, oracle::yuvOf(rgb.at(x, y))) << "round " << round << " at " << x << ' ' << y;
                ASSERT_TRUE(oracle::withinOneLevel(pixel.data(), oracle::realYuvOf(rgb.at(x, y))));
            }
        cv::Mat expected;
        cv::cvtColor(viewOf(rgb, CV_8UC3), expected, cv::COLOR_RGB2YUV);
        ASSERT_EQ(cv::norm(expected, yuv.merged(), cv::NORM_INF), 0);
    }
}

TEST(PlanarColour, ConvertsFromPlanesLikeTheDefinition) {
    Random random(512);
    for (int round = 0; round < 500; ++round) {
        const IppiSize size = round == 0 ? IppiSize{517, 300} : anySize(random);
        GuardedPlanes yuv(random, size, random.anyValues());
        GuardedImage rgb(random, size, GuardedImage::anyLayout(random, 3));
        ASSERT_EQ(fromYuvPlanes(yuv.pointers(), yuv.step(), rgb.data(), rgb.step(), size), ippStsNoErr);
        ASSERT_TRUE(rgb.untouchedOutsideRegion());
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x) {
                const oracle::Triple pixel = {*yuv[0].at(x, y), *yuv[1].at(x, y), *yuv[2].at(x, y)};
                ASSERT_EQ((oracle::Triple{rgb.at(x, y)[0], rgb.at(x, y)[1], rgb.at(x, y)[2]}),
                          oracle::rgbOf(pixel.data()))
                    << "round " << round << " at " << x << ' ' << y;
                ASSERT_TRUE(oracle::withinOneLevel(rgb.at(x, y), oracle::realRgbOf(pixel.data())));
            }
        cv::Mat expected;
        cv::cvtColor(yuv.merged(), expected, cv::COLOR_YUV2RGB);
        ASSERT_EQ(firstDifferentRow(rgb, expected), -1);
    }
}

// Planes and packed image may share memory: everything is read before anything is written.
TEST(PlanarColour, ConvertsWhereSourceAndDestinationOverlap) {
    Random random(513);
    const IppiSize size = {37, 11};
    const int rowBytes = 3 * size.width;
    const auto area = static_cast<size_t>(size.width) * static_cast<size_t>(size.height);
    const GuardedImage source(random, {rowBytes, size.height}, {});
    const cv::Mat packed(size.height, size.width, CV_8UC3, const_cast<uint8_t*>(source.data()),
                         static_cast<size_t>(source.step()));
    for (const size_t shift : {size_t{0}, size_t{1}, area, 3 * area - 1}) {
        // Planes one after the other, the first of them somewhere in the packed image.
        std::vector<uint8_t> memory(6 * area);
        cv::Mat image(size.height, size.width, CV_8UC3, memory.data());
        packed.copyTo(image);
        unsigned char* const planes[3] = {&memory[shift], &memory[shift + area], &memory[shift + 2 * area]};
        cv::Mat expected;
        cv::cvtColor(packed, expected, cv::COLOR_RGB2YUV);
        ASSERT_EQ(toYuvPlanes(image.data, rowBytes, planes, size.width, size), ippStsNoErr);
        for (int c = 0; c < 3; ++c)
            for (int i = 0; i < size.width * size.height; ++i) ASSERT_EQ(planes[c][i], expected.data[3 * i + c]) << i;

        cv::Mat back;
        cv::cvtColor(expected, back, cv::COLOR_YUV2RGB);
        ASSERT_EQ(fromYuvPlanes(planes, size.width, image.data, rowBytes, size), ippStsNoErr);
        ASSERT_EQ(std::memcmp(image.data, back.data, 3 * area), 0) << "shift " << shift;
    }
}

TEST(PlanarColour, ReadsAndWritesNoByteTooMany) {
    forEachFencedRow([](unsigned char* packed, unsigned char* const* planes, int width) {
        ASSERT_EQ(toYuvPlanes(packed, 3 * width, planes, width, {width, 1}), ippStsNoErr);
        ASSERT_EQ(fromYuvPlanes(planes, width, packed, 3 * width, {width, 1}), ippStsNoErr);
    });
}

TEST(PlanarColour, GreyHasNoChroma) {
    for (int v = 0; v < 256; ++v) {
        const auto grey = static_cast<uint8_t>(v);
        const std::vector<uint8_t> rgb(9, grey);
        std::vector<uint8_t> yuv(9);
        ASSERT_EQ(IPPShare_ippiRGBToYUV_8u_C3R(rgb.data(), 9, yuv.data(), 9, {3, 1}), ippStsNoErr);
        EXPECT_EQ(yuv, (std::vector<uint8_t>{grey, 128, 128, grey, 128, 128, grey, 128, 128}));
        unsigned char* const planes[3] = {&yuv[0], &yuv[3], &yuv[6]};
        ASSERT_EQ(toYuvPlanes(rgb.data(), 9, planes, 3, {3, 1}), ippStsNoErr);
        EXPECT_EQ(yuv, (std::vector<uint8_t>{grey, grey, grey, 128, 128, 128, 128, 128, 128}));
    }
}

// The packed image between the two steps comes first, so that a size that it cannot have is reported as no memory,
// before any pointer is looked at.
TEST(PlanarColour, TooLargeSizesAreOutOfMemory) {
    Random random(514);
    GuardedPlanes planes(random, {16, 2});
    GuardedImage packed(random, {16, 2}, {3});
    for (const IppiSize size : {IppiSize{0, 1},
                                {1, 0},
                                {-1, 1},
                                {1, -1},
                                {30000, 30000},
                                {INT_MAX, 1},
                                {INT_MAX, INT_MAX},
                                {INT_MIN, INT_MIN},
                                {1, 33554432},
                                {715827862, 1}}) {
        EXPECT_EQ(toYuvPlanes(packed.data(), 48, planes.pointers(), 16, size), ippStsNoMemErr);
        EXPECT_EQ(fromYuvPlanes(planes.pointers(), 16, packed.data(), 48, size), ippStsNoMemErr);
        EXPECT_EQ(toYuvPlanes(nullptr, 0, nullptr, 0, size), ippStsNoMemErr);
        EXPECT_EQ(fromYuvPlanes(nullptr, 0, nullptr, 0, size), ippStsNoMemErr);
    }
    EXPECT_TRUE(planes.untouched());
    EXPECT_TRUE(packed.untouched());
}

TEST(PlanarColour, LargestSizesAreNotOutOfMemory) {
    for (const IppiSize size : {IppiSize{1, 33554431}, {715827861, 1}}) {
        EXPECT_EQ(toYuvPlanes(nullptr, 0, nullptr, 0, size), ippStsBadArgErr);
        EXPECT_EQ(fromYuvPlanes(nullptr, 0, nullptr, 0, size), ippStsBadArgErr);
    }
}

TEST(PlanarColour, RefusesBadArguments) {
    Random random(515);
    GuardedPlanes planes(random, {16, 2});
    GuardedImage packed(random, {16, 2}, {3});
    const auto toPlanes = [&](const uint8_t* src, int srcStep, unsigned char* const* dst, int dstStep) {
        const IppStatus status = toYuvPlanes(src, srcStep, dst, dstStep, {16, 2});
        EXPECT_TRUE(planes.untouched());
        return status;
    };
    const auto toPacked = [&](unsigned char* const* src, int srcStep, uint8_t* dst, int dstStep) {
        const IppStatus status = fromYuvPlanes(src, srcStep, dst, dstStep, {16, 2});
        EXPECT_TRUE(packed.untouched());
        return status;
    };
    const int step = planes.step();
    EXPECT_EQ(toPlanes(nullptr, 48, planes.pointers(), step), ippStsBadArgErr);
    EXPECT_EQ(toPlanes(packed.data(), 48, nullptr, step), ippStsBadArgErr);
    EXPECT_EQ(toPacked(nullptr, step, packed.data(), 48), ippStsBadArgErr);
    EXPECT_EQ(toPacked(planes.pointers(), step, nullptr, 48), ippStsBadArgErr);
    for (int missing = 0; missing < 3; ++missing) {
        std::vector<unsigned char*> some(planes.pointers(), planes.pointers() + 3);
        some[static_cast<size_t>(missing)] = nullptr;
        EXPECT_EQ(toPlanes(packed.data(), 48, some.data(), step), ippStsBadArgErr) << missing;
        EXPECT_EQ(toPacked(some.data(), step, packed.data(), 48), ippStsBadArgErr) << missing;
    }
    for (const int bad : {47, 0, -48, INT_MIN}) {
        EXPECT_EQ(toPlanes(packed.data(), bad, planes.pointers(), step), ippStsBadArgErr) << bad;
        EXPECT_EQ(toPacked(planes.pointers(), step, packed.data(), bad), ippStsBadArgErr) << bad;
    }
    for (const int bad : {15, 0, -16, INT_MIN}) {
        EXPECT_EQ(toPlanes(packed.data(), 48, planes.pointers(), bad), ippStsBadArgErr) << bad;
        EXPECT_EQ(toPacked(planes.pointers(), bad, packed.data(), 48), ippStsBadArgErr) << bad;
    }
}

}    // namespace
