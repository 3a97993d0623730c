// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "core/Tools.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstddef>
#include <cstdint>

namespace Tools {

IppStatus OSErrToIppStatus(OSErr err) {
    switch (err) {
        case noErr: return ippStsNoErr;
        case memFullErr: return ippStsNoMemErr;
        default: return ippStsBadArgErr;
    }
}

OSErr IppStatusToOSErr(IppStatus status) {
    constexpr std::array<OSErr, 6> table = {paramErr, memFullErr, paramErr, paramErr, paramErr, noErr};    // -5 to 0
    const unsigned index = static_cast<unsigned>(status) + 5U;
    return index < table.size() ? table[index] : static_cast<OSErr>(paramErr);
}

OSErr CreateImageMat(void* data, int step, int height, int type, cv::Mat& out) {
    if (!data) return paramErr;
    const int cols = step / static_cast<int>(CV_ELEM_SIZE(type));
    if (cols <= 0 || height <= 0) return paramErr;
    out = cv::Mat(height, cols, type, data);
    return out.data ? noErr : memFullErr;
}

OSErr CutImageMat(const cv::Mat& src, const cv::Rect& r, cv::Mat& out) {
    if (r.x < 0 || r.y < 0 || r.width <= 0 || r.height <= 0) return paramErr;
    if (int64_t{r.x} + r.width > src.cols || int64_t{r.y} + r.height > src.rows) return paramErr;
    out = src(r);
    return out.data ? noErr : memFullErr;
}

OSErr CreateAndCutImageMat(void* data, int step, const cv::Rect& r, int type, cv::Mat& out) {
    const int64_t rows = int64_t{r.y} + r.height;
    if (rows > INT_MAX || rows < INT_MIN) return paramErr;
    cv::Mat whole;
    if (const OSErr err = CreateImageMat(data, step, static_cast<int>(rows), type, whole)) return err;
    return CutImageMat(whole, r, out);
}

OSErr CopyImageMatData(const cv::Mat& src, const cv::Point& srcOfs, void* dst, int dstStep, const cv::Point& dstOfs,
                       cv::Size size) {
    size.width = static_cast<int>(std::min<int64_t>(int64_t{src.cols} - srcOfs.x, size.width));
    size.height = static_cast<int>(std::min<int64_t>(int64_t{src.rows} - srcOfs.y, size.height));
    cv::Mat from;
    if (const OSErr err = CutImageMat(src, cv::Rect(srcOfs, size), from)) return err;
    cv::Mat to;
    if (const OSErr err = CreateAndCutImageMat(dst, dstStep, cv::Rect(dstOfs, size), src.type(), to)) return err;
    from.copyTo(to);
    return noErr;
}

OSErr CreateKernelMat(void* data, const IppiSize& size, int type, cv::Mat& out) {
    if (!data || size.width <= 0 || size.height <= 0) return paramErr;
    out = cv::Mat(size.height, size.width, type, data);
    return out.data ? noErr : memFullErr;
}

template <typename T, unsigned D>
OSErr CreateKernelMatReverse(const T* kernel, const IppiSize& size, cv::Mat& out) {
    if (!kernel || size.width <= 0 || size.height <= 0) return paramErr;
    const auto odd = [](int side) { return (side & ~1) + 1; };
    cv::Mat turned;    // not `out`: assigning zeros to a view of the same shape would write to the viewed memory
    turned.allocator = out.allocator;
    turned = cv::Mat::zeros(odd(size.height), odd(size.width), CV_MAKETYPE(D, 1));
    if (!turned.data) return memFullErr;
    for (int j = 0; j < size.height; ++j) {
        const T* from = kernel + static_cast<ptrdiff_t>(j) * size.width;
        T* to = turned.ptr<T>(turned.rows - 1 - j);
        std::reverse_copy(from, from + size.width, to + (turned.cols - size.width));
    }
    out = turned;
    return noErr;
}

template OSErr CreateKernelMatReverse<int, 4U>(const int*, const IppiSize&, cv::Mat&);
template OSErr CreateKernelMatReverse<float, 5U>(const float*, const IppiSize&, cv::Mat&);

}    // namespace Tools
