// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Rotation by any angle in two ways: with OpenCV's calls, and by bilinear interpolation in double precision.
#pragma once

#include <algorithm>
#include <cmath>
#include <functional>
#include <opencv2/imgproc.hpp>

#include "OPCV_dlib.h"

namespace oracle {

constexpr double kPi = 3.14159265358979323846;

struct Rotation {
    const uint8_t* src;
    int srcStep;
    IppiRect srcRoi;
    uint8_t* dst;
    int dstStep;
    IppiRect dstRoi;
    double angle;
    int type;
    cv::Scalar border;
};

// Rows are step / pixel size whole pixels apart, up to the last row of the rectangle.
inline cv::Mat regionOf(const uint8_t* data, int step, const IppiRect& r, int type) {
    const int columns = step / static_cast<int>(CV_ELEM_SIZE(type));
    const cv::Mat image(r.y + r.height, columns, type, const_cast<uint8_t*>(data));
    return image(cv::Rect(r.x, r.y, r.width, r.height));
}

inline cv::Mat warpByOpenCV(const cv::Mat& image, cv::Point2f centre, const Rotation& r) {
    cv::Mat turned;
    cv::warpAffine(image, turned, cv::getRotationMatrix2D(centre, r.angle, 1.0), image.size(), cv::INTER_LINEAR,
                   cv::BORDER_CONSTANT, r.border);
    return turned;
}

inline int wholeShift(float shift) {
    return static_cast<int>(shift < 0 ? std::ceil(double{shift} - 0.5) : std::floor(double{shift} + 0.5));
}

// A turn about the region's corner, then a shift: pad, warp, cut.
inline void rotateByOpenCV(const Rotation& r, float xShift, float yShift) {
    const int dx = wholeShift(xShift);
    const int dy = wholeShift(yShift);
    const int left = std::max(dx, 0);
    const int top = std::max(dy, 0);
    const int px = std::max(-dx, 0);
    const int py = std::max(-dy, 0);
    const int right = std::max(px + r.dstRoi.width - (left + r.srcRoi.width), 0);
    const int bottom = std::max(py + r.dstRoi.height - (top + r.srcRoi.height), 0);

    cv::Mat work = regionOf(r.src, r.srcStep, r.srcRoi, r.type);
    if (top != 0 || bottom != 0 || left != 0 || right != 0) {
        cv::Mat padded;
        cv::copyMakeBorder(work, padded, top, bottom, left, right, cv::BORDER_CONSTANT, r.border);
        work = padded;
    }
    const cv::Mat turned = warpByOpenCV(work, cv::Point2f(static_cast<float>(left), static_cast<float>(top)), r);
    turned(cv::Rect(px, py, r.dstRoi.width, r.dstRoi.height)).copyTo(regionOf(r.dst, r.dstStep, r.dstRoi, r.type));
}

// A turn about a point: warp, cut.
inline void rotateAboutByOpenCV(const Rotation& r, double xCentre, double yCentre) {
    const cv::Point2f centre(static_cast<float>(xCentre), static_cast<float>(yCentre));
    const cv::Mat turned = warpByOpenCV(regionOf(r.src, r.srcStep, r.srcRoi, r.type), centre, r);
    IppiRect covered = r.dstRoi;
    covered.width = std::min(covered.width, r.srcRoi.width);
    covered.height = std::min(covered.height, r.srcRoi.height);
    turned(cv::Rect(0, 0, covered.width, covered.height)).copyTo(regionOf(r.dst, r.dstStep, covered, r.type));
}

// The point of the source that a turn about (xCentre, yCentre), counter-clockwise as seen on screen where y points
// down, brings to (x, y).
struct Point {
    double x;
    double y;
};
inline Point beforeTurn(Point turned, Point centre, double angle) {
    const double s = std::sin(angle * kPi / 180);
    const double c = std::cos(angle * kPi / 180);
    const double x = turned.x - centre.x;
    const double y = turned.y - centre.y;
    return {centre.x + c * x - s * y, centre.y + s * x + c * y};
}

using PixelAt = std::function<double(int x, int y)>;

inline double bilinear(const PixelAt& at, Point p) {
    const int x = static_cast<int>(std::floor(p.x));
    const int y = static_cast<int>(std::floor(p.y));
    const double fx = p.x - x;
    const double fy = p.y - y;
    return (1 - fy) * ((1 - fx) * at(x, y) + fx * at(x + 1, y)) +
           fy * ((1 - fx) * at(x, y + 1) + fx * at(x + 1, y + 1));
}

// Whether a value is within one level of the values in the neighbourhood of a point. Positions are rounded to 1/32
// pixel, so the true one is up to 1/64 away on each axis, plus rounding errors.
inline bool isNear(double value, const PixelAt& at, Point p) {
    constexpr double kReach = 1.0 / 64 + 2.0 / 1024;
    double low = 255;
    double high = 0;
    for (const double dy : {-kReach, 0.0, kReach})
        for (const double dx : {-kReach, 0.0, kReach}) {
            const double v = bilinear(at, {p.x + dx, p.y + dy});
            low = std::min(low, v);
            high = std::max(high, v);
        }
    return value >= low - 1 && value <= high + 1;
}

}    // namespace oracle
