// The heap's blocks for whole images.
#pragma once

#include <cstddef>

// malloc. What a large block first touches is handed out by the kernel in huge pages where it has them to give on demand:
// thousands of faults a page, each as dear as the filling of the memory that it brings, become a few.
void* allocatePixels(size_t bytes);
