// Test program entry. OPCV_DLIB_TEST_TARGET=SSSE3 makes the kernels run on the narrower of the two x86-64 targets.
#include <gtest/gtest.h>
#include <hwy/highway.h>

#include <cstdlib>
#include <iostream>
#include <string>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const std::string target = std::getenv("OPCV_DLIB_TEST_TARGET") ? std::getenv("OPCV_DLIB_TEST_TARGET") : "";
    if (target == "SSSE3") {
        hwy::SetSupportedTargetsForTest(HWY_SSSE3);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    } else if (!target.empty()) {
        std::cerr << "No tests for the target " << target << '\n';
        return 2;
    }
    std::cout << "Vector targets: " << std::hex << hwy::SupportedTargets() << std::dec << '\n';
    return RUN_ALL_TESTS();
}
