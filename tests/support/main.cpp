// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Test program entry.
//
//     OPCV_DLIB_TEST_TARGET=SSSE3 unit_tests    runs the kernels of that vector target; without it, those of the best one
//     unit_tests --targets                      names the targets that can run here, and those that the processor lacks
//
// A program that is asked for a target that the processor lacks says so and ends with kLacking.
#include <gtest/gtest.h>
#include <hwy/highway.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string>
#include <vector>

namespace {

constexpr int kLacking = 77;

// The library's targets, the narrowest first: Highway gives better ones lower bits.
std::vector<int64_t> allTargets() {
    std::vector<int64_t> targets;
    for (int bit = 62; bit >= 0; --bit)
        if (const int64_t target = int64_t{1} << bit; (HWY_TARGETS & target) != 0) targets.push_back(target);
    return targets;
}

bool runsHere(int64_t target) { return (hwy::SupportedTargets() & target) != 0; }

std::string namesOf(bool running) {
    std::string names;
    for (const int64_t target : allTargets())
        if (runsHere(target) == running) names += std::string(" ") + hwy::TargetName(target);
    return names.empty() ? " none" : names;
}

// 0, or what the program ends with.
int choose(const std::string& name) {
    for (const int64_t target : allTargets()) {
        if (name != hwy::TargetName(target)) continue;
        if (!runsHere(target)) {
            std::cout << "This processor lacks " << name << ".\n";
            return kLacking;
        }
        hwy::SetSupportedTargetsForTest(target);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
        return 0;
    }
    std::cerr << "The library has no target " << name << ".\n";
    return 2;
}

}    // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (argc == 2 && std::strcmp(argv[1], "--targets") == 0) {
        std::cout << "targets:" << namesOf(true) << "; this processor lacks:" << namesOf(false) << '\n';
        return 0;
    }
    if (const char* name = std::getenv("OPCV_DLIB_TEST_TARGET"))
        if (const int end = choose(name)) return end;
    return RUN_ALL_TESTS();
}
