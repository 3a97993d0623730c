// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Compare the regions of two images and report the first difference.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>

#include "support/guarded_image.h"

inline testing::AssertionResult closeRows(const GuardedImage& a, const GuardedImage& b, int tolerance) {
    for (int y = 0; y < a.size().height; ++y)
        for (int x = 0; x < a.rowBytes(); ++x)
            if (std::abs(a.at(0, y)[x] - b.at(0, y)[x]) > tolerance)
                return testing::AssertionFailure() << "byte " << x << " of row " << y << " is " << int{a.at(0, y)[x]}
                                                   << " instead of " << int{b.at(0, y)[x]};
    return testing::AssertionSuccess();
}

inline testing::AssertionResult sameRows(const GuardedImage& a, const GuardedImage& b) { return closeRows(a, b, 0); }
