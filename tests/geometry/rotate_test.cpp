#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <limits>
#include <ostream>
#include <vector>

#include "OPCV_dlib.h"
#include "oracle/rotation.h"
#include "support/fenced_memory.h"
#include "support/guarded_image.h"
#include "support/random.h"

namespace {

using Bytes = std::vector<uint8_t>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr int kLinear = 2;

int typeOf(int channels) { return CV_MAKETYPE(CV_8U, channels); }

// A source image with a region, a destination image with a rectangle, and how to turn the one into the other.
struct Case {
    Case(Random& random, int longestSide)
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
    // Mostly whole pixels behind a row; sometimes a remainder, by which each further row then moves.
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

    uint8_t* inTarget(Bytes& bytes) const { return bytes.data() + kGuard; }
    oracle::Rotation into(Bytes& bytes) {
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
    Bytes source;
    Bytes target;
    double angle;
    float xShift;
    float yShift;
    cv::Scalar border;
};

std::ostream& operator<<(std::ostream& out, const IppiRect& r) {
    return out << r.width << 'x' << r.height << '+' << r.x << '+' << r.y;
}

std::ostream& operator<<(std::ostream& out, const Case& c) {
    return out << c.channels << " channels, source " << c.srcSize.width << 'x' << c.srcSize.height << " step "
               << c.srcStep << " region " << c.srcRoi << ", destination step " << c.dstStep << " rectangle " << c.dstRoi
               << ", angle " << c.angle << ", shift " << c.xShift << ' ' << c.yShift;
}

void expectTurnedLikeOpenCV(Case& c, int interpolation) {
    const Bytes sourceBefore = c.source;
    Bytes expected = c.target;
    Bytes actual = c.target;
    oracle::rotateByOpenCV(c.into(expected), c.xShift, c.yShift);
    ASSERT_EQ(ippiRotate(c.source.data(), c.srcSize, c.srcStep, c.srcRoi, c.inTarget(actual), c.dstStep, c.dstRoi,
                         c.angle, c.xShift, c.yShift, interpolation, typeOf(c.channels), c.border),
              ippStsNoErr)
        << c;
    ASSERT_TRUE(actual == expected) << c;
    ASSERT_TRUE(c.source == sourceBefore) << c;
}

void expectTurnedAboutLikeOpenCV(Case& c, double xCentre, double yCentre, int interpolation) {
    const Bytes sourceBefore = c.source;
    Bytes expected = c.target;
    Bytes actual = c.target;
    oracle::rotateAboutByOpenCV(c.into(expected), xCentre, yCentre);
    ASSERT_EQ(ippiRotateCenter(c.source.data(), c.srcSize, c.srcStep, c.srcRoi, c.inTarget(actual), c.dstStep, c.dstRoi,
                               c.angle, xCentre, yCentre, interpolation, typeOf(c.channels), c.border),
              ippStsNoErr)
        << c << " centre " << xCentre << ' ' << yCentre;
    ASSERT_TRUE(actual == expected) << c << " centre " << xCentre << ' ' << yCentre;
    ASSERT_TRUE(c.source == sourceBefore) << c;
}

TEST(Rotate, IsTheFrameOfOpenCVCalls) {
    Random random(301);
    for (int round = 0; round < 1200; ++round) {
        Case c(random, round % 2 == 0 ? 20 : 120);
        ASSERT_NO_FATAL_FAILURE(expectTurnedLikeOpenCV(c, random.between(-9, 9)));
    }
}

TEST(RotateCenter, IsTheFrameOfOpenCVCalls) {
    Random random(302);
    for (int round = 0; round < 1200; ++round) {
        Case c(random, round % 2 == 0 ? 20 : 120);
        const bool inside = random.chance(50);
        const double x = inside ? (c.srcRoi.width - 1) * 0.5 : random.real(-300, 300);
        const double y = inside ? (c.srcRoi.height - 1) * 0.5 : random.real(-300, 300);
        ASSERT_NO_FATAL_FAILURE(expectTurnedAboutLikeOpenCV(c, x, y, random.between(-9, 9)));
    }
}

// Large enough for several strips of columns, for bands of rows and for groups of every kind.
TEST(Rotate, IsTheFrameOfOpenCVCallsOnLargeImages) {
    Random random(313);
    for (int round = 0; round < 24; ++round) {
        Case c(random, 1000);
        ASSERT_NO_FATAL_FAILURE(expectTurnedLikeOpenCV(c, kLinear));
        ASSERT_NO_FATAL_FAILURE(expectTurnedAboutLikeOpenCV(c, c.srcRoi.width * 0.5, c.srcRoi.height * 0.5, kLinear));
    }
    for (const int channels : {1, 3, 4})
        for (const double angle : {0.5, -2.3, 9.0, 40.0}) {
            Case c(random, 40);
            c.reshape(channels, {800, 500}, {900, 520});
            c.angle = angle;
            ASSERT_NO_FATAL_FAILURE(expectTurnedLikeOpenCV(c, kLinear));
            ASSERT_NO_FATAL_FAILURE(expectTurnedAboutLikeOpenCV(c, 399.5, 249.5, kLinear));
        }
}

// Groups of neighbouring bytes become smaller as the angle grows, at some angle for each pixel size.
TEST(Rotate, IsTheFrameOfOpenCVCallsAtEveryAngle) {
    Random random(314);
    for (const int channels : {1, 3, 4})
        for (int step = -250; step <= 250; ++step) {
            Case c(random, 40);
            c.reshape(channels, {90, 30}, {90, 30});
            c.angle = step * 0.2;
            c.xShift = static_cast<float>(random.between(-20, 20));
            c.yShift = static_cast<float>(random.between(-40, 40));
            ASSERT_NO_FATAL_FAILURE(expectTurnedLikeOpenCV(c, kLinear));
        }
}

TEST(Rotate, IsTheFrameOfOpenCVCallsOnTheLongestRows) {
    Random random(315);
    for (const int channels : {1, 3})
        for (const double angle : {0.001, -0.002, 0.01, 5.0}) {
            Case c(random, 40);
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
        Case c(random, 60);
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
            const double angle = Case::anyAngle(random);
            ASSERT_EQ(
                ippiRotate(source.data(), from, from.width * channels, {0, 0, from.width, from.height}, target.data(),
                           to.width * channels, {0, 0, to.width, to.height}, angle, Case::anyShift(random, 60),
                           Case::anyShift(random, 60), kLinear, typeOf(channels), cv::Scalar(1, 2, 3, 4)),
                ippStsNoErr);
            ASSERT_EQ(ippiRotateCenter(source.data(), from, from.width * channels, {0, 0, from.width, from.height},
                                       target.data(), to.width * channels,
                                       {0, 0, std::min(to.width, from.width), to.height}, angle, random.real(-20, 120),
                                       random.real(-20, 80), kLinear, typeOf(channels), cv::Scalar(1, 2, 3, 4)),
                      ippStsNoErr);
        }
}

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

TEST(Rotate, PutsEachPixelWhereGeometrySays) {
    Random random(303);
    for (int round = 0; round < 40; ++round) {
        SmoothImage source({random.between(30, 90), random.between(30, 90)}, round % 2 == 0 ? 1 : 3);
        const IppiRect all = {0, 0, source.size.width, source.size.height};
        const SmoothImage target({random.between(30, 120), random.between(30, 120)}, source.channels);
        Bytes turned(target.bytes.size());
        const double angle = random.chance(50) ? random.real(-5, 5) : random.real(-360, 360);
        const int dx = random.between(-80, 80);
        const int dy = random.between(-80, 80);
        const cv::Scalar border(10, 200, 90);
        ASSERT_EQ(ippiRotate(source.bytes.data(), source.size, source.step(), all, turned.data(), target.step(),
                             {0, 0, target.size.width, target.size.height}, angle, static_cast<float>(dx),
                             static_cast<float>(dy), kLinear, typeOf(source.channels), border),
                  ippStsNoErr);
        for (int y = 0; y < target.size.height; ++y)
            for (int x = 0; x < target.size.width; ++x) {
                const oracle::Point p = oracle::beforeTurn({double(x - dx), double(y - dy)}, {0, 0}, angle);
                for (int k = 0; k < source.channels; ++k) {
                    const auto at = [&](int sx, int sy) { return source.atOr(border[k], sx, sy, k); };
                    ASSERT_TRUE(oracle::isNear(turned[target.indexOf(x, y, k)], at, p))
                        << "round " << round << " angle " << angle << " pixel " << x << ' ' << y;
                }
            }
    }
}

TEST(RotateCenter, PutsEachPixelWhereGeometrySays) {
    Random random(304);
    for (int round = 0; round < 40; ++round) {
        SmoothImage source({random.between(30, 90), random.between(30, 90)}, round % 2 == 0 ? 1 : 3);
        const IppiRect all = {0, 0, source.size.width, source.size.height};
        Bytes turned(source.bytes.size());
        const double angle = random.chance(50) ? random.real(-5, 5) : random.real(-360, 360);
        const oracle::Point centre = {random.between(-60, 240) / 2.0, random.between(-60, 240) / 2.0};
        const cv::Scalar border(10, 200, 90);
        ASSERT_EQ(ippiRotateCenter(source.bytes.data(), source.size, source.step(), all, turned.data(), source.step(),
                                   all, angle, centre.x, centre.y, kLinear, typeOf(source.channels), border),
                  ippStsNoErr);
        for (int y = 0; y < source.size.height; ++y)
            for (int x = 0; x < source.size.width; ++x) {
                const oracle::Point p = oracle::beforeTurn({double(x), double(y)}, centre, angle);
                for (int k = 0; k < source.channels; ++k) {
                    const auto at = [&](int sx, int sy) { return source.atOr(border[k], sx, sy, k); };
                    ASSERT_TRUE(oracle::isNear(turned[source.indexOf(x, y, k)], at, p))
                        << "round " << round << " angle " << angle << " pixel " << x << ' ' << y;
                }
            }
    }
}

TEST(Rotate, WithoutTurnOrShiftCopies) {
    Random random(305);
    for (const int channels : {1, 3, 4}) {
        const GuardedImage source(random, {37, 21}, {channels, 3, 0, 5});
        GuardedImage target(random, {37, 21}, {channels, 2, 0, 1});
        ASSERT_EQ(ippiRotate(source.data(), source.size(), source.step(), {0, 0, 37, 21}, target.data(), target.step(),
                             {0, 0, 37, 21}, 0, 0, 0, kLinear, typeOf(channels), cv::Scalar::all(9)),
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
    EXPECT_EQ(ippiRotate(image.data(), {6, 4}, 6, {2, 1, 3, 2}, out.data(), target.width,
                         {0, 0, target.width, target.height}, 0, xShift, yShift, kLinear, CV_8UC1, cv::Scalar(99)),
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
    ASSERT_EQ(ippiRotate(image.data(), {20, 8}, 20, {5, 0, 10, 8}, out.data(), 10, {0, 0, 10, 9}, 8, 0, 0, kLinear,
                         CV_8UC1, cv::Scalar(0)),
              ippStsNoErr);
    for (const uint8_t v : out) EXPECT_LE(v, 200);
    EXPECT_EQ(out[0], 200);
    EXPECT_EQ(out[10 * 8], 0);
}

TEST(Rotate, EveryBorderComponentIsRoundedAndClamped) {
    Bytes pixel = {1, 2, 3, 4};
    Bytes out(8);
    ASSERT_EQ(ippiRotate(pixel.data(), {1, 1}, 4, {0, 0, 1, 1}, out.data(), 8, {0, 0, 2, 1}, 0, 0, 0, kLinear, CV_8UC4,
                         cv::Scalar(-7, 300, 12.5, 13.5)),
              ippStsNoErr);
    EXPECT_EQ(out, (Bytes{1, 2, 3, 4, 0, 255, 12, 14}));
}

TEST(RotateCenter, LargerRectangleIsFilledInPart) {
    Random random(306);
    const GuardedImage source(random, {12, 9}, {});
    GuardedImage target(random, {30, 20}, {});
    ASSERT_EQ(ippiRotateCenter(source.data(), {12, 9}, source.step(), {0, 0, 12, 9}, target.data(), target.step(),
                               {4, 5, 20, 14}, 0, 5.5, 4, kLinear, CV_8UC1, cv::Scalar(0)),
              ippStsNoErr);
    EXPECT_TRUE(target.untouchedOutside(4, 5, 12, 9));
    for (int y = 0; y < 9; ++y)
        EXPECT_EQ(Bytes(source.at(0, y), source.at(12, y)), Bytes(target.at(4, 5 + y), target.at(16, 5 + y)));
}

TEST(RotateCenter, SeesNothingAroundTheRegion) {
    Bytes image(30 * 30, 200);
    for (size_t y = 10; y < 20; ++y) std::fill_n(image.begin() + static_cast<ptrdiff_t>(30 * y + 10), 10, uint8_t{0});
    Bytes out(100, 77);
    ASSERT_EQ(ippiRotateCenter(image.data(), {30, 30}, 30, {10, 10, 10, 10}, out.data(), 10, {0, 0, 10, 10}, 30, 4.5,
                               4.5, kLinear, CV_8UC1, cv::Scalar(0)),
              ippStsNoErr);
    EXPECT_EQ(out, Bytes(100, 0));
}

TEST(Rotate, PositiveAngleTurnsCounterClockwiseOnScreen) {
    // A dot right of the corner goes up; with the corner moved into the middle it stays in sight.
    Bytes image(21 * 21);
    image[7] = 255;
    Bytes out(21 * 21);
    ASSERT_EQ(KVMac_ippiRotate_8u_C1R(image.data(), {21, 21}, 21, {0, 0, 21, 21}, out.data(), 21, {0, 0, 21, 21}, 90,
                                      10, 10, kLinear),
              noErr);
    EXPECT_EQ(out[21 * 3 + 10], 255);
    EXPECT_EQ(std::count(out.begin(), out.end(), 0), 21 * 21 - 1);
}

TEST(Rotate, SourceMayOverlapTheDestination) {
    Random random(307);
    for (int round = 0; round < 40; ++round) {
        Case c(random, 60);
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
        ASSERT_EQ(ippiRotate(actual.data(), c.srcSize, 50, c.srcRoi, actual.data(), 50, c.dstRoi, c.angle, c.xShift,
                             c.yShift, kLinear, CV_8UC1, c.border),
                  ippStsNoErr);
        ASSERT_EQ(actual, expected) << c;

        expected = image;
        oracle::rotateAboutByOpenCV(
            {unchanged.data(), 50, c.srcRoi, expected.data(), 50, c.dstRoi, c.angle, CV_8UC1, c.border}, 10, 12);
        actual = image;
        ASSERT_EQ(ippiRotateCenter(actual.data(), c.srcSize, 50, c.srcRoi, actual.data(), 50, c.dstRoi, c.angle, 10, 12,
                                   kLinear, CV_8UC1, c.border),
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
        ASSERT_EQ(ippiRotate(source.data(), {40, 30}, step, all, actual.data(), step, all, 11, 4, -3, kLinear, type,
                             cv::Scalar(1, 2, 3)),
                  ippStsNoErr);
        EXPECT_EQ(actual, expected) << type;
    }
    for (const double angle : {kNaN, kInfinity, -kInfinity, 1e300, -1e18, 1e-320}) {
        Case c(random, 40);
        c.angle = angle;
        ASSERT_NO_FATAL_FAILURE(expectTurnedLikeOpenCV(c, kLinear));
        ASSERT_NO_FATAL_FAILURE(expectTurnedAboutLikeOpenCV(c, 7, 5, kLinear));
    }
    for (const double centre : {1e5, -3e6, 1e9, -1e30, 1e300, kInfinity, kNaN}) {
        Case c(random, 40);
        ASSERT_NO_FATAL_FAILURE(expectTurnedAboutLikeOpenCV(c, centre, 5, kLinear));
        ASSERT_NO_FATAL_FAILURE(expectTurnedAboutLikeOpenCV(c, 5, centre, kLinear));
    }
}

TEST(Rotate, LeavesImagesThatAreTooLongToOpenCV) {
    Bytes row(32766, 7);
    Bytes out(32766, 1);
    EXPECT_EQ(ippiRotate(row.data(), {32766, 1}, 32766, {0, 0, 32766, 1}, out.data(), 32766, {0, 0, 32766, 1}, 0, 0, 0,
                         kLinear, CV_8UC1, cv::Scalar()),
              ippStsNoErr);
    EXPECT_EQ(out, row);
    out.assign(32766, 1);
    EXPECT_THROW(ippiRotate(row.data(), {32766, 1}, 32766, {0, 0, 32766, 1}, out.data(), 32766, {0, 0, 32766, 1}, 0, 1,
                            0, kLinear, CV_8UC1, cv::Scalar()),
                 cv::Exception);
    EXPECT_EQ(out, Bytes(32766, 1));
}

// Everything that a status depends on, good until a test spoils it.
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
        checked(general, ippiRotate(src, c.srcSize, c.srcStep, c.srcRoi, dst, c.dstStep, c.dstRoi, c.angle,
                                    static_cast<float>(c.xShift), static_cast<float>(c.yShift), kLinear, c.type,
                                    cv::Scalar::all(255)));
        checked(about, ippiRotateCenter(src, c.srcSize, c.srcStep, c.srcRoi, dst, c.dstStep, c.dstRoi, c.angle,
                                        c.xShift, c.yShift, kLinear, c.type, cv::Scalar::all(255)));
        if (c.type != CV_8UC1 && c.type != CV_8UC3) return;
        const OSErr err = (c.type == CV_8UC1 ? KVMac_ippiRotate_8u_C1R : KVMac_ippiRotate_8u_C3R)(
            src, c.srcSize, c.srcStep, c.srcRoi, dst, c.dstStep, c.dstRoi, c.angle, c.xShift, c.yShift, kLinear);
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
                ippiRotate(source_.data(), c.srcSize, c.srcStep, c.srcRoi, dst, c.dstStep, c.dstRoi, c.angle,
                           static_cast<float>(c.xShift), static_cast<float>(c.yShift), kLinear, c.type, cv::Scalar()),
                ippStsBadArgErr);
            EXPECT_EQ(KVMac_ippiRotate_8u_C1R(source_.data(), c.srcSize, c.srcStep, c.srcRoi, dst, c.dstStep, c.dstRoi,
                                              c.angle, c.xShift, c.yShift, kLinear),
                      paramErr);
            EXPECT_TRUE(target_.untouched());
        };
        refused();
        std::swap(c.xShift, c.yShift);
        refused();
    }
}

TEST_F(RotateStatus, WorkImageBeyondTheRangeOfInt) {
    // The shift itself fits; region or rectangle behind it do not.
    Call c;
    c.xShift = 2147483520.0;
    c.srcSize.width = c.srcRoi.width = 200;
    c.srcStep = 400;
    EXPECT_EQ(ippiRotate(source_.data(), c.srcSize, c.srcStep, {0, 0, 200, 1}, target_.data(), c.dstStep, c.dstRoi, 0,
                         static_cast<float>(c.xShift), 0, kLinear, c.type, cv::Scalar()),
              ippStsBadArgErr);
    EXPECT_EQ(ippiRotate(source_.data(), {1, 10}, 1, {0, 0, 1, 10}, target_.data(), 20, {0, 0, 1, INT_MAX}, 0, 0,
                         -2147483520.0F, kLinear, c.type, cv::Scalar()),
              ippStsBadArgErr);
    EXPECT_TRUE(target_.untouched());
}

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

TEST(KVMacRotate, IsRotateOnBlackWithShiftsAsFloat) {
    Random random(312);
    for (int round = 0; round < 200; ++round) {
        Case c(random, 60);
        if (c.channels == 4) continue;
        c.border = cv::Scalar::all(0);
        // Below a half as double, a half as float.
        const double xShift = round % 4 == 0 ? 0.49999999999 : double{c.xShift};
        const double yShift = round % 4 == 1 ? -2.49999999999 : double{c.yShift};
        Bytes expected = c.target;
        Bytes actual = c.target;
        oracle::rotateByOpenCV(c.into(expected), static_cast<float>(xShift), static_cast<float>(yShift));
        ASSERT_EQ((c.channels == 1 ? KVMac_ippiRotate_8u_C1R : KVMac_ippiRotate_8u_C3R)(
                      c.source.data(), c.srcSize, c.srcStep, c.srcRoi, c.inTarget(actual), c.dstStep, c.dstRoi, c.angle,
                      xShift, yShift, random.between(-9, 9)),
                  noErr);
        ASSERT_TRUE(actual == expected) << c;
    }
}

}    // namespace
