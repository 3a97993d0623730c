// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <vector>

#include "OPCV_dlib.h"
#include "support/cv_views.h"
#include "support/fenced_planes.h"
#include "support/guarded_image.h"
#include "support/guarded_planes.h"
#include "support/random.h"

namespace {

IppiSize anySize(Random& random) { return {random.between(1, 200), random.between(1, 4)}; }

TEST(PlaneLayout, SplitsAPackedImage) {
    Random random(401);
    for (int round = 0; round < 500; ++round) {
        const IppiSize size = anySize(random);
        const GuardedImage packed(random, size, GuardedImage::anyLayout(random, 3));
        GuardedPlanes planes(random, size);
        ASSERT_EQ(IPPMini_ippiCopy_8u_C3P3R(packed.data(), packed.step(), planes.pointers(), planes.step(), size),
                  ippStsNoErr);
        ASSERT_TRUE(planes.untouchedOutsideRegion());
        for (int c = 0; c < 3; ++c)
            for (int y = 0; y < size.height; ++y)
                for (int x = 0; x < size.width; ++x) ASSERT_EQ(*planes[c].at(x, y), packed.at(x, y)[c]);
    }
}

TEST(PlaneLayout, MergesPlanes) {
    Random random(402);
    for (int round = 0; round < 500; ++round) {
        const IppiSize size = anySize(random);
        GuardedPlanes planes(random, size);
        GuardedImage packed(random, size, GuardedImage::anyLayout(random, 3));
        ASSERT_EQ(IPPMini_ippiCopy_8u_P3C3R(planes.pointers(), planes.step(), packed.data(), packed.step(), size),
                  ippStsNoErr);
        ASSERT_TRUE(packed.untouchedOutsideRegion());
        for (int c = 0; c < 3; ++c)
            for (int y = 0; y < size.height; ++y)
                for (int x = 0; x < size.width; ++x) ASSERT_EQ(packed.at(x, y)[c], *planes[c].at(x, y));
    }
}

TEST(PlaneLayout, SplittingAndMergingRestoresTheImage) {
    Random random(403);
    for (const IppiSize size : {IppiSize{517, 40}, {640, 480}}) {
        const GuardedImage packed(random, size, GuardedImage::anyLayout(random, 3));
        GuardedPlanes planes(random, size);
        GuardedImage back(random, size, GuardedImage::anyLayout(random, 3));
        ASSERT_EQ(IPPMini_ippiCopy_8u_C3P3R(packed.data(), packed.step(), planes.pointers(), planes.step(), size),
                  ippStsNoErr);
        ASSERT_EQ(IPPMini_ippiCopy_8u_P3C3R(planes.pointers(), planes.step(), back.data(), back.step(), size),
                  ippStsNoErr);
        EXPECT_EQ(firstDifferentRow(back, viewOf(packed, CV_8UC3)), -1);
    }
}

// The length of a packed row is step / pixel size whole pixels.
TEST(PlaneLayout, StepsNotAMultipleOf3DisplaceRows) {
    Random random(404);
    const IppiSize size = {5, 4};
    const int step = 17;
    const GuardedImage packed(random, {17, 4}, {});
    GuardedPlanes planes(random, size);
    ASSERT_EQ(IPPMini_ippiCopy_8u_C3P3R(packed.data(), step, planes.pointers(), planes.step(), size), ippStsNoErr);
    GuardedImage back(random, {17, 4}, {});
    ASSERT_EQ(IPPMini_ippiCopy_8u_P3C3R(planes.pointers(), planes.step(), back.data(), step, size), ippStsNoErr);
    for (int y = 0; y < size.height; ++y)
        for (int i = 0; i < 3 * size.width; ++i) {
            ASSERT_EQ(*planes[i % 3].at(i / 3, y), packed.data()[15 * y + i]);
            ASSERT_EQ(back.data()[15 * y + i], packed.data()[15 * y + i]);
        }
}

TEST(PlaneLayout, ReadsAndWritesNoByteTooMany) {
    forEachFencedRow([](unsigned char* packed, unsigned char* const* planes, int width) {
        ASSERT_EQ(IPPMini_ippiCopy_8u_C3P3R(packed, 3 * width, planes, width, {width, 1}), ippStsNoErr);
        ASSERT_EQ(IPPMini_ippiCopy_8u_P3C3R(planes, width, packed, 3 * width, {width, 1}), ippStsNoErr);
    });
}

TEST(PlaneLayout, SplittingRefusesBadArguments) {
    Random random(405);
    const std::vector<uint8_t> packed(96);
    GuardedPlanes planes(random, {16, 2});
    const auto call = [&](const uint8_t* src, int srcStep, unsigned char* const* dst, int dstStep, IppiSize size) {
        const IppStatus status = IPPMini_ippiCopy_8u_C3P3R(src, srcStep, dst, dstStep, size);
        EXPECT_TRUE(planes.untouched());
        return status;
    };
    EXPECT_EQ(call(nullptr, 48, planes.pointers(), 16, {16, 2}), ippStsBadArgErr);
    EXPECT_EQ(call(packed.data(), 48, nullptr, 16, {16, 2}), ippStsBadArgErr);
    for (int missing = 0; missing < 3; ++missing) {
        std::vector<unsigned char*> some(planes.pointers(), planes.pointers() + 3);
        some[static_cast<size_t>(missing)] = nullptr;
        EXPECT_EQ(call(packed.data(), 48, some.data(), 16, {16, 2}), ippStsBadArgErr) << missing;
    }
    for (const IppiSize size : {IppiSize{0, 1}, {1, 0}, {-1, 1}, {1, -1}})
        EXPECT_EQ(call(packed.data(), 48, planes.pointers(), 16, size), ippStsBadArgErr);
    for (const int step : {47, 0, -48, INT_MIN})
        EXPECT_EQ(call(packed.data(), step, planes.pointers(), 16, {16, 2}), ippStsBadArgErr) << step;
    for (const int step : {15, 0, -16, INT_MIN})
        EXPECT_EQ(call(packed.data(), 48, planes.pointers(), step, {16, 2}), ippStsBadArgErr) << step;
}

TEST(PlaneLayout, MergingRefusesBadArguments) {
    Random random(406);
    GuardedPlanes planes(random, {16, 2});
    GuardedImage packed(random, {16, 2}, {3});
    const auto call = [&](unsigned char* const* src, int srcStep, uint8_t* dst, int dstStep, IppiSize size) {
        const IppStatus status = IPPMini_ippiCopy_8u_P3C3R(src, srcStep, dst, dstStep, size);
        EXPECT_TRUE(packed.untouched());
        return status;
    };
    EXPECT_EQ(call(planes.pointers(), planes.step(), nullptr, 48, {16, 2}), ippStsBadArgErr);
    EXPECT_EQ(call(nullptr, planes.step(), packed.data(), 48, {16, 2}), ippStsBadArgErr);
    for (int missing = 0; missing < 3; ++missing) {
        std::vector<unsigned char*> some(planes.pointers(), planes.pointers() + 3);
        some[static_cast<size_t>(missing)] = nullptr;
        EXPECT_EQ(call(some.data(), planes.step(), packed.data(), 48, {16, 2}), ippStsBadArgErr) << missing;
    }
    for (const IppiSize size : {IppiSize{0, 1}, {1, 0}, {-1, 1}, {1, -1}})
        EXPECT_EQ(call(planes.pointers(), planes.step(), packed.data(), 48, size), ippStsBadArgErr);
    for (const int step : {15, 0, -16, INT_MIN})
        EXPECT_EQ(call(planes.pointers(), step, packed.data(), 48, {16, 2}), ippStsBadArgErr) << step;
    for (const int step : {47, 0, -48, INT_MIN})
        EXPECT_EQ(call(planes.pointers(), planes.step(), packed.data(), step, {16, 2}), ippStsBadArgErr) << step;
}

}    // namespace
