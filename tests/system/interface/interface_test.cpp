// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include "OPCV_dlib_read.h"

extern "C" int turnInC(void);
extern "C" int readInC(void);
int streamLengthInCpp();
opcv_read_status readNothingInCpp();

namespace {

TEST(Interface, WorksFromC) { EXPECT_EQ(turnInC(), 0); }

TEST(Interface, WorksFromCpp) { EXPECT_GT(streamLengthInCpp(), 100); }

TEST(Interface, ReadsFromC) { EXPECT_EQ(readInC(), 0); }

TEST(Interface, ReadsFromCpp) { EXPECT_EQ(readNothingInCpp(), OPCV_READ_UNREADABLE); }

}    // namespace
