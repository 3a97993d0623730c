// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Regions of the caller's images: margins, views and overlap.
#pragma once

#include <cstddef>
#include <cstdint>
#include <opencv2/core.hpp>

#include "OPCV_dlib.h"

namespace opcv {

// A rectangle of pixels in the caller's memory. It is checked when a view is created. Its sides have 64 bits, so that
// adding margins cannot overflow.
struct Region {
    Region(const void* first, int step, int type, const IppiSize& size)
        : first_(first), step_(step), type_(type), width_(size.width), height_(size.height) {}

    Region movedBy(int64_t columns, int64_t rows) const;
    Region withMargin(const IppiSize& margin) const;    // on each side

    // The rectangle that a mask covers when it is placed on every pixel of the region. The anchor is the cell of the
    // mask that lies on the pixel; an even mask counts as the next larger odd one.
    Region underMask(const IppiSize& mask, const IppiPoint& anchor) const;

    // paramErr for a null pointer, an empty side, or a side that exceeds the step or 2^31 - 1.
    OSErr view(cv::Mat& out) const;

private:
    const void* first_;
    int step_;
    int type_;
    int64_t left_ = 0;    // of the region, counted from `first`
    int64_t top_ = 0;
    int64_t width_;
    int64_t height_;
};

// A view of a rectangle in an image that begins at `pixels`; its header includes the image around the rectangle.
OSErr viewOf(const void* pixels, int step, int type, const IppiRect& rect, cv::Mat& view);
OSErr viewOf(const void* pixels, int step, int type, const IppiSize& size, cv::Mat& view);

inline IppiSize halfOf(const IppiSize& mask) { return {mask.width / 2, mask.height / 2}; }

inline bool isEmpty(const IppiSize& size) { return size.width <= 0 || size.height <= 0; }

// Whether a rectangle is no larger than an image. Its position is not considered.
inline bool fitsIn(const IppiSize& image, const IppiRect& rect) {
    return rect.width <= image.width && rect.height <= image.height;
}

// The bytes from the first to the last byte of some rows.
struct ByteSpan {
    ByteSpan(const uint8_t* first, const uint8_t* last) : begin(first), end(last) {}
    ByteSpan(const uint8_t* first, ptrdiff_t step, ptrdiff_t rowBytes, ptrdiff_t rows)
        : begin(first), end(first + (rows - 1) * step + rowBytes) {}
    explicit ByteSpan(const cv::Mat& view)
        : ByteSpan(view.data, static_cast<ptrdiff_t>(view.step[0]), view.cols * static_cast<ptrdiff_t>(view.elemSize()),
                   view.rows) {}

    const uint8_t* begin;
    const uint8_t* end;
};

// Views next to each other in the same rows also count as overlapping.
bool overlap(const ByteSpan& a, const ByteSpan& b);
inline bool overlap(const cv::Mat& a, const cv::Mat& b) { return overlap(ByteSpan(a), ByteSpan(b)); }

}    // namespace opcv
