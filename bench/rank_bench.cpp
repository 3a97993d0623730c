// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Rank filters. Those with a fixed window, which OpenCV does not have, are compared with memcpy and checked against
// their definition in plain code; the others are compared with OpenCV on a view of the same memory and one copy back.
#include <algorithm>
#include <cstdlib>
#include <opencv2/imgproc.hpp>
#include <string>

#include "OPCV_dlib.h"
#include "support.h"

namespace {

// Computes every pixel of the region by the definition.
template <class Definition>
void forEachPixel(const bench::Page& source, bench::Page& result, int pixelSize, Definition define) {
    for (int y = 0; y < source.size().height; ++y) {
        const uint8_t* from = source.data() + ptrdiff_t{y} * source.step();
        uint8_t* to = result.data() + ptrdiff_t{y} * result.step();
        for (int x = 0; x < source.size().width; ++x) define(from + x * pixelSize, source.step(), to + x * pixelSize);
    }
}

uint8_t medianOf(uint8_t* values, int count) {
    std::nth_element(values, values + count / 2, values + count);
    return values[count / 2];
}

void crossMedian(int reach, const uint8_t* centre, ptrdiff_t step, uint8_t* to) {
    uint8_t values[9] = {*centre};
    int count = 1;
    for (int i = 1; i <= reach; ++i)
        for (const ptrdiff_t offset : {ptrdiff_t{-i}, ptrdiff_t{i}, -i * step, i * step})
            values[count++] = centre[offset];
    *to = medianOf(values, count);
}

void weightedMedian(int weight, const uint8_t* centre, ptrdiff_t step, uint8_t* to) {
    uint8_t values[13];
    int count = 0;
    for (; count < weight - 1; ++count) values[count] = *centre;
    for (int j = -1; j <= 1; ++j)
        for (int i = -1; i <= 1; ++i) values[count++] = centre[j * step + i];
    *to = medianOf(values, count);
}

void colorMedian(const uint8_t* centre, ptrdiff_t step, uint8_t* to) {
    const uint8_t* best = nullptr;
    int least = 0;
    for (int k = 0; k < 9; ++k) {
        const uint8_t* candidate = centre + (k / 3 - 1) * step + 3 * (k % 3 - 1);
        int score = 0;
        for (int j = 0; j < 9; ++j) {
            const uint8_t* other = centre + (j / 3 - 1) * step + 3 * (j % 3 - 1);
            for (int c = 0; c < 3; ++c) score += std::abs(candidate[c] - other[c]);
        }
        if (!best || score < least) {
            best = candidate;
            least = score;
        }
    }
    std::copy_n(best, 3, to);
}

using FixedWindowFilter = IppStatus (*)(const unsigned char*, int, unsigned char*, int, IppiSize, int);

template <class Definition>
void compareFixedWindow(const char* function, FixedWindowFilter filter, int code, IppiSize size, int pixelSize,
                        Definition define) {
    const bench::Page& source = bench::source(size, pixelSize);
    bench::Page& result = bench::target(size, pixelSize);
    bench::Page& expected = bench::otherTarget(size, pixelSize);
    bench::compare(
        {function, std::to_string(code), size, pixelSize},
        [&source, &result, filter, code, size] {
            filter(source.data(), source.step(), result.data(), result.step(), size, code);
        },
        bench::memcpyOnly(),
        [&source, &result, &expected, pixelSize, define] {
            forEachPixel(source, expected, pixelSize, define);
            return result.sameRegion(expected);
        });
}

void compareFixedWindows() {
    for (const IppiSize size : bench::sizes()) {
        for (const int mask : {33, 55})
            compareFixedWindow("IPPShare_ippiFilterMedianCross_8u_C1R", IPPShare_ippiFilterMedianCross_8u_C1R, mask,
                               size, 1, [mask](const uint8_t* centre, ptrdiff_t step, uint8_t* to) {
                                   crossMedian(mask == 33 ? 1 : 2, centre, step, to);
                               });
        for (const int weight : {3, 5})
            compareFixedWindow("IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R",
                               IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R, weight, size, 1,
                               [weight](const uint8_t* centre, ptrdiff_t step, uint8_t* to) {
                                   weightedMedian(weight, centre, step, to);
                               });
        compareFixedWindow("IPPShare_ippiFilterMedianColor_8u_C3R", IPPShare_ippiFilterMedianColor_8u_C3R, 33, size, 3,
                           colorMedian);
    }
}

// The plain way: a view of the region and half the mask around it, the operation, and one copy of the interior.
template <class Operation>
void runFrame(const bench::Page& source, bench::Page& result, int type, IppiSize mask, Operation operation) {
    const IppiSize size = source.size();
    const int x = mask.width / 2;
    const int y = mask.height / 2;
    const auto view = [](uint8_t* pixels, int rows, int cols, int viewType, int step) {
        return cv::Mat(rows, cols, viewType, pixels, static_cast<size_t>(step));
    };
    auto* corner = const_cast<uint8_t*>(source.data()) - ptrdiff_t{y} * source.step() -
                   ptrdiff_t{x} * static_cast<ptrdiff_t>(CV_ELEM_SIZE(type));
    const cv::Mat from = view(corner, size.height + 2 * y, size.width + 2 * x, type, source.step());
    cv::Mat filtered;
    operation(from, filtered);
    cv::Mat to = view(result.data(), size.height, size.width, type, result.step());
    filtered(cv::Rect(x, y, size.width, size.height)).copyTo(to);
}

std::string square(int side) { return std::to_string(side) + "x" + std::to_string(side); }

void compareSquareMedian(IppiSize size, int channels, int m) {
    const bench::Page& source = bench::source(size, channels);
    bench::Page& result = bench::target(size, channels);
    bench::Page& expected = bench::otherTarget(size, channels);
    const int type = CV_MAKETYPE(CV_8U, channels);
    const auto filter = channels == 1 ? IPPShare_ippiFilterMedian_8u_C1R : IPPShare_ippiFilterMedian_8u_C3R;
    bench::compare(
        {channels == 1 ? "IPPShare_ippiFilterMedian_8u_C1R" : "IPPShare_ippiFilterMedian_8u_C3R", square(m), size,
         channels},
        [&source, &result, size, filter, m] {
            filter(source.data(), source.step(), result.data(), result.step(), size, {m, m}, {m / 2, m / 2});
        },
        bench::openCV([&source, &expected, type, m] {
            runFrame(source, expected, type, {m, m},
                     [m](const cv::Mat& from, cv::Mat& to) { cv::medianBlur(from, to, m); });
        }),
        [&result, &expected] { return result.sameRegion(expected); });
}

using MaskFilter = IppStatus (*)(const unsigned char*, int, unsigned char*, int, IppiSize, const unsigned char*,
                                 IppiSize, IppiPoint);
using RectangleFilter = IppStatus (*)(const unsigned char*, int, unsigned char*, int, IppiSize, IppiSize, IppiPoint);
using Morph = void (*)(cv::InputArray, cv::OutputArray, cv::InputArray, cv::Point, int, int, const cv::Scalar&);

template <class Call>
void compareMorphology(const std::string& function, const std::string& variant, IppiSize size, const cv::Mat& mask,
                       Morph morph, Call call) {
    const bench::Page& source = bench::source(size, 1);
    bench::Page& result = bench::target(size, 1);
    bench::Page& expected = bench::otherTarget(size, 1);
    bench::compare(
        {function, variant, size, 1}, [&source, &result, call] { call(source, result); },
        bench::openCV([&source, &expected, mask, morph] {
            runFrame(source, expected, CV_8UC1, {mask.cols, mask.rows}, [&](const cv::Mat& from, cv::Mat& to) {
                morph(from, to, mask, cv::Point(-1, -1), 1, cv::BORDER_CONSTANT, cv::morphologyDefaultBorderValue());
            });
        }),
        [&result, &expected] { return result.sameRegion(expected); });
}

void compareMask(const char* function, const std::string& variant, MaskFilter filter, Morph morph, IppiSize size,
                 const cv::Mat& mask) {
    compareMorphology(function, variant, size, mask, morph, [=](const bench::Page& source, bench::Page& result) {
        filter(source.data(), source.step(), result.data(), result.step(), size, mask.data, {mask.cols, mask.rows},
               {mask.cols / 2, mask.rows / 2});
    });
}

void compareRectangle(const char* function, RectangleFilter filter, Morph morph, IppiSize size, int side) {
    const cv::Mat mask = cv::getStructuringElement(cv::MORPH_RECT, cv::Size(side, side));
    compareMorphology(function, square(side), size, mask, morph, [=](const bench::Page& source, bench::Page& result) {
        filter(source.data(), source.step(), result.data(), result.step(), size, {side, side}, {side / 2, side / 2});
    });
}

void compareWindowsOfAnySize() {
    for (const IppiSize size : bench::sizes()) {
        for (const int channels : {1, 3})
            for (const int m : {3, 5, 7, 9, 11, 13, 15, 17, 31}) compareSquareMedian(size, channels, m);
        const cv::Mat full = cv::getStructuringElement(cv::MORPH_RECT, cv::Size(3, 3));
        const cv::Mat cross = cv::getStructuringElement(cv::MORPH_CROSS, cv::Size(3, 3));
        compareMask("IPPShare_ippiDilate_8u_C1R", "3x3", IPPShare_ippiDilate_8u_C1R, cv::dilate, size, full);
        compareMask("IPPShare_ippiErode_8u_C1R", "3x3", IPPShare_ippiErode_8u_C1R, cv::erode, size, full);
        compareMask("IPPShare_ippiDilate_8u_C1R", "3x3 cross", IPPShare_ippiDilate_8u_C1R, cv::dilate, size, cross);
        for (const int side : {3, 9, 31}) {
            compareRectangle("IPPMini_ippiFilterMax_8u_C1R", IPPMini_ippiFilterMax_8u_C1R, cv::dilate, size, side);
            compareRectangle("IPPMini_ippiFilterMin_8u_C1R", IPPMini_ippiFilterMin_8u_C1R, cv::erode, size, side);
        }
    }
}

const bench::Registration fixedWindows("Medians with a fixed window", compareFixedWindows);
const bench::Goals goals({
    {"IPPShare_ippiFilterMedianCross_8u_C1R", "33", 1.2, bench::Goal::kMemcpy},
    {"IPPShare_ippiFilterMedianCross_8u_C1R", "55", 1.5, bench::Goal::kMemcpy},
    {"IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R", "3", 2.0, bench::Goal::kMemcpy},
    {"IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R", "5", 2.0, bench::Goal::kMemcpy},
    {"IPPShare_ippiFilterMedianColor_8u_C3R", "33", 4.6, bench::Goal::kMemcpy},
    {"IPPShare_ippiFilterMedian_8u_C1R", "3x3", 0.48},
    {"IPPShare_ippiFilterMedian_8u_C1R", "5x5", 0.36},
    {"IPPShare_ippiFilterMedian_8u_C1R", "7x7", 0.06},
    {"IPPShare_ippiFilterMedian_8u_C1R", "9x9", 0.11},
    {"IPPShare_ippiFilterMedian_8u_C1R", "11x11", 0.12},
    {"IPPShare_ippiFilterMedian_8u_C1R", "13x13", 0.3},
    {"IPPShare_ippiFilterMedian_8u_C1R", "15x15", 0.65},
    {"IPPShare_ippiFilterMedian_8u_C3R", "3x3", 0.6},
    {"IPPShare_ippiFilterMedian_8u_C3R", "5x5", 0.65},
    {"IPPShare_ippiFilterMedian_8u_C3R", "7x7", 0.08},
    {"IPPShare_ippiDilate_8u_C1R", "3x3", 0.5},
    {"IPPShare_ippiErode_8u_C1R", "3x3", 0.5},
    {"IPPMini_ippiFilterMax_8u_C1R", "3x3", 0.5},
    {"IPPMini_ippiFilterMax_8u_C1R", "9x9", 0.75},
    {"IPPMini_ippiFilterMin_8u_C1R", "3x3", 0.5},
    {"IPPMini_ippiFilterMin_8u_C1R", "9x9", 0.75},
});

const bench::Registration windowsOfAnySize("Medians and morphology with any window", compareWindowsOfAnySize);

}    // namespace
