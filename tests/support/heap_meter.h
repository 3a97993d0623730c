// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Measures the heap use of a call, in all threads. The program must link own_malloc.
#pragma once

#include <cstddef>

class HeapMeter {
public:
    struct Use {
        size_t most = 0;      // most bytes at the same time during the call, including its results
        size_t kept = 0;      // bytes of its results
        size_t blocks = 0;    // number of blocks allocated
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
