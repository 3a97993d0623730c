// Regions of the caller's images: the margin around them, the views over them, and the bytes that they share.
#pragma once

#include <cstddef>
#include <cstdint>
#include <opencv2/core.hpp>

#include "OPCV_dlib.h"

namespace opcv {

// A rectangle of pixels in the caller's memory, of which nothing is checked before it is viewed. Its sides have 64 bits,
// so that no margin overflows.
struct Region {
    Region(const void* first, int step, int type, const IppiSize& size)
        : first_(first), step_(step), type_(type), width_(size.width), height_(size.height) {}

    Region movedBy(int64_t columns, int64_t rows) const;
    Region withMargin(const IppiSize& margin) const;    // on each side

    // The rectangles that masks around the region's pixels cover together. The anchor is the cell of the mask that lies on
    // the pixel; an even mask counts as the next larger odd one.
    Region underMask(const IppiSize& mask, const IppiPoint& anchor) const;

    // paramErr for a null pointer, an empty side, one that is longer than the step or than 31 bits.
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

// A view of a rectangle in an image that begins at `pixels`: OpenCV knows of the image around it.
OSErr viewOf(const void* pixels, int step, int type, const IppiRect& rect, cv::Mat& view);
OSErr viewOf(const void* pixels, int step, int type, const IppiSize& size, cv::Mat& view);

inline IppiSize halfOf(const IppiSize& mask) { return {mask.width / 2, mask.height / 2}; }

inline bool isEmpty(const IppiSize& size) { return size.width <= 0 || size.height <= 0; }

// Whether a rectangle is no larger than an image. Where it lies is not looked at.
inline bool fitsIn(const IppiSize& image, const IppiRect& rect) {
    return rect.width <= image.width && rect.height <= image.height;
}

// What lies between the first and the last byte of some rows.
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

// Views side by side in the rows of one image overlap as well.
bool overlap(const ByteSpan& a, const ByteSpan& b);
inline bool overlap(const cv::Mat& a, const cv::Mat& b) { return overlap(ByteSpan(a), ByteSpan(b)); }

}    // namespace opcv
