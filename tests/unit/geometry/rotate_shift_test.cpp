// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <cmath>

#include "OPCV_dlib.h"
#include "oracle/rotation.h"
#include "support/random.h"

namespace {

TEST(GetRotateShift, IsZeroWithoutTurn) {
    double x = 5;
    double y = 5;
    KVMac_ippiGetRotateShift(123.5, -77, 0, &x, &y);
    EXPECT_EQ(x, 0);
    EXPECT_EQ(y, 0);
}

TEST(GetRotateShift, IsTwiceTheCentreForAHalfTurn) {
    double x = 0;
    double y = 0;
    KVMac_ippiGetRotateShift(1239.5, 1753.5, 180, &x, &y);
    EXPECT_NEAR(x, 2 * 1239.5, 1e-9);
    EXPECT_NEAR(y, 2 * 1753.5, 1e-9);
}

TEST(GetRotateShift, FusesEachProductWithItsSum) {
    Random random(310);
    bool fusedMatters = false;
    for (int round = 0; round < 3000; ++round) {
        const double xc = random.real(-5000, 5000);
        const double yc = random.real(-5000, 5000);
        const double angle = random.chance(50) ? random.real(-5, 5) : random.real(-400, 400);
        double x = 0;
        double y = 0;
        KVMac_ippiGetRotateShift(xc, yc, angle, &x, &y);

        const double r = angle * 3.141592653589793 / 180;
        const double s = std::sin(r);
        const double c = std::cos(r);
        ASSERT_EQ(x, std::fma(-yc, s, std::fma(-xc, c, xc)));
        ASSERT_EQ(y, std::fma(-yc, c, std::fma(xc, s, yc)));
        ASSERT_NEAR(x, xc - xc * c - yc * s, 1e-8);
        ASSERT_NEAR(y, yc + xc * s - yc * c, 1e-8);
        fusedMatters |= x != xc - xc * c - yc * s;
    }
    EXPECT_TRUE(fusedMatters);
}

TEST(GetRotateShift, KeepsTheCentreInPlace) {
    Random random(311);
    for (int round = 0; round < 200; ++round) {
        const double xc = random.real(-5000, 5000);
        const double yc = random.real(-5000, 5000);
        const double angle = random.real(-400, 400);
        double x = 0;
        double y = 0;
        KVMac_ippiGetRotateShift(xc, yc, angle, &x, &y);
        const oracle::Point p = oracle::beforeTurn({xc - x, yc - y}, {0, 0}, angle);
        ASSERT_NEAR(p.x, xc, 1e-8);
        ASSERT_NEAR(p.y, yc, 1e-8);
    }
}

TEST(GetRotateShift, WritesNothingWithoutBothPointers) {
    double shift = 5;
    KVMac_ippiGetRotateShift(1, 2, 3, &shift, nullptr);
    KVMac_ippiGetRotateShift(1, 2, 3, nullptr, &shift);
    KVMac_ippiGetRotateShift(1, 2, 3, nullptr, nullptr);
    EXPECT_EQ(shift, 5);
}

}    // namespace
