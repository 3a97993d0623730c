// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Test program entry. OPCV_DLIB_TEST_TARGET selects the vector target, see vector_target.h.
//
//     unit_tests --targets    names the targets that can run here, and those that the processor lacks
#include <gtest/gtest.h>

#include <cstring>
#include <iostream>
#include <string>

#include "vector_target.h"

namespace {

std::string namesOf(bool running) {
    std::string names;
    for (const int64_t target : vector_target::all())
        if (vector_target::runsHere(target) == running) names += std::string(" ") + hwy::TargetName(target);
    return names.empty() ? " none" : names;
}

}    // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (argc == 2 && std::strcmp(argv[1], "--targets") == 0) {
        std::cout << "targets:" << namesOf(true) << "; this processor lacks:" << namesOf(false) << '\n';
        return 0;
    }
    if (const int end = vector_target::choose()) return end;
    return RUN_ALL_TESTS();
}
