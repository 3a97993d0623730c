// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// A record of random pixels.
#pragma once

#include <gtest/gtest.h>

#include "OPCV_dlib.h"
#include "core/ownership.h"
#include "support/random.h"

inline opcv::RecordPtr recordOf(int width, int height, int depth) {
    opcv::RecordPtr record;
    EXPECT_EQ(opcv::createRecord({0, 0, height, width}, static_cast<unsigned char>(depth), record), noErr);
    Random random(91);
    random.fill(record->data, static_cast<size_t>(record->size));
    return record;
}
