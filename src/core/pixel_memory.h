// The heap's blocks for whole images.
#pragma once

#include <climits>
#include <cstddef>
#include <cstdint>

// malloc. What a large block first touches is handed out by the kernel in huge pages where it has them to give on demand:
// thousands of faults a page, each as dear as the filling of the memory that it brings, become a few.
void* allocatePixels(size_t bytes);

// Bytes from row to row of the planes that the image functions make: a multiple of 64.
constexpr int64_t planeStep(int64_t width, int pixelSize) { return (width * pixelSize + 63) & ~int64_t{63}; }

// Whether a plane with both sides above 0 has 31 bits of bytes at most.
constexpr bool planeFits(int64_t width, int64_t height, int pixelSize) {
    const int64_t step = planeStep(width, pixelSize);
    return step <= INT_MAX && step * height <= INT_MAX;
}
