// How much of the heap a call takes, in whichever thread. Its program links own_malloc.
#pragma once

#include <cstddef>

class HeapMeter {
public:
    struct Use {
        size_t most = 0;      // bytes at the same time while the call ran, what it hands over included
        size_t kept = 0;      // bytes that it has handed over
        size_t blocks = 0;    // that it asked for
    };

    static void start();
    static Use stop();

    template <class Call>
    static Use of(const Call& call) {
        start();
        call();
        return stop();
    }
};
