// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "core/region.h"

#include <climits>
#include <functional>

#include "core/Tools.h"

namespace opcv {

Region Region::movedBy(int64_t columns, int64_t rows) const {
    Region moved = *this;
    moved.left_ += columns;
    moved.top_ += rows;
    return moved;
}

Region Region::withMargin(const IppiSize& margin) const {
    Region larger = movedBy(-int64_t{margin.width}, -int64_t{margin.height});
    larger.width_ += 2 * int64_t{margin.width};
    larger.height_ += 2 * int64_t{margin.height};
    return larger;
}

Region Region::underMask(const IppiSize& mask, const IppiPoint& anchor) const {
    const IppiSize half = halfOf(mask);
    return withMargin(half).movedBy(int64_t{half.width} - anchor.x, int64_t{half.height} - anchor.y);
}

OSErr Region::view(cv::Mat& out) const {
    if (width_ > INT_MAX || height_ > INT_MAX) return paramErr;
    auto* bytes = static_cast<unsigned char*>(const_cast<void*>(first_));
    if (!bytes) return paramErr;
    bytes += top_ * step_ + left_ * static_cast<int64_t>(CV_ELEM_SIZE(type_));
    const cv::Rect all(0, 0, static_cast<int>(width_), static_cast<int>(height_));
    return Tools::CreateAndCutImageMat(bytes, step_, all, type_, out);
}

OSErr viewOf(const void* pixels, int step, int type, const IppiRect& rect, cv::Mat& view) {
    return Tools::CreateAndCutImageMat(const_cast<void*>(pixels), step,
                                       cv::Rect(rect.x, rect.y, rect.width, rect.height), type, view);
}

OSErr viewOf(const void* pixels, int step, int type, const IppiSize& size, cv::Mat& view) {
    return viewOf(pixels, step, type, IppiRect{0, 0, size.width, size.height}, view);
}

bool overlap(const ByteSpan& a, const ByteSpan& b) {
    const std::less<> before;    // also orders pointers into different blocks
    return before(a.begin, b.end) && before(b.begin, a.end);
}

}    // namespace opcv
