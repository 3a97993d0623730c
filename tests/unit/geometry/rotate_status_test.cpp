// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The arguments that a rotation rejects; it then writes nothing.
#include <gtest/gtest.h>

#include <climits>
#include <limits>
#include <utility>

#include "OPCV_dlib.h"
#include "geometry/rotate_call.h"
#include "geometry/rotate_case.h"
#include "support/guarded_image.h"
#include "support/random.h"

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// All arguments that affect the status, valid until a test changes them.
struct Call {
    IppiSize srcSize = {20, 10};
    int srcStep = 20;
    IppiRect srcRoi = {2, 1, 16, 8};
    int dstStep = 20;
    IppiRect dstRoi = {1, 1, 12, 6};
    double angle = 3;
    double xShift = 1;
    double yShift = -1;
    int type = CV_8UC1;
    bool hasSrc = true;
    bool hasDst = true;
};

class RotateStatus : public testing::Test {
protected:
    // The status of each entry point; the destination must not change unless it is success.
    void expect(const Call& c, IppStatus general, IppStatus about) {
        const uint8_t* src = c.hasSrc ? source_.data() : nullptr;
        uint8_t* dst = c.hasDst ? target_.data() : nullptr;
        const auto checked = [&](IppStatus expected, IppStatus status) {
            EXPECT_EQ(status, expected);
            EXPECT_EQ(target_.untouched(), expected != ippStsNoErr);
            random_.fill(target_.data(), 1);
            target_.remember();
        };
        const oracle::Rotation r = {src,    c.srcStep,           c.srcRoi, dst, c.dstStep, c.dstRoi, c.angle,
                                    c.type, cv::Scalar::all(255)};
        checked(general, rotate(r, c.srcSize, static_cast<float>(c.xShift), static_cast<float>(c.yShift)));
        checked(about, rotateAbout(r, c.srcSize, c.xShift, c.yShift));
        if (c.type != CV_8UC1 && c.type != CV_8UC3) return;
        const OSErr err = rotateOnBlack(r, c.srcSize, c.xShift, c.yShift);
        EXPECT_EQ(err, general == ippStsNoErr ? noErr : paramErr);
        EXPECT_EQ(target_.untouched(), err != noErr);
        random_.fill(target_.data(), 1);
        target_.remember();
    }
    void expectRefused(const Call& c) { expect(c, ippStsBadArgErr, ippStsBadArgErr); }
    void expectGood(const Call& c) { expect(c, ippStsNoErr, ippStsNoErr); }

    Random random_{309};
    GuardedImage source_{random_, {20, 10}, {4, 0, 0, 0}};
    GuardedImage target_{random_, {20, 10}, {4, 0, 0, 0}};
};

TEST_F(RotateStatus, GoodArguments) {
    expectGood({});
    Call c;
    c.type = CV_8UC3;
    c.srcStep = c.dstStep = 60;
    expectGood(c);
}

TEST_F(RotateStatus, RegionMayBeAsLargeAsTheImageButNotLarger) {
    Call c;
    c.srcRoi = {0, 0, 20, 10};
    expectGood(c);
    c.srcSize = {19, 10};
    expectRefused(c);
    c.srcSize = {20, 9};
    expectRefused(c);
}

TEST_F(RotateStatus, SourceThatCannotBeViewed) {
    const auto with = [](IppiRect roi, int step) {
        Call c;
        c.srcSize = {1000, 1000};
        c.srcRoi = roi;
        c.srcStep = step;
        return c;
    };
    expectGood(with({0, 0, 20, 10}, 20));
    expectRefused(with({-1, 0, 4, 4}, 20));
    expectRefused(with({0, -1, 4, 4}, 20));
    expectRefused(with({0, 0, 0, 4}, 20));
    expectRefused(with({0, 0, 4, 0}, 20));
    expectRefused(with({0, 0, -4, 4}, 20));
    expectRefused(with({0, 0, 4, -4}, 20));
    expectRefused(with({17, 0, 4, 4}, 20));
    expectRefused(with({0, 0, 4, 4}, 0));
    expectRefused(with({0, 0, 4, 4}, -20));
    expectRefused(with({INT_MAX, 0, 4, 4}, 20));
    expectRefused(with({0, INT_MAX, 4, 4}, 20));
    Call c;
    c.hasSrc = false;
    expectRefused(c);
    c = {};
    c.type = CV_8UC3;
    c.srcStep = 2;
    c.srcRoi = {0, 0, 1, 1};
    expectRefused(c);
}

TEST_F(RotateStatus, DestinationThatCannotBeViewed) {
    const auto with = [](IppiRect roi, int step) {
        Call c;
        c.dstRoi = roi;
        c.dstStep = step;
        return c;
    };
    expectGood(with({4, 0, 16, 8}, 20));
    expectRefused(with({5, 0, 16, 8}, 20));
    expectRefused(with({-1, 0, 4, 4}, 20));
    expectRefused(with({0, -1, 4, 4}, 20));
    expectRefused(with({0, 0, 0, 4}, 20));
    expectRefused(with({0, 0, 4, 0}, 20));
    expectRefused(with({0, 0, -4, 4}, 20));
    expectRefused(with({0, 0, 4, -4}, 20));
    expectRefused(with({0, 0, 4, 4}, 0));
    expectRefused(with({0, 0, 4, 4}, -20));
    expectRefused(with({INT_MAX, 0, 4, 4}, 20));
    expectRefused(with({0, INT_MAX, 4, 4}, 20));
    expectRefused(with({0, 0, INT_MIN, 4}, 20));
    expectRefused(with({0, 0, 4, INT_MIN}, 20));
    Call c;
    c.hasDst = false;
    expectRefused(c);
    // Wider than its rows: about a point the rectangle is clipped to the region first.
    expect(with({0, 0, 21, 4}, 20), ippStsBadArgErr, ippStsNoErr);
}

TEST_F(RotateStatus, ShiftBeyondTheRangeOfInt) {
    for (const double shift : {2147483648.0, -2147483648.0, 4e9, 1e30, 1e300, -1e300, kInfinity, -kInfinity, kNaN}) {
        Call c;
        c.xShift = shift;
        c.yShift = 0;
        const auto refused = [&] {
            uint8_t* dst = target_.data();
            EXPECT_EQ(
                rotate({source_.data(), c.srcStep, c.srcRoi, dst, c.dstStep, c.dstRoi, c.angle, c.type, cv::Scalar()},
                       c.srcSize, static_cast<float>(c.xShift), static_cast<float>(c.yShift)),
                ippStsBadArgErr);
            EXPECT_EQ(
                rotateOnBlack({source_.data(), c.srcStep, c.srcRoi, dst, c.dstStep, c.dstRoi, c.angle, CV_8UC1, {}},
                              c.srcSize, c.xShift, c.yShift),
                paramErr);
            EXPECT_TRUE(target_.untouched());
        };
        refused();
        std::swap(c.xShift, c.yShift);
        refused();
    }
}

TEST_F(RotateStatus, WorkImageBeyondTheRangeOfInt) {
    // The shift itself fits; the region or the rectangle, moved by it, does not.
    Call c;
    c.xShift = 2147483520.0;
    c.srcSize.width = c.srcRoi.width = 200;
    c.srcStep = 400;
    EXPECT_EQ(
        rotate(
            {source_.data(), c.srcStep, {0, 0, 200, 1}, target_.data(), c.dstStep, c.dstRoi, 0, c.type, cv::Scalar()},
            c.srcSize, static_cast<float>(c.xShift), 0),
        ippStsBadArgErr);
    EXPECT_EQ(
        rotate({source_.data(), 1, {0, 0, 1, 10}, target_.data(), 20, {0, 0, 1, INT_MAX}, 0, c.type, cv::Scalar()},
               {1, 10}, 0, -2147483520.0F),
        ippStsBadArgErr);
    EXPECT_TRUE(target_.untouched());
}

}    // namespace
