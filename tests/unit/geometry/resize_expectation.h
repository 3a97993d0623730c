// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Compares a scaled image with the definition in fixed point and with the plain formula.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <opencv2/core.hpp>

#include "oracle/resize.h"

inline void expectResized(const oracle::Raster& source, double xScale, double yScale, const cv::Mat& scaled) {
    for (int y = 0; y < scaled.rows; ++y)
        for (int x = 0; x < scaled.cols; ++x)
            for (int c = 0; c < source.channels; ++c) {
                const int value = scaled.ptr(y)[source.channels * x + c];
                ASSERT_EQ(value, oracle::resizedAt(source, xScale, yScale, x, y, c)) << x << ' ' << y << ' ' << c;
                ASSERT_LE(std::abs(value - oracle::realResizedAt(source, xScale, yScale, x, y, c)), 1.0)
                    << x << ' ' << y << ' ' << c;
            }
}
