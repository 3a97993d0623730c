// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Positions compared with the definition, and each limit of the fixed-point range.
#include "geometry/affine_map.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <opencv2/imgproc.hpp>

#include "support/random.h"

namespace {

using Matrix = std::array<double, 6>;

opcv::AffineMap mapOf(const Matrix& m) {
    const double parts[6] = {m[0], m[1], m[2], m[3], m[4], m[5]};
    return opcv::AffineMap::inverseOf(parts);
}

// The map of target pixels with exactly these parts. Each is a power of two or zero, and so is its inverse.
opcv::AffineMap scaled(double xx, double yy, double x0, double y0) {
    return mapOf({1 / xx, 0, -x0 / xx, 0, 1 / yy, -y0 / yy});
}
opcv::AffineMap crossed(double xy, double yx) { return mapOf({0, 1 / yx, 0, 1 / xy, 0, 0}); }

TEST(AffineMap, IsTheInverseInUnitsOf1024thOfAPixel) {
    Random random(371);
    for (int round = 0; round < 500; ++round) {
        cv::Mat forward(2, 3, CV_64F);
        for (int i = 0; i < 6; ++i) forward.at<double>(i / 3, i % 3) = random.real(-2, 2) * (i % 3 == 2 ? 50 : 1);
        const double* m = forward.ptr<double>();
        if (std::abs(m[0] * m[4] - m[1] * m[3]) < 0.05) continue;
        const opcv::AffineMap map = mapOf({m[0], m[1], m[2], m[3], m[4], m[5]});
        cv::Mat back;
        cv::invertAffineTransform(forward, back);
        const double* b = back.ptr<double>();
        const int x = random.between(0, 300);
        const int y = random.between(0, 300);
        const opcv::MapPosition at = map.column(x) + map.row(y);
        // Each of two parts is rounded, and half a step of 32 added.
        EXPECT_NEAR(at.x - 16, (b[0] * x + b[1] * y + b[2]) * 1024, 1.01);
        EXPECT_NEAR(at.y - 16, (b[3] * x + b[4] * y + b[5]) * 1024, 1.01);
        // The determinant is rounded once or twice, depending on the processor.
        const double plain = 1 / (m[0] * m[4] - m[1] * m[3]);
        const double fused = 1 / std::fma(m[0], m[4], -(m[1] * m[3]));
        const bool isPlain = map.xPerColumn() == m[4] * plain && map.yPerColumn() == -m[3] * plain;
        const double scale = isPlain ? plain : fused;
        EXPECT_EQ(map.xPerColumn(), m[4] * scale);
        EXPECT_EQ(map.yPerColumn(), -m[3] * scale);
        EXPECT_NEAR(map.xPerColumn(), b[0], 1e-12);
        EXPECT_NEAR(map.yPerColumn(), b[3], 1e-12);
    }
}

TEST(AffineMap, OfASingularMatrixLeadsToTheOrigin) {
    const opcv::AffineMap map = mapOf({2, 1, 5, 4, 2, 7});
    const opcv::MapPosition at = map.column(100) + map.row(90);
    EXPECT_EQ(at.x, 16);
    EXPECT_EQ(at.y, 16);
    EXPECT_TRUE(map.isWellConditioned());
}

TEST(AffineMap, MovedOriginsShiftBothImages) {
    Random random(372);
    for (int round = 0; round < 200; ++round) {
        const opcv::AffineMap map = mapOf({std::cos(0.1 * round), std::sin(0.1 * round), random.real(-99, 99),
                                           -std::sin(0.1 * round), std::cos(0.1 * round), random.real(-99, 99)});
        opcv::AffineMap moved = map;
        const int targetX = random.between(0, 500);
        const int targetY = random.between(0, 500);
        const int sourceX = random.between(-500, 500);
        const int sourceY = random.between(-500, 500);
        moved.moveOrigins(targetX, targetY, sourceX, sourceY);
        const opcv::MapPosition there = map.column(targetX + 3) + map.row(targetY + 7);
        const opcv::MapPosition here = moved.column(3) + moved.row(7);
        EXPECT_EQ(here.x, there.x - 1024 * sourceX);
        EXPECT_EQ(here.y, there.y - 1024 * sourceY);
    }
}

// Up to 2^19 pixels of offset, and of way along the longest side, on each axis.
TEST(AffineMap, IsTameUpToItsLimitInEachPart) {
    constexpr double kFar = 1 << 19;
    const double beyond = std::nextafter(kFar, 2 * kFar);
    for (const double sign : {1.0, -1.0}) {
        EXPECT_TRUE(scaled(1, 1, sign * kFar, 0).isWellConditioned());
        EXPECT_FALSE(scaled(1, 1, sign * beyond, 0).isWellConditioned());
        EXPECT_TRUE(scaled(1, 1, 0, sign * kFar).isWellConditioned());
        EXPECT_FALSE(scaled(1, 1, 0, sign * beyond).isWellConditioned());
        // 16 times 32767 is below 2^19, 32 times is not.
        EXPECT_TRUE(scaled(sign * 16, 1, 0, 0).isWellConditioned());
        EXPECT_FALSE(scaled(sign * 32, 1, 0, 0).isWellConditioned());
        EXPECT_TRUE(scaled(1, sign * 16, 0, 0).isWellConditioned());
        EXPECT_FALSE(scaled(1, sign * 32, 0, 0).isWellConditioned());
        EXPECT_TRUE(crossed(sign * 16, 1).isWellConditioned());
        EXPECT_FALSE(crossed(sign * 32, 1).isWellConditioned());
        EXPECT_TRUE(crossed(1, sign * 16).isWellConditioned());
        EXPECT_FALSE(crossed(1, sign * 32).isWellConditioned());
    }
    constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    for (const double bad : {kNaN, kInfinity, -kInfinity})
        for (size_t part = 0; part < 6; ++part) {
            Matrix m = {1, 0, 0, 0, 1, 0};
            m.at(part) = bad;
            EXPECT_FALSE(mapOf(m).isWellConditioned()) << part << ' ' << bad;
        }
}

// Halves are rounded to even, in each of the two parts.
TEST(AffineMap, RoundsHalvesToEven) {
    const auto columnAfter = [](double offset) { return scaled(1, 1, offset, 0).row(0).x - 16; };
    EXPECT_EQ(columnAfter(0.5 / 1024), 0);
    EXPECT_EQ(columnAfter(1.5 / 1024), 2);
    EXPECT_EQ(columnAfter(2.5 / 1024), 2);
    EXPECT_EQ(columnAfter(-0.5 / 1024), 0);
    EXPECT_EQ(columnAfter(-1.5 / 1024), -2);
    const opcv::AffineMap half = scaled(1.0 / 2048, 1.0 / 2048, 0, 0);
    EXPECT_EQ(half.column(1).x, 0);
    EXPECT_EQ(half.column(3).x, 2);
    EXPECT_EQ(half.column(5).x, 2);
    EXPECT_EQ(half.row(3).y, 2 + 16);
    EXPECT_EQ(half.row(5).y, 2 + 16);
}

}    // namespace
