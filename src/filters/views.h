// Views of a region with the pixels around it, and what a region's bytes have in common with another's.
#pragma once

#include <climits>
#include <cstdint>
#include <functional>

#include "core/Tools.h"

namespace filters {

// Half of a mask with odd sides, or of an even one rounded up to the next odd one.
inline IppiSize halfOf(IppiSize mask) { return {mask.width / 2, mask.height / 2}; }

// The pixel that lies `columns` and `rows` behind another one; both may be negative.
inline unsigned char* pixelAt(const void* first, int step, int64_t columns, int64_t rows, int pixelSize) {
    auto* bytes = static_cast<unsigned char*>(const_cast<void*>(first));
    return bytes + rows * step + columns * pixelSize;
}

// A view of a region together with `half` columns and rows on each side of it; `first` is its first pixel.
inline OSErr viewWithMargin(unsigned char* first, int step, int type, IppiSize roi, IppiSize half, cv::Mat& view) {
    const int64_t width = roi.width + 2 * int64_t{half.width};
    const int64_t height = roi.height + 2 * int64_t{half.height};
    if (width > INT_MAX || height > INT_MAX) return paramErr;
    const cv::Rect all(0, 0, static_cast<int>(width), static_cast<int>(height));
    return Tools::CreateAndCutImageMat(first, step, all, type, view);
}

// Whether two blocks of bytes share one.
inline bool overlap(const unsigned char* a, const unsigned char* aEnd, const unsigned char* b,
                    const unsigned char* bEnd) {
    const std::less<const unsigned char*> before;
    return before(a, bEnd) && before(b, aEnd);
}

inline const unsigned char* endOf(const cv::Mat& view) {
    return view.ptr(view.rows - 1) + static_cast<size_t>(view.cols) * view.elemSize();
}

// Whether the rows of two views, with what lies between them, share a byte.
inline bool overlap(const cv::Mat& a, const cv::Mat& b) { return overlap(a.data, endOf(a), b.data, endOf(b)); }

}    // namespace filters
