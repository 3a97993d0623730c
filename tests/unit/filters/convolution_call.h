// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

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

// The images of a call.
struct Images {
    const void* src;
    int srcStep;
    int type;
    void* dst;
    int dstStep;
    IppiSize roi;
};

inline Images imagesOf(const PixelType& type, const GuardedImage& src, GuardedImage& dst) {
    return {src.data(), src.step(), type.code, dst.data(), dst.step(), dst.size()};
}

inline IppStatus filterAnyType(const Images& i, const int* cells, IppiSize size, IppiPoint anchor, int divisor) {
    return ippiFilter(i.src, i.srcStep, i.type, i.dst, i.dstStep, i.roi, cells, size, anchor, divisor);
}

inline IppStatus filterAnyType(const Images& i, const float* cells, IppiSize size, IppiPoint anchor) {
    return ippiFilter32f(i.src, i.srcStep, i.type, i.dst, i.dstStep, i.roi, cells, size, anchor);
}

// By the function of the pixel type if it has one.
inline IppStatus filterByType(const Images& i, const int* cells, IppiSize size, IppiPoint anchor, int divisor) {
    const auto* src = static_cast<const uint8_t*>(i.src);
    auto* dst = static_cast<uint8_t*>(i.dst);
    switch (i.type) {
        case CV_8UC1:
            return IPPShare_ippiFilter_8u_C1R(src, i.srcStep, dst, i.dstStep, i.roi, cells, size, anchor, divisor);
        case CV_8UC3:
            return IPPShare_ippiFilter_8u_C3R(src, i.srcStep, dst, i.dstStep, i.roi, cells, size, anchor, divisor);
        case CV_16SC1:
            return IPPShare_ippiFilter_16s_C1R(static_cast<const short*>(i.src), i.srcStep, static_cast<short*>(i.dst),
                                               i.dstStep, i.roi, cells, size, anchor, divisor);
        default: return filterAnyType(i, cells, size, anchor, divisor);
    }
}

inline IppStatus filterByType(const Images& i, const float* cells, IppiSize size, IppiPoint anchor) {
    if (i.type != CV_8UC3) return filterAnyType(i, cells, size, anchor);
    return IPPMini_ippiFilter32f_8u_C3R(static_cast<const uint8_t*>(i.src), i.srcStep, static_cast<uint8_t*>(i.dst),
                                        i.dstStep, i.roi, cells, size, anchor);
}

inline IppStatus filter(const PixelType& type, const GuardedImage& src, GuardedImage& dst, const Kernel<int>& kernel,
                        int divisor) {
    return filterByType(imagesOf(type, src, dst), kernel.cells.data(), kernel.size, kernel.anchor, divisor);
}

inline IppStatus filter(const PixelType& type, const GuardedImage& src, GuardedImage& dst, const Kernel<float>& kernel,
                        int) {
    return filterByType(imagesOf(type, src, dst), kernel.cells.data(), kernel.size, kernel.anchor);
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
