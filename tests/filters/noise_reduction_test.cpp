#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <limits>
#include <opencv2/core/utility.hpp>
#include <vector>

#include "OPCV_dlib.h"
#include "oracle/filters.h"
#include "oracle/plain_filters.h"
#include "support/fenced_memory.h"
#include "support/guarded_image.h"
#include "support/random.h"

namespace {

float anySquareSigma(Random& random) {
    switch (random.between(0, 3)) {
        case 0: return 1.0F;
        case 1: return static_cast<float>(96 * random.between(1, 10));
        case 2: return static_cast<float>(random.real(0.01, 5));
        default: return static_cast<float>(random.real(1, 5000));
    }
}

// Noise of some grey levels, so that neighbours weigh in.
void smooth(Random& random, GuardedImage& image, int margin, int levels) {
    const int base = random.between(0, 255 - levels);
    for (int y = -margin; y < image.size().height + margin; ++y)
        for (int x = -margin; x < image.size().width + margin; ++x)
            *image.at(x, y) = static_cast<uint8_t>(base + random.between(0, levels));
}

::testing::AssertionResult sameRows(const GuardedImage& a, const GuardedImage& b) {
    for (int y = 0; y < a.size().height; ++y)
        for (int x = 0; x < a.rowBytes(); ++x)
            if (a.at(0, y)[x] != b.at(0, y)[x])
                return ::testing::AssertionFailure() << "byte " << x << " of row " << y << " is " << int{a.at(0, y)[x]}
                                                     << " instead of " << int{b.at(0, y)[x]};
    return ::testing::AssertionSuccess();
}

void expectBilateral(Random& random, IppiSize size, int side, float colorSquareSigma, float spaceSquareSigma) {
    const int margin = side / 2 + 2;
    GuardedImage src(random, size, GuardedImage::anyLayout(random, 1, margin), random.anyValues());
    if (random.chance(60)) smooth(random, src, margin, random.between(1, 60));
    GuardedImage dst(random, size, GuardedImage::anyLayout(random, 1));
    GuardedImage expected(random, size, {});
    ASSERT_EQ(OPCV_ippiFilterBilateral_8u_C1R(src.data(), src.step(), dst.data(), dst.step(), size, {side, side},
                                              colorSquareSigma, spaceSquareSigma),
              ippStsNoErr);
    ASSERT_TRUE(dst.untouchedOutsideRegion());
    oracle::plainBilateral(src.data(), src.step(), expected.data(), expected.step(), size, side, colorSquareSigma,
                           spaceSquareSigma);
    ASSERT_TRUE(sameRows(dst, expected)) << "side " << side << " size " << size.width << "x" << size.height
                                         << " sigmas " << colorSquareSigma << " " << spaceSquareSigma;
    if (side == 1) return;    // filters with 3x3 pixels and a border of OpenCV's
    const auto at = [&](int x, int y) { return *src.at(x, y); };
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x)
            ASSERT_LE(
                std::abs(*dst.at(x, y) - oracle::bilateralMean(at, x, y, side, colorSquareSigma, spaceSquareSigma)),
                0.501);
}

TEST(Bilateral, GivesWhatOpenCVAndTheDefinitionGive) {
    Random random(641);
    for (const int side : {3, 5, 7, 9, 1})
        for (int round = 0; round < (side <= 5 ? 120 : 20); ++round) {
            const IppiSize size = {random.chance(92) ? random.between(1, 90) : random.between(90, 1300),
                                   random.between(1, 6)};
            expectBilateral(random, size, side, anySquareSigma(random), anySquareSigma(random));
            if (HasFatalFailure()) return;
        }
}

TEST(Bilateral, LongRowsAreFilteredInStrips) {
    Random random(657);
    for (const int side : {3, 5})
        for (const int width : {480, 481, 2560, 2570, 5200}) {
            expectBilateral(random, {width, 2}, side, 96, 96);
            if (HasFatalFailure()) return;
        }
}

// The last columns of a view are summed in another order than the others; every remainder is met here.
TEST(Bilateral, EveryWidthIsFilteredToItsEnd) {
    Random random(642);
    for (const int side : {3, 5})
        for (int width = 1; width <= 80; ++width) {
            expectBilateral(random, {width, 6}, side, static_cast<float>(96 * random.between(1, 10)),
                            anySquareSigma(random));
            if (HasFatalFailure()) return;
        }
}

// Neighbourhoods whose mean falls to the other side of a half when it is summed up in raster order instead of four cells
// at a time, as happens in the last columns of a view: about one in a hundred thousand does.
struct Neighbourhood {
    int radius;
    int strength;
    std::vector<int> cells;    // within the radius, in raster order
};

const std::vector<Neighbourhood> kNeighbourhoods = {
    {1, 2, {199, 190, 180, 199, 192}},
    {1, 2, {118, 113, 129, 106, 132}},
    {1, 2, {198, 207, 188, 207, 200}},
    {1, 2, {180, 154, 177, 161, 166}},
    {2, 7, {159, 145, 142, 160, 163, 152, 143, 158, 163, 155, 145, 158, 164}},
    {2, 7, {156, 148, 153, 150, 143, 146, 146, 163, 148, 146, 171, 153, 144}},
    {2, 7, {178, 176, 191, 170, 166, 171, 170, 184, 171, 165, 180, 170, 184}},
    {2, 7, {199, 189, 186, 187, 189, 176, 182, 187, 176, 202, 196, 204, 188}},
};

// Rows just high enough for one row of results, grey but for the neighbourhood.
std::vector<uint8_t> imageOf(const Neighbourhood& neighbourhood, int width, int column) {
    const int radius = neighbourhood.radius;
    std::vector<uint8_t> image(static_cast<size_t>(width * (2 * radius + 1)), 150);
    size_t cell = 0;
    for (int j = -radius; j <= radius; ++j)
        for (int i = -radius; i <= radius; ++i)
            if (i * i + j * j <= radius * radius)
                image.data()[(radius + j) * width + column + i] = static_cast<uint8_t>(neighbourhood.cells[cell++]);
    return image;
}

TEST(Bilateral, TheLastColumnsAreSummedAsOpenCVSums) {
    for (const Neighbourhood& neighbourhood : kNeighbourhoods) {
        const int radius = neighbourhood.radius;
        const int side = 2 * radius + 1;
        const auto squareSigma = static_cast<float>(96 * neighbourhood.strength);
        // In every column of views that fill vectors and such that do not.
        for (int width = side; width <= 20; ++width)
            for (int column = radius; column < width - radius; ++column) {
                const std::vector<uint8_t> src = imageOf(neighbourhood, width, column);
                std::vector<uint8_t> dst(src.size());
                std::vector<uint8_t> expected(src.size());
                const uint8_t* first = src.data() + radius * (width + 1);
                const IppiSize roi = {width - 2 * radius, 1};
                ASSERT_EQ(OPCV_ippiFilterBilateral_8u_C1R(first, width, dst.data(), width, roi, {side, side},
                                                          squareSigma, squareSigma),
                          ippStsNoErr);
                oracle::plainBilateral(first, width, expected.data(), width, roi, side, squareSigma, squareSigma);
                ASSERT_EQ(dst, expected) << "radius " << radius << " width " << width << " column " << column;
            }
    }
}

// The same in each channel of a packed image, next to flat channels.
TEST(DeosNrRGB, SumsAsOpenCVSums) {
    for (size_t i = 0; i < kNeighbourhoods.size(); ++i) {
        const Neighbourhood& neighbourhood = kNeighbourhoods[i];
        const int radius = neighbourhood.radius;
        const int side = 2 * radius + 1;
        const auto squareSigma = static_cast<float>(96 * neighbourhood.strength);
        for (int width = 8; width <= 40; width += 4)
            for (int column = radius; column < width - radius; ++column)
                for (int channel = 0; channel < 3; ++channel) {
                    const std::vector<uint8_t> plane = imageOf(neighbourhood, width, column);
                    std::vector<uint8_t> src(3 * plane.size(), 90);
                    for (size_t k = 0; k < plane.size(); ++k) src[3 * k + static_cast<size_t>(channel)] = plane[k];
                    std::vector<uint8_t> dst(src.size());
                    std::vector<uint8_t> expected(src.size());
                    ASSERT_EQ(
                        DeosNrRGB(src.data(), dst.data(), width, side, radius == 2 ? 2 : 0, neighbourhood.strength), 0);
                    oracle::plainNoiseReduction24(src.data(), expected.data(), {width, side}, side, squareSigma);
                    ASSERT_EQ(dst, expected) << "neighbourhood " << i << " width " << width << " column " << column;
                }
    }
}

// Above about 65000 pixels bands of rows are filtered side by side.
TEST(Bilateral, LargeRegionsAreFilteredAlikeOnAnyNumberOfThreads) {
    Random random(643);
    const int threads = cv::getNumThreads();
    for (const int count : {1, 3}) {
        cv::setNumThreads(count);
        for (const int side : {3, 5}) {
            const GuardedImage src(random, {331, 257}, {1, 2, 0, 0}, Random::Values::kFew);
            GuardedImage dst(random, {331, 257}, {});
            GuardedImage expected(random, {331, 257}, {});
            ASSERT_EQ(OPCV_ippiFilterBilateral_8u_C1R(src.data(), src.step(), dst.data(), dst.step(), src.size(),
                                                      {side, side}, 96, 96),
                      ippStsNoErr);
            oracle::plainBilateral(src.data(), src.step(), expected.data(), expected.step(), src.size(), side, 96, 96);
            EXPECT_TRUE(sameRows(dst, expected));
        }
    }
    cv::setNumThreads(threads);
}

TEST(Bilateral, UnusualSigmasGiveWhatOpenCVGives) {
    Random random(644);
    const GuardedImage src(random, {40, 6}, {1, 2, 0, 0});
    for (const float color : {0.0F, -1.0F, 1e-30F, 1e30F, std::numeric_limits<float>::infinity(),
                              std::numeric_limits<float>::quiet_NaN(), 50.0F})
        for (const float space : {0.0F, -1.0F, 1e-30F, 1e30F, std::numeric_limits<float>::infinity(), 50.0F})
            for (const int side : {3, 5}) {
                GuardedImage dst(random, src.size(), {});
                GuardedImage expected(random, src.size(), {});
                ASSERT_EQ(OPCV_ippiFilterBilateral_8u_C1R(src.data(), src.step(), dst.data(), dst.step(), src.size(),
                                                          {side, side}, color, space),
                          ippStsNoErr);
                oracle::plainBilateral(src.data(), src.step(), expected.data(), expected.step(), src.size(), side,
                                       color, space);
                EXPECT_TRUE(sameRows(dst, expected)) << color << " " << space;
            }
}

TEST(Bilateral, ReadsAndWritesNoByteTooMany) {
    Random random(645);
    for (const auto fence : {FencedMemory::Fence::kBehind, FencedMemory::Fence::kInFront})
        for (const int side : {3, 5, 7})
            for (int width = 1; width <= 50; ++width) {
                const int height = random.between(1, 3);
                const int row = width + side - 1;
                const int step = row + random.between(0, 3);
                FencedMemory src(static_cast<size_t>(step * (height + side - 2) + row), fence);
                FencedMemory dst(static_cast<size_t>((width + 1) * (height - 1) + width), fence);
                random.fill(src.data(), src.size());
                ASSERT_EQ(OPCV_ippiFilterBilateral_8u_C1R(src.data() + side / 2 * (step + 1), step, dst.data(),
                                                          width + 1, {width, height}, {side, side}, 96, 96),
                          ippStsNoErr);
            }
}

TEST(Bilateral, SourceAndDestinationMayOverlap) {
    Random random(646);
    for (const int side : {3, 5})
        for (const int shift : {0, 1, -1, 2}) {
            GuardedImage image(random, {70, 9}, {1, 5, 0, 0}, Random::Values::kFew);
            GuardedImage expected(random, {70, 9}, {});
            oracle::plainBilateral(image.data(), image.step(), expected.data(), expected.step(), {70, 9}, side, 96, 96);
            ASSERT_EQ(OPCV_ippiFilterBilateral_8u_C1R(image.data(), image.step(), image.at(shift, shift), image.step(),
                                                      {70, 9}, {side, side}, 96, 96),
                      ippStsNoErr);
            for (int y = 0; y < 9; ++y)
                ASSERT_EQ(std::memcmp(image.at(shift, y + shift), expected.at(0, y), 70), 0) << shift;
        }
}

TEST(Bilateral, RefusesBadArguments) {
    Random random(647);
    const GuardedImage src(random, {20, 5}, {1, 4, 0, 0});
    GuardedImage dst(random, {20, 5}, {});
    const auto refused = [&](const uint8_t* from, int srcStep, uint8_t* to, int dstStep, IppiSize roi,
                             IppiSize kernel) {
        const IppStatus status = OPCV_ippiFilterBilateral_8u_C1R(from, srcStep, to, dstStep, roi, kernel, 96, 96);
        EXPECT_TRUE(dst.untouched());
        return status == ippStsBadArgErr;
    };
    EXPECT_TRUE(refused(nullptr, src.step(), dst.data(), 20, {20, 5}, {3, 3}));
    EXPECT_TRUE(refused(src.data(), src.step(), nullptr, 20, {20, 5}, {3, 3}));
    for (const IppiSize kernel :
         {IppiSize{4, 4}, {3, 5}, {5, 3}, {0, 0}, {-1, -1}, {-3, -3}, {2, 2}, {INT_MIN, INT_MIN}})
        EXPECT_TRUE(refused(src.data(), src.step(), dst.data(), 20, {20, 5}, kernel)) << kernel.width;
    for (const IppiSize roi : {IppiSize{0, 5}, {20, 0}, {-1, 5}, {20, -1}, {-1, -1}, {INT_MAX, 1}, {1, INT_MAX}})
        EXPECT_TRUE(refused(src.data(), src.step(), dst.data(), 20, roi, {3, 3})) << roi.width;
    EXPECT_TRUE(refused(src.data(), 21, dst.data(), 20, {20, 5}, {3, 3}));
    EXPECT_TRUE(refused(src.data(), -src.step(), dst.data(), 20, {20, 5}, {3, 3}));
    EXPECT_TRUE(refused(src.data(), src.step(), dst.data(), 19, {20, 5}, {3, 3}));
}

TEST(DeosNr, FiltersTheInsideAndLeavesTheRing) {
    Random random(648);
    for (const int mode : {0, 1, 2, 3, -1})
        for (int strength = 0; strength <= 10; ++strength) {
            const int inset = mode == 2 ? 2 : 1;
            const IppiSize size = {random.between(2 * inset + 1, 80), random.between(2 * inset + 1, 12)};
            const GuardedImage src(random, size, {1, 0, 0, random.between(0, 31)}, random.anyValues());
            GuardedImage dst(random, size, {1, 0, 0, random.between(0, 31)});
            GuardedImage expected = dst;
            DeosNr(src.data(), dst.data(), size, mode, strength);
            const auto squareSigma = static_cast<float>(strength == 0 ? 1 : 96 * strength);
            oracle::plainBilateral(src.at(inset, inset), size.width, expected.at(inset, inset), size.width,
                                   {size.width - 2 * inset, size.height - 2 * inset}, 2 * inset + 1, squareSigma,
                                   squareSigma);
            ASSERT_TRUE(sameRows(dst, expected)) << "mode " << mode << " strength " << strength;
            ASSERT_TRUE(dst.untouchedOutsideRegion());
        }
}

TEST(DeosNr, SourceMayBeDestination) {
    Random random(649);
    GuardedImage image(random, {80, 9}, {}, Random::Values::kFew);
    GuardedImage expected = image;
    DeosNr(image.data(), expected.data(), image.size(), 2, 5);
    DeosNr(image.data(), image.data(), image.size(), 2, 5);
    EXPECT_TRUE(sameRows(image, expected));
}

TEST(DeosNr, AFlatImageStaysFlat) {
    for (const int mode : {0, 2})
        for (int strength = 0; strength <= 10; ++strength)
            for (const int value : {0, 1, 127, 255}) {
                const std::vector<uint8_t> src(40 * 7, static_cast<uint8_t>(value));
                std::vector<uint8_t> dst = src;
                DeosNr(src.data(), dst.data(), {40, 7}, mode, strength);
                ASSERT_EQ(dst, src);
            }
}

TEST(DeosNr, StrengthZeroStillFilters) {
    std::vector<uint8_t> src(9 * 9, 100);
    src[40] = 101;
    std::vector<uint8_t> dst(9 * 9);
    DeosNr(src.data(), dst.data(), {9, 9}, 0, 0);
    EXPECT_EQ(dst[40], 100);
}

TEST(DeosNr, DoesNothingWithoutAnImage) {
    Random random(650);
    const GuardedImage src(random, {20, 5}, {});
    GuardedImage dst(random, {20, 5}, {});
    DeosNr(nullptr, dst.data(), {20, 5}, 0, 5);
    DeosNr(src.data(), nullptr, {20, 5}, 0, 5);
    for (const IppiSize size : {IppiSize{2, 5}, {20, 2}, {0, 0}, {-5, 5}, {5, -5}, {INT_MIN, INT_MIN}})
        DeosNr(src.data(), dst.data(), size, 0, 5);
    for (const IppiSize size : {IppiSize{4, 5}, {20, 4}}) DeosNr(src.data(), dst.data(), size, 2, 5);
    EXPECT_TRUE(dst.untouched());
}

TEST(DeosNrRGB, FiltersEachChannel) {
    Random random(651);
    for (const int mode : {0, 1, 2})
        for (int strength = 0; strength <= 10; ++strength)
            for (int round = 0; round < 4; ++round) {
                const int side = mode == 2 ? 5 : 3;
                const IppiSize size = {4 * random.between(side / 2 + 1, 30), random.between(side, 12)};
                const GuardedImage src(random, size, {3, 0, 0, random.between(0, 31)}, random.anyValues());
                GuardedImage dst(random, size, {3, 0, 0, random.between(0, 31)});
                GuardedImage expected(random, size, {3, 0, 0, 0});
                ASSERT_EQ(DeosNrRGB(src.data(), dst.data(), size.width, size.height, mode, strength), 0);
                oracle::plainNoiseReduction24(src.data(), expected.data(), size, side,
                                              static_cast<float>(strength == 0 ? 1 : 96 * strength));
                ASSERT_TRUE(sameRows(dst, expected)) << "mode " << mode << " strength " << strength;
                ASSERT_TRUE(dst.untouchedOutsideRegion());
            }
}

TEST(DeosNrRGB, LargeImagesAreFilteredAlikeOnAnyNumberOfThreads) {
    Random random(652);
    const int threads = cv::getNumThreads();
    const IppiSize size = {180, 190};
    for (const int count : {1, 3}) {
        cv::setNumThreads(count);
        for (const int mode : {1, 2}) {
            const GuardedImage src(random, size, {3, 0, 0, 0}, Random::Values::kFew);
            GuardedImage dst(random, size, {3, 0, 0, 0});
            GuardedImage expected(random, size, {3, 0, 0, 0});
            ASSERT_EQ(DeosNrRGB(src.data(), dst.data(), size.width, size.height, mode, 3), 0);
            oracle::plainNoiseReduction24(src.data(), expected.data(), size, mode == 2 ? 5 : 3, 288);
            EXPECT_TRUE(sameRows(dst, expected));
        }
    }
    cv::setNumThreads(threads);
}

TEST(DeosNrRGB, AnImageThatIsAllRingIsCopied) {
    Random random(653);
    for (const IppiSize size : {IppiSize{4, 1}, {4, 2}, {8, 2}, {4, 4}, {4, 9}, {40, 4}}) {
        const GuardedImage src(random, size, {3, 0, 0, 0});
        GuardedImage dst(random, size, {3, 0, 0, 0});
        ASSERT_EQ(DeosNrRGB(src.data(), dst.data(), size.width, size.height, 2, 3), 0);
        EXPECT_TRUE(sameRows(dst, src)) << size.width << "x" << size.height;
        EXPECT_TRUE(dst.untouchedOutsideRegion());
    }
}

TEST(DeosNrRGB, SourceAndDestinationMayOverlap) {
    Random random(654);
    const IppiSize size = {60, 9};
    for (const int shift : {0, 1, -1, 180}) {
        std::vector<uint8_t> bytes(3 * 60 * 9 + 600);
        random.fill(bytes.data(), bytes.size(), Random::Values::kFew);
        uint8_t* src = bytes.data() + 300;
        std::vector<uint8_t> expected(3 * 60 * 9);
        oracle::plainNoiseReduction24(src, expected.data(), size, 5, 192);
        ASSERT_EQ(DeosNrRGB(src, src + shift, 60, 9, 2, 2), 0);
        EXPECT_EQ(std::memcmp(src + shift, expected.data(), expected.size()), 0) << shift;
    }
}

TEST(DeosNrRGB, ReadsAndWritesNoByteTooMany) {
    Random random(655);
    for (const auto fence : {FencedMemory::Fence::kBehind, FencedMemory::Fence::kInFront})
        for (const int mode : {1, 2})
            for (int width = 4; width <= 60; width += 4) {
                const int height = random.between(1, 7);
                FencedMemory src(static_cast<size_t>(3 * width * height), fence);
                FencedMemory dst(src.size(), fence);
                random.fill(src.data(), src.size());
                ASSERT_EQ(DeosNrRGB(src.data(), dst.data(), width, height, mode, 4), 0);
            }
}

TEST(DeosNrRGB, AnswersBadArgumentsInItsOrder) {
    Random random(656);
    const GuardedImage src(random, {8, 5}, {3, 0, 0, 0});
    GuardedImage dst(random, {8, 5}, {3, 0, 0, 0});
    const auto call = [&](const uint8_t* from, uint8_t* to, int width, int height, int mode, int strength) {
        const int result = DeosNrRGB(from, to, width, height, mode, strength);
        EXPECT_TRUE(dst.untouched());
        return result;
    };
    for (const int mode : {3, -1, INT_MIN, INT_MAX}) EXPECT_EQ(call(src.data(), dst.data(), 6, 5, mode, 11), 1);
    for (const int strength : {11, -1, INT_MIN, INT_MAX}) EXPECT_EQ(call(src.data(), dst.data(), 6, 5, 2, strength), 2);
    for (const int width : {6, 5, 7, 1, -1, INT_MAX}) EXPECT_EQ(call(src.data(), dst.data(), width, 5, 0, 10), 3);
    EXPECT_EQ(call(nullptr, nullptr, 6, 5, 0, 0), 3);
    EXPECT_EQ(call(nullptr, dst.data(), 8, 5, 0, 0), 0);
    EXPECT_EQ(call(src.data(), nullptr, 8, 5, 0, 0), 0);
    EXPECT_EQ(call(src.data(), dst.data(), 0, 5, 0, 0), 0);
    EXPECT_EQ(call(src.data(), dst.data(), -4, 5, 0, 0), 0);
    EXPECT_EQ(call(src.data(), dst.data(), 8, 0, 0, 0), 0);
    EXPECT_EQ(call(src.data(), dst.data(), 8, -1, 0, 0), 0);
    EXPECT_EQ(call(src.data(), dst.data(), 46400, 15500, 0, 0), 0);
}

}    // namespace
