// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// "catalogue_memory_tests --table" writes the table of docs/reliability.md instead of testing.
#include <gtest/gtest.h>

#include <cstring>
#include <iostream>
#include <opencv2/core.hpp>

#include "observation.h"

int main(int argc, char** argv) {
    cv::setNumThreads(1);    // the heap fails in the thread that is watched only
    testing::InitGoogleTest(&argc, argv);
    if (argc == 2 && std::strcmp(argv[1], "--table") == 0) {
        std::cout << failureTable();
        return 0;
    }
    return RUN_ALL_TESTS();
}
