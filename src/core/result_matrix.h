// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Matrices that OpenCV fills.
#pragma once

#include <opencv2/core.hpp>

namespace opcv {

// An allocator of dense matrices, like OpenCV's, but without its leak: OpenCV allocates the pixels first and the block
// with the reference count second, and leaks the first if allocating the second fails.
class SafeAllocator : public cv::MatAllocator {
public:
    cv::UMatData* allocate(int dims, const int* sizes, int type, void* given, size_t* step, cv::AccessFlag flags,
                           cv::UMatUsageFlags usage) const override;
    bool allocate(cv::UMatData* data, cv::AccessFlag flags, cv::UMatUsageFlags usage) const override;
    void deallocate(cv::UMatData* data) const override;
};

// An empty matrix that contains its allocator, so that the library has no writable data. No matrix that shares its
// pixels may outlive it.
class ResultMatrix : private SafeAllocator, public cv::Mat {
public:
    ResultMatrix() { cv::Mat::allocator = static_cast<SafeAllocator*>(this); }
    ResultMatrix(const ResultMatrix&) = delete;
    ResultMatrix& operator=(const ResultMatrix&) = delete;
    using cv::Mat::operator=;
};

}    // namespace opcv
