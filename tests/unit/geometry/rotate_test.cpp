// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <vector>

#include "OPCV_dlib.h"
#include "geometry/rotate_call.h"
#include "geometry/rotate_case.h"
#include "oracle/rotation.h"
#include "support/fenced_memory.h"
#include "support/random.h"

namespace {

using Bytes = std::vector<uint8_t>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(Rotate, EqualsOpenCVCalls) {
    Random random(301);
    for (int round = 0; round < 1200; ++round) {
        RotateCase c(random, round % 2 == 0 ? 20 : 120);
        ASSERT_NO_FATAL_FAILURE(expectTurnedLikeOpenCV(c, random.between(-9, 9)));
    }
}

TEST(RotateCenter, EqualsOpenCVCalls) {
    Random random(302);
    for (int round = 0; round < 1200; ++round) {
        RotateCase c(random, round % 2 == 0 ? 20 : 120);
        const bool inside = random.chance(50);
        const double x = inside ? (c.srcRoi.width - 1) * 0.5 : random.real(-300, 300);
        const double y = inside ? (c.srcRoi.height - 1) * 0.5 : random.real(-300, 300);
        ASSERT_NO_FATAL_FAILURE(expectTurnedAboutLikeOpenCV(c, x, y, random.between(-9, 9)));
    }
}

// Large enough for several strips of columns, for bands of rows and for groups of every kind.
TEST(Rotate, EqualsOpenCVCallsOnLargeImages) {
    Random random(313);
    for (int round = 0; round < 24; ++round) {
        RotateCase c(random, 1000);
        ASSERT_NO_FATAL_FAILURE(expectTurnedLikeOpenCV(c, kLinear));
        ASSERT_NO_FATAL_FAILURE(expectTurnedAboutLikeOpenCV(c, c.srcRoi.width * 0.5, c.srcRoi.height * 0.5, kLinear));
    }
    for (const int channels : {1, 3, 4})
        for (const double angle : {0.5, -2.3, 9.0, 40.0}) {
            RotateCase c(random, 40);
            c.reshape(channels, {800, 500}, {900, 520});
            c.angle = angle;
            ASSERT_NO_FATAL_FAILURE(expectTurnedLikeOpenCV(c, kLinear));
            ASSERT_NO_FATAL_FAILURE(expectTurnedAboutLikeOpenCV(c, 399.5, 249.5, kLinear));
        }
}

// Groups of neighbouring bytes become smaller as the angle grows, at some angle for each pixel size.
TEST(Rotate, EqualsOpenCVCallsAtEveryAngle) {
    Random random(314);
    for (const int channels : {1, 3, 4})
        for (int step = -250; step <= 250; ++step) {
            RotateCase c(random, 40);
            c.reshape(channels, {90, 30}, {90, 30});
            c.angle = step * 0.2;
            c.xShift = static_cast<float>(random.between(-20, 20));
            c.yShift = static_cast<float>(random.between(-40, 40));
            ASSERT_NO_FATAL_FAILURE(expectTurnedLikeOpenCV(c, kLinear));
        }
}

TEST(Rotate, EqualsOpenCVCallsOnTheLongestRows) {
    Random random(315);
    for (const int channels : {1, 3})
        for (const double angle : {0.001, -0.002, 0.01, 5.0}) {
            RotateCase c(random, 40);
            c.reshape(channels, {32766, 4}, {32766, 4});
            c.angle = angle;
            c.xShift = c.yShift = 0;
            ASSERT_NO_FATAL_FAILURE(expectTurnedLikeOpenCV(c, kLinear));
            ASSERT_NO_FATAL_FAILURE(expectTurnedAboutLikeOpenCV(c, 16383, 2, kLinear));
        }
}

// Centres that put positions halfway between two of the fixed-point grid.
TEST(RotateCenter, RoundsPositionsLikeOpenCV) {
    Random random(316);
    for (int round = 0; round < 300; ++round) {
        RotateCase c(random, 60);
        c.angle = std::array<double, 5>{0, 90, -90, 180, 30}[static_cast<size_t>(round % 5)];
        const auto halfway = [&] { return random.between(-100, 300) + random.between(0, 2047) / 2048.0; };
        ASSERT_NO_FATAL_FAILURE(expectTurnedAboutLikeOpenCV(c, halfway(), halfway(), kLinear));
    }
}

TEST(Rotate, ReadsAndWritesNoByteTooMany) {
    Random random(317);
    for (const auto fence : {FencedMemory::Fence::kBehind, FencedMemory::Fence::kInFront})
        for (int round = 0; round < 300; ++round) {
            const int channels = std::array<int, 3>{1, 3, 4}[static_cast<size_t>(round % 3)];
            const IppiSize from = {random.between(1, 100), random.between(1, 60)};
            const IppiSize to = {random.between(1, 100), random.between(1, 60)};
            const auto bytes = [channels](IppiSize s) {
                return static_cast<size_t>(s.width) * static_cast<size_t>(s.height * channels);
            };
            FencedMemory source(bytes(from), fence);
            FencedMemory target(bytes(to), fence);
            random.fill(source.data(), source.size());
            const double angle = RotateCase::anyAngle(random);
            ASSERT_EQ(rotate({source.data(), from.width * channels, wholeOf(from), target.data(), to.width * channels,
                              wholeOf(to), angle, typeOf(channels), cv::Scalar(1, 2, 3, 4)},
                             from, RotateCase::anyShift(random, 60), RotateCase::anyShift(random, 60)),
                      ippStsNoErr);
            ASSERT_EQ(rotateAbout({source.data(),
                                   from.width * channels,
                                   wholeOf(from),
                                   target.data(),
                                   to.width * channels,
                                   {0, 0, std::min(to.width, from.width), to.height},
                                   angle,
                                   typeOf(channels),
                                   cv::Scalar(1, 2, 3, 4)},
                                  from, random.real(-20, 120), random.real(-20, 80)),
                      ippStsNoErr);
        }
}

TEST(Rotate, SourceMayOverlapTheDestination) {
    Random random(307);
    for (int round = 0; round < 40; ++round) {
        RotateCase c(random, 60);
        c.channels = 1;
        c.srcSize = {50, 40};
        c.srcStep = c.dstStep = 50;
        c.srcRoi = {random.between(0, 10), random.between(0, 10), 30, 25};
        c.dstRoi = {random.between(0, 10), random.between(0, 10), random.between(1, 40), random.between(1, 30)};
        Bytes image(50 * 40);
        random.fill(image.data(), image.size());
        Bytes expected = image;
        Bytes unchanged = image;
        oracle::rotateByOpenCV(
            {unchanged.data(), 50, c.srcRoi, expected.data(), 50, c.dstRoi, c.angle, CV_8UC1, c.border}, c.xShift,
            c.yShift);
        Bytes actual = image;
        ASSERT_EQ(rotate({actual.data(), 50, c.srcRoi, actual.data(), 50, c.dstRoi, c.angle, CV_8UC1, c.border},
                         c.srcSize, c.xShift, c.yShift),
                  ippStsNoErr);
        ASSERT_EQ(actual, expected) << c;

        expected = image;
        oracle::rotateAboutByOpenCV(
            {unchanged.data(), 50, c.srcRoi, expected.data(), 50, c.dstRoi, c.angle, CV_8UC1, c.border}, 10, 12);
        actual = image;
        ASSERT_EQ(rotateAbout({actual.data(), 50, c.srcRoi, actual.data(), 50, c.dstRoi, c.angle, CV_8UC1, c.border},
                              c.srcSize, 10, 12),
                  ippStsNoErr);
        ASSERT_EQ(actual, expected) << c;
    }
}

TEST(Rotate, TakesAnyPixelTypeAndAngle) {
    Random random(308);
    Bytes source(40 * 30 * 8);
    random.fill(source.data(), source.size());
    for (const int type : {CV_8UC2, CV_16UC1, CV_16SC3}) {
        Bytes expected(source.size(), 5);
        Bytes actual = expected;
        const int step = 40 * static_cast<int>(CV_ELEM_SIZE(type));
        const IppiRect all = {0, 0, 40, 30};
        oracle::rotateByOpenCV({source.data(), step, all, expected.data(), step, all, 11, type, cv::Scalar(1, 2, 3)}, 4,
                               -3);
        ASSERT_EQ(rotate({source.data(), step, all, actual.data(), step, all, 11, type, cv::Scalar(1, 2, 3)}, {40, 30},
                         4, -3),
                  ippStsNoErr);
        EXPECT_EQ(actual, expected) << type;
    }
    for (const double angle : {kNaN, kInfinity, -kInfinity, 1e300, -1e18, 1e-320}) {
        RotateCase c(random, 40);
        c.angle = angle;
        ASSERT_NO_FATAL_FAILURE(expectTurnedLikeOpenCV(c, kLinear));
        ASSERT_NO_FATAL_FAILURE(expectTurnedAboutLikeOpenCV(c, 7, 5, kLinear));
    }
    for (const double centre : {1e5, -3e6, 1e9, -1e30, 1e300, kInfinity, kNaN}) {
        RotateCase c(random, 40);
        ASSERT_NO_FATAL_FAILURE(expectTurnedAboutLikeOpenCV(c, centre, 5, kLinear));
        ASSERT_NO_FATAL_FAILURE(expectTurnedAboutLikeOpenCV(c, 5, centre, kLinear));
    }
}

TEST(Rotate, PassesImagesThatAreTooLongToOpenCV) {
    Bytes row(32766, 7);
    Bytes out(32766, 1);
    EXPECT_EQ(
        rotate({row.data(), 32766, {0, 0, 32766, 1}, out.data(), 32766, {0, 0, 32766, 1}, 0, CV_8UC1, cv::Scalar()},
               {32766, 1}, 0, 0),
        ippStsNoErr);
    EXPECT_EQ(out, row);
    out.assign(32766, 1);
    EXPECT_THROW(
        rotate({row.data(), 32766, {0, 0, 32766, 1}, out.data(), 32766, {0, 0, 32766, 1}, 0, CV_8UC1, cv::Scalar()},
               {32766, 1}, 1, 0),
        cv::Exception);
    EXPECT_EQ(out, Bytes(32766, 1));
}

TEST(KVMacRotate, IsRotateOnBlackWithShiftsAsFloat) {
    Random random(312);
    for (int round = 0; round < 200; ++round) {
        RotateCase c(random, 60);
        if (c.channels == 4) continue;
        c.border = cv::Scalar::all(0);
        // Below a half as double, a half as float.
        const double xShift = round % 4 == 0 ? 0.49999999999 : double{c.xShift};
        const double yShift = round % 4 == 1 ? -2.49999999999 : double{c.yShift};
        Bytes expected = c.target;
        Bytes actual = c.target;
        oracle::rotateByOpenCV(c.into(expected), static_cast<float>(xShift), static_cast<float>(yShift));
        ASSERT_EQ(rotateOnBlack(c.into(actual), c.srcSize, xShift, yShift, random.between(-9, 9)), noErr);
        ASSERT_TRUE(actual == expected) << c;
    }
}

}    // namespace
