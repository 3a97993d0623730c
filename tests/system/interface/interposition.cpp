// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include <cstdio>
#include <cstdlib>

#include "OPCV_dlib.h"
#include "interposer.h"

namespace {

bool report(const char* name, bool good) {
    std::printf("%s: %s\n", name, good ? "taken over" : "NOT taken over");
    return good;
}

}    // namespace

int main() {
    bool good = report("IPPShare_ippStaticInit", IPPShare_ippStaticInit() == TAKEN && takenCalls == 1);

    IPPShare_ippiFree(std::malloc(4));
    good = report("IPPShare_ippiFree", takenCalls == 2) && good;

    const unsigned char source[9] = {};
    unsigned char median = 0;
    const IppStatus status = IPPMini_ippiFilterMedian_8u_C1R(source + 4, 3, &median, 1, {1, 1}, {3, 3}, {1, 1});
    good = report("IPPMini_ippiFilterMedian_8u_C1R", status == TAKEN && takenCalls == 3) && good;
    return good ? 0 : 1;
}
