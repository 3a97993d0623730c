// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Pages of text, drawn at known angles.
#include <gtest/gtest.h>

#include <opencv2/imgproc.hpp>
#include <thread>

#include "drawing.h"
#include "pagegen/sheet.h"

namespace {

KVIMG recordOf(const cv::Mat& image) {
    return {image.data,
            image.channels() * 8,
            image.cols,
            image.rows,
            static_cast<int32_t>(image.step[0]),
            static_cast<int32_t>(image.step[0] * static_cast<size_t>(image.rows))};
}

// As from a scanner: shaded, noisy, on a dark lid.
cv::Mat scanned(int dpi, double degrees) {
    static const cv::Mat drawn = drawSheet();
    const double scale = static_cast<double>(dpi) / kSheetDpi;
    cv::Mat sheet;
    cv::resize(drawn, sheet, {}, scale, scale, scale < 1 ? cv::INTER_AREA : cv::INTER_CUBIC);
    cv::Mat page = skewed(sheet, degrees);
    shadeAndAddNoise(page, 11);
    return page;
}

void expectFound(const Finding& found, double degrees, double tolerance) {
    ASSERT_EQ(found.status, noErr);
    EXPECT_EQ(found.skew.outcome, OPCV_SKEW_FOUND);
    EXPECT_NEAR(found.skew.angle, degrees, tolerance);
    EXPECT_GE(found.skew.confidence, 0.5);
    EXPECT_LE(found.skew.confidence, 1);
    EXPECT_EQ(found.skew.struct_size, sizeof(opcv_skew));
}

class Scans : public testing::TestWithParam<int> {};

TEST_P(Scans, AreMeasuredTo0_05Degrees) {
    for (const double degrees : {-14.6, -9.0, -4.9, -2.3, -0.37, 0.0, 0.1, 1.7, 5.0, 12.0, 14.6}) {
        SCOPED_TRACE(degrees);
        expectFound(find(recordOf(scanned(GetParam(), degrees))), degrees, 0.05);
    }
}

INSTANTIATE_TEST_SUITE_P(Resolutions, Scans, testing::Values(75, 100, 150, 200));

TEST(Pages, OfHighResolutionAreMeasured) {
    expectFound(find(recordOf(scanned(300, 2.3))), 2.3, 0.03);
    expectFound(find(recordOf(scanned(600, -3.3))), -3.3, 0.03);
}

TEST(Pages, BeyondTheRangeHaveNoAngle) {
    for (const double degrees : {-25.0, 20.0, 45.0}) {
        const Finding found = find(recordOf(scanned(100, degrees)));
        EXPECT_NE(found.skew.outcome, OPCV_SKEW_FOUND) << degrees << " is measured as " << found.skew.angle;
        EXPECT_EQ(found.skew.angle, 0);
        EXPECT_LT(found.skew.confidence, 0.5);
    }
}

TEST(Pages, HaveTheSameSkewAtEveryDepth) {
    constexpr double kSlope = 0.04;
    DrawnPage drawn(900, 1203, kSlope);
    const cv::Mat grey(drawn.height, drawn.width, CV_8UC1, drawn.pixels.data());
    cv::Mat colour;
    cv::cvtColor(grey, colour, cv::COLOR_GRAY2RGB);
    cv::Mat wide;
    cv::cvtColor(grey, wide, cv::COLOR_GRAY2RGBA);
    cv::Mat bits(grey.rows, (grey.cols + 7) / 8, CV_8UC1, cv::Scalar(0));
    for (int y = 0; y < grey.rows; ++y)
        for (int x = 0; x < grey.cols; ++x)
            if (grey.at<uint8_t>(y, x) > 127) bits.at<uint8_t>(y, x / 8) |= static_cast<uint8_t>(0x80 >> x % 8);

    const Finding ofGrey = find(recordOf(grey));
    expectFound(ofGrey, degreesOf(kSlope), 0.03);
    EXPECT_EQ(find(recordOf(colour)).skew.angle, ofGrey.skew.angle);
    EXPECT_EQ(find(recordOf(wide)).skew.angle, ofGrey.skew.angle);
    const KVIMG ofBits = {bits.data, 1, grey.cols, grey.rows, static_cast<int32_t>(bits.step[0]), 0};
    EXPECT_EQ(find(ofBits).skew.angle, ofGrey.skew.angle);
}

// The bytes between the rows have no effect, and no byte of the page changes.
TEST(Pages, MayHavePaddedRows) {
    DrawnPage drawn(640, 900, -0.03);
    const Finding expected = find(drawn.record());
    for (const uint8_t padding : {uint8_t{0}, uint8_t{255}}) {
        cv::Mat wide(drawn.height, drawn.width + 37, CV_8UC1, cv::Scalar(padding));
        const cv::Mat page = wide(cv::Rect(0, 0, drawn.width, drawn.height));
        cv::Mat(drawn.height, drawn.width, CV_8UC1, drawn.pixels.data()).copyTo(page);
        const cv::Mat before = wide.clone();
        const Finding found = find(recordOf(page));
        EXPECT_EQ(found.skew.angle, expected.skew.angle);
        EXPECT_EQ(found.skew.confidence, expected.skew.confidence);
        EXPECT_EQ(cv::norm(wide, before, cv::NORM_L1), 0);
    }
}

TEST(Pages, OnTheirHeadHaveTheSameSkew) {
    DrawnPage drawn(900, 1200, 0.05);
    std::reverse(drawn.pixels.begin(), drawn.pixels.end());
    expectFound(find(drawn.record()), degreesOf(0.05), 0.03);
}

// The edges of the sheet and a picture are straight, too, but the text says what the skew is.
TEST(Pages, AreMeasuredByTheirTextInADarkFrame) {
    DrawnPage drawn(1200, 1600, 0.05);
    cv::Mat page(drawn.height, drawn.width, CV_8UC1, drawn.pixels.data());
    cv::rectangle(page, {0, 0, 1200, 60}, cv::Scalar(30), cv::FILLED);
    cv::rectangle(page, {0, 0, 50, 1600}, cv::Scalar(30), cv::FILLED);
    cv::rectangle(page, {300, 500, 500, 400}, cv::Scalar(60), cv::FILLED);
    expectFound(find(drawn.record()), degreesOf(0.05), 0.03);
}

TEST(Pages, AreMeasuredInDeepShade) {
    DrawnPage drawn(1200, 1600, -0.02);
    for (int y = 0; y < drawn.height; ++y)
        for (int x = 0; x < drawn.width; ++x) {
            uint8_t& pixel = drawn.pixels[static_cast<size_t>(y * drawn.width + x)];
            pixel = static_cast<uint8_t>(pixel * (1 - 0.75 * x / drawn.width));
        }
    expectFound(find(drawn.record()), degreesOf(-0.02), 0.03);
}

TEST(Pages, MayBeMeasuredByManyThreadsAtOnce) {
    DrawnPage drawn(900, 1200, 0.05);
    const KVIMG page = drawn.record();
    const Finding expected = find(page);
    std::vector<Finding> found(8);
    std::vector<std::thread> threads;
    threads.reserve(found.size());
    for (Finding& finding : found) threads.emplace_back([&finding, &page] { finding = find(page); });
    for (std::thread& thread : threads) thread.join();
    for (const Finding& finding : found) {
        EXPECT_EQ(finding.status, noErr);
        EXPECT_EQ(finding.skew.angle, expected.skew.angle);
    }
}

}    // namespace
