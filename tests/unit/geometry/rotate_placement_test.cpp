// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The position of each pixel after a rotation, and the values where the source has no pixel.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "OPCV_dlib.h"
#include "geometry/rotate_call.h"
#include "geometry/rotate_case.h"
#include "oracle/rotation.h"
#include "support/guarded_image.h"
#include "support/random.h"

namespace {

using Bytes = std::vector<uint8_t>;

// A smooth image, so that a wrong place shows and the cut of positions does not.
uint8_t smooth(int x, int y, int channel) {
    return static_cast<uint8_t>(
        std::lround(128 + 50 * std::sin(0.13 * x + channel) + 60 * std::cos(0.11 * y - 0.07 * x)));
}

struct SmoothImage {
    SmoothImage(IppiSize imageSize, int imageChannels)
        : size(imageSize),
          channels(imageChannels),
          bytes(static_cast<size_t>(imageSize.width) * static_cast<size_t>(imageSize.height) *
                static_cast<size_t>(imageChannels)) {
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x)
                for (int k = 0; k < channels; ++k) bytes[indexOf(x, y, k)] = smooth(x, y, k);
    }

    int step() const { return size.width * channels; }
    size_t indexOf(int x, int y, int channel) const {
        return static_cast<size_t>(y) * static_cast<size_t>(step()) + static_cast<size_t>(x * channels + channel);
    }
    double atOr(double border, int x, int y, int channel) const {
        const bool inside = x >= 0 && y >= 0 && x < size.width && y < size.height;
        return inside ? bytes[indexOf(x, y, channel)] : border;
    }

    IppiSize size;
    int channels;
    Bytes bytes;
};

// Packed rows, each pixel of which shows the point of the source that `pointOf(x, y)` names, or the border around it.
template <class PointOf>
void expectShown(const Bytes& turned, IppiSize size, const SmoothImage& source, const cv::Scalar& border,
                 PointOf pointOf) {
    auto value = turned.begin();
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            const oracle::Point p = pointOf(x, y);
            for (int k = 0; k < source.channels; ++k) {
                const auto at = [&](int sx, int sy) { return source.atOr(border[k], sx, sy, k); };
                ASSERT_TRUE(oracle::isNear(*value++, at, p)) << "pixel " << x << ' ' << y;
            }
        }
}

TEST(Rotate, PutsEachPixelWhereGeometrySays) {
    Random random(303);
    for (int round = 0; round < 40; ++round) {
        SmoothImage source({random.between(30, 90), random.between(30, 90)}, round % 2 == 0 ? 1 : 3);
        const IppiRect all = wholeOf(source.size);
        const IppiSize size = {random.between(30, 120), random.between(30, 120)};
        const int step = size.width * source.channels;
        Bytes turned(static_cast<size_t>(step) * static_cast<size_t>(size.height));
        const double angle = random.chance(50) ? random.real(-5, 5) : random.real(-360, 360);
        const int dx = random.between(-80, 80);
        const int dy = random.between(-80, 80);
        const cv::Scalar border(10, 200, 90);
        ASSERT_EQ(rotate({source.bytes.data(), source.step(), all, turned.data(), step, wholeOf(size), angle,
                          typeOf(source.channels), border},
                         source.size, static_cast<float>(dx), static_cast<float>(dy)),
                  ippStsNoErr);
        const auto pointOf = [&](int x, int y) {
            return oracle::beforeTurn({double(x - dx), double(y - dy)}, {0, 0}, angle);
        };
        ASSERT_NO_FATAL_FAILURE(expectShown(turned, size, source, border, pointOf))
            << "round " << round << " angle " << angle;
    }
}

TEST(RotateCenter, PutsEachPixelWhereGeometrySays) {
    Random random(304);
    for (int round = 0; round < 40; ++round) {
        SmoothImage source({random.between(30, 90), random.between(30, 90)}, round % 2 == 0 ? 1 : 3);
        const IppiRect all = wholeOf(source.size);
        Bytes turned(source.bytes.size());
        const double angle = random.chance(50) ? random.real(-5, 5) : random.real(-360, 360);
        const oracle::Point centre = {random.between(-60, 240) / 2.0, random.between(-60, 240) / 2.0};
        const cv::Scalar border(10, 200, 90);
        ASSERT_EQ(rotateAbout({source.bytes.data(), source.step(), all, turned.data(), source.step(), all, angle,
                               typeOf(source.channels), border},
                              source.size, centre.x, centre.y),
                  ippStsNoErr);
        const auto pointOf = [&](int x, int y) { return oracle::beforeTurn({double(x), double(y)}, centre, angle); };
        ASSERT_NO_FATAL_FAILURE(expectShown(turned, source.size, source, border, pointOf))
            << "round " << round << " angle " << angle;
    }
}

TEST(Rotate, WithoutTurnOrShiftCopies) {
    Random random(305);
    for (const int channels : {1, 3, 4}) {
        const GuardedImage source(random, {37, 21}, {channels, 3, 0, 5});
        GuardedImage target(random, {37, 21}, {channels, 2, 0, 1});
        const IppiRect all = wholeOf(source.size());
        ASSERT_EQ(rotate({source.data(), source.step(), all, target.data(), target.step(), all, 0, typeOf(channels),
                          cv::Scalar::all(9)},
                         source.size(), 0, 0),
                  ippStsNoErr);
        EXPECT_TRUE(target.untouchedOutsideRegion());
        for (int y = 0; y < 21; ++y)
            EXPECT_EQ(Bytes(source.at(0, y), source.at(37, y)), Bytes(target.at(0, y), target.at(37, y)));
    }
}

// The region {2, 1, 3, 2} of an image of 6 x 4 pixels, moved by a shift, without turning.
Bytes moved(float xShift, float yShift, IppiSize target) {
    Bytes image(24);
    for (size_t i = 0; i < image.size(); ++i) image[i] = static_cast<uint8_t>(i);
    Bytes out(static_cast<size_t>(target.width) * static_cast<size_t>(target.height));
    EXPECT_EQ(
        rotate({image.data(), 6, {2, 1, 3, 2}, out.data(), target.width, wholeOf(target), 0, CV_8UC1, cv::Scalar(99)},
               {6, 4}, xShift, yShift),
        ippStsNoErr);
    return out;
}

TEST(Rotate, RoundsHalvesOfAShiftAwayFromZero) {
    EXPECT_EQ(moved(0.5F, 0.5F, {3, 2}), moved(1, 1, {3, 2}));
    EXPECT_EQ(moved(-0.5F, -0.5F, {3, 2}), moved(-1, -1, {3, 2}));
    EXPECT_EQ(moved(1.5F, -1.5F, {3, 2}), moved(2, -2, {3, 2}));
    EXPECT_EQ(moved(2.5F, 0, {3, 2}), moved(3, 0, {3, 2}));
    // The largest float below a half: adding a half to it in single precision would round up to 1.
    const float belowHalf = std::nextafter(0.5F, 0.0F);
    EXPECT_EQ(moved(belowHalf, -belowHalf, {3, 2}), moved(0, 0, {3, 2}));
    EXPECT_NE(moved(1, 0, {3, 2}), moved(0, 0, {3, 2}));
    EXPECT_NE(moved(0, 1, {3, 2}), moved(0, 0, {3, 2}));
}

TEST(Rotate, NegativeShiftReadsFurtherInWithoutPadding) {
    // Row and column 1 of the region come first; one column and one row more than the region holds are padded, the
    // column with what the image holds there.
    EXPECT_EQ(moved(-1, -1, {2, 1}), (Bytes{15, 16}));
    EXPECT_EQ(moved(-1, -1, {3, 2}), (Bytes{15, 16, 17, 99, 99, 99}));
}

TEST(Rotate, PositiveShiftPadsWithTheImageThenTheBorder) {
    EXPECT_EQ(moved(1, 0, {3, 2}), (Bytes{7, 8, 9, 13, 14, 15}));
    EXPECT_EQ(moved(3, 2, {4, 3}), (Bytes{99, 99, 99, 99, 99, 0, 1, 2, 99, 6, 7, 8}));
}

TEST(Rotate, LargerRectanglePadsRightAndBelow) {
    EXPECT_EQ(moved(0, 0, {3, 2}), (Bytes{8, 9, 10, 14, 15, 16}));
    // Right of the region the image goes on for one column; below it ends for the frame, wherever it really ends.
    EXPECT_EQ(moved(0, 0, {5, 3}), (Bytes{8, 9, 10, 11, 99, 14, 15, 16, 17, 99, 99, 99, 99, 99, 99}));
}

TEST(Rotate, PaddingOnOneSideShowsTheImageOnThatSideOnly) {
    // Padded below only, and turned a little: what the image holds left and right of the region stays unseen.
    Bytes image(20 * 8, 250);
    for (size_t y = 0; y < 8; ++y) std::fill_n(image.begin() + static_cast<ptrdiff_t>(20 * y + 5), 10, uint8_t{200});
    Bytes out(10 * 9);
    ASSERT_EQ(rotate({image.data(), 20, {5, 0, 10, 8}, out.data(), 10, {0, 0, 10, 9}, 8, CV_8UC1, cv::Scalar(0)},
                     {20, 8}, 0, 0),
              ippStsNoErr);
    for (const uint8_t v : out) EXPECT_LE(v, 200);
    EXPECT_EQ(out[0], 200);
    EXPECT_EQ(out[10 * 8], 0);
}

TEST(Rotate, EveryBorderComponentIsRoundedAndClamped) {
    Bytes pixel = {1, 2, 3, 4};
    Bytes out(8);
    ASSERT_EQ(
        rotate(
            {pixel.data(), 4, {0, 0, 1, 1}, out.data(), 8, {0, 0, 2, 1}, 0, CV_8UC4, cv::Scalar(-7, 300, 12.5, 13.5)},
            {1, 1}, 0, 0),
        ippStsNoErr);
    EXPECT_EQ(out, (Bytes{1, 2, 3, 4, 0, 255, 12, 14}));
}

TEST(RotateCenter, LargerRectangleIsFilledInPart) {
    Random random(306);
    const GuardedImage source(random, {12, 9}, {});
    GuardedImage target(random, {30, 20}, {});
    const IppiRect at = {4, 5, 20, 14};
    ASSERT_EQ(rotateAbout({source.data(), source.step(), wholeOf(source.size()), target.data(), target.step(), at, 0,
                           CV_8UC1, cv::Scalar(0)},
                          {12, 9}, 5.5, 4),
              ippStsNoErr);
    EXPECT_TRUE(target.untouchedOutside(4, 5, 12, 9));
    for (int y = 0; y < 9; ++y)
        EXPECT_EQ(Bytes(source.at(0, y), source.at(12, y)), Bytes(target.at(4, 5 + y), target.at(16, 5 + y)));
}

TEST(RotateCenter, SeesNothingAroundTheRegion) {
    Bytes image(30 * 30, 200);
    for (size_t y = 10; y < 20; ++y) std::fill_n(image.begin() + static_cast<ptrdiff_t>(30 * y + 10), 10, uint8_t{0});
    Bytes out(100, 77);
    ASSERT_EQ(
        rotateAbout({image.data(), 30, {10, 10, 10, 10}, out.data(), 10, {0, 0, 10, 10}, 30, CV_8UC1, cv::Scalar(0)},
                    {30, 30}, 4.5, 4.5),
        ippStsNoErr);
    EXPECT_EQ(out, Bytes(100, 0));
}

TEST(Rotate, PositiveAngleTurnsCounterClockwiseOnScreen) {
    // A dot right of the corner goes up; with the corner moved into the middle it stays in sight.
    Bytes image(21 * 21);
    image[7] = 255;
    Bytes out(21 * 21);
    ASSERT_EQ(rotateOnBlack({image.data(), 21, {0, 0, 21, 21}, out.data(), 21, {0, 0, 21, 21}, 90, CV_8UC1, {}},
                            {21, 21}, 10, 10),
              noErr);
    EXPECT_EQ(out[21 * 3 + 10], 255);
    EXPECT_EQ(std::count(out.begin(), out.end(), 0), 21 * 21 - 1);
}

}    // namespace
