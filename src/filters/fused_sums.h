#pragma once

namespace filters {

// Whether OpenCV's float sums use fused multiply-add on this processor, so that the kernels give the same bytes. On
// x86-64 without AVX2, OpenCV rounds each product; OpenCV then does the filtering.
bool sumsAsOpenCVDoes();

}    // namespace filters
