// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "judgement.h"

#include <algorithm>
#include <cmath>

#include "search.h"

namespace page_skew {

namespace {

constexpr double kLeastContrast = 0.04;     // of ink and paper
constexpr double kLeastInk = 0.0004;        // of the page
constexpr double kLeastEvidence = 50;       // a page with less is not turned
constexpr double kClearEvidence = 250;      // a page with more is not looked at again; most pages of text have 500
constexpr double kSomeEvidence = 20;        // a page with less is a picture
constexpr int kLeastParts = 60;             // letters and dashes of its lines
constexpr double kSquareTolerance = 0.2;    // degrees

double inkedPart(const Shapes& ink) { return static_cast<double>(ink.area()) / ink.width() / ink.height(); }

// Text has many lines, which are distinct at one angle only, and that on all of the page. A frame or a barcode has few
// lines, and a picture has none: its rows differ at all angles about equally.
double evidenceOf(const Peak& peak) {
    return std::max(0.0, (peak.steps - 1) * peak.rows * (1 - peak.rival) * (0.3 + 0.7 * peak.agreement));
}

// Shapes of the size of a letter or a few joined ones, in pixels of the working image.
bool isLetter(const Shape& shape) {
    const int width = shape.right - shape.left;
    const int height = shape.bottom - shape.top;
    return height >= 6 && height <= 60 && width >= 3 && width <= 150;
}

// A piece of a ruled line that is too thin to be whole.
bool isDash(const Shape& shape) {
    const int width = shape.right - shape.left;
    const int height = shape.bottom - shape.top;
    return width >= 20 && 3 * height <= width;
}

// Graph paper, chequers and masonry have columns as distinct as their rows. Tables have these, too, but exactly across.
bool isCrossed(const Shapes& ink, const Peak& peak, double evidence) {
    const Peak across = findPeak(Strips::across(ink));
    return evidenceOf(across) > evidence / 2 && std::abs(across.angle - peak.angle) > kSquareTolerance;
}

bool isText(const Shapes& ink, const Peak& peak, double evidence) {
    if (evidence < kLeastEvidence) return false;
    if (evidence >= kClearEvidence) return true;
    const auto isPartOfLine = [](const Shape& shape) { return isLetter(shape) || isDash(shape); };
    return std::count_if(ink.shapes().begin(), ink.shapes().end(), isPartOfLine) >= kLeastParts &&
           !isCrossed(ink, peak, evidence);
}

opcv_skew resultOf(opcv_skew_outcome outcome, double angle, double confidence) {
    opcv_skew skew{};
    skew.struct_size = sizeof(skew);
    skew.angle = angle;
    skew.confidence = confidence;
    skew.outcome = outcome;
    return skew;
}

}    // namespace

opcv_skew judge(const Ink& ink) {
    if (ink.contrast < kLeastContrast || inkedPart(ink.shapes) < kLeastInk) return resultOf(OPCV_SKEW_BLANK, 0, 0);
    const Peak peak = findPeak(Strips::along(ink.shapes));
    const double evidence = evidenceOf(peak);
    const double confidence = evidence / (evidence + kLeastEvidence);
    if (isText(ink.shapes, peak, evidence)) return resultOf(OPCV_SKEW_FOUND, peak.angle, confidence);
    const opcv_skew_outcome outcome = evidence < kSomeEvidence ? OPCV_SKEW_PICTURE : OPCV_SKEW_UNSURE;
    return resultOf(outcome, 0, std::min(confidence, 0.49));
}

}    // namespace page_skew
