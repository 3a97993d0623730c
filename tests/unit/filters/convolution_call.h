// The convolutions by one signature for each type of kernel, beside the definition.
#pragma once

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <opencv2/core.hpp>
#include <vector>

#include "OPCV_dlib.h"
#include "oracle/convolution.h"
#include "support/guarded_image.h"
#include "support/random.h"

struct PixelType {
    int code;
    int channels;
    int depthBytes;
    int low;
    int high;

    int bytes() const { return channels * depthBytes; }
};
constexpr PixelType k8uC1 = {CV_8UC1, 1, 1, 0, 255};
constexpr PixelType k8uC3 = {CV_8UC3, 3, 1, 0, 255};
constexpr PixelType k16sC1 = {CV_16SC1, 1, 2, -32768, 32767};
constexpr PixelType k8uC4 = {CV_8UC4, 4, 1, 0, 255};

inline GuardedImage::Layout anyLayout(Random& random, const PixelType& type, int margin) {
    GuardedImage::Layout layout = GuardedImage::anyLayout(random, type.bytes(), margin);
    layout.misalignment -= layout.misalignment % type.depthBytes;
    return layout;
}

// A kernel with the source around a region that it needs.
template <typename T>
struct Kernel {
    IppiSize size;
    IppiPoint anchor;
    std::vector<T> cells;

    int margin() const {
        return 2 * std::max(size.width, size.height) + std::max(std::abs(anchor.x), std::abs(anchor.y));
    }
    double magnitude() const {
        double sum = 0;
        for (const T cell : cells) sum += std::abs(static_cast<double>(cell));
        return sum;
    }
};

template <typename T, typename Cell>
Kernel<T> kernelOf(IppiSize size, IppiPoint anchor, const Cell& cell) {
    Kernel<T> kernel = {size, anchor, {}};
    for (int i = 0; i < size.width * size.height; ++i) kernel.cells.push_back(cell());
    return kernel;
}

inline IppStatus filter(const PixelType& type, const GuardedImage& src, GuardedImage& dst, const Kernel<int>& kernel,
                        int divisor) {
    const auto* source16 = reinterpret_cast<const short*>(src.data());
    auto* target16 = reinterpret_cast<short*>(dst.data());
    switch (type.code) {
        case CV_8UC1:
            return IPPShare_ippiFilter_8u_C1R(src.data(), src.step(), dst.data(), dst.step(), dst.size(),
                                              kernel.cells.data(), kernel.size, kernel.anchor, divisor);
        case CV_8UC3:
            return IPPShare_ippiFilter_8u_C3R(src.data(), src.step(), dst.data(), dst.step(), dst.size(),
                                              kernel.cells.data(), kernel.size, kernel.anchor, divisor);
        case CV_16SC1:
            return IPPShare_ippiFilter_16s_C1R(source16, src.step(), target16, dst.step(), dst.size(),
                                               kernel.cells.data(), kernel.size, kernel.anchor, divisor);
        default:
            return ippiFilter(src.data(), src.step(), type.code, dst.data(), dst.step(), dst.size(),
                              kernel.cells.data(), kernel.size, kernel.anchor, divisor);
    }
}

inline IppStatus filter(const PixelType& type, const GuardedImage& src, GuardedImage& dst, const Kernel<float>& kernel,
                        int) {
    if (type.code == CV_8UC3)
        return IPPMini_ippiFilter32f_8u_C3R(src.data(), src.step(), dst.data(), dst.step(), dst.size(),
                                            kernel.cells.data(), kernel.size, kernel.anchor);
    return ippiFilter32f(src.data(), src.step(), type.code, dst.data(), dst.step(), dst.size(), kernel.cells.data(),
                         kernel.size, kernel.anchor);
}

inline void filterByDefinition(const PixelType& type, const GuardedImage& src, GuardedImage& dst,
                               const Kernel<int>& kernel, int divisor) {
    oracle::convolve(src.data(), src.step(), type.code, dst.data(), dst.step(), dst.size(), kernel.cells.data(),
                     kernel.size, kernel.anchor, divisor);
}

inline void filterByDefinition(const PixelType& type, const GuardedImage& src, GuardedImage& dst,
                               const Kernel<float>& kernel, int) {
    oracle::convolve32f(src.data(), src.step(), type.code, dst.data(), dst.step(), dst.size(), kernel.cells.data(),
                        kernel.size, kernel.anchor);
}

inline bool sameRegion(const GuardedImage& a, const GuardedImage& b) {
    for (int y = 0; y < a.size().height; ++y)
        if (std::memcmp(a.at(0, y), b.at(0, y), static_cast<size_t>(a.rowBytes())) != 0) return false;
    return true;
}
