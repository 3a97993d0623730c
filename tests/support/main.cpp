// Test program entry. OPCV_DLIB_TEST_TARGET=SSSE3 makes the kernels run on the narrower of the two x86-64 targets.
#include <gtest/gtest.h>
#include <hwy/highway.h>

#include <cstdlib>
#include <cstring>
#include <iostream>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const char* target = std::getenv("OPCV_DLIB_TEST_TARGET");
    if (target && std::strcmp(target, "SSSE3") == 0) {
        hwy::SetSupportedTargetsForTest(HWY_SSSE3);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    }
    std::cout << "Vector targets: " << std::hex << hwy::SupportedTargets() << std::dec << '\n';
    return RUN_ALL_TESTS();
}
