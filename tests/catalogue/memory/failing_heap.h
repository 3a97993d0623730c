// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The heap of the test program and of every library in it. It can make the n-th allocation of a call fail, and it
// counts the blocks that the call has allocated and not freed.
#pragma once

#include <cstddef>

class FailingHeap {
public:
    enum class Failure { kOnce, kLasting };

    static constexpr long kNever = 1 << 30;

    // Makes the n-th allocation of this thread fail (counted from 1), and with kLasting all after it.
    static void arm(long n, Failure failure);

    // Stops counting. Returns whether an allocation has failed.
    static bool disarm();

    // Fills new blocks of all threads with this byte; a negative value disables this.
    static void fillWith(int byte);

    // Blocks that were allocated while armed and not freed, including those that the call has returned.
    static size_t liveBlocks();
};
