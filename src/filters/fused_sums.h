#pragma once

namespace filters {

// Whether OpenCV's float sums are of fused products on this processor and ours can be the same. On x86-64 without AVX2,
// OpenCV rounds each product; then the filters are left to it.
bool sumsAsOpenCVDoes();

}    // namespace filters
