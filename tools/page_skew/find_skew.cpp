// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The exported function: arguments, judgement, and exceptions as statuses.
#include <OPCV_dlib_skew.h>

#include <algorithm>
#include <cmath>

#include "ink.h"
#include "search.h"

namespace page_skew {

namespace {

constexpr int kLeastSide = 64;             // pixels of the working image
constexpr double kLeastContrast = 0.04;    // of ink and paper
constexpr double kLeastInk = 0.0004;       // of the page
constexpr double kLeastEvidence = 50;      // for a confidence of 0.5

int64_t leastRowBytes(const KVIMG& page) { return (int64_t{page.width} * page.depth + 7) / 8; }

bool isValid(const KVIMG* page) {
    if (!page || !page->data || page->width < 1 || page->height < 1) return false;
    if (page->depth != 1 && page->depth != 8 && page->depth != 24 && page->depth != 32) return false;
    return page->rowBytes >= leastRowBytes(*page);
}

double inkedPart(PIX* bits) {
    l_int32 count = 0;
    if (pixCountPixels(bits, &count, nullptr) != 0) throw std::bad_alloc();
    return static_cast<double>(count) / pixGetWidth(bits) / pixGetHeight(bits);
}

opcv_skew without(opcv_skew_outcome outcome, double confidence) {
    opcv_skew skew{};
    skew.outcome = outcome;
    skew.confidence = confidence;
    return skew;
}

// Text has many lines, which are distinct at one angle only and on all of the page. A frame or a barcode has few, and a
// picture has none: at no angle do its rows differ much more than at the others.
double evidenceOf(const Peak& peak) {
    return (peak.steps - 1) * peak.rows * (1 - peak.rival) * (0.3 + 0.7 * peak.agreement);
}

double confidenceOf(const Peak& peak) {
    const double evidence = std::max(0.0, evidenceOf(peak));
    return evidence / (evidence + kLeastEvidence);
}

opcv_skew judged(const Peak& peak) {
    const double confidence = confidenceOf(peak);
    if (confidence >= 0.5) {
        opcv_skew skew{};
        skew.outcome = OPCV_SKEW_FOUND;
        skew.angle = peak.angle;
        skew.confidence = confidence;
        return skew;
    }
    return without(confidence > 0.3 ? OPCV_SKEW_UNSURE : OPCV_SKEW_PICTURE, confidence);
}

opcv_skew skewOf(const KVIMG& page) {
    const GreyImage image = workingImageOf(page);
    if (std::min(image.width, image.height) < kLeastSide) return without(OPCV_SKEW_UNSURE, 0);
    const Ink ink = inkOf(image);
    if (ink.contrast < kLeastContrast || inkedPart(ink.bits.get()) < kLeastInk) return without(OPCV_SKEW_BLANK, 0);
    return judged(findPeak(Strips(ink.bits.get())));
}

}    // namespace

}    // namespace page_skew

OSErr opcv_find_skew(const KVIMG* page, opcv_skew* skew) {
    if (!skew || skew->struct_size != sizeof(opcv_skew) || !page_skew::isValid(page)) return paramErr;
    try {
        const size_t size = skew->struct_size;
        *skew = page_skew::skewOf(*page);
        skew->struct_size = size;
        return noErr;
    } catch (...) {    // the standard library's std::bad_alloc and std::length_error
        return memFullErr;
    }
}
