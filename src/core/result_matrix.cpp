// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "core/result_matrix.h"

#include <memory>

namespace opcv {

namespace {

struct FastFree {
    void operator()(void* block) const { cv::fastFree(block); }
};

}    // namespace

// OpenCV never passes existing memory to this allocator.
cv::UMatData* SafeAllocator::allocate(int dims, const int* sizes, int type, void* /*given*/, size_t* step,
                                      cv::AccessFlag /*flags*/, cv::UMatUsageFlags /*usage*/) const {
    size_t total = CV_ELEM_SIZE(type);
    for (int i = dims - 1; i >= 0; --i) {
        if (step) step[i] = total;
        total *= static_cast<size_t>(sizes[i]);
    }
    std::unique_ptr<void, FastFree> block(cv::fastMalloc(total));
    auto* data = new cv::UMatData(this);
    data->data = data->origdata = static_cast<uchar*>(block.release());
    data->size = total;
    return data;
}

bool SafeAllocator::allocate(cv::UMatData* data, cv::AccessFlag /*flags*/, cv::UMatUsageFlags /*usage*/) const {
    return data != nullptr;
}

void SafeAllocator::deallocate(cv::UMatData* data) const {
    if (!data) return;
    cv::fastFree(data->origdata);
    delete data;
}

}    // namespace opcv
