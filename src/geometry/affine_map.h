// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Maps pixels of a turned image to source positions, in the fixed-point form of OpenCV's affine warp.
#pragma once

#include <algorithm>
#include <cmath>

namespace opcv {

// Position in the source in units of 1/1024 pixel.
struct MapPosition {
    int x = 0;
    int y = 0;

    MapPosition operator+(MapPosition other) const { return {x + other.x, y + other.y}; }
};

constexpr int kMapBits = 10;
constexpr double kMapScale = 1 << kMapBits;

// Pixel (x, y) of the target is read at column(x) + row(y) of the source; both parts are rounded to nearest, ties to
// even. Interpolation has 32 positions per pixel: 16 units are added once, so that dropping the last five bits rounds.
class AffineMap {
public:
    // The inverse of a 2 x 3 matrix that maps points of one image to points of another.
    static AffineMap inverseOf(const double (&m)[6]) {
        const double determinant = multiplyAdd(m[0], m[4], -(m[1] * m[3]));
        const double scale = determinant != 0 ? 1.0 / determinant : 0.0;
        AffineMap map;
        map.xx_ = m[4] * scale;
        map.xy_ = m[1] * -scale;
        map.yx_ = m[3] * -scale;
        map.yy_ = m[0] * scale;
        map.x0_ = multiplyAdd(-map.xx_, m[2], -(map.xy_ * m[5]));
        map.y0_ = multiplyAdd(-map.yx_, m[2], -(map.yy_ * m[5]));
        return map;
    }

    // The same map for parts of the two images that begin at these pixels.
    void moveOrigins(int targetX, int targetY, int sourceX, int sourceY) {
        targetX_ = targetX;
        targetY_ = targetY;
        source_ = {-sourceX * (1 << kMapBits), -sourceY * (1 << kMapBits)};
    }

    // Whether all positions of an image with sides up to 32767 are finite and far inside the range of int.
    bool isWellConditioned() const {
        constexpr double kFar = 1 << 19;
        const auto isNear = [](double part) { return std::abs(part) <= kFar; };
        return isNear(x0_) && isNear(y0_) && isNear(xx_ * kLongest) && isNear(xy_ * kLongest) &&
               isNear(yx_ * kLongest) && isNear(yy_ * kLongest);
    }

    MapPosition column(int x) const {
        const int i = x + targetX_;
        return {rounded(xx_ * i * kMapScale), rounded(yx_ * i * kMapScale)};
    }
    MapPosition row(int y) const {
        constexpr int kHalfStep = 16;
        const int j = y + targetY_;
        const MapPosition inImage = {rounded(multiplyAdd(xy_, j, x0_) * kMapScale) + kHalfStep,
                                     rounded(multiplyAdd(yy_, j, y0_) * kMapScale) + kHalfStep};
        return inImage + source_;
    }

    // The movement of the source position for one pixel to the right.
    double xPerColumn() const { return xx_; }
    double yPerColumn() const { return yx_; }

private:
    static constexpr double kLongest = 32767;

    // In OpenCV the compiler fuses this into one rounding where every processor has an instruction for it. It affects
    // one position in some millions, which is close enough to a tie.
    static double multiplyAdd(double a, double b, double c) {
#ifdef __aarch64__
        return std::fma(a, b, c);
#else
        return a * b + c;
#endif
    }

    static int rounded(double value) { return static_cast<int>(std::lrint(value)); }

    double xx_ = 0, xy_ = 0, x0_ = 0;
    double yx_ = 0, yy_ = 0, y0_ = 0;
    int targetX_ = 0;
    int targetY_ = 0;
    MapPosition source_;
};

}    // namespace opcv
