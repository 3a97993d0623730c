// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The library's vector targets, and the choice of one by name:
//
//     OPCV_DLIB_TEST_TARGET=SSSE3 PROGRAM    runs the kernels of that target; without it, those of the best one
//
// A program that is asked for a target that the processor lacks says so and ends with kLacking.
#pragma once

#include <hwy/highway.h>

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

namespace vector_target {

constexpr int kLacking = 77;

// The narrowest first: Highway gives better ones lower bits.
inline std::vector<int64_t> all() {
    std::vector<int64_t> targets;
    for (int bit = 62; bit >= 0; --bit)
        if (const int64_t target = int64_t{1} << bit; (HWY_TARGETS & target) != 0) targets.push_back(target);
    return targets;
}

inline bool runsHere(int64_t target) { return (hwy::SupportedTargets() & target) != 0; }

inline std::vector<int64_t> running() {
    std::vector<int64_t> targets;
    for (const int64_t target : all())
        if (runsHere(target)) targets.push_back(target);
    return targets;
}

// Runs the kernels of this target from now on; no other target is supported any more.
inline void use(int64_t target) {
    hwy::SetSupportedTargetsForTest(target);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
}

// Follows OPCV_DLIB_TEST_TARGET. Returns 0, or the status with which the program is to end.
inline int choose() {
    const char* wanted = std::getenv("OPCV_DLIB_TEST_TARGET");
    if (!wanted) return 0;
    for (const int64_t target : all()) {
        if (std::string(wanted) != hwy::TargetName(target)) continue;
        if (!runsHere(target)) {
            std::cout << "This processor lacks " << wanted << ".\n";
            return kLacking;
        }
        use(target);
        return 0;
    }
    std::cerr << "The library has no target " << wanted << ".\n";
    return 2;
}

}    // namespace vector_target
