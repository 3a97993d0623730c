// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Matrices that OpenCV fills: as OpenCV's own, with the allocator of the matrix.
#include "core/result_matrix.h"

#include <gtest/gtest.h>

#include <opencv2/imgproc.hpp>

namespace {

TEST(ResultMatrix, IsDenseAndKeepsItsAllocator) {
    opcv::ResultMatrix m;
    EXPECT_TRUE(m.empty());
    for (const int type : {CV_8UC1, CV_8UC3, CV_16SC1, CV_32FC4}) {
        m.create(7, 13, type);
        EXPECT_TRUE(m.isContinuous());
        EXPECT_EQ(m.step[0], 13 * CV_ELEM_SIZE(type));
        ASSERT_NE(m.u, nullptr);
        EXPECT_EQ(m.u->currAllocator, m.allocator);
        EXPECT_EQ(m.u->size, 7 * 13 * CV_ELEM_SIZE(type));
        m.setTo(cv::Scalar::all(3));
        m.release();
        EXPECT_TRUE(m.empty());
    }
}

TEST(ResultMatrix, ReceivesWhatOpenCVComputes) {
    cv::Mat source(9, 11, CV_8UC1);
    cv::randu(source, 0, 256);
    cv::Mat expected;
    cv::blur(source, expected, {3, 3});
    opcv::ResultMatrix result;
    cv::blur(source, result, {3, 3});
    EXPECT_EQ(cv::countNonZero(result != expected), 0);
    EXPECT_EQ(result.u->currAllocator, result.allocator);
}

TEST(ResultMatrix, MayBecomeAViewOfAnother) {
    cv::Mat source(4, 5, CV_8UC1, cv::Scalar(7));
    opcv::ResultMatrix view;
    view = source(cv::Rect(1, 1, 2, 2));
    EXPECT_EQ(view.data, source.ptr(1) + 1);
    EXPECT_EQ(view.size(), cv::Size(2, 2));
}

}    // namespace
