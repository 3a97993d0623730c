// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Plane allocators. The length of a row is a multiple of 64 bytes.
#include <climits>
#include <cstdint>
#include <cstdlib>

#include "OPCV_dlib.h"
#include "core/pixel_memory.h"

namespace opcv {
namespace {

void* allocatePlane(int width, int height, int pixelSize, int* stepBytes) {
    if (height <= 0 || !stepBytes || width <= 0) return nullptr;
    const int64_t step = planeStep(width, pixelSize);
    if (step > INT_MAX) return nullptr;
    *stepBytes = static_cast<int>(step);
    if (!planeFits(width, height, pixelSize)) return nullptr;
    return allocatePixels(static_cast<size_t>(step * height));
}

}    // namespace
}    // namespace opcv

using namespace opcv;

short* IPPShare_ippiMalloc_16s_C1(int width, int height, int* pStepBytes) {
    return static_cast<short*>(allocatePlane(width, height, 2, pStepBytes));
}

unsigned char* IPPMini_ippiMalloc_8u_C3(int width, int height, int* pStepBytes) {
    return static_cast<unsigned char*>(allocatePlane(width, height, 3, pStepBytes));
}

void IPPMini_ippiFree(void* p) { std::free(p); }

void IPPShare_ippiFree(void* p) { IPPMini_ippiFree(p); }
