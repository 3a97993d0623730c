// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Destinations that begin with the last byte that is read, or end with the first one.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "support/random.h"

// `run(first, destination)` reads `read` bytes from `first`, writes `written` bytes and returns whether it succeeded.
template <class Run>
void expectSameWithOneSharedByte(Random& random, ptrdiff_t read, ptrdiff_t written, Run run) {
    for (const bool behind : {true, false}) {
        std::vector<uint8_t> bytes(static_cast<size_t>(read + written - 1));
        random.fill(bytes.data(), bytes.size());
        const std::vector<uint8_t> before = bytes;
        const ptrdiff_t source = behind ? 0 : written - 1;
        const ptrdiff_t target = behind ? read - 1 : 0;
        std::vector<uint8_t> apart(static_cast<size_t>(written));
        ASSERT_TRUE(run(before.data() + source, apart.data()));
        ASSERT_TRUE(run(bytes.data() + source, bytes.data() + target));
        EXPECT_TRUE(std::equal(apart.begin(), apart.end(), bytes.begin() + target)) << (behind ? "last" : "first");
    }
}
