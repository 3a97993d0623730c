// Matrices for OpenCV to fill.
#pragma once

#include <opencv2/core.hpp>

// Dense matrices on the heap, as OpenCV's allocator makes them, and nothing lost when memory runs out. OpenCV's own takes
// the pixels first and the block that keeps count of them second, and forgets the first when it cannot have the second.
class SafeAllocator : public cv::MatAllocator {
public:
    cv::UMatData* allocate(int dims, const int* sizes, int type, void* given, size_t* step, cv::AccessFlag flags,
                           cv::UMatUsageFlags usage) const override;
    bool allocate(cv::UMatData* data, cv::AccessFlag flags, cv::UMatUsageFlags usage) const override;
    void deallocate(cv::UMatData* data) const override;
};

// An empty matrix with an allocator of its own, so that none is kept in the library's data. No other matrix may share its
// pixels and outlive it.
class ResultMatrix : private SafeAllocator, public cv::Mat {
public:
    ResultMatrix() { cv::Mat::allocator = static_cast<SafeAllocator*>(this); }
    ResultMatrix(const ResultMatrix&) = delete;
    ResultMatrix& operator=(const ResultMatrix&) = delete;
    using cv::Mat::operator=;
};
