// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "core/Tools.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <numeric>
#include <vector>

#include "support/guarded_image.h"
#include "support/random.h"

namespace {

constexpr int kAllTypes[] = {0, 16, 24, 3, 4, 5, 1, 2, 6, 7};

TEST(Tools, TranslatesOSErrToIppStatus) {
    EXPECT_EQ(Tools::OSErrToIppStatus(0), 0);
    EXPECT_EQ(Tools::OSErrToIppStatus(-108), -4);
    for (int err = SHRT_MIN; err <= SHRT_MAX; ++err)
        ASSERT_EQ(Tools::OSErrToIppStatus(static_cast<OSErr>(err)), err == 0 ? 0 : err == -108 ? -4 : -5) << err;
}

TEST(Tools, TranslatesIppStatusToOSErr) {
    EXPECT_EQ(Tools::IppStatusToOSErr(0), 0);
    EXPECT_EQ(Tools::IppStatusToOSErr(-4), -108);
    for (const int status : {INT_MIN, INT_MIN + 5, -1000, -6, -5, -3, -2, -1, 1, 5, 1000, INT_MAX - 5, INT_MAX})
        EXPECT_EQ(Tools::IppStatusToOSErr(status), -50) << status;
}

TEST(Tools, ViewTakesItsColumnsAndItsPitchFromTheStep) {
    uint8_t data[100];
    cv::Mat view;
    ASSERT_EQ(Tools::CreateImageMat(data, 10, 4, 16, view), noErr);
    EXPECT_EQ(view.cols, 3);
    EXPECT_EQ(view.rows, 4);
    EXPECT_EQ(view.step[0], 9U);
    EXPECT_EQ(view.type(), 16);
    EXPECT_EQ(view.data, data);
    EXPECT_EQ(view.u, nullptr);
    EXPECT_EQ(Tools::CreateImageMat(data, 2, 4, 16, view), paramErr);
    for (const int type : kAllTypes) {
        const int pixelSize = static_cast<int>(CV_ELEM_SIZE(type));
        ASSERT_EQ(Tools::CreateImageMat(data, 5 * pixelSize + pixelSize - 1, 1, type, view), noErr);
        EXPECT_EQ(view.cols, 5) << type;
        EXPECT_EQ(Tools::CreateImageMat(data, pixelSize - 1, 1, type, view), paramErr) << type;
    }
}

TEST(Tools, CreateImageMatRefusesNullAndEmpty) {
    uint8_t data[16];
    cv::Mat view;
    EXPECT_EQ(Tools::CreateImageMat(nullptr, 4, 4, 0, view), paramErr);
    for (const int bad : {0, -1, INT_MIN}) {
        EXPECT_EQ(Tools::CreateImageMat(data, bad, 4, 0, view), paramErr);
        EXPECT_EQ(Tools::CreateImageMat(data, 4, bad, 0, view), paramErr);
    }
}

TEST(Tools, CutTakesRectanglesUpToTheEdge) {
    const cv::Mat src(8, 10, CV_8UC1);
    cv::Mat cut;
    ASSERT_EQ(Tools::CutImageMat(src, {4, 5, 6, 3}, cut), noErr);
    EXPECT_EQ(cut.data, src.ptr(5, 4));
    EXPECT_EQ(cut.cols, 6);
    EXPECT_EQ(cut.rows, 3);
    EXPECT_EQ(cut.step[0], src.step[0]);
    for (const cv::Rect& r : {cv::Rect(5, 5, 6, 3), cv::Rect(4, 6, 6, 3), cv::Rect(-1, 0, 2, 2), cv::Rect(0, -1, 2, 2),
                              cv::Rect(0, 0, 0, 2), cv::Rect(0, 0, 2, 0), cv::Rect(0, 0, -1, 2), cv::Rect(0, 0, 2, -1),
                              cv::Rect(INT_MAX, 0, INT_MAX, 1), cv::Rect(0, INT_MAX, 1, INT_MAX)})
        EXPECT_EQ(Tools::CutImageMat(src, r, cut), paramErr) << r;
}

TEST(Tools, CreateAndCutMakesAsManyRowsAsTheRectangleNeeds) {
    std::vector<uint8_t> data(20 * 10);
    cv::Mat view;
    ASSERT_EQ(Tools::CreateAndCutImageMat(data.data(), 20, {5, 7, 10, 3}, 0, view), noErr);
    cv::Size whole;
    cv::Point offset;
    view.locateROI(whole, offset);
    EXPECT_EQ(whole, cv::Size(20, 10));
    EXPECT_EQ(offset, cv::Point(5, 7));
    EXPECT_EQ(view.size(), cv::Size(10, 3));
    EXPECT_EQ(Tools::CreateAndCutImageMat(nullptr, 20, {5, 7, 10, 3}, 0, view), paramErr);
    EXPECT_EQ(Tools::CreateAndCutImageMat(data.data(), 14, {5, 7, 10, 3}, 0, view), paramErr);
    EXPECT_EQ(Tools::CreateAndCutImageMat(data.data(), 20, {5, -7, 10, 8}, 0, view), paramErr);
    EXPECT_EQ(Tools::CreateAndCutImageMat(data.data(), 20, {0, INT_MAX, 10, INT_MAX}, 0, view), paramErr);
    EXPECT_EQ(Tools::CreateAndCutImageMat(data.data(), 20, {0, INT_MIN, 10, INT_MIN}, 0, view), paramErr);
}

// What the copy must write, one pixel at a time.
TEST(Tools, CopyClipsByTheSourceAndWritesNothingElse) {
    Random random(31);
    for (int round = 0; round < 400; ++round) {
        const int type = random.chance(50) ? 0 : 16;
        const int pixelSize = type == 0 ? 1 : 3;
        cv::Mat src(random.between(1, 12), random.between(1, 12), type);
        random.fill(src.data, src.total() * src.elemSize());
        const cv::Point from(random.between(0, src.cols - 1), random.between(0, src.rows - 1));
        const cv::Size asked(random.between(1, 20), random.between(1, 20));
        const cv::Size size(std::min(asked.width, src.cols - from.x), std::min(asked.height, src.rows - from.y));
        const cv::Point to(random.between(0, 4), random.between(0, 4));
        GuardedImage dst(random, {to.x + size.width, to.y + size.height}, GuardedImage::anyLayout(random, pixelSize));
        ASSERT_EQ(Tools::CopyImageMatData(src, from, dst.data(), dst.step(), to, asked), noErr);
        ASSERT_TRUE(dst.untouchedOutside(to.x * pixelSize, to.y, size.width * pixelSize, size.height));
        for (int y = 0; y < size.height; ++y)
            ASSERT_TRUE(
                std::equal(dst.at(to.x, to.y + y), dst.at(to.x + size.width, to.y + y), src.ptr(from.y + y, from.x)));
    }
}

TEST(Tools, CopyIsNotClippedByTheDestination) {
    Random random(32);
    cv::Mat src(4, 8, CV_8UC1, cv::Scalar(1));
    GuardedImage dst(random, {10, 4}, {});
    const auto copy = [&](cv::Point from, void* to, int step, cv::Point at, cv::Size size) {
        const OSErr err = Tools::CopyImageMatData(src, from, to, step, at, size);
        EXPECT_TRUE(dst.untouched());
        return err;
    };
    EXPECT_EQ(copy({0, 0}, dst.data(), 10, {3, 0}, {8, 4}), paramErr);
    EXPECT_EQ(copy({0, 0}, dst.data(), 7, {0, 0}, {8, 4}), paramErr);
    EXPECT_EQ(copy({0, 0}, dst.data(), 10, {-1, 0}, {8, 4}), paramErr);
    EXPECT_EQ(copy({0, 0}, dst.data(), 10, {0, -1}, {8, 4}), paramErr);
    EXPECT_EQ(copy({0, 0}, nullptr, 10, {0, 0}, {8, 4}), paramErr);
    EXPECT_EQ(copy({8, 0}, dst.data(), 10, {0, 0}, {1, 1}), paramErr);
    EXPECT_EQ(copy({0, 4}, dst.data(), 10, {0, 0}, {1, 1}), paramErr);
    EXPECT_EQ(copy({-1, 0}, dst.data(), 10, {0, 0}, {1, 1}), paramErr);
    EXPECT_EQ(copy({0, 0}, dst.data(), 10, {0, 0}, {0, 1}), paramErr);
    EXPECT_EQ(copy({0, 0}, dst.data(), 10, {0, 0}, {1, -1}), paramErr);
    EXPECT_EQ(copy({INT_MIN, 0}, dst.data(), 10, {0, 0}, {1, 1}), paramErr);
    EXPECT_EQ(copy({0, 0}, dst.data(), 10, {INT_MAX, INT_MAX}, {8, 4}), paramErr);
}

TEST(Tools, KernelMatWrapsADenseArray) {
    uint8_t mask[] = {1, 2, 3, 4, 5, 6};
    cv::Mat kernel;
    ASSERT_EQ(Tools::CreateKernelMat(mask, {3, 2}, 0, kernel), noErr);
    EXPECT_EQ(kernel.data, mask);
    EXPECT_EQ(kernel.size(), cv::Size(3, 2));
    EXPECT_EQ(kernel.at<uint8_t>(1, 2), 6);
    EXPECT_EQ(Tools::CreateKernelMat(nullptr, {3, 2}, 0, kernel), paramErr);
    for (const int bad : {0, -1}) {
        EXPECT_EQ(Tools::CreateKernelMat(mask, {bad, 2}, 0, kernel), paramErr);
        EXPECT_EQ(Tools::CreateKernelMat(mask, {3, bad}, 0, kernel), paramErr);
    }
}

template <typename T>
std::vector<T> valuesOf(const cv::Mat& m) {
    return {m.ptr<T>(), m.ptr<T>() + m.total()};
}

TEST(Tools, ReversedKernelsOfKnownSizes) {
    const std::vector<int> nine = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    cv::Mat kernel;
    ASSERT_EQ((Tools::CreateKernelMatReverse<int, 4U>(nine.data(), {3, 3}, kernel)), noErr);
    EXPECT_EQ(valuesOf<int>(kernel), (std::vector<int>{9, 8, 7, 6, 5, 4, 3, 2, 1}));
    EXPECT_EQ(kernel.type(), CV_32SC1);
    ASSERT_EQ((Tools::CreateKernelMatReverse<int, 4U>(nine.data(), {2, 2}, kernel)), noErr);
    EXPECT_EQ(valuesOf<int>(kernel), (std::vector<int>{0, 0, 0, 0, 4, 3, 0, 2, 1}));
    ASSERT_EQ((Tools::CreateKernelMatReverse<int, 4U>(nine.data(), {4, 1}, kernel)), noErr);
    EXPECT_EQ(kernel.size(), cv::Size(5, 1));
    EXPECT_EQ(valuesOf<int>(kernel), (std::vector<int>{0, 4, 3, 2, 1}));
}

template <typename T, unsigned D>
void checkReversal(int type) {
    std::vector<T> cells(7 * 7);
    std::iota(cells.begin(), cells.end(), T{1});
    for (int height = 1; height <= 7; ++height)
        for (int width = 1; width <= 7; ++width) {
            cv::Mat kernel;
            ASSERT_EQ((Tools::CreateKernelMatReverse<T, D>(cells.data(), {width, height}, kernel)), noErr);
            ASSERT_EQ(kernel.type(), type);
            ASSERT_EQ(kernel.rows, height % 2 ? height : height + 1);
            ASSERT_EQ(kernel.cols, width % 2 ? width : width + 1);
            for (int r = 0; r < kernel.rows; ++r)
                for (int c = 0; c < kernel.cols; ++c) {
                    const int j = kernel.rows - 1 - r;
                    const int i = kernel.cols - 1 - c;
                    const T expected =
                        j < height && i < width
                            ? cells[static_cast<size_t>(j) * static_cast<size_t>(width) + static_cast<size_t>(i)]
                            : T{0};
                    ASSERT_EQ(kernel.at<T>(r, c), expected);
                }
        }
    cv::Mat kernel;
    EXPECT_EQ((Tools::CreateKernelMatReverse<T, D>(nullptr, {3, 3}, kernel)), paramErr);
    for (const int bad : {0, -1}) {
        EXPECT_EQ((Tools::CreateKernelMatReverse<T, D>(cells.data(), {bad, 3}, kernel)), paramErr);
        EXPECT_EQ((Tools::CreateKernelMatReverse<T, D>(cells.data(), {3, bad}, kernel)), paramErr);
    }
}

TEST(Tools, ReversedKernelsOfEverySize) {
    checkReversal<int, 4U>(CV_32SC1);
    checkReversal<float, 5U>(CV_32FC1);
}

template <typename T, unsigned D>
void checkThatAViewIsLeftAlone(int type) {
    std::vector<T> cells(9);
    std::iota(cells.begin(), cells.end(), T{1});
    std::vector<T> viewed(9, T{7});
    cv::Mat kernel(3, 3, type, viewed.data());
    ASSERT_EQ((Tools::CreateKernelMatReverse<T, D>(cells.data(), {3, 3}, kernel)), noErr);
    EXPECT_EQ(viewed, std::vector<T>(9, T{7}));
    EXPECT_NE(kernel.data, reinterpret_cast<uint8_t*>(viewed.data()));
    EXPECT_EQ(valuesOf<T>(kernel), std::vector<T>(cells.rbegin(), cells.rend()));

    // Another header of an earlier result keeps its values, and those may be the kernel.
    const cv::Mat earlier = kernel;
    ASSERT_EQ((Tools::CreateKernelMatReverse<T, D>(earlier.ptr<T>(), {3, 3}, kernel)), noErr);
    EXPECT_EQ(valuesOf<T>(earlier), std::vector<T>(cells.rbegin(), cells.rend()));
    EXPECT_EQ(valuesOf<T>(kernel), cells);
}

TEST(Tools, ReversedKernelsAreNewMatrices) {
    checkThatAViewIsLeftAlone<int, 4U>(CV_32SC1);
    checkThatAViewIsLeftAlone<float, 5U>(CV_32FC1);
}

}    // namespace
