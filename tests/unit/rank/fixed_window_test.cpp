// The medians with a fixed window: cross, weighted centre and colour.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <functional>
#include <ostream>
#include <vector>

#include "oracle/median.h"
#include "support/fenced_memory.h"
#include "support/guarded_image.h"
#include "support/random.h"

namespace {

struct FixedWindowFilter {
    using Kernel = void (*)(const unsigned char*, int, unsigned char*, int, int, int);
    using EntryPoint = IppStatus (*)(const unsigned char*, int, unsigned char*, int, IppiSize, int);

    const char* name;
    EntryPoint entryPoint;
    int code;    // its last argument
    Kernel kernel;
    int pixelSize;
    int reach;    // pixels from the centre to the window's edge
    std::function<void(const uint8_t* centre, int step, uint8_t* expected)> definition;    // one pixel
};

const FixedWindowFilter kFilters[] = {
    {"Cross3x3", IPPShare_ippiFilterMedianCross_8u_C1R, 33, FilterMedianCross3x3_8u_C1R, 1, 1,
     [](const uint8_t* centre, int step, uint8_t* expected) { *expected = oracle::crossMedian(centre, step, 1); }},
    {"Cross5x5", IPPShare_ippiFilterMedianCross_8u_C1R, 55, FilterMedianCross5x5_8u_C1R, 1, 2,
     [](const uint8_t* centre, int step, uint8_t* expected) { *expected = oracle::crossMedian(centre, step, 2); }},
    {"Weight3", IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R, 3, FilterMedianWeightedCenter3x3_3_8u_C1R, 1, 1,
     [](const uint8_t* centre, int step, uint8_t* expected) { *expected = oracle::weightedMedian(centre, step, 3); }},
    {"Weight5", IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R, 5, FilterMedianWeightedCenter3x3_5_8u_C1R, 1, 1,
     [](const uint8_t* centre, int step, uint8_t* expected) { *expected = oracle::weightedMedian(centre, step, 5); }},
    {"Color3x3", IPPShare_ippiFilterMedianColor_8u_C3R, 33, FilterMedianColor3x3_8u_C3R, 3, 1,
     [](const uint8_t* centre, int step, uint8_t* expected) {
         std::copy_n(oracle::ColorWindow(centre, step).winner(), 3, expected);
     }},
};

void PrintTo(const FixedWindowFilter& filter, std::ostream* out) { *out << filter.name; }

class FixedWindow : public testing::TestWithParam<FixedWindowFilter> {
protected:
    const FixedWindowFilter& filter() const { return GetParam(); }

    std::vector<uint8_t> expectedRow(const GuardedImage& source, int y) const {
        std::vector<uint8_t> row(static_cast<size_t>(source.rowBytes()));
        for (int x = 0; x < source.size().width; ++x)
            filter().definition(source.at(x, y), source.step(), row.data() + ptrdiff_t{x} * filter().pixelSize);
        return row;
    }

    void expectLikeTheDefinition(const GuardedImage& source, GuardedImage& result) const {
        ASSERT_EQ(filter().entryPoint(source.data(), source.step(), result.data(), result.step(), source.size(),
                                      filter().code),
                  ippStsNoErr);
        ASSERT_TRUE(result.untouchedOutsideRegion());
        for (int y = 0; y < source.size().height; ++y)
            ASSERT_EQ(expectedRow(source, y), std::vector<uint8_t>(result.at(0, y), result.at(source.size().width, y)))
                << "row " << y;
    }

    // Steps that are no multiple of the pixel size, too.
    GuardedImage::Layout anyLayout(Random& random, int margin) const {
        return {filter().pixelSize, margin, random.between(0, 17), random.between(0, 31)};
    }

    void expectLikeTheDefinition(Random& random, IppiSize size) const {
        const GuardedImage source(random, size, anyLayout(random, filter().reach), random.anyValues());
        GuardedImage result(random, size, anyLayout(random, 0));
        ASSERT_NO_FATAL_FAILURE(expectLikeTheDefinition(source, result)) << size.width << " x " << size.height;
    }
};

TEST_P(FixedWindow, FiltersEveryNarrowWidthLikeTheDefinition) {
    Random random(201);
    for (int width = 1; width <= 70; ++width)
        for (const int height : {1, 2, 3, 6}) ASSERT_NO_FATAL_FAILURE(expectLikeTheDefinition(random, {width, height}));
}

TEST_P(FixedWindow, FiltersWideRegionsLikeTheDefinition) {
    Random random(202);
    for (int round = 0; round < 40; ++round)
        ASSERT_NO_FATAL_FAILURE(expectLikeTheDefinition(random, {random.between(71, 900), random.between(1, 5)}));
    // One more and one less than a strip of the colour median writes.
    for (const int width : {253, 254, 255, 256, 508, 509, 2480})
        ASSERT_NO_FATAL_FAILURE(expectLikeTheDefinition(random, {width, 3}));
}

IppiPoint cellOfLargeCross(int i) {
    const std::array<IppiPoint, 9> cells = {
        {{0, -2}, {0, -1}, {-2, 0}, {-1, 0}, {0, 0}, {1, 0}, {2, 0}, {0, 1}, {0, 2}}};
    return cells.at(static_cast<size_t>(i));
}

// Every window of black and white pixels. A network of minimum and maximum that is right for these is right for all.
TEST_P(FixedWindow, IsRightForEveryBlackAndWhiteWindow) {
    Random random(203);
    const int side = 2 * filter().reach + 1;
    const IppiSize size = {512 * side, 1};
    GuardedImage source(random, size, {filter().pixelSize, filter().reach, 0, 0});
    const auto fill = [&](int x, int y, bool white) {
        std::fill_n(source.at(x, y), filter().pixelSize, static_cast<uint8_t>(white ? 255 : 0));
    };
    for (int pattern = 0; pattern < 512; ++pattern)
        for (int bit = 0; bit < 9; ++bit) {
            const bool white = (pattern >> bit & 1) != 0;
            const int centre = pattern * side + filter().reach;
            const IppiPoint cell = filter().reach == 1 ? IppiPoint{bit % 3 - 1, bit / 3 - 1} : cellOfLargeCross(bit);
            fill(centre + cell.x, cell.y, white);
        }
    GuardedImage result(random, size, {filter().pixelSize, 0, 0, 0});
    ASSERT_NO_FATAL_FAILURE(expectLikeTheDefinition(source, result));
}

// The source's last byte is the last one a window holds, the destination's the last one written; likewise the first.
TEST_P(FixedWindow, ReadsAndWritesNoByteTooMany) {
    Random random(204);
    const int reach = filter().reach;
    for (const auto fence : {FencedMemory::Fence::kBehind, FencedMemory::Fence::kInFront})
        for (int width = 1; width <= 300; width += width < 70 ? 1 : 23)
            for (int height = 1; height <= 3; ++height) {
                const int step = (width + 2 * reach) * filter().pixelSize;
                FencedMemory source(static_cast<size_t>(step) * static_cast<size_t>(height + 2 * reach), fence);
                random.fill(source.data(), source.size());
                const uint8_t* first = source.data() + ptrdiff_t{step} * reach + ptrdiff_t{filter().pixelSize} * reach;
                const int dstStep = width * filter().pixelSize;
                FencedMemory result(static_cast<size_t>(dstStep) * static_cast<size_t>(height), fence);
                filter().kernel(first, step, result.data(), dstStep, width, height);
                std::array<uint8_t, 3> expected{};
                filter().definition(first, step, expected.data());
                ASSERT_EQ(expected[0], *result.data()) << width << " x " << height;
            }
}

// A cross needs no corner: the row above ends with the last column, and the image with the row below's.
TEST(FixedWindowCross, ReadsNoCorner) {
    for (const int reach : {1, 2})
        for (int width = 1; width <= 100; ++width) {
            const int step = width + 2 * reach;
            const int from = reach;                                // the first row's first needed byte
            const int end = step * (2 * reach) + reach + width;    // one behind the last row's last
            FencedMemory behind(static_cast<size_t>(end), FencedMemory::Fence::kBehind);
            FencedMemory inFront(static_cast<size_t>(end - from), FencedMemory::Fence::kInFront);
            std::vector<uint8_t> result(static_cast<size_t>(width));
            auto* const kernel = reach == 1 ? FilterMedianCross3x3_8u_C1R : FilterMedianCross5x5_8u_C1R;
            const ptrdiff_t first = ptrdiff_t{step} * reach + reach;
            kernel(behind.data() + first, step, result.data(), width, width, 1);
            kernel(inFront.data() + first - from, step, result.data(), width, width, 1);
            EXPECT_EQ(result, std::vector<uint8_t>(static_cast<size_t>(width), 0));
        }
}

TEST_P(FixedWindow, LeavesAUniformImageAsItIs) {
    Random random(205);
    const IppiSize size = {40, 5};
    for (const uint8_t level : std::array<uint8_t, 4>{0, 1, 127, 255}) {
        GuardedImage source(random, size, anyLayout(random, filter().reach));
        for (int y = -filter().reach; y < size.height + filter().reach; ++y)
            std::fill(source.at(-filter().reach, y), source.at(size.width + filter().reach, y), level);
        GuardedImage result(random, size, anyLayout(random, 0));
        ASSERT_EQ(filter().entryPoint(source.data(), source.step(), result.data(), result.step(), size, filter().code),
                  ippStsNoErr);
        for (int y = 0; y < size.height; ++y)
            EXPECT_EQ(std::vector<uint8_t>(result.at(0, y), result.at(size.width, y)),
                      std::vector<uint8_t>(static_cast<size_t>(result.rowBytes()), level));
    }
}

TEST_P(FixedWindow, RefusesBadArguments) {
    Random random(206);
    const int pixelSize = filter().pixelSize;
    const GuardedImage source(random, {10, 2}, {pixelSize, 2, 0, 0});
    GuardedImage result(random, {10, 2}, {pixelSize, 0, 0, 0});
    const auto call = [&](const uint8_t* src, uint8_t* dst, int dstStep, IppiSize size, int code) {
        const IppStatus status = filter().entryPoint(src, source.step(), dst, dstStep, size, code);
        EXPECT_TRUE(result.untouched());
        return status;
    };
    const int step = result.step();
    const int code = filter().code;
    EXPECT_EQ(call(nullptr, result.data(), step, {10, 2}, code), ippStsBadArgErr);
    EXPECT_EQ(call(source.data(), nullptr, step, {10, 2}, code), ippStsBadArgErr);
    for (const IppiSize size : {IppiSize{0, 2}, {10, 0}, {-1, 2}, {10, -1}, {INT_MIN, 2}, {10, INT_MIN}})
        EXPECT_EQ(call(source.data(), result.data(), step, size, code), ippStsBadArgErr);
    EXPECT_EQ(call(source.data(), result.data(), step - 1, {10, 2}, code), ippStsBadArgErr);
    EXPECT_EQ(call(source.data(), result.data(), -step, {10, 2}, code), ippStsBadArgErr);
    // 3 x width would wrap to 2 in 32 bits.
    if (pixelSize == 3) {
        EXPECT_EQ(call(source.data(), result.data(), step, {INT_MAX / 3 * 2 + 2, 1}, code), ippStsBadArgErr);
    }
    for (const int bad : {0, 1, 2, 4, 7, 13, 31, 34, 53, 77, -code, INT_MIN, INT_MAX}) {
        EXPECT_EQ(call(source.data(), result.data(), step, {10, 2}, bad), ippStsBadArgErr) << bad;
        EXPECT_EQ(call(nullptr, result.data(), step, {10, 2}, bad), ippStsBadArgErr) << bad;
    }
    EXPECT_EQ(call(source.data(), result.data(), step, {10, 2}, pixelSize == 3 ? 55 : code + 1), ippStsBadArgErr);

    EXPECT_EQ(filter().entryPoint(source.data(), source.step(), result.data(), step, {10, 2}, code), ippStsNoErr);
    EXPECT_FALSE(result.untouched());
}

// Windows may overlap in memory as the caller likes.
TEST_P(FixedWindow, TakesAnySourceStep) {
    Random random(207);
    std::vector<uint8_t> bytes(400);
    random.fill(bytes.data(), bytes.size());
    const uint8_t* first = bytes.data() + 200;
    for (const int srcStep : {1, 0, -1, -7}) {
        std::vector<uint8_t> result(static_cast<size_t>(10) * static_cast<size_t>(filter().pixelSize));
        ASSERT_EQ(filter().entryPoint(first, srcStep, result.data(), 10 * filter().pixelSize, {10, 1}, filter().code),
                  ippStsNoErr);
        for (int x = 0; x < 10; ++x) {
            std::array<uint8_t, 3> expected{};
            filter().definition(first + ptrdiff_t{x} * filter().pixelSize, srcStep, expected.data());
            EXPECT_EQ(expected[0], result[static_cast<size_t>(x) * static_cast<size_t>(filter().pixelSize)]);
        }
    }
}

TEST_P(FixedWindow, KernelDoesNothingWithoutRows) {
    const std::vector<uint8_t> source(1000, 7);
    std::vector<uint8_t> result(100, 0x55);
    for (const int height : {0, -1, INT_MIN}) {
        filter().kernel(source.data() + 500, 60, result.data(), 60, 20, height);
        filter().kernel(nullptr, 60, nullptr, 60, 20, height);    // nothing is read either
    }
    EXPECT_EQ(result, std::vector<uint8_t>(100, 0x55));
}

INSTANTIATE_TEST_SUITE_P(Filters, FixedWindow, testing::ValuesIn(kFilters),
                         [](const auto& info) { return info.param.name; });

// A 1 x 1 region in a 7 x 7 image of dark pixels, some of them bright.
uint8_t filterOnDark(FixedWindowFilter::EntryPoint entryPoint, int code, const std::vector<IppiPoint>& bright) {
    std::array<uint8_t, 49> image{};
    for (const IppiPoint p : bright) image.data()[(3 + p.y) * 7 + 3 + p.x] = 200;
    uint8_t result = 1;
    EXPECT_EQ(entryPoint(&image[24], 7, &result, 1, {1, 1}, code), ippStsNoErr);
    return result;
}

TEST(FixedWindowCodes, AreThoseOfTheFilterItself) {
    const std::vector<uint8_t> source(1000, 7);
    uint8_t result = 9;
    const auto call = [&](FixedWindowFilter::EntryPoint entryPoint, int code) {
        return entryPoint(source.data() + 500, 60, &result, 3, {1, 1}, code);
    };
    for (const int weight : {3, 5})
        EXPECT_EQ(call(IPPShare_ippiFilterMedianCross_8u_C1R, weight), ippStsBadArgErr) << weight;
    for (const int mask : {33, 55})
        EXPECT_EQ(call(IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R, mask), ippStsBadArgErr) << mask;
    for (const int code : {3, 5, 55}) EXPECT_EQ(call(IPPShare_ippiFilterMedianColor_8u_C3R, code), ippStsBadArgErr);
    EXPECT_EQ(result, 9);
}

TEST(MedianCross, RemovesADotAndKeepsALine) {
    for (const int mask : {33, 55}) {
        auto* const filter = IPPShare_ippiFilterMedianCross_8u_C1R;
        EXPECT_EQ(filterOnDark(filter, mask, {{0, 0}}), 0);
        EXPECT_EQ(filterOnDark(filter, mask, {{-3, 0}, {-2, 0}, {-1, 0}, {0, 0}, {1, 0}, {2, 0}, {3, 0}}), 200);
        EXPECT_EQ(filterOnDark(filter, mask, {{0, -3}, {0, -2}, {0, -1}, {0, 0}, {0, 1}, {0, 2}, {0, 3}}), 200);
    }
}

TEST(MedianWeightedCenter, KeepsADotThatHasEnoughNeighbours) {
    auto* const filter = IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R;
    EXPECT_EQ(filterOnDark(filter, 3, {{0, 0}}), 0);
    EXPECT_EQ(filterOnDark(filter, 5, {{0, 0}}), 0);
    EXPECT_EQ(filterOnDark(filter, 5, {{0, 0}, {1, 0}}), 0);
    EXPECT_EQ(filterOnDark(filter, 3, {{0, 0}, {-1, -1}, {1, 0}}), 0);
    EXPECT_EQ(filterOnDark(filter, 5, {{0, 0}, {-1, -1}, {1, 0}}), 200);
    EXPECT_EQ(filterOnDark(filter, 3, {{0, 0}, {-1, -1}, {1, 0}, {0, 1}}), 200);
}

using Color = std::array<uint8_t, 3>;

Color colorMedianOf(const std::array<Color, 9>& window) {
    std::array<uint8_t, 27> bytes{};
    for (size_t k = 0; k < window.size(); ++k) std::copy(window[k].begin(), window[k].end(), &bytes[3 * k]);
    Color result{};
    EXPECT_EQ(IPPShare_ippiFilterMedianColor_8u_C3R(&bytes[12], 9, result.data(), 3, {1, 1}, 33), ippStsNoErr);
    return result;
}

TEST(MedianColor, TakesTheMajorityOfTwoColors) {
    const Color dark = {10, 10, 10};
    const Color light = {200, 200, 200};
    EXPECT_EQ(colorMedianOf({dark, light, dark, light, dark, light, dark, light, dark}), dark);
    EXPECT_EQ(colorMedianOf({light, light, light, light, dark, dark, dark, dark, dark}), dark);
    EXPECT_EQ(colorMedianOf({light, light, dark, light, dark, light, dark, light, dark}), light);
}

TEST(MedianColor, TakesTheMiddleOfARamp) {
    std::array<Color, 9> ramp{};
    for (size_t k = 0; k < 9; ++k) ramp[k].fill(static_cast<uint8_t>(10 * k));
    EXPECT_EQ(colorMedianOf(ramp), (Color{40, 40, 40}));
}

TEST(MedianColor, TakesTheFirstOfEqualsInRasterOrder) {
    const std::array<Color, 9> thirdAndCentre = {{{0, 20, 30},
                                                  {30, 10, 0},
                                                  {10, 0, 20},
                                                  {20, 0, 10},
                                                  {10, 10, 30},
                                                  {20, 10, 30},
                                                  {10, 0, 10},
                                                  {0, 0, 0},
                                                  {30, 20, 30}}};
    EXPECT_EQ(colorMedianOf(thirdAndCentre), thirdAndCentre[2]);
    const std::array<Color, 9> lastTwo = {{{10, 30, 30},
                                           {30, 30, 20},
                                           {10, 10, 20},
                                           {0, 0, 0},
                                           {20, 30, 0},
                                           {30, 0, 0},
                                           {30, 10, 30},
                                           {20, 30, 20},
                                           {20, 10, 0}}};
    EXPECT_EQ(colorMedianOf(lastTwo), lastTwo[7]);

    // On images of few colours ties are common; each of them must have been met by the tests above.
    Random random(208);
    int ties[9][9] = {};
    for (int round = 0; round < 20000; ++round) {
        std::array<uint8_t, 27> bytes{};
        random.fill(bytes.data(), bytes.size(), Random::Values::kFew);
        const oracle::ColorWindow window(&bytes[12], 9);
        const int* best = std::min_element(window.score, window.score + 9);
        Color result{};
        FilterMedianColor3x3_8u_C3R(&bytes[12], 9, result.data(), 3, 1, 1);
        ASSERT_TRUE(std::equal(result.begin(), result.end(), window.winner()));
        for (int k = 0; k < 9; ++k)
            if (window.score[k] == *best && !std::equal(result.begin(), result.end(), window.pixel[k]))
                ++ties[best - window.score][k];
    }
    for (int first = 0; first < 9; ++first)
        for (int k = first + 1; k < 9; ++k) EXPECT_GT(ties[first][k], 0) << first << " and " << k;
}

TEST(MedianColor, RefusesRowsShorterThanTheRegion) {
    const std::vector<uint8_t> source(600, 9);
    std::vector<uint8_t> result(12, 1);
    auto* const filter = IPPShare_ippiFilterMedianColor_8u_C3R;
    EXPECT_EQ(filter(&source[300], 60, result.data(), 11, {4, 1}, 33), ippStsBadArgErr);
    EXPECT_EQ(result, std::vector<uint8_t>(12, 1));
    EXPECT_EQ(filter(&source[300], 60, result.data(), 12, {4, 1}, 33), ippStsNoErr);
    EXPECT_EQ(result, std::vector<uint8_t>(12, 9));
}

}    // namespace
