// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "search.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace page_skew {

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kRange = 15;           // degrees to either side
constexpr double kCoarseStep = 0.1;     // at half of the resolution
constexpr double kFineStep = 0.0125;    // around the best of these
constexpr int kFineReach = 24;          // fine steps to either side
constexpr int kFitReach = 5;            // fine steps of the parabola through the peak
constexpr int kRivalDistance = 35;      // coarse steps between two peaks
constexpr int kAgreementReach = 10;     // coarse steps

// Rows from one strip to the next.
double slopeOf(const Strips& strips, double degrees) { return std::tan(degrees * kPi / 180) * strips.aspect(); }

// One value for each coarse step.
using Curve = std::vector<double>;

size_t indexOfPeak(const Curve& curve) {
    return static_cast<size_t>(std::max_element(curve.begin(), curve.end()) - curve.begin());
}

double medianOf(Curve curve) {
    const auto middle = curve.begin() + static_cast<ptrdiff_t>(curve.size() / 2);
    std::nth_element(curve.begin(), middle, curve.end());
    return *middle;
}

double distanceOf(size_t a, size_t b) { return std::abs(static_cast<double>(a) - static_cast<double>(b)); }

double largestBeside(const Curve& curve, size_t peak) {
    double largest = 0;
    for (size_t i = 0; i < curve.size(); ++i)
        if (distanceOf(i, peak) > kRivalDistance) largest = std::max(largest, curve[i]);
    return largest;
}

double ratioOf(double a, double b) { return b > 0 ? a / b : 1; }

Curve curveOf(const std::vector<Sharpness>& all, const std::function<double(const Sharpness&)>& value) {
    Curve curve;
    curve.reserve(all.size());
    for (const Sharpness& sharpness : all) curve.push_back(value(sharpness));
    return curve;
}

// The part of the ink in windows whose peak is near the peak of the page. What a window has at most angles measures its
// ink.
double agreementOf(const std::vector<Sharpness>& all, size_t peak) {
    double agreeing = 0;
    double sum = 0;
    for (size_t window = 0; window < kWindows; ++window) {
        const Curve curve = curveOf(all, [=](const Sharpness& s) { return s.windows[window]; });
        const double ink = medianOf(curve);
        sum += ink;
        if (distanceOf(indexOfPeak(curve), peak) <= kAgreementReach) agreeing += ink;
    }
    return sum > 0 ? agreeing / sum : 0;
}

// The highest point of the parabola that fits the values best, at the positions -reach to reach; 0 if it has none.
double vertexOf(const Curve& values) {
    const auto reach = static_cast<double>(values.size() / 2);
    double n = 0, xx = 0, xxxx = 0, y = 0, xy = 0, xxy = 0;
    for (size_t i = 0; i < values.size(); ++i) {
        const double x = static_cast<double>(i) - reach;
        n += 1;
        xx += x * x;
        xxxx += x * x * x * x;
        y += values[i];
        xy += x * values[i];
        xxy += x * x * values[i];
    }
    const double curvature = (n * xxy - xx * y) / (n * xxxx - xx * xx);
    return curvature < 0 ? std::clamp(-xy / xx / (2 * curvature), -reach, reach) : 0;
}

// The peak near an angle, in full resolution.
double refined(const Strips& strips, double degrees) {
    Curve curve;
    for (int i = -kFineReach - kFitReach; i <= kFineReach + kFitReach; ++i)
        curve.push_back(strips.sharpnessAt(slopeOf(strips, degrees + i * kFineStep)).page);
    const ptrdiff_t peak = std::max_element(curve.begin() + kFitReach, curve.end() - kFitReach) - curve.begin();
    const double vertex = vertexOf(Curve(curve.begin() + peak - kFitReach, curve.begin() + peak + kFitReach + 1));
    return degrees + (static_cast<double>(peak) - kFineReach - kFitReach + vertex) * kFineStep;
}

}    // namespace

Peak findPeak(const Strips& strips) {
    const Strips coarse = strips.halved();
    const int reach = static_cast<int>(std::lround(kRange / kCoarseStep));
    std::vector<Sharpness> all;
    for (int i = -reach; i <= reach; ++i) all.push_back(coarse.sharpnessAt(slopeOf(coarse, i * kCoarseStep)));
    const Curve curve = curveOf(all, [](const Sharpness& s) { return s.page; });
    const Curve steps = curveOf(all, [](const Sharpness& s) { return s.steps; });
    const size_t best = indexOfPeak(curve);

    Peak peak;
    peak.height = ratioOf(curve[best], medianOf(curve));
    peak.rival = ratioOf(largestBeside(curve, best), curve[best]);
    peak.steps = ratioOf(steps[best], medianOf(steps));
    peak.rows = curve[best] > 0 ? steps[best] * steps[best] / curve[best] : 0;
    peak.agreement = agreementOf(all, best);
    peak.angle = refined(strips, (static_cast<double>(best) - reach) * kCoarseStep);
    return peak;
}

}    // namespace page_skew
