// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <opencv2/imgproc.hpp>
#include <ostream>
#include <vector>

#include "OPCV_dlib.h"
#include "oracle/morphology.h"
#include "support/fenced_memory.h"
#include "support/guarded_image.h"
#include "support/random.h"
#include "support/shared_byte.h"

namespace {

constexpr int kMargin = 24;

std::vector<uint8_t> rowOf(const GuardedImage& image, int y) {
    return {image.at(0, y), image.at(image.size().width, y)};
}

struct Mask {
    IppiSize size;
    std::vector<uint8_t> cells;

    static Mask full(IppiSize size) {
        return {size, std::vector<uint8_t>(static_cast<size_t>(size.width) * static_cast<size_t>(size.height), 1)};
    }
    // Some cells, at least one, of any value but 0.
    static Mask any(Random& random, IppiSize size) {
        Mask mask = full(size);
        const int density = random.between(0, 100);
        for (uint8_t& cell : mask.cells)
            cell = static_cast<uint8_t>(random.chance(density) ? random.between(1, 255) : 0);
        mask.cells[static_cast<size_t>(random.between(0, static_cast<int>(mask.cells.size()) - 1))] = 255;
        return mask;
    }
};

// The four entry points, called alike. Maximum and minimum take full masks only.
struct Filter {
    const char* name;
    bool largest;
    bool takesMask;

    IppStatus operator()(const uint8_t* src, int srcStep, uint8_t* dst, int dstStep, IppiSize size,
                         const uint8_t* cells, IppiSize maskSize, IppiPoint anchor) const {
        if (takesMask) {
            auto* const filter = largest ? IPPShare_ippiDilate_8u_C1R : IPPShare_ippiErode_8u_C1R;
            return filter(src, srcStep, dst, dstStep, size, cells, maskSize, anchor);
        }
        auto* const filter = largest ? IPPMini_ippiFilterMax_8u_C1R : IPPMini_ippiFilterMin_8u_C1R;
        return filter(src, srcStep, dst, dstStep, size, maskSize, anchor);
    }
};

void PrintTo(const Filter& filter, std::ostream* out) { *out << filter.name; }

class Morphology : public testing::TestWithParam<Filter> {
protected:
    static const Filter& filter() { return GetParam(); }

    static Mask anyMask(Random& random, IppiSize size) {
        return filter().takesMask && random.chance(80) ? Mask::any(random, size) : Mask::full(size);
    }

    static std::vector<uint8_t> expectedRow(const GuardedImage& source, int y, const Mask& mask, IppiPoint anchor) {
        std::vector<uint8_t> row;
        for (int x = 0; x < source.size().width; ++x)
            row.push_back(oracle::extremeUnder(source.at(x - anchor.x, y - anchor.y), source.step(), mask.cells.data(),
                                               mask.size.width, mask.size.height, filter().largest));
        return row;
    }

    static void expectLikeTheDefinition(Random& random, IppiSize size, const Mask& mask, IppiPoint anchor) {
        const GuardedImage source(random, size, GuardedImage::anyLayout(random, 1, kMargin + mask.size.width),
                                  random.anyValues());
        GuardedImage result(random, size, GuardedImage::anyLayout(random, 1));
        ASSERT_EQ(filter()(source.data(), source.step(), result.data(), result.step(), size, mask.cells.data(),
                           mask.size, anchor),
                  ippStsNoErr);
        ASSERT_TRUE(result.untouchedOutsideRegion());
        for (int y = 0; y < size.height; ++y)
            ASSERT_EQ(expectedRow(source, y, mask, anchor), rowOf(result, y))
                << size.width << " x " << size.height << " row " << y << " mask " << mask.size.width << " x "
                << mask.size.height << " anchor " << anchor.x << ", " << anchor.y;
    }

    static void expectLikeTheDefinitionUnderItsCentre(Random& random, IppiSize size, const Mask& mask) {
        const IppiSize side = mask.size;
        const IppiPoint centre = {side.width / 2, side.height / 2};
        const int margin = std::max(side.width, side.height);
        const GuardedImage source(random, size, GuardedImage::anyLayout(random, 1, margin));
        GuardedImage result(random, size, GuardedImage::anyLayout(random, 1));
        ASSERT_EQ(filter()(source.data(), source.step(), result.data(), result.step(), size, mask.cells.data(),
                           mask.size, centre),
                  ippStsNoErr);
        ASSERT_TRUE(result.untouchedOutsideRegion());
        for (int y = 0; y < size.height; ++y)
            ASSERT_EQ(expectedRow(source, y, mask, centre), rowOf(result, y))
                << side.width << " x " << side.height << " row " << y;
    }
};

TEST_P(Morphology, FiltersLikeTheDefinition) {
    Random random(401);
    for (int width = 1; width <= 70; ++width)
        for (int round = 0; round < 4; ++round) {
            const Mask mask = anyMask(random, {random.between(1, 9), random.between(1, 9)});
            const IppiPoint anchor = random.chance(70) ? IppiPoint{random.between(0, mask.size.width - 1),
                                                                   random.between(0, mask.size.height - 1)}
                                                       : IppiPoint{random.between(-12, 20), random.between(-12, 20)};
            ASSERT_NO_FATAL_FAILURE(expectLikeTheDefinition(random, {width, random.between(1, 20)}, mask, anchor));
        }
    for (int round = 0; round < 30; ++round) {
        const Mask mask = anyMask(random, {random.between(1, 12), random.between(1, 12)});
        const IppiSize size = {random.between(71, 700), random.between(1, 6)};
        ASSERT_NO_FATAL_FAILURE(expectLikeTheDefinition(random, size, mask, {mask.size.width / 2, 0}));
    }
    ASSERT_NO_FATAL_FAILURE(expectLikeTheDefinition(random, {9000, 2}, anyMask(random, {3, 3}), {1, 1}));
}

// On both sides of the sizes that the kernels take: rectangles with sides of 64, masks of 256 cells.
TEST_P(Morphology, FiltersByLargeMasksLikeTheDefinition) {
    Random random(402);
    for (const IppiSize side : {IppiSize{63, 2},
                                {64, 5},
                                {65, 4},
                                {2, 63},
                                {5, 64},
                                {4, 65},
                                {64, 64},
                                {65, 65},
                                {16, 16},
                                {17, 16},
                                {100, 1},
                                {1, 100}}) {
        const IppiSize size = {random.between(1, 20), random.between(1, 4)};
        for (const Mask& mask : {Mask::full(side), anyMask(random, side)})
            ASSERT_NO_FATAL_FAILURE(expectLikeTheDefinitionUnderItsCentre(random, size, mask));
    }
}

// Every number of doublings, in images that are narrower and wider than several vectors; and a tall rectangle whose rows
// do not fit into the scratch memory at once.
TEST_P(Morphology, FiltersByRectanglesLikeTheDefinition) {
    Random random(411);
    for (int width = 1; width <= 64; ++width) {
        const IppiSize size = {random.between(1, 300), random.between(1, 12)};
        ASSERT_NO_FATAL_FAILURE(
            expectLikeTheDefinitionUnderItsCentre(random, size, Mask::full({width, random.between(1, 6)})));
    }
    ASSERT_NO_FATAL_FAILURE(expectLikeTheDefinitionUnderItsCentre(random, {1500, 66}, Mask::full({2, 64})));
}

TEST_P(Morphology, FiltersLikeOpenCV) {
    Random random(403);
    for (int round = 0; round < 60; ++round) {
        const IppiSize size = {random.between(1, 400), random.between(1, 40)};
        const Mask mask = anyMask(random, {random.between(1, 10), random.between(1, 10)});
        const IppiSize half = {mask.size.width / 2, mask.size.height / 2};
        const GuardedImage source(random, size, GuardedImage::anyLayout(random, 1, 6), random.anyValues());
        GuardedImage result(random, size, GuardedImage::anyLayout(random, 1));
        ASSERT_EQ(filter()(source.data(), source.step(), result.data(), result.step(), size, mask.cells.data(),
                           mask.size, {half.width, half.height}),
                  ippStsNoErr);
        const cv::Mat view(size.height + 2 * half.height, size.width + 2 * half.width, CV_8UC1,
                           const_cast<uint8_t*>(source.at(-half.width, -half.height)),
                           static_cast<size_t>(source.step()));
        const cv::Mat cells(mask.size.height, mask.size.width, CV_8UC1, const_cast<uint8_t*>(mask.cells.data()));
        cv::Mat filtered;
        (filter().largest ? cv::dilate : cv::erode)(view.clone(), filtered, cells, cv::Point(-1, -1), 1,
                                                    cv::BORDER_CONSTANT, cv::morphologyDefaultBorderValue());
        for (int y = 0; y < size.height; ++y) {
            const uint8_t* row = filtered.ptr(half.height + y) + half.width;
            ASSERT_EQ(std::vector<uint8_t>(row, row + size.width), rowOf(result, y)) << round;
        }
    }
}

// The source ends with the last byte of a window, the destination with the last byte written; and both begin with the
// first.
TEST_P(Morphology, ReadsAndWritesNoByteTooMany) {
    Random random(404);
    for (const auto fence : {FencedMemory::Fence::kBehind, FencedMemory::Fence::kInFront})
        for (const IppiSize side : {IppiSize{1, 1}, {3, 3}, {4, 4}, {9, 2}, {1, 7}, {31, 1}, {33, 33}})
            for (int width = 1; width <= 200; width += width < 70 ? 1 : 29) {
                const int height = random.between(1, 5);
                const int step = width + side.width / 2 * 2 + random.between(0, 3);
                const int windows = width + side.width - 1;
                FencedMemory source(static_cast<size_t>(step * (height + side.height - 2) + windows), fence);
                random.fill(source.data(), source.size());
                FencedMemory result(static_cast<size_t>((width + 2) * (height - 1) + width), fence);
                Mask mask = Mask::full(side);
                for (int round = 0; round < 2; ++round) {
                    ASSERT_EQ(filter()(source.data(), step, result.data(), width + 2, {width, height},
                                       mask.cells.data(), side, {0, 0}),
                              ippStsNoErr);
                    ASSERT_EQ(*result.data(), oracle::extremeUnder(source.data(), step, mask.cells.data(), side.width,
                                                                   side.height, filter().largest));
                    if (filter().takesMask && mask.cells.size() > 2) mask.cells[1] = 0;
                }
            }
}

// A cross needs no corner: the image begins with the first column of the row above and ends with the last of the row
// below.
TEST(MorphologyMask, ReadsNoPixelThatNoCellSelects) {
    const std::array<uint8_t, 9> cross = {0, 1, 0, 1, 1, 1, 0, 1, 0};
    for (int width = 1; width <= 100; ++width) {
        const int step = width + 2;
        const int end = 2 * step + 1 + width;
        FencedMemory behind(static_cast<size_t>(end), FencedMemory::Fence::kBehind);
        FencedMemory inFront(static_cast<size_t>(end - 1), FencedMemory::Fence::kInFront);
        std::vector<uint8_t> result(static_cast<size_t>(width), 1);
        for (const uint8_t* source : {behind.data() + step + 1, inFront.data() + step}) {
            EXPECT_EQ(IPPShare_ippiDilate_8u_C1R(source, step, result.data(), width, {width, 1}, cross.data(), {3, 3},
                                                 {1, 1}),
                      ippStsNoErr);
            EXPECT_EQ(result, std::vector<uint8_t>(static_cast<size_t>(width), 0));
        }
    }
}

// Masks that OpenCV filters also read only the windows, although the caller's rows continue beside them.
TEST_P(Morphology, ReadsNoByteTooManyByOpenCV) {
    Random random(405);
    const IppiSize side = {65, 65};
    const Mask mask = Mask::full(side);
    for (const auto fence : {FencedMemory::Fence::kBehind, FencedMemory::Fence::kInFront}) {
        const int step = 200;
        FencedMemory source(static_cast<size_t>(step * 66 + 10 + 64), fence);
        random.fill(source.data(), source.size());
        std::vector<uint8_t> result(30);
        ASSERT_EQ(filter()(source.data(), step, result.data(), 10, {10, 3}, mask.cells.data(), side, {0, 0}),
                  ippStsNoErr);
        EXPECT_EQ(result.back(), oracle::extremeUnder(source.data() + 2 * step + 9, step, mask.cells.data(), 65, 65,
                                                      filter().largest));
    }
}

// A destination right behind the last window shares no byte with the source, so the row below an even mask is not read.
TEST_P(Morphology, ReadsOnlyTheWindowsInFrontOfTheDestination) {
    Random random(412);
    constexpr IppiSize kSize = {4, 1};
    for (const IppiSize side : {IppiSize{2, 2}, {3, 2}, {2, 1}}) {
        const int step = 64;
        const int windows = step * (side.height - 1) + kSize.width + side.width - 1;
        FencedMemory memory(static_cast<size_t>(windows + kSize.width), FencedMemory::Fence::kBehind);
        random.fill(memory.data(), memory.size());
        const Mask mask = Mask::full(side);
        uint8_t* const dst = memory.data() + windows;
        ASSERT_EQ(filter()(memory.data(), step, dst, step, kSize, mask.cells.data(), side, {0, 0}), ippStsNoErr);
        for (int x = 0; x < kSize.width; ++x)
            EXPECT_EQ(dst[x], oracle::extremeUnder(memory.data() + x, step, mask.cells.data(), side.width, side.height,
                                                   filter().largest));
    }
}

TEST_P(Morphology, FiltersInPlace) {
    Random random(406);
    const IppiSize size = {40, 12};
    for (const IppiSize side : {IppiSize{3, 3}, {5, 2}}) {
        const Mask mask = anyMask(random, side);
        const GuardedImage source(random, size, {1, 4, 0, 0});
        GuardedImage image = source;
        ASSERT_EQ(
            filter()(image.data(), image.step(), image.data(), image.step(), size, mask.cells.data(), side, {1, 1}),
            ippStsNoErr);
        EXPECT_TRUE(image.untouchedOutsideRegion());
        for (int y = 0; y < size.height; ++y) EXPECT_EQ(expectedRow(source, y, mask, {1, 1}), rowOf(image, y));
    }
}

TEST_P(Morphology, OneSharedByteIsAnOverlap) {
    Random random(409);
    constexpr IppiSize kSize = {50, 7};
    for (const int side : {3, 2}) {
        const Mask mask = anyMask(random, {side, side});
        expectSameWithOneSharedByte(random, 52 * 9, 50 * 7, [&](const uint8_t* first, uint8_t* dst) {
            return filter()(first + 53, 52, dst, 50, kSize, mask.cells.data(), mask.size, {1, 1}) == ippStsNoErr;
        });
    }
}

// Two more columns and rows than the kernel needs are required.
TEST_P(Morphology, TakesAnEvenMaskWithAnOffCentreAnchor) {
    Random random(410);
    constexpr IppiSize kSize = {33, 5};
    const Mask mask = Mask::full({4, 4});
    const GuardedImage source(random, kSize, {1, 2, 0, 0});
    ASSERT_EQ(source.step(), kSize.width + 4);
    GuardedImage result(random, kSize, {});
    const auto call = [&](int step) {
        return filter()(source.data(), step, result.data(), result.step(), kSize, mask.cells.data(), mask.size, {1, 1});
    };
    EXPECT_EQ(call(source.step() - 1), ippStsBadArgErr);
    EXPECT_TRUE(result.untouched());
    ASSERT_EQ(call(source.step()), ippStsNoErr);
    for (int y = 0; y < kSize.height; ++y) EXPECT_EQ(expectedRow(source, y, mask, {1, 1}), rowOf(result, y));
}

TEST_P(Morphology, RefusesBadArguments) {
    Random random(407);
    for (const int side : {3, 4, 70}) {
        const IppiSize size = {10, 3};
        const IppiSize maskSize = {side, side};
        const int half = side / 2;
        const Mask mask = Mask::full(maskSize);
        const GuardedImage source(random, size, {1, half, 0, 0});
        GuardedImage result(random, size, {});
        const auto call = [&](const uint8_t* src, int srcStep, uint8_t* dst, int dstStep, IppiSize roi,
                              const uint8_t* cells, IppiSize cellsSize) {
            const IppStatus status = filter()(src, srcStep, dst, dstStep, roi, cells, cellsSize, {half, half});
            EXPECT_TRUE(result.untouched());
            return status;
        };
        const int srcStep = source.step();
        const int dstStep = result.step();
        const uint8_t* cells = mask.cells.data();
        EXPECT_EQ(call(nullptr, srcStep, result.data(), dstStep, size, cells, maskSize), ippStsBadArgErr);
        EXPECT_EQ(call(source.data(), srcStep, nullptr, dstStep, size, cells, maskSize), ippStsBadArgErr);
        if (filter().takesMask) {
            EXPECT_EQ(call(source.data(), srcStep, result.data(), dstStep, size, nullptr, maskSize), ippStsBadArgErr);
        }
        for (const IppiSize bad : {IppiSize{0, side}, {side, 0}, {-1, side}, {side, -1}, {INT_MIN, 1}, {1, INT_MIN}})
            EXPECT_EQ(call(source.data(), srcStep, result.data(), dstStep, size, cells, bad), ippStsBadArgErr);
        for (const IppiSize roi : {IppiSize{0, 3},
                                   {10, 0},
                                   {-1, 3},
                                   {10, -1},
                                   {-side, 3},
                                   {10, -side},
                                   {INT_MIN, 3},
                                   {10, INT_MIN},
                                   {INT_MAX, 3}})
            EXPECT_EQ(call(source.data(), srcStep, result.data(), dstStep, roi, cells, maskSize), ippStsBadArgErr)
                << roi.width << " x " << roi.height;
        // Two halves of the mask must fit, also where an even mask needs one column less.
        EXPECT_EQ(call(source.data(), srcStep - 1, result.data(), dstStep, size, cells, maskSize), ippStsBadArgErr);
        EXPECT_EQ(call(source.data(), 0, result.data(), dstStep, size, cells, maskSize), ippStsBadArgErr);
        EXPECT_EQ(call(source.data(), -srcStep, result.data(), dstStep, size, cells, maskSize), ippStsBadArgErr);
        EXPECT_EQ(call(source.data(), srcStep, result.data(), dstStep - 1, size, cells, maskSize), ippStsBadArgErr);
        EXPECT_EQ(call(source.data(), srcStep, result.data(), -dstStep, size, cells, maskSize), ippStsBadArgErr);

        EXPECT_EQ(filter()(source.data(), srcStep, result.data(), dstStep, size, cells, maskSize, {half, half}),
                  ippStsNoErr);
        EXPECT_FALSE(result.untouched());
    }
}

INSTANTIATE_TEST_SUITE_P(Filters, Morphology,
                         testing::Values(Filter{"Dilate", true, true}, Filter{"Erode", false, true},
                                         Filter{"Max", true, false}, Filter{"Min", false, false}),
                         [](const auto& info) { return info.param.name; });

TEST(MorphologyMask, FullGivesTheMaximumAndTheMinimum) {
    Random random(411);
    const IppiSize size = {90, 6};
    const Mask mask = Mask::full({3, 3});
    const GuardedImage source(random, size, {1, kMargin, 0, 0});
    const auto filtered = [&](auto filter) {
        GuardedImage result(random, size, {});
        EXPECT_EQ(filter(result), ippStsNoErr);
        std::vector<uint8_t> pixels;
        for (int y = 0; y < size.height; ++y) pixels.insert(pixels.end(), result.at(0, y), result.at(size.width, y));
        return pixels;
    };
    const auto under = [&](auto* filter) {
        return filtered([&](GuardedImage& result) {
            return filter(source.data(), source.step(), result.data(), result.step(), size, mask.cells.data(),
                          mask.size, {1, 1});
        });
    };
    const auto of = [&](auto* filter) {
        return filtered([&](GuardedImage& result) {
            return filter(source.data(), source.step(), result.data(), result.step(), size, mask.size, {1, 1});
        });
    };
    EXPECT_EQ(under(IPPShare_ippiDilate_8u_C1R), of(IPPMini_ippiFilterMax_8u_C1R));
    EXPECT_EQ(under(IPPShare_ippiErode_8u_C1R), of(IPPMini_ippiFilterMin_8u_C1R));
}

TEST(MorphologyMask, LeavesOutCellsOfZero) {
    const std::array<uint8_t, 9> image = {9, 1, 9, 1, 1, 2, 9, 1, 9};
    const std::array<uint8_t, 9> cross = {0, 1, 0, 7, 255, 1, 0, 1, 0};
    uint8_t result = 0;
    EXPECT_EQ(IPPShare_ippiDilate_8u_C1R(&image[4], 3, &result, 1, {1, 1}, cross.data(), {3, 3}, {1, 1}), ippStsNoErr);
    EXPECT_EQ(result, 2);
    EXPECT_EQ(IPPShare_ippiErode_8u_C1R(&image[4], 3, &result, 1, {1, 1}, cross.data(), {3, 3}, {1, 1}), ippStsNoErr);
    EXPECT_EQ(result, 1);
}

TEST(MorphologyMask, IsNotTurned) {
    const std::array<uint8_t, 9> image = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    const std::array<uint8_t, 9> topLeft = {1, 0, 0, 0, 0, 0, 0, 0, 0};
    uint8_t result = 0;
    EXPECT_EQ(IPPShare_ippiDilate_8u_C1R(&image[4], 3, &result, 1, {1, 1}, topLeft.data(), {3, 3}, {1, 1}),
              ippStsNoErr);
    EXPECT_EQ(result, 1);
    EXPECT_EQ(IPPShare_ippiErode_8u_C1R(&image[0], 3, &result, 1, {1, 1}, topLeft.data(), {3, 3}, {0, 0}), ippStsNoErr);
    EXPECT_EQ(result, 1);
}

// For a mask that selects nothing, the result is OpenCV's, even with a single cell.
TEST(MorphologyMask, AllZeroDoesWhatOpenCVDoes) {
    Random random(408);
    const IppiSize size = {20, 7};
    for (const IppiSize side : {IppiSize{1, 1}, {3, 3}, {2, 5}})
        for (const bool largest : {true, false}) {
            const std::vector<uint8_t> cells(static_cast<size_t>(side.width) * static_cast<size_t>(side.height), 0);
            const GuardedImage source(random, size, {1, 3, 0, 0});
            GuardedImage result(random, size, {});
            auto* const filter = largest ? IPPShare_ippiDilate_8u_C1R : IPPShare_ippiErode_8u_C1R;
            const IppiPoint half = {side.width / 2, side.height / 2};
            ASSERT_EQ(
                filter(source.data(), source.step(), result.data(), result.step(), size, cells.data(), side, half),
                ippStsNoErr);
            const cv::Mat view(size.height + 2 * half.y, size.width + 2 * half.x, CV_8UC1,
                               const_cast<uint8_t*>(source.at(-half.x, -half.y)), static_cast<size_t>(source.step()));
            const cv::Mat mask(side.height, side.width, CV_8UC1, const_cast<uint8_t*>(cells.data()));
            cv::Mat filtered;
            (largest ? cv::dilate : cv::erode)(view.clone(), filtered, mask, cv::Point(-1, -1), 1, cv::BORDER_CONSTANT,
                                               cv::morphologyDefaultBorderValue());
            for (int y = 0; y < size.height; ++y) {
                const uint8_t* row = filtered.ptr(half.y + y) + half.x;
                EXPECT_EQ(std::vector<uint8_t>(row, row + size.width), rowOf(result, y));
            }
        }
}

}    // namespace
