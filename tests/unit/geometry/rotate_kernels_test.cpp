// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The paths of the two kernels: groups that fit, steep angles, parts that are inside the source, across an edge or
// outside.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include "OPCV_dlib.h"
#include "geometry/rotate_call.h"
#include "geometry/rotate_case.h"
#include "oracle/rotation.h"
#include "support/random.h"

#include <sys/mman.h>

namespace {

constexpr std::array<int, 3> kChannels = {1, 3, 4};

// Several strips of pixels, in all directions.
TEST(RotateKernels, EqualOpenCVCallsAtSteepAngles) {
    Random random(321);
    for (const int channels : kChannels)
        for (int angle = -180; angle <= 180; angle += 7) {
            RotateCase c(random, 40);
            c.reshape(channels, {300, 150}, {420, 260});
            c.angle = angle + random.real(-3, 3);
            c.xShift = static_cast<float>(random.between(-100, 300));
            c.yShift = static_cast<float>(random.between(-100, 300));
            ASSERT_NO_FATAL_FAILURE(expectTurnedLikeOpenCV(c, kLinear));
            c.dstRoi = {0, 0, 300, 150};
            ASSERT_NO_FATAL_FAILURE(expectTurnedAboutLikeOpenCV(c, 149.5, 74.5, kLinear));
        }
}

// Around the angles up to which each size of group fits.
TEST(RotateKernels, EqualOpenCVCallsWhereGroupsEnd) {
    Random random(322);
    for (const int channels : kChannels)
        for (int step = 20; step <= 200; ++step) {
            RotateCase c(random, 40);
            c.reshape(channels, {230, 60}, {230, 60});
            c.angle = (step % 2 == 0 ? 0.2 : -0.2) * step;
            c.xShift = static_cast<float>(random.between(-20, 20));
            c.yShift = static_cast<float>(random.between(-40, 40));
            ASSERT_NO_FATAL_FAILURE(expectTurnedLikeOpenCV(c, kLinear));
        }
}

// A small image in the middle of a large target: whole strips are outside on every side.
TEST(RotateKernels, FillEverythingOutsideWithTheBorder) {
    Random random(323);
    for (const int channels : kChannels)
        for (const double angle : {1.0, 12.0, 33.0, 71.0, 90.0, 123.0, 180.0, 200.0, -33.0, -100.0}) {
            RotateCase c(random, 40);
            c.reshape(channels, {60, 40}, {700, 300});
            c.angle = angle;
            c.border = cv::Scalar(7, 60, 200, 30);
            c.xShift = static_cast<float>(random.between(200, 500));
            c.yShift = static_cast<float>(random.between(100, 200));
            ASSERT_NO_FATAL_FAILURE(expectTurnedLikeOpenCV(c, kLinear));
        }
}

// Images that are narrower or lower than a group, and a little larger.
TEST(RotateKernels, EqualOpenCVCallsOnNarrowImages) {
    Random random(324);
    for (const int channels : kChannels)
        for (int side = 1; side <= 140; ++side)
            for (const double angle : {0.7, -2.5, 8.0, 38.0}) {
                RotateCase c(random, 40);
                const bool wide = random.chance(30);
                c.reshape(channels, wide ? IppiSize{140, side % 8 + 1} : IppiSize{side, 20}, {150, 30});
                c.angle = angle;
                c.xShift = static_cast<float>(random.between(-70, 70));
                c.yShift = static_cast<float>(random.between(-10, 10));
                ASSERT_NO_FATAL_FAILURE(expectTurnedLikeOpenCV(c, kLinear));
            }
}

// Rows so far apart that offsets in the source exceed 32 bits. Only the memory pages with pixels are touched. Between
// the rows there are zeros, which count as image where the target shows them.
TEST(RotateKernels, TurnRowsThatAreGigabytesApart) {
    constexpr int kStep = 1 << 30;
    constexpr int kNearStep = 200;
    constexpr IppiSize kSize = {40, 4};
    const size_t bytes = size_t{kStep} * 3 + kNearStep;
    void* const mapped =
        mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE(mapped, MAP_FAILED);
    auto* const source = static_cast<uint8_t*>(mapped);
    Random random(325);
    std::vector<uint8_t> near(kNearStep * 4);
    for (size_t y = 0; y < 4; ++y) {
        random.fill(near.data() + kNearStep * y, 40);
        std::memcpy(source + y * kStep, near.data() + kNearStep * y, 40);
    }

    constexpr IppiRect kAll = {0, 0, 60, 50};
    for (const double angle : {2.0, 35.0, -35.0, 100.0}) {
        std::vector<uint8_t> expected(60 * 50);
        std::vector<uint8_t> actual(expected.size(), 1);
        const cv::Scalar border(99);
        oracle::rotateByOpenCV(
            {near.data(), kNearStep, wholeOf(kSize), expected.data(), 60, kAll, angle, CV_8UC1, border}, 3, 25);
        EXPECT_EQ(
            rotate({source, kStep, wholeOf(kSize), actual.data(), 60, kAll, angle, CV_8UC1, border}, kSize, 3, 25),
            ippStsNoErr);
        EXPECT_TRUE(actual == expected) << angle;
    }
    munmap(mapped, bytes);
}

}    // namespace
