// How much of the heap a call takes: malloc and its kin, operator new included, of the program and every library in it.
#pragma once

#include <cstddef>

class HeapMeter {
public:
    struct Use {
        size_t most;    // bytes at the same time while the call ran, what it hands over included
        size_t kept;    // bytes that it has handed over
    };

    static void start();
    static Use stop();
};
