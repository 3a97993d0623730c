// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "OPCV_dlib.h"
#include "core/ownership.h"
#include "geometry/resize_expectation.h"
#include "support/random.h"

namespace {

int channelsOf(int depth) { return depth / 8; }

opcv::RecordPtr makePage(Random& random, int width, int height, int depth,
                         Random::Values values = Random::Values::kAny) {
    opcv::RecordPtr page;
    EXPECT_EQ(opcv::createRecord({0, 0, height, width}, static_cast<unsigned char>(depth), page), noErr);
    random.fill(page->data, static_cast<size_t>(page->size), values);
    return page;
}

oracle::Raster rasterOf(const KVIMG& page) {
    return {page.data, page.rowBytes, page.width, page.height, channelsOf(page.depth)};
}

cv::Mat viewOf(const KVIMG& page) {
    return {page.height, page.width, CV_8UC(channelsOf(page.depth)), page.data, static_cast<size_t>(page.rowBytes)};
}

int anyDepth(Random& random) { return 8 * (random.chance(40) ? 1 : random.chance(70) ? 3 : 4); }

TEST(ResizePage, ScalesLikeTheDefinition) {
    Random random(601);
    for (int round = 0; round < 250; ++round) {
        const int depth = anyDepth(random);
        const opcv::RecordPtr page =
            makePage(random, random.between(8, 150), random.between(2, 40), depth, random.anyValues());
        const double denominator = random.between(1, 12) * 50;
        const double numerator = random.between(1, 12) * 50;
        const int width = static_cast<int>(numerator / denominator * page->width);
        const int height = static_cast<int>(numerator / denominator * page->height);
        if (width < 1 || height < 1 || width > 900) continue;
        KVIMG* out = nullptr;
        ASSERT_EQ(ResizeImageWithIPPEx(page.get(), &out, denominator, numerator), noErr);
        const opcv::RecordPtr scaled(out);
        ASSERT_EQ(scaled->width, width);
        ASSERT_EQ(scaled->height, height);
        ASSERT_EQ(scaled->depth, depth);
        cv::Mat expected;
        cv::resize(viewOf(*page), expected, cv::Size(width, height), 0, 0, cv::INTER_LINEAR);
        ASSERT_EQ(cv::norm(viewOf(*scaled), expected, cv::NORM_INF), 0)
            << depth << ' ' << page->width << 'x' << page->height << ' ' << numerator << '/' << denominator;
        expectResized(rasterOf(*page), page->width / static_cast<double>(width),
                      page->height / static_cast<double>(height), viewOf(*scaled));
        if (HasFatalFailure()) return;
    }
}

// Page-like sizes meet strips, bands and threads.
TEST(ResizePage, ScalesWholePagesLikeOpenCV) {
    Random random(602);
    for (const int depth : {8, 24, 32})
        for (const double numerator : {45.0, 74.0, 75.0, 76.0, 82.0, 99.0, 100.0, 101.0, 119.0, 120.0, 121.0, 150.0,
                                       200.0, 225.0, 299.0, 400.0, 301.0}) {
            const opcv::RecordPtr page = makePage(random, random.between(900, 1300), random.between(100, 300), depth);
            KVIMG* out = nullptr;
            ASSERT_EQ(ResizeImageWithIPPEx(page.get(), &out, 300, numerator), noErr);
            const opcv::RecordPtr scaled(out);
            cv::Mat expected;
            cv::resize(viewOf(*page), expected, cv::Size(scaled->width, scaled->height), 0, 0, cv::INTER_LINEAR);
            ASSERT_EQ(cv::norm(viewOf(*scaled), expected, cv::NORM_INF), 0) << depth << ' ' << numerator;
        }
}

// A block of source bytes is large enough for neighbouring results up to some reduction, which depends on the depth.
TEST(ResizePage, ReducesByAnyRatioLikeOpenCV) {
    Random random(605);
    for (const int depth : {8, 24, 32}) {
        const opcv::RecordPtr page = makePage(random, 211, 9, depth);
        for (int width = 211 / 5; width <= 211 / 2; ++width) {
            KVIMG* out = nullptr;
            ASSERT_EQ(ResizeImageWithIPPEx(page.get(), &out, 211, width + 0.5), noErr);
            const opcv::RecordPtr scaled(out);
            ASSERT_EQ(scaled->width, width);
            cv::Mat expected;
            cv::resize(viewOf(*page), expected, cv::Size(width, scaled->height), 0, 0, cv::INTER_LINEAR);
            ASSERT_EQ(cv::norm(viewOf(*scaled), expected, cv::NORM_INF), 0) << depth << ' ' << width;
        }
    }
}

TEST(ResizePage, TruncatesTheNewSize) {
    Random random(603);
    const opcv::RecordPtr page = makePage(random, 101, 51, 8);
    KVIMG* out = nullptr;
    ASSERT_EQ(ResizeImageWithIPPEx(page.get(), &out, 400, 200), noErr);
    const opcv::RecordPtr half(out);
    EXPECT_EQ(half->width, 50);
    EXPECT_EQ(half->height, 25);
    EXPECT_EQ(half->rowBytes, 64);
    EXPECT_EQ(half->size, 64 * 25);
}

TEST(ResizePage, EqualNumbersCopyThePage) {
    Random random(604);
    for (const int depth : {8, 24, 32}) {
        const opcv::RecordPtr page = makePage(random, 77, 13, depth);
        KVIMG* out = nullptr;
        ASSERT_EQ(ResizeImageWithIPPEx(page.get(), &out, 300, 300), noErr);
        const opcv::RecordPtr copy(out);
        EXPECT_EQ(copy->width, 77);
        EXPECT_EQ(copy->height, 13);
        EXPECT_EQ(cv::norm(viewOf(*page), viewOf(*copy), cv::NORM_INF), 0);
    }
}

TEST(ResizePage, ExactHalfIsTheMeanOfFourPixels) {
    opcv::RecordPtr page;
    ASSERT_EQ(opcv::createRecord({0, 0, 2, 4}, 8, page), noErr);
    const std::vector<uint8_t> above = {0, 1, 255, 255};
    const std::vector<uint8_t> below = {0, 0, 255, 252};
    std::memcpy(page->data, above.data(), 4);
    std::memcpy(page->data + page->rowBytes, below.data(), 4);
    KVIMG* out = nullptr;
    ASSERT_EQ(ResizeImageWithIPPEx(page.get(), &out, 2, 1), noErr);
    const opcv::RecordPtr half(out);
    EXPECT_EQ(half->data[0], 0);
    EXPECT_EQ(half->data[1], 254);
}

// The slot holds a record of the caller's, which every failure releases.
OSErr resizeIntoUsedSlot(const KVIMG* page, double denominator, double numerator) {
    opcv::RecordPtr used;
    EXPECT_EQ(opcv::createRecord({0, 0, 2, 2}, 8, used), noErr);
    KVIMG* slot = used.release();
    const OSErr err = ResizeImageWithIPPEx(page, &slot, denominator, numerator);
    EXPECT_EQ(slot, nullptr);
    return err;
}

TEST(ResizePage, RefusesNullRecords) {
    Random random(605);
    const opcv::RecordPtr page = makePage(random, 10, 10, 8);
    EXPECT_EQ(ResizeImageWithIPPEx(page.get(), nullptr, 1, 1), paramErr);
    EXPECT_EQ(ResizeImageWithIPPEx(nullptr, nullptr, 1, 1), paramErr);
    EXPECT_EQ(resizeIntoUsedSlot(nullptr, 1, 1), paramErr);
    KVIMG* empty = nullptr;
    EXPECT_EQ(ResizeImageWithIPPEx(nullptr, &empty, 1, 1), paramErr);
    EXPECT_EQ(empty, nullptr);
}

TEST(ResizePage, RefusesOtherDepths) {
    Random random(606);
    for (const int depth : {1, 40}) {    // of which a record can be made
        const opcv::RecordPtr page = makePage(random, 32, 4, depth);
        EXPECT_EQ(resizeIntoUsedSlot(page.get(), 1, 1), rotateFailedErr) << depth;
        EXPECT_EQ(resizeIntoUsedSlot(page.get(), 1, 1e8), memFullErr) << depth;
    }
    const opcv::RecordPtr page = makePage(random, 32, 4, 8);
    // Of the last ones only the low byte is that of a depth.
    for (const int depth : {0, 2, 16, 41, -8, 256 + 8, 256 + 24, 65536 + 32}) {
        page->depth = depth;
        EXPECT_EQ(resizeIntoUsedSlot(page.get(), 1, 1), rotateFailedErr) << depth;
    }
    page->depth = 16;
    for (const double numerator : {1e6, 1e300, -1e300, std::numeric_limits<double>::infinity()})
        EXPECT_EQ(resizeIntoUsedSlot(page.get(), 1, numerator), rotateFailedErr) << numerator;
    EXPECT_EQ(resizeIntoUsedSlot(page.get(), 0, 1), rotateFailedErr);
    page->depth = 8;
}

TEST(ResizePage, RefusesEmptyResults) {
    Random random(607);
    for (const int depth : {8, 24, 32}) {
        const opcv::RecordPtr page = makePage(random, 16, 4, depth);
        EXPECT_EQ(resizeIntoUsedSlot(page.get(), 5, 1), paramErr);      // 3 x 0
        EXPECT_EQ(resizeIntoUsedSlot(page.get(), 1, 0), paramErr);      // 0 x 0
        EXPECT_EQ(resizeIntoUsedSlot(page.get(), 0, 0), paramErr);      // no number
        EXPECT_EQ(resizeIntoUsedSlot(page.get(), -1, 10), paramErr);    // both negative, the product is not
    }
}

TEST(ResizePage, RefusesPagesThatDoNotFitTheirRows) {
    Random random(608);
    const opcv::RecordPtr page = makePage(random, 16, 4, 24);
    const KVIMG good = *page;
    page->rowBytes = 47;
    EXPECT_EQ(resizeIntoUsedSlot(page.get(), 1, 2), paramErr);
    *page = good;
    for (int32_t KVIMG::*side : {&KVIMG::width, &KVIMG::height}) {
        (*page).*side = 0;
        EXPECT_EQ(resizeIntoUsedSlot(page.get(), 1, 2), paramErr);
        (*page).*side = -16;    // the new record would have a negative size
        EXPECT_EQ(resizeIntoUsedSlot(page.get(), 1, 2), memFullErr);
        *page = good;
    }
    KVIMG withoutPixels = good;
    withoutPixels.data = nullptr;
    EXPECT_EQ(resizeIntoUsedSlot(&withoutPixels, 1, 2), paramErr);
}

TEST(ResizePage, TooLargeSizesAreOutOfMemory) {
    Random random(609);
    const opcv::RecordPtr page = makePage(random, 1000, 10, 8);
    // In range for each side but not for the product; a side just beyond int; far beyond; infinite.
    for (const double scale : {50000.0, 2147483.648, -2147483.649, 1e300, std::numeric_limits<double>::infinity(),
                               -std::numeric_limits<double>::infinity()})
        EXPECT_EQ(resizeIntoUsedSlot(page.get(), 1, scale), memFullErr) << scale;
    EXPECT_EQ(resizeIntoUsedSlot(page.get(), 0, 1), memFullErr);
    page->width = 10;
    page->height = 1000;
    for (const double scale : {2147483.648, -2147483.649})
        EXPECT_EQ(resizeIntoUsedSlot(page.get(), 1, scale), memFullErr) << scale;
}

}    // namespace
