// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Noise reduction of whole images: the bilateral filter with a strength from 0 to 10 on 3x3 or 5x5 pixels.
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "core/Tools.h"
#include "filters/bilateral_kernels.h"
#include "filters/colour_image.h"

namespace {

constexpr int kLargestMode = 2;    // 5x5; 0 and 1 are 3x3
constexpr int kStrongest = 10;

// Pixels at each edge that are not filtered in this mode.
int insetOf(int mode) { return mode == 2 ? 2 : 1; }

// The squared sigma of both the grey levels and the distance.
float squareSigmaOf(int strength) {
    constexpr int64_t kSquareSigmaPerStrength = 96;
    const auto squareSigma = static_cast<float>(strength * kSquareSigmaPerStrength);
    return squareSigma == 0 ? 1.0F : squareSigma;
}

// All channels in one pass, with neighbours three bytes apart.
void reducePacked(const unsigned char* src, unsigned char* dst, IppiSize size, int inset, float squareSigma) {
    filters::copyRing(src, dst, size, inset);
    const IppiSize inside = {size.width - 2 * inset, size.height - 2 * inset};
    if (inside.width <= 0 || inside.height <= 0) return;
    const ptrdiff_t step = 3 * ptrdiff_t{size.width};
    const ptrdiff_t offset = inset * (step + 3);
    const double sigma = std::sqrt(double{squareSigma});
    filters::filterBilateral({src + offset, step, dst + offset, step, inside.width, inside.height, 3, inset},
                             filters::BilateralWeights(sigma, sigma));
}

}    // namespace

void DeosNr(const unsigned char* src, unsigned char* dst, IppiSize size, int mode, int strength) {
    const int inset = insetOf(mode);
    if (!src || !dst || size.width <= 2 * inset || size.height <= 2 * inset) return;
    const IppiSize roi = {size.width - 2 * inset, size.height - 2 * inset};
    const IppiSize kernel = {2 * inset + 1, 2 * inset + 1};
    const ptrdiff_t offset = inset * ptrdiff_t{size.width} + inset;
    const float squareSigma = squareSigmaOf(strength);
    OPCV_ippiFilterBilateral_8u_C1R(src + offset, size.width, dst + offset, size.width, roi, kernel, squareSigma,
                                    squareSigma);
}

int DeosNrRGB(const unsigned char* src, unsigned char* dst, int width, int height, int mode, int strength) {
    if (mode < 0 || mode > kLargestMode) return 1;
    if (strength < 0 || strength > kStrongest) return 2;
    if (width % 4 != 0) return 3;

    // From here on the function returns 0, even on failure.
    const IppiSize size = {width, height};
    if (!src || !dst || !filters::isColourImage(size)) return 0;
    const ptrdiff_t step = 3 * ptrdiff_t{width};
    opcv::PixelBlock copy;
    const unsigned char* source = filters::sourceApart(src, dst, static_cast<size_t>(step * height), copy);
    if (!source) return 0;

    reducePacked(source, dst, size, insetOf(mode), squareSigmaOf(strength));
    return 0;
}
