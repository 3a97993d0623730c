// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// A random rotation, and its result compared with that of plain OpenCV calls.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <ostream>
#include <vector>

#include "OPCV_dlib.h"
#include "geometry/rotate_call.h"
#include "oracle/rotation.h"
#include "support/random.h"

inline int typeOf(int channels) { return CV_MAKETYPE(CV_8U, channels); }

// A source image with a region, a destination image with a rectangle, and how to turn the one into the other.
struct RotateCase {
    RotateCase(Random& random, int longestSide)
        : channels(std::array<int, 3>{1, 3, 4}[static_cast<size_t>(random.between(0, 2))]),
          srcSize(anySize(random, longestSide)),
          srcRoi(anyRect(random, srcSize)),
          dstSize(anySize(random, longestSide)),
          dstRoi(anyRect(random, dstSize)),
          srcStep(anyStep(random, srcSize)),
          dstStep(anyStep(random, dstSize)),
          source(static_cast<size_t>(srcStep) * static_cast<size_t>(srcSize.height)),
          target(kGuard + static_cast<size_t>(dstStep) * static_cast<size_t>(dstSize.height) + kGuard),
          angle(anyAngle(random)),
          xShift(anyShift(random, longestSide)),
          yShift(anyShift(random, longestSide)) {
        random.fill(source.data(), source.size(), random.anyValues());
        random.fill(target.data(), target.size());
        for (int i = 0; i < 4; ++i) border[i] = random.chance(70) ? random.between(0, 255) : random.real(-300, 600);
    }

    static IppiSize anySize(Random& random, int longestSide) {
        return {random.between(1, longestSide), random.between(1, longestSide)};
    }
    static IppiRect anyRect(Random& random, IppiSize size) {
        if (random.chance(40)) return {0, 0, size.width, size.height};
        const int x = random.between(0, size.width - 1);
        const int y = random.between(0, size.height - 1);
        return {x, y, random.between(1, size.width - x), random.between(1, size.height - y)};
    }
    // Row padding: mostly whole pixels; sometimes a remainder, which displaces each row further.
    int anyStep(Random& random, IppiSize size) const {
        const int padding = random.chance(50) ? 0 : channels * random.between(1, 40);
        return size.width * channels + padding + (random.chance(20) ? random.between(0, channels - 1) : 0);
    }
    static double anyAngle(Random& random) {
        switch (random.between(0, 4)) {
            case 0: return random.real(-0.02, 0.02);
            case 1: return random.real(-3, 3);
            case 2: return random.real(-15, 15);
            case 3: return 45 * random.between(-16, 16);
            default: return random.real(-720, 720);
        }
    }
    static float anyShift(Random& random, int longestSide) {
        if (random.chance(20)) return 0;
        const float whole = static_cast<float>(random.between(-longestSide, longestSide));
        return random.chance(30) ? whole + 0.5F : whole + static_cast<float>(random.real(-0.5, 0.5));
    }

    // The whole of other images, with packed rows.
    void reshape(int newChannels, IppiSize from, IppiSize to) {
        Random random(static_cast<unsigned>(from.width + to.width + newChannels));
        channels = newChannels;
        srcSize = from;
        srcRoi = {0, 0, from.width, from.height};
        srcStep = from.width * channels;
        dstSize = to;
        dstRoi = {0, 0, to.width, to.height};
        dstStep = to.width * channels;
        source.resize(static_cast<size_t>(srcStep) * static_cast<size_t>(from.height));
        target.resize(kGuard + static_cast<size_t>(dstStep) * static_cast<size_t>(to.height) + kGuard);
        random.fill(source.data(), source.size());
        random.fill(target.data(), target.size());
    }

    uint8_t* inTarget(std::vector<uint8_t>& bytes) const { return bytes.data() + kGuard; }
    oracle::Rotation into(std::vector<uint8_t>& bytes) {
        return {source.data(), srcStep, srcRoi, inTarget(bytes), dstStep, dstRoi, angle, typeOf(channels), border};
    }

    static constexpr size_t kGuard = 64;

    int channels;
    IppiSize srcSize;
    IppiRect srcRoi;
    IppiSize dstSize;
    IppiRect dstRoi;
    int srcStep;
    int dstStep;
    std::vector<uint8_t> source;
    std::vector<uint8_t> target;
    double angle;
    float xShift;
    float yShift;
    cv::Scalar border;
};

inline std::ostream& operator<<(std::ostream& out, const IppiRect& r) {
    return out << r.width << 'x' << r.height << '+' << r.x << '+' << r.y;
}

inline std::ostream& operator<<(std::ostream& out, const RotateCase& c) {
    return out << c.channels << " channels, source " << c.srcSize.width << 'x' << c.srcSize.height << " step "
               << c.srcStep << " region " << c.srcRoi << ", destination step " << c.dstStep << " rectangle " << c.dstRoi
               << ", angle " << c.angle << ", shift " << c.xShift << ' ' << c.yShift;
}

inline void expectTurnedLikeOpenCV(RotateCase& c, int interpolation) {
    const std::vector<uint8_t> sourceBefore = c.source;
    std::vector<uint8_t> expected = c.target;
    std::vector<uint8_t> actual = c.target;
    oracle::rotateByOpenCV(c.into(expected), c.xShift, c.yShift);
    ASSERT_EQ(rotate(c.into(actual), c.srcSize, c.xShift, c.yShift, interpolation), ippStsNoErr) << c;
    ASSERT_TRUE(actual == expected) << c;
    ASSERT_TRUE(c.source == sourceBefore) << c;
}

inline void expectTurnedAboutLikeOpenCV(RotateCase& c, double xCentre, double yCentre, int interpolation) {
    const std::vector<uint8_t> sourceBefore = c.source;
    std::vector<uint8_t> expected = c.target;
    std::vector<uint8_t> actual = c.target;
    oracle::rotateAboutByOpenCV(c.into(expected), xCentre, yCentre);
    ASSERT_EQ(rotateAbout(c.into(actual), c.srcSize, xCentre, yCentre, interpolation), ippStsNoErr)
        << c << " centre " << xCentre << ' ' << yCentre;
    ASSERT_TRUE(actual == expected) << c << " centre " << xCentre << ' ' << yCentre;
    ASSERT_TRUE(c.source == sourceBefore) << c;
}
