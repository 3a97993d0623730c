// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "OPCV_dlib.h"
#include "geometry/resize_expectation.h"
#include "support/cv_views.h"
#include "support/fenced_memory.h"
#include "support/guarded_image.h"
#include "support/random.h"

namespace {

// Arguments of the grey resize with placement, changed one at a time.
struct Placed {
    IppiSize srcSize;
    IppiRect srcRoi;
    IppiRect dstRoi;
    double xFactor = 1;
    double yFactor = 1;
    double xShift = 0;
    double yShift = 0;
};

IppStatus resize(const GuardedImage& source, const Placed& p, GuardedImage& target) {
    return OPCV_ippiResizeSqrPixel_8u_C1R(source.data(), p.srcSize, source.step(), p.srcRoi, target.data(),
                                          target.step(), p.dstRoi, p.xFactor, p.yFactor, p.xShift, p.yShift, -77,
                                          nullptr);
}

// Where the moved image meets the rectangle.
cv::Rect coveredBy(const Placed& p, const cv::Size& scaled) {
    const auto xShift = static_cast<int>(std::lround(p.xShift));
    const auto yShift = static_cast<int>(std::lround(p.yShift));
    const cv::Rect image(p.dstRoi.x + xShift, p.dstRoi.y + yShift, scaled.width, scaled.height);
    return image & cv::Rect(p.dstRoi.x, p.dstRoi.y, p.dstRoi.width, p.dstRoi.height);
}

TEST(ResizePlaced, ScalesAndPlacesLikeTheDefinition) {
    Random random(621);
    int placed = 0;
    for (int round = 0; round < 400; ++round) {
        const IppiSize size = {random.between(20, 160), random.between(5, 40)};
        const GuardedImage source(random, size, GuardedImage::anyLayout(random, 1), random.anyValues());
        Placed p = {};
        p.srcSize = size;
        p.srcRoi = {random.between(0, 9), random.between(0, 3), 0, 0};
        p.srcRoi.width = random.between(1, size.width - p.srcRoi.x);
        p.srcRoi.height = random.between(1, size.height - p.srcRoi.y);
        p.xFactor = random.chance(20) ? 0.5 : random.real(0.2, 3);
        p.yFactor = random.chance(50) ? p.xFactor : random.real(0.2, 3);
        p.xShift = random.real(-20, 20);
        p.yShift = random.real(-10, 10);
        const IppiSize targetSize = {random.between(20, 200), random.between(20, 60)};
        p.dstRoi = {random.between(0, 9), random.between(0, 9), 0, 0};
        p.dstRoi.width = random.between(1, targetSize.width - p.dstRoi.x);
        p.dstRoi.height = random.between(1, targetSize.height - p.dstRoi.y);
        const cv::Mat region =
            viewOf(source, CV_8UC1)(cv::Rect(p.srcRoi.x, p.srcRoi.y, p.srcRoi.width, p.srcRoi.height));
        cv::Mat scaled;
        if (cvRound(region.cols * p.xFactor) < 1 || cvRound(region.rows * p.yFactor) < 1) continue;
        cv::resize(region, scaled, cv::Size(), p.xFactor, p.yFactor, cv::INTER_LINEAR);

        GuardedImage target(random, targetSize, GuardedImage::anyLayout(random, 1));
        const IppStatus status = resize(source, p, target);
        const cv::Rect covered = coveredBy(p, scaled.size());
        if (covered.empty()) {
            ASSERT_EQ(status, ippStsBadArgErr) << "round " << round;
            ASSERT_TRUE(target.untouched());
            continue;
        }
        ++placed;
        ASSERT_EQ(status, ippStsNoErr) << "round " << round;
        ASSERT_TRUE(target.untouchedOutside(covered.x, covered.y, covered.width, covered.height)) << "round " << round;
        const cv::Point origin(covered.x - p.dstRoi.x - static_cast<int>(std::lround(p.xShift)),
                               covered.y - p.dstRoi.y - static_cast<int>(std::lround(p.yShift)));
        ASSERT_EQ(cv::norm(viewOf(target, CV_8UC1)(covered), scaled(cv::Rect(origin, covered.size())), cv::NORM_INF), 0)
            << "round " << round;
        if (scaled.size() != region.size())    // equal sizes are copied whatever the factors
            expectResized({region.data, source.step(), region.cols, region.rows, 1}, 1 / p.xFactor, 1 / p.yFactor,
                          scaled);
        if (HasFatalFailure()) return;
    }
    EXPECT_GT(placed, 200);
}

// The scaled image is complete before anything is written.
// Beyond 2^26 pixels a float counts in eights, which moves taps far apart.
TEST(ResizePlaced, ScalesTheLongestRowsLikeOpenCV) {
    constexpr int kWidth = 70'000'000;
    std::vector<uint8_t> row(kWidth);
    uint32_t state = 1;
    for (uint8_t& pixel : row) {
        state = state * 1664525U + 1013904223U;
        pixel = static_cast<uint8_t>(state >> 24U);
    }
    const cv::Mat source(1, kWidth, CV_8UC1, row.data());
    cv::Mat expected;
    cv::resize(source, expected, cv::Size(), 0.25, 1, cv::INTER_LINEAR);
    std::vector<uint8_t> scaled(static_cast<size_t>(expected.cols));
    ASSERT_EQ(OPCV_ippiResizeSqrPixel_8u_C1R(row.data(), {kWidth, 1}, kWidth, {0, 0, kWidth, 1}, scaled.data(),
                                             expected.cols, {0, 0, expected.cols, 1}, 0.25, 1, 0, 0, 0, nullptr),
              ippStsNoErr);
    EXPECT_TRUE(std::equal(scaled.begin(), scaled.end(), expected.ptr<uint8_t>()));
}

TEST(ResizePlaced, MayWriteOverItsSource) {
    Random random(626);
    for (const int shift : {0, 1, -1, 40}) {
        GuardedImage image(random, {60, 40}, {1, 0, 4, 0});
        cv::Mat scaled;
        cv::resize(viewOf(image, CV_8UC1)(cv::Rect(0, 0, 50, 30)), scaled, cv::Size(), 0.8, 0.8, cv::INTER_LINEAR);
        const IppiRect rectangle = {0, 0, 60, 40};
        ASSERT_EQ(OPCV_ippiResizeSqrPixel_8u_C1R(image.data(), {60, 40}, image.step(), {0, 0, 50, 30}, image.data(),
                                                 image.step(), rectangle, 0.8, 0.8, shift, 0, 0, nullptr),
                  ippStsNoErr);
        const cv::Rect covered = cv::Rect(shift, 0, scaled.cols, scaled.rows) & cv::Rect(0, 0, 60, 40);
        EXPECT_TRUE(image.untouchedOutside(covered.x, covered.y, covered.width, covered.height)) << shift;
        EXPECT_EQ(cv::norm(viewOf(image, CV_8UC1)(covered), scaled(covered - cv::Point(shift, 0)), cv::NORM_INF), 0)
            << shift;
    }
}

TEST(ResizePlaced, PlacesByWholePixels) {
    Random random(622);
    const GuardedImage source(random, {20, 6}, {});
    const cv::Mat expected = viewOf(source, CV_8UC1);
    Placed p = {{20, 6}, {0, 0, 20, 6}, {4, 2, 20, 6}, 1, 1, 2.5, 0};
    GuardedImage target(random, {40, 12}, {});
    ASSERT_EQ(resize(source, p, target), ippStsNoErr);
    EXPECT_TRUE(target.untouchedOutside(4 + 3, 2, 17, 6));
    EXPECT_EQ(cv::norm(viewOf(target, CV_8UC1)({7, 2, 17, 6}), expected({0, 0, 17, 6}), cv::NORM_INF), 0);

    p.xShift = -2.5;
    target.remember();
    ASSERT_EQ(resize(source, p, target), ippStsNoErr);
    EXPECT_TRUE(target.untouchedOutside(4, 2, 17, 6));
    EXPECT_EQ(cv::norm(viewOf(target, CV_8UC1)({4, 2, 17, 6}), expected({3, 0, 17, 6}), cv::NORM_INF), 0);

    p.xShift = 0.49;
    p.yShift = -1.5;
    target.remember();
    ASSERT_EQ(resize(source, p, target), ippStsNoErr);
    EXPECT_TRUE(target.untouchedOutside(4, 2, 20, 4));
    EXPECT_EQ(cv::norm(viewOf(target, CV_8UC1)({4, 2, 20, 4}), expected({0, 2, 20, 4}), cv::NORM_INF), 0);

    p.yShift = 1.5;
    target.remember();
    ASSERT_EQ(resize(source, p, target), ippStsNoErr);
    EXPECT_TRUE(target.untouchedOutside(4, 4, 20, 4));
    EXPECT_EQ(cv::norm(viewOf(target, CV_8UC1)({4, 4, 20, 4}), expected({0, 0, 20, 4}), cv::NORM_INF), 0);
}

TEST(ResizePlaced, RefusesBadArguments) {
    Random random(623);
    const GuardedImage source(random, {20, 6}, {});
    GuardedImage target(random, {40, 12}, {});
    const Placed good = {{20, 6}, {0, 0, 20, 6}, {4, 2, 20, 6}, 1.5, 1.5, 0, 0};
    const auto call = [&](const Placed& p) {
        const IppStatus status = resize(source, p, target);
        EXPECT_TRUE(target.untouched());
        return status;
    };
    const auto with = [&](auto change) {
        Placed p = good;
        change(p);
        return p;
    };
    EXPECT_EQ(call(with([](Placed& p) { p.srcRoi.width = 21; })), ippStsBadArgErr);
    EXPECT_EQ(call(with([](Placed& p) { p.srcRoi.height = 7; })), ippStsBadArgErr);
    EXPECT_EQ(call(with([](Placed& p) { p.srcRoi.x = 1; })), ippStsBadArgErr);    // the row ends before
    EXPECT_EQ(call(with([](Placed& p) { p.srcRoi.x = -1; })), ippStsBadArgErr);
    EXPECT_EQ(call(with([](Placed& p) { p.srcRoi.y = -1; })), ippStsBadArgErr);
    for (const int side : {0, -1, INT_MIN}) {
        EXPECT_EQ(call(with([&](Placed& p) { p.srcRoi.width = side; })), ippStsBadArgErr);
        EXPECT_EQ(call(with([&](Placed& p) { p.srcRoi.height = side; })), ippStsBadArgErr);
        EXPECT_EQ(call(with([&](Placed& p) { p.dstRoi.width = side; })), ippStsBadArgErr);
        EXPECT_EQ(call(with([&](Placed& p) { p.dstRoi.height = side; })), ippStsBadArgErr);
    }
    EXPECT_EQ(call(with([](Placed& p) { p.dstRoi = {15, 2, 26, 6}; })), ippStsBadArgErr);    // beyond the row
    EXPECT_EQ(call(with([](Placed& p) { p.dstRoi.x = -1; })), ippStsBadArgErr);
    EXPECT_EQ(call(with([](Placed& p) { p.dstRoi.y = -1; })), ippStsBadArgErr);
    for (const double shift : {20.0, -30.0, 2147483647.0, 2147483648.0, -2147483648.0, -2147483647.0, -2147483649.0,
                               1e300, -1e300, std::numeric_limits<double>::infinity(),
                               -std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_EQ(call(with([&](Placed& p) { p.xShift = shift; })), ippStsBadArgErr) << shift;
        EXPECT_EQ(call(with([&](Placed& p) { p.yShift = shift; })), ippStsBadArgErr) << shift;
    }
    const auto callOn = [&](const uint8_t* src, int srcStep, uint8_t* dst, int dstStep) {
        const IppStatus status = OPCV_ippiResizeSqrPixel_8u_C1R(src, good.srcSize, srcStep, good.srcRoi, dst, dstStep,
                                                                good.dstRoi, 1.5, 1.5, 0, 0, 0, nullptr);
        EXPECT_TRUE(target.untouched());
        return status;
    };
    EXPECT_EQ(callOn(nullptr, 20, target.data(), 40), ippStsBadArgErr);
    EXPECT_EQ(callOn(source.data(), 20, nullptr, 40), ippStsBadArgErr);
    for (const int step : {19, 0, -20}) EXPECT_EQ(callOn(source.data(), step, target.data(), 40), ippStsBadArgErr);
    for (const int step : {23, 0, -40}) EXPECT_EQ(callOn(source.data(), 20, target.data(), step), ippStsBadArgErr);
}

// A shift that leaves no column is rejected, even if the difference overflows.
TEST(ResizePlaced, RefusesRectanglesThatLeaveTheType) {
    Random random(624);
    const GuardedImage source(random, {20, 6}, {});
    GuardedImage target(random, {40, 12}, {});
    Placed p = {{20, 6}, {0, 0, 20, 6}, {0, 0, 20, 6}, 1, 1, 1, 1};
    for (const IppiRect rectangle :
         {IppiRect{INT_MAX, 0, 20, 6}, {0, INT_MAX, 20, 6}, {2, 2, INT_MIN, 6}, {2, 2, 20, INT_MIN}}) {
        p.dstRoi = rectangle;
        EXPECT_EQ(resize(source, p, target), ippStsBadArgErr);
    }
    EXPECT_TRUE(target.untouched());
}

TEST(ResizePlaced, FactorsThatOpenCVRefusesThrow) {
    Random random(625);
    const GuardedImage source(random, {20, 6}, {});
    GuardedImage target(random, {40, 12}, {});
    const Placed good = {{20, 6}, {0, 0, 20, 6}, {4, 2, 20, 6}, 1.5, 1.5, 0, 0};
    for (const double factor : {0.0, -1.0, 1e-9, std::numeric_limits<double>::quiet_NaN()}) {
        Placed p = good;
        p.xFactor = factor;
        EXPECT_THROW(resize(source, p, target), cv::Exception) << factor;
        p = good;
        p.yFactor = factor;
        EXPECT_THROW(resize(source, p, target), cv::Exception) << factor;
    }
    EXPECT_TRUE(target.untouched());
}

IppStatus resizeColour(const GuardedImage& source, IppiRect roi, GuardedImage& target, IppiSize size, double xFactor,
                       double yFactor) {
    return IPPMini_ippiResize_8u_C3R(source.data(), source.size(), source.step(), roi, target.data(), target.step(),
                                     size, xFactor, yFactor, 99);
}

TEST(ResizeColour, ScalesToTheDestinationSizeWhateverTheFactors) {
    Random random(631);
    for (int round = 0; round < 250; ++round) {
        const IppiSize size = {random.between(10, 90), random.between(4, 30)};
        const GuardedImage source(random, size, GuardedImage::anyLayout(random, 3), random.anyValues());
        IppiRect roi = {random.between(0, 9), random.between(0, 3), 0, 0};
        roi.width = random.between(1, size.width - roi.x);
        roi.height = random.between(1, size.height - roi.y);
        const IppiSize targetSize = {random.between(1, 120), random.between(1, 30)};
        GuardedImage target(random, targetSize, GuardedImage::anyLayout(random, 3));
        ASSERT_EQ(resizeColour(source, roi, target, targetSize, random.real(-2, 2), random.real(-2, 2)), ippStsNoErr);
        ASSERT_TRUE(target.untouchedOutsideRegion());
        const cv::Mat region = viewOf(source, CV_8UC3)(cv::Rect(roi.x, roi.y, roi.width, roi.height));
        cv::Mat expected;
        cv::resize(region, expected, cv::Size(targetSize.width, targetSize.height), 0, 0, cv::INTER_LINEAR);
        ASSERT_EQ(firstDifferentRow(target, expected), -1) << "round " << round;
        expectResized({region.data, source.step(), roi.width, roi.height, 3},
                      roi.width / static_cast<double>(targetSize.width),
                      roi.height / static_cast<double>(targetSize.height), viewOf(target, CV_8UC3));
        if (HasFatalFailure()) return;
    }
}

TEST(ResizeColour, EqualSizesAreCopiedWhateverTheFactors) {
    Random random(632);
    const GuardedImage source(random, {50, 20}, {3});
    GuardedImage target(random, {40, 10}, {3});
    ASSERT_EQ(resizeColour(source, {5, 5, 40, 10}, target, {40, 10}, 2, 2), ippStsNoErr);
    EXPECT_EQ(firstDifferentRow(target, viewOf(source, CV_8UC3)(cv::Rect(5, 5, 40, 10))), -1);
}

// The length of a packed row is step / pixel size whole pixels.
TEST(ResizeColour, StepsNotAMultipleOf3DisplaceRows) {
    Random random(633);
    const std::vector<uint8_t> source = [&] {
        std::vector<uint8_t> bytes(size_t{62} * 12);
        random.fill(bytes.data(), bytes.size());
        return bytes;
    }();
    GuardedImage target(random, {50, 9}, {});
    ASSERT_EQ(
        IPPMini_ippiResize_8u_C3R(source.data(), {20, 12}, 62, {0, 0, 20, 12}, target.data(), 50, {16, 9}, 1, 1, 0),
        ippStsNoErr);
    cv::Mat expected;
    cv::resize(cv::Mat(12, 20, CV_8UC3, const_cast<uint8_t*>(source.data()), 60), expected, cv::Size(16, 9));
    EXPECT_EQ(cv::norm(cv::Mat(9, 16, CV_8UC3, target.data(), 48), expected, cv::NORM_INF), 0);
}

TEST(ResizeColour, RefusesBadArguments) {
    Random random(634);
    const GuardedImage source(random, {20, 6}, {3});
    GuardedImage target(random, {16, 6}, {3});
    const auto call = [&](const uint8_t* src, int srcStep, IppiRect roi, uint8_t* dst, int dstStep, IppiSize size) {
        const IppStatus status =
            IPPMini_ippiResize_8u_C3R(src, source.size(), srcStep, roi, dst, dstStep, size, 1, 1, 0);
        EXPECT_TRUE(target.untouched());
        return status;
    };
    const IppiRect all = {0, 0, 20, 6};
    const uint8_t* src = source.data();
    uint8_t* dst = target.data();
    EXPECT_EQ(call(src, 63, {0, 0, 21, 6}, dst, 48, {16, 6}), ippStsBadArgErr);
    EXPECT_EQ(call(src, 60, {0, 0, 20, 7}, dst, 48, {16, 6}), ippStsBadArgErr);
    EXPECT_EQ(call(src, 60, {1, 0, 20, 6}, dst, 48, {16, 6}), ippStsBadArgErr);
    EXPECT_EQ(call(src, 60, {-1, 0, 19, 6}, dst, 48, {16, 6}), ippStsBadArgErr);
    EXPECT_EQ(call(src, 60, {0, -1, 20, 6}, dst, 48, {16, 6}), ippStsBadArgErr);
    EXPECT_EQ(call(nullptr, 60, all, dst, 48, {16, 6}), ippStsBadArgErr);
    EXPECT_EQ(call(src, 60, all, nullptr, 48, {16, 6}), ippStsBadArgErr);
    for (const int step : {59, 2, 0, -60}) EXPECT_EQ(call(src, step, all, dst, 48, {16, 6}), ippStsBadArgErr);
    for (const int step : {47, 2, 0, -48}) EXPECT_EQ(call(src, 60, all, dst, step, {16, 6}), ippStsBadArgErr);
    for (const int side : {0, -1, INT_MIN}) {
        EXPECT_EQ(call(src, 60, {0, 0, side, 6}, dst, 48, {16, 6}), ippStsBadArgErr);
        EXPECT_EQ(call(src, 60, {0, 0, 20, side}, dst, 48, {16, 6}), ippStsBadArgErr);
        EXPECT_EQ(call(src, 60, all, dst, 48, {side, 6}), ippStsBadArgErr);
        EXPECT_EQ(call(src, 60, all, dst, 48, {16, side}), ippStsBadArgErr);
    }
}

TEST(Resize, ReadsAndWritesNoByteTooMany) {
    const auto area = [](int width, int height) { return static_cast<size_t>(width) * static_cast<size_t>(height); };
    for (const auto fence : {FencedMemory::Fence::kBehind, FencedMemory::Fence::kInFront})
        for (int width = 1; width <= 70; ++width)
            for (const int scaledWidth : {width / 2 + 1, width * 2 / 3 + 1, width + 1, width * 4 / 3 + 1}) {
                const IppiRect roi = {0, 0, width, 3};
                FencedMemory source(3 * area(width, 3), fence);
                FencedMemory target(3 * area(scaledWidth, 2), fence);
                ASSERT_EQ(IPPMini_ippiResize_8u_C3R(source.data(), {width, 3}, 3 * width, roi, target.data(),
                                                    3 * scaledWidth, {scaledWidth, 2}, 1, 1, 0),
                          ippStsNoErr);
                FencedMemory greySource(area(width, 3), fence);
                const double factor = static_cast<double>(scaledWidth) / width;
                const int cols = cvRound(width * factor);
                const int rows = cvRound(3 * factor);
                FencedMemory greyTarget(area(cols, rows), fence);
                ASSERT_EQ(OPCV_ippiResizeSqrPixel_8u_C1R(greySource.data(), {width, 3}, width, roi, greyTarget.data(),
                                                         cols, {0, 0, cols, rows}, factor, factor, 0, 0, 0, nullptr),
                          ippStsNoErr);
            }
}

}    // namespace
