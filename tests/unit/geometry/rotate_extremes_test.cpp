// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Rotation at the limits of fixed-point positions, centres and sides: the bytes equal OpenCV's, and images that are too
// long throw OpenCV's exception.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "OPCV_dlib.h"
#include "geometry/rotate_call.h"
#include "oracle/rotation.h"
#include "support/random.h"

namespace {

using Bytes = std::vector<uint8_t>;

struct Picture {
    Picture(IppiSize imageSize, int pixelType)
        : size(imageSize),
          type(pixelType),
          step(imageSize.width * static_cast<int>(CV_ELEM_SIZE(pixelType))),
          pixels(static_cast<size_t>(step) * static_cast<size_t>(imageSize.height)) {
        Random random(static_cast<unsigned>(imageSize.width + imageSize.height + pixelType));
        random.fill(pixels.data(), pixels.size());
    }
    IppiRect all() const { return {0, 0, size.width, size.height}; }
    oracle::Rotation into(Bytes& target, double angle) {
        return {pixels.data(), step, all(), target.data(), step, all(), angle, type, cv::Scalar(9, 99, 199)};
    }

    IppiSize size;
    int type;
    int step;
    Bytes pixels;
};

void expectTurnedAboutLikeOpenCV(Picture& picture, double angle, double xCentre, double yCentre) {
    Bytes expected(picture.pixels.size(), 1);
    Bytes actual = expected;
    oracle::rotateAboutByOpenCV(picture.into(expected, angle), xCentre, yCentre);
    ASSERT_EQ(rotateAbout(picture.into(actual, angle), picture.size, xCentre, yCentre), ippStsNoErr);
    ASSERT_EQ(actual, expected) << "type " << picture.type << " angle " << angle << " centre " << xCentre << ' '
                                << yCentre;
}

void expectTurnedLikeOpenCV(Picture& picture, double angle, float xShift, float yShift) {
    Bytes expected(picture.pixels.size(), 1);
    Bytes actual = expected;
    oracle::rotateByOpenCV(picture.into(expected, angle), xShift, yShift);
    ASSERT_EQ(rotate(picture.into(actual, angle), picture.size, xShift, yShift), ippStsNoErr);
    ASSERT_EQ(actual, expected) << "type " << picture.type << " angle " << angle << " shift " << xShift << ' '
                                << yShift;
}

// A turn by 180 degrees puts the source of column x at 2 centre - x: with such centres, exactly halfway between two of
// the 1024 positions a pixel (ties go to the even one), or between two of the 32.
TEST(RotateCenter, BreaksTiesOfPositionsLikeOpenCV) {
    for (const int type : {CV_8UC1, CV_8UC3, CV_8UC4}) {
        Picture picture({37, 11}, type);
        for (int i = 0; i < 64; ++i) {
            const double halfUnit = i / 4096.0;
            const double halfStep = i / 128.0;
            for (const double fraction : {halfUnit, halfStep, halfUnit + 1.0 / 128}) {
                ASSERT_NO_FATAL_FAILURE(expectTurnedAboutLikeOpenCV(picture, 180, 18 + fraction, 5 + fraction));
                ASSERT_NO_FATAL_FAILURE(expectTurnedAboutLikeOpenCV(picture, 90, 18 + fraction, 5 - fraction));
                ASSERT_NO_FATAL_FAILURE(expectTurnedAboutLikeOpenCV(picture, -90, 18 - fraction, 5));
            }
        }
    }
}

// The direct method is limited to offsets of about 2^19 pixels; each axis is tested separately.
TEST(RotateCenter, TakesFarCentresOnEachAxis) {
    for (const int type : {CV_8UC1, CV_8UC3, CV_8UC4}) {
        Picture picture({61, 23}, type);
        for (const double far : {3e4, 2.62e5, 2.63e5, 5.24e5, 5.25e5, 1.05e6, 2.1e6, 3e8})
            for (const double sign : {1.0, -1.0})
                for (const double angle : {0.0, 1e-5, 0.002, 180.0}) {
                    ASSERT_NO_FATAL_FAILURE(expectTurnedAboutLikeOpenCV(picture, angle, sign * far, 4));
                    ASSERT_NO_FATAL_FAILURE(expectTurnedAboutLikeOpenCV(picture, angle, 4, sign * far));
                    ASSERT_NO_FATAL_FAILURE(expectTurnedAboutLikeOpenCV(picture, angle, sign * far, sign * far));
                }
    }
}

// No kernel knows two channels, at any angle.
TEST(Rotate, TwoChannelsAtSteepAngles) {
    Picture picture({53, 41}, CV_8UC2);
    for (const double angle : {0.5, 17.0, 44.9, 45.0, 61.0, 89.5, 90.0, 133.0, -75.0}) {
        ASSERT_NO_FATAL_FAILURE(expectTurnedLikeOpenCV(picture, angle, 11, -8));
        ASSERT_NO_FATAL_FAILURE(expectTurnedAboutLikeOpenCV(picture, angle, 26, 20));
    }
}

constexpr int kTooLong = 32767;

IppStatus moved(const Picture& picture, Bytes& out, float xShift, float yShift) {
    return rotate({picture.pixels.data(), picture.step, picture.all(), out.data(), picture.step, picture.all(), 0,
                   picture.type, cv::Scalar()},
                  picture.size, xShift, yShift);
}

TEST(Rotate, ThrowsForImagesThatAreTooTallOrTooWide) {
    for (const bool tall : {true, false}) {
        const IppiSize longest = tall ? IppiSize{2, kTooLong - 1} : IppiSize{kTooLong - 1, 2};
        Picture picture(longest, CV_8UC1);
        Bytes out(picture.pixels.size(), 1);
        EXPECT_EQ(moved(picture, out, 0, 0), ippStsNoErr);
        EXPECT_EQ(out, picture.pixels);

        // Moved by a pixel along its long side, the region has to be enlarged by one.
        out.assign(out.size(), 1);
        EXPECT_THROW(moved(picture, out, tall ? 0 : 1, tall ? 1 : 0), cv::Exception);
        EXPECT_EQ(out, Bytes(out.size(), 1));
        EXPECT_EQ(moved(picture, out, tall ? 1 : 0, tall ? 0 : 1), ippStsNoErr);

        Picture tooLong(tall ? IppiSize{2, kTooLong} : IppiSize{kTooLong, 2}, CV_8UC1);
        Bytes untouched(tooLong.pixels.size(), 1);
        EXPECT_THROW(moved(tooLong, untouched, 0, 0), cv::Exception);
        EXPECT_THROW(rotateAbout({tooLong.pixels.data(), tooLong.step, tooLong.all(), untouched.data(), tooLong.step,
                                  tooLong.all(), 0, tooLong.type, cv::Scalar()},
                                 tooLong.size, 1, 1),
                     cv::Exception);
        EXPECT_EQ(untouched, Bytes(untouched.size(), 1));
    }
}

}    // namespace
