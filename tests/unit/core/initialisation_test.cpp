// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include "OPCV_dlib.h"

namespace {

TEST(Initialisation, ReturnsZeroInAnyOrderAnyNumberOfTimes) {
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(IPPShare_ippStaticInit(), 0);
        EXPECT_EQ(IppInit(), 0);
        EXPECT_EQ(IPPMini_ippStaticInit(), 0);
        EXPECT_EQ(IppInit(), 0);
    }
}

}    // namespace
