// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// A packed row of three channels and its three planes, in blocks of exactly their size.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>

#include "support/fenced_memory.h"

// Calls `use(packed, planes, width)` with rows of many widths, fenced at either end.
template <class Use>
void forEachFencedRow(Use use) {
    for (const auto fence : {FencedMemory::Fence::kBehind, FencedMemory::Fence::kInFront})
        for (int width = 1; width <= 140; ++width) {
            const auto count = static_cast<size_t>(width);
            FencedMemory packed(3 * count, fence);
            FencedMemory first(count, fence);
            FencedMemory second(count, fence);
            FencedMemory third(count, fence);
            unsigned char* const planes[3] = {first.data(), second.data(), third.data()};
            ASSERT_NO_FATAL_FAILURE(use(packed.data(), planes, width)) << "width " << width;
        }
}
