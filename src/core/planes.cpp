// Plane allocators of the image functions: rows of a multiple of 64 bytes.
#include <cstdint>
#include <cstdlib>

#include "OPCV_dlib.h"
#include "core/pixel_memory.h"

namespace {

void* allocatePlane(int width, int height, int pixelSize, int* stepBytes) {
    if (height <= 0 || !stepBytes || width <= 0) return nullptr;
    const int64_t step = (int64_t{width} * pixelSize + 63) & ~int64_t{63};
    if (step > INT32_MAX) return nullptr;
    *stepBytes = static_cast<int>(step);
    if (step * height > INT32_MAX) return nullptr;
    return allocatePixels(static_cast<size_t>(step * height));
}

}    // namespace

short* IPPShare_ippiMalloc_16s_C1(int width, int height, int* pStepBytes) {
    return static_cast<short*>(allocatePlane(width, height, 2, pStepBytes));
}

unsigned char* IPPMini_ippiMalloc_8u_C3(int width, int height, int* pStepBytes) {
    return static_cast<unsigned char*>(allocatePlane(width, height, 3, pStepBytes));
}

void IPPMini_ippiFree(void* p) { std::free(p); }

void IPPShare_ippiFree(void* p) { IPPMini_ippiFree(p); }
