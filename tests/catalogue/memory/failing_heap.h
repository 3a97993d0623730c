// The heap of the test program and of every library in it. On demand the n-th allocation of a call fails, and what the
// call has allocated and not freed is counted.
#pragma once

#include <cstddef>

class FailingHeap {
public:
    enum class Failure { kOnce, kLasting };

    static constexpr long kNever = 1 << 30;

    // From now on, in this thread: the n-th allocation fails (counted from 1), and with kLasting all after it.
    static void arm(long n, Failure failure);

    // Ends the counting. Whether an allocation was made to fail.
    static bool disarm();

    // New blocks hold this byte, of all threads; a negative value leaves them as they are.
    static void fillWith(int byte);

    // Blocks that were allocated while armed and are still there. A block that the call has handed over counts.
    static size_t liveBlocks();
};
