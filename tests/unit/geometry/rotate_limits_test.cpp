// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The limits of the method that computes only the target's pixels.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "OPCV_dlib.h"
#include "geometry/rotate_call.h"
#include "oracle/rotation.h"
#include "support/random.h"

namespace {

using Bytes = std::vector<uint8_t>;

// A region and a target with packed rows, somewhere in the same bytes or in others.
struct Place {
    uint8_t* pixels;
    IppiSize size;

    IppiRect all() const { return {0, 0, size.width, size.height}; }
};

IppStatus rotated(const Place& from, const Place& to, int channels, double angle, float xShift, float yShift) {
    return rotate({from.pixels, from.size.width * channels, from.all(), to.pixels, to.size.width * channels, to.all(),
                   angle, CV_MAKETYPE(CV_8U, channels), cv::Scalar(9, 99, 199, 77)},
                  from.size, xShift, yShift);
}

void rotateByOracle(const Place& from, const Place& to, int channels, double angle, float xShift, float yShift) {
    oracle::rotateByOpenCV({from.pixels, from.size.width * channels, from.all(), to.pixels, to.size.width * channels,
                            to.all(), angle, CV_MAKETYPE(CV_8U, channels), cv::Scalar(9, 99, 199, 77)},
                           xShift, yShift);
}

Bytes anyBytes(unsigned seed, size_t count) {
    Bytes bytes(count);
    Random(seed).fill(bytes.data(), count);
    return bytes;
}

// The last column of a group may be behind by one pixel. At these angles it is behind by exactly one, in groups of 8,
// 16 and 32 bytes of each pixel size.
TEST(Rotate, EqualsOpenCVCallsWhereGroupsBecomeSmaller) {
    constexpr IppiSize kSize = {131, 23};
    for (const int channels : {1, 3, 4})
        for (const int group : {8, 16, 32})
            for (int step = -6; step <= 6; ++step) {
                const int lastPixel = (group + channels - 2) / channels;
                const double angle = std::acos(1 - (1 + step / 4096.0) / lastPixel) * 180 / oracle::kPi;
                Bytes source = anyBytes(391, size_t{131} * 23 * 4);
                for (const double signedAngle : {angle, -angle})
                    for (const float shift : {0.0F, 17.0F, -9.0F}) {
                        Bytes expected(source.size(), 1);
                        Bytes actual = expected;
                        const Place from = {source.data(), kSize};
                        rotateByOracle(from, {expected.data(), kSize}, channels, signedAngle, shift, shift);
                        ASSERT_EQ(rotated(from, {actual.data(), kSize}, channels, signedAngle, shift, shift),
                                  ippStsNoErr);
                        ASSERT_EQ(actual, expected) << channels << " channels, angle " << signedAngle;
                    }
            }
}

// Some positions of these rotations are so close to the middle between two grid positions that a single rounding in
// their sums decides.
TEST(Rotate, EqualsOpenCVCallsCloseToTies) {
    constexpr IppiSize kSize = {131, 23};
    Bytes source = anyBytes(391, size_t{131} * 23 * 4);
    const Place from = {source.data(), kSize};
    for (const double angle : {35.030394461447088, 26.08476408639179, 30.927159642628649, 30.99495898684129})
        for (const double signedAngle : {angle, -angle})
            for (const float shift : {0.0F, 17.0F, -9.0F}) {
                Bytes expected(source.size(), 1);
                Bytes actual = expected;
                rotateByOracle(from, {expected.data(), kSize}, 1, signedAngle, shift, shift);
                ASSERT_EQ(rotated(from, {actual.data(), kSize}, 1, signedAngle, shift, shift), ippStsNoErr);
                ASSERT_EQ(actual, expected) << "angle " << signedAngle << " shift " << shift;
            }
}

// A target that begins with the source's last byte, or ends with its first.
TEST(Rotate, OneSharedByteIsAnOverlap) {
    constexpr IppiSize kSize = {50, 7};
    constexpr size_t kBytes = 350;
    for (const bool behind : {true, false})
        for (const double angle : {0.0, 180.0, 3.0}) {
            const Bytes before = anyBytes(392, 2 * kBytes - 1);
            const size_t source = behind ? 0 : kBytes - 1;
            const size_t target = behind ? kBytes - 1 : 0;
            Bytes unchanged = before;
            Bytes expected = before;
            Bytes actual = before;
            const float shift = angle == 180 ? 40 : 0;
            rotateByOracle({unchanged.data() + source, kSize}, {expected.data() + target, kSize}, 1, angle, shift, 0);
            ASSERT_EQ(rotated({actual.data() + source, kSize}, {actual.data() + target, kSize}, 1, angle, shift, 0),
                      ippStsNoErr);
            EXPECT_EQ(actual, expected) << behind << ' ' << angle;
        }
}

// A region that is moved far into a long target is padded to the target's length and no further.
TEST(Rotate, ALongTargetIsNotPaddedTwice) {
    constexpr int kLong = 20000;
    constexpr int kShift = 15000;
    for (const bool tall : {true, false}) {
        const IppiSize size = tall ? IppiSize{1, kLong} : IppiSize{kLong, 1};
        Bytes source = anyBytes(393, 10);
        Bytes target(kLong);
        const IppiSize piece = tall ? IppiSize{1, 10} : IppiSize{10, 1};
        ASSERT_EQ(rotated({source.data(), piece}, {target.data(), size}, 1, 0, tall ? 0 : kShift, tall ? kShift : 0),
                  ippStsNoErr);
        Bytes expected(kLong, 9);
        std::copy(source.begin(), source.end(), expected.begin() + kShift);
        EXPECT_EQ(target, expected) << tall;
    }
}

}    // namespace
