// Matrices for OpenCV to fill.
#pragma once

#include <opencv2/core.hpp>

// An empty matrix that loses nothing when memory runs out. OpenCV's own allocator takes the pixels first and the block
// that keeps count of them second, and forgets the first when it cannot have the second.
cv::Mat resultMatrix();
