// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The algebra of regions against pixel addresses that are counted by hand, and the overlap of byte ranges.
#include "core/region.h"

#include <gtest/gtest.h>

#include <climits>
#include <vector>

namespace {

constexpr int kStep = 60;

class RegionOfAnImage : public testing::Test {
protected:
    // Pixel (x, y) of an image whose region begins at (10, 8).
    uint8_t* at(int x, int y, int pixelSize) { return &image_[static_cast<size_t>(y * kStep + x * pixelSize)]; }
    opcv::Region region(int type, IppiSize size) {
        return opcv::Region(at(10, 8, static_cast<int>(CV_ELEM_SIZE(type))), kStep, type, size);
    }

    void expectView(const opcv::Region& region, int type, const uint8_t* first, cv::Size size) {
        cv::Mat view;
        ASSERT_EQ(region.view(view), noErr);
        EXPECT_EQ(view.data, first);
        EXPECT_EQ(view.size(), size);
        EXPECT_EQ(view.type(), type);
        EXPECT_EQ(view.step[0], static_cast<size_t>(kStep));
    }

private:
    std::vector<uint8_t> image_ = std::vector<uint8_t>(40 * kStep);
};

TEST_F(RegionOfAnImage, IsViewedMovedAndEnlarged) {
    for (const int type : {CV_8UC1, CV_8UC3, CV_16SC1}) {
        const int pixelSize = static_cast<int>(CV_ELEM_SIZE(type));
        const opcv::Region plain = region(type, {5, 4});
        expectView(plain, type, at(10, 8, pixelSize), {5, 4});
        expectView(plain.movedBy(3, -2), type, at(13, 6, pixelSize), {5, 4});
        expectView(plain.withMargin({2, 3}), type, at(8, 5, pixelSize), {9, 10});
        expectView(plain.withMargin({2, 3}).movedBy(-1, 1), type, at(7, 6, pixelSize), {9, 10});
    }
}

TEST_F(RegionOfAnImage, LiesUnderMasksFromTheFirstOneOn) {
    const opcv::Region plain = region(CV_8UC1, {5, 4});
    expectView(plain.underMask({3, 5}, {1, 2}), CV_8UC1, at(9, 6, 1), {7, 8});
    expectView(plain.underMask({3, 5}, {0, 0}), CV_8UC1, at(10, 8, 1), {7, 8});
    expectView(plain.underMask({3, 5}, {-1, 4}), CV_8UC1, at(11, 4, 1), {7, 8});
    expectView(plain.underMask({4, 2}, {1, 1}), CV_8UC1, at(9, 7, 1), {9, 6});
    expectView(plain.underMask({1, 1}, {0, 0}), CV_8UC1, at(10, 8, 1), {5, 4});
}

TEST_F(RegionOfAnImage, IsRefusedIfItCannotBeViewed) {
    cv::Mat view;
    EXPECT_EQ(opcv::Region(nullptr, kStep, CV_8UC1, {5, 4}).movedBy(1, 1).view(view), paramErr);
    EXPECT_EQ(region(CV_8UC1, {0, 4}).view(view), paramErr);
    EXPECT_EQ(region(CV_8UC1, {5, -1}).view(view), paramErr);
    EXPECT_EQ(region(CV_8UC1, {kStep + 1, 4}).view(view), paramErr);
    EXPECT_EQ(region(CV_8UC1, {5, 4}).withMargin({INT_MAX, 0}).view(view), paramErr);
    EXPECT_EQ(region(CV_8UC1, {5, INT_MAX}).withMargin({0, INT_MAX}).view(view), paramErr);
}

TEST_F(RegionOfAnImage, IsViewedWithTheImageAroundIt) {
    cv::Mat view;
    ASSERT_EQ(opcv::viewOf(at(0, 0, 3), kStep, CV_8UC3, IppiRect{4, 3, 5, 6}, view), noErr);
    EXPECT_EQ(view.data, at(4, 3, 3));
    cv::Size whole;
    cv::Point corner;
    view.locateROI(whole, corner);
    EXPECT_EQ(whole, cv::Size(20, 9));
    EXPECT_EQ(corner, cv::Point(4, 3));
    ASSERT_EQ(opcv::viewOf(at(0, 0, 3), kStep, CV_8UC3, IppiSize{20, 2}, view), noErr);
    EXPECT_EQ(view.data, at(0, 0, 3));
    EXPECT_EQ(opcv::viewOf(at(0, 0, 3), kStep, CV_8UC3, IppiSize{21, 2}, view), paramErr);
    EXPECT_EQ(opcv::viewOf(nullptr, kStep, CV_8UC3, IppiSize{2, 2}, view), paramErr);
}

TEST(Region, SizesAreComparedSideBySide) {
    EXPECT_TRUE(opcv::fitsIn({5, 4}, {100, -3, 5, 4}));
    EXPECT_FALSE(opcv::fitsIn({5, 4}, {0, 0, 6, 4}));
    EXPECT_FALSE(opcv::fitsIn({5, 4}, {0, 0, 5, 5}));
    EXPECT_TRUE(opcv::isEmpty({0, 1}));
    EXPECT_TRUE(opcv::isEmpty({1, -1}));
    EXPECT_FALSE(opcv::isEmpty({1, 1}));
}

TEST(Region, RangesOverlapIfTheyShareAByte) {
    const std::vector<uint8_t> bytes(100);
    const auto range = [&](size_t from, size_t to) { return opcv::ByteSpan(&bytes[from], &bytes[to]); };
    EXPECT_TRUE(opcv::overlap(range(10, 20), range(19, 30)));
    EXPECT_FALSE(opcv::overlap(range(10, 20), range(20, 30)));
    EXPECT_TRUE(opcv::overlap(range(10, 50), range(20, 30)));
    EXPECT_TRUE(opcv::overlap(range(20, 30), range(10, 50)));
    EXPECT_FALSE(opcv::overlap(range(20, 30), range(10, 20)));
    // Three rows of four bytes, ten apart, end with the fourth byte of the last row.
    EXPECT_FALSE(opcv::overlap(opcv::ByteSpan(&bytes[0], 10, 4, 3), range(24, 30)));
    EXPECT_TRUE(opcv::overlap(opcv::ByteSpan(&bytes[0], 10, 4, 3), range(23, 30)));
    const cv::Mat rows(3, 4, CV_8UC1, const_cast<uint8_t*>(bytes.data()), 10);
    const cv::Mat beside(3, 4, CV_8UC1, const_cast<uint8_t*>(&bytes[5]), 10);
    const cv::Mat below(3, 4, CV_8UC1, const_cast<uint8_t*>(&bytes[24]), 10);
    EXPECT_TRUE(opcv::overlap(rows, beside));
    EXPECT_FALSE(opcv::overlap(rows, below));
}

}    // namespace
