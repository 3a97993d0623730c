// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "search.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace page_skew {

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kRange = 15;          // degrees to either side
constexpr double kCoarseStep = 0.1;    // at half of the resolution
constexpr double kFineStep = 0.05;     // around the best of these
constexpr int kFineReach = 12;         // fine steps to either side
constexpr int kBlurReach = 8;          // fine steps
constexpr double kBlur = 3;            // standard deviation, in fine steps
constexpr int kRivalDistance = 35;     // coarse steps between two peaks
constexpr int kAgreementReach = 10;    // coarse steps

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

// Each value becomes a mean of itself and kBlurReach to either side, by a Gaussian. The ends, which lack these, are cut.
Curve blurred(const Curve& curve) {
    Curve result(curve.size() - 2 * kBlurReach);
    for (int i = -kBlurReach; i <= kBlurReach; ++i) {
        const double weight = std::exp(-0.5 * i * i / (kBlur * kBlur));
        for (size_t j = 0; j < result.size(); ++j) result[j] += weight * curve[j + static_cast<size_t>(i + kBlurReach)];
    }
    return result;
}

// The angle near another one, in full resolution. Lines that are not quite parallel make several peaks; blurred, they are
// one at their mean. The top of the parabola through its highest three values is the angle.
double refined(const Strips& strips, double degrees, Profiles& profiles) {
    const int reach = kFineReach + kBlurReach;
    Curve curve;
    curve.reserve(2 * static_cast<size_t>(reach) + 1);
    for (int i = -reach; i <= reach; ++i)
        curve.push_back(strips.sharpnessAt(slopeOf(strips, degrees + i * kFineStep), profiles).page);
    const Curve smooth = blurred(curve);
    const size_t peak = std::clamp(indexOfPeak(smooth), size_t{1}, smooth.size() - 2);
    const double rise = (smooth[peak + 1] - smooth[peak - 1]) / 2;
    const double curvature = smooth[peak + 1] + smooth[peak - 1] - 2 * smooth[peak];
    const double top = curvature < 0 ? std::clamp(-rise / curvature, -1.0, 1.0) : 0;
    return degrees + (static_cast<double>(peak) - kFineReach + top) * kFineStep;
}

}    // namespace

Peak findPeak(const Strips& strips) {
    const Strips coarse = strips.halved();
    const int reach = static_cast<int>(std::lround(kRange / kCoarseStep));
    Profiles profiles;
    std::vector<Sharpness> all;
    all.reserve(static_cast<size_t>(2 * reach) + 1);
    for (int i = -reach; i <= reach; ++i) all.push_back(coarse.sharpnessAt(slopeOf(coarse, i * kCoarseStep), profiles));
    const Curve curve = curveOf(all, [](const Sharpness& s) { return s.page; });
    const Curve steps = curveOf(all, [](const Sharpness& s) { return s.steps; });
    const size_t best = indexOfPeak(curve);

    Peak peak;
    peak.height = ratioOf(curve[best], medianOf(curve));
    peak.rival = ratioOf(largestBeside(curve, best), curve[best]);
    peak.steps = ratioOf(steps[best], medianOf(steps));
    peak.rows = curve[best] > 0 ? steps[best] * steps[best] / curve[best] : 0;
    peak.agreement = agreementOf(all, best);
    peak.angle = refined(strips, (static_cast<double>(best) - reach) * kCoarseStep, profiles);
    return peak;
}

}    // namespace page_skew
