// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "orientation.h"

#include <cmath>

#include "pix.h"

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr int kDetectorDpi = 200;    // the detectors know letters of 150 to 300 dots per inch

}    // namespace

std::optional<int> quartersToUpright(const Bits& bits, int dpi, double skew) {
    PixPtr page = pixOf(bits);
    if (dpi > 300 || dpi < 150) {
        const float scale = static_cast<float>(kDetectorDpi) / static_cast<float>(dpi);
        page = owned(pixScale(page.get(), scale, scale));
    }
    const auto clockwise = static_cast<float>(-skew * kPi / 180);
    page = owned(pixRotate(page.get(), clockwise, L_ROTATE_AREA_MAP, L_BRING_IN_WHITE, 0, 0));
    float up = 0;
    float left = 0;
    if (pixOrientDetect(page.get(), &up, &left, 0, 0) != 0) return std::nullopt;
    int orientation = L_TEXT_ORIENT_UNKNOWN;
    makeOrientDecision(up, left, 0, 0, &orientation, 0);
    switch (orientation) {
        case L_TEXT_ORIENT_UP: return 0;
        case L_TEXT_ORIENT_RIGHT: return 1;
        case L_TEXT_ORIENT_DOWN: return 2;
        case L_TEXT_ORIENT_LEFT: return 3;
        default: return std::nullopt;
    }
}
