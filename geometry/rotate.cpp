// Rotation of a region about a point by any angle: OpenCV's bilinear affine warp.
#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <opencv2/imgproc.hpp>

#include "core/Tools.h"

namespace {

struct Image {
    const unsigned char* pixels;
    const IppiSize& size;
    int step;
    const IppiRect& roi;
    int type;
};

struct Target {
    unsigned char* pixels;
    int step;
    const IppiRect& roi;
};

// Where the read-out rectangle lies in the work image, and how far the source region is padded so that it does.
struct Placement {
    int64_t x = 0, y = 0;
    int64_t left = 0, top = 0, right = 0, bottom = 0;

    bool padded() const { return left || top || right || bottom; }
    bool fitsInt(const IppiRect& src) const {
        return std::max({x, y, left, top, right, bottom, left + src.width + right, top + src.height + bottom}) <=
               INT_MAX;
    }
};

bool isShift(float rounded) { return rounded >= static_cast<float>(INT_MIN) && rounded < -static_cast<float>(INT_MIN); }

// The point that lands on the target's first pixel is minus the shift; the fraction of the shift is dropped on purpose,
// as sub-pixel placement would blur a page that is only moved.
bool place(float xShift, float yShift, const IppiRect& src, const IppiRect& dst, Placement& p) {
    const float x = std::round(xShift);
    const float y = std::round(yShift);
    if (!isShift(x) || !isShift(y)) return false;
    p.x = -static_cast<int64_t>(x);
    p.y = -static_cast<int64_t>(y);
    p.left = std::max<int64_t>(-p.x, 0);
    p.top = std::max<int64_t>(-p.y, 0);
    p.x = std::max<int64_t>(p.x, 0);
    p.y = std::max<int64_t>(p.y, 0);
    p.right = std::max<int64_t>(p.x + dst.width - p.left - src.width, 0);
    p.bottom = std::max<int64_t>(p.y + dst.height - p.top - src.height, 0);
    return p.fitsInt(src);
}

OSErr viewOf(const Image& image, cv::Mat& view) {
    const IppiRect& r = image.roi;
    return Tools::CreateAndCutImageMat(const_cast<unsigned char*>(image.pixels), image.step,
                                       cv::Rect(r.x, r.y, r.width, r.height), image.type, view);
}

OSErr warp(const cv::Mat& work, cv::Point2f centre, double angle, const cv::Scalar& borderValue, cv::Mat& turned) {
    const cv::Mat matrix = cv::getRotationMatrix2D(centre, angle, 1.0);
    if (!matrix.data) return memFullErr;
    cv::warpAffine(work, turned, matrix, work.size(), cv::INTER_LINEAR, cv::BORDER_CONSTANT, borderValue);
    return turned.data ? noErr : memFullErr;
}

OSErr copyOut(const cv::Mat& turned, const cv::Point& origin, const Target& target) {
    const IppiRect& r = target.roi;
    return Tools::CopyImageMatData(turned, origin, target.pixels, target.step, cv::Point(r.x, r.y),
                                   cv::Size(r.width, r.height));
}

bool exceeds(const IppiRect& roi, const IppiSize& size) { return size.width < roi.width || size.height < roi.height; }

OSErr rotate(const Image& source, const Target& target, double angle, float xShift, float yShift,
             const cv::Scalar& borderValue) {
    if (exceeds(source.roi, source.size)) return paramErr;
    Placement p;
    if (!place(xShift, yShift, source.roi, target.roi, p)) return paramErr;
    cv::Mat work;
    if (const OSErr err = viewOf(source, work)) return err;

    // The border is not isolated: where the source image goes on around the region, its pixels come before the value.
    if (p.padded()) {
        cv::Mat padded;
        cv::copyMakeBorder(work, padded, static_cast<int>(p.top), static_cast<int>(p.bottom), static_cast<int>(p.left),
                           static_cast<int>(p.right), cv::BORDER_CONSTANT, borderValue);
        work = padded;
    }
    if (!work.data) return memFullErr;

    const cv::Point2f corner(static_cast<float>(p.left), static_cast<float>(p.top));
    cv::Mat turned;
    if (const OSErr err = warp(work, corner, angle, borderValue, turned)) return err;
    return copyOut(turned, cv::Point(static_cast<int>(p.x), static_cast<int>(p.y)), target);
}

OSErr rotateAbout(const Image& source, const Target& target, double angle, cv::Point2f centre,
                  const cv::Scalar& borderValue) {
    if (exceeds(source.roi, source.size)) return paramErr;
    cv::Mat work;
    if (const OSErr err = viewOf(source, work)) return err;
    cv::Mat turned;
    if (const OSErr err = warp(work, centre, angle, borderValue, turned)) return err;
    return copyOut(turned, cv::Point(0, 0), target);
}

OSErr rotateOnBlack(const Image& source, const Target& target, double angle, double xShift, double yShift,
                    int interpolation) {
    return Tools::IppStatusToOSErr(ippiRotate(
        source.pixels, source.size, source.step, source.roi, target.pixels, target.step, target.roi, angle,
        static_cast<float>(xShift), static_cast<float>(yShift), interpolation, source.type, cv::Scalar::all(0)));
}

}    // namespace

IppStatus ippiRotate(const unsigned char* src, const IppiSize& srcSize, int srcStep, const IppiRect& srcRoi,
                     unsigned char* dst, int dstStep, const IppiRect& dstRoi, double angle, float xShift, float yShift,
                     int /*interpolation*/, int type, const cv::Scalar& borderValue) {
    return Tools::OSErrToIppStatus(
        rotate({src, srcSize, srcStep, srcRoi, type}, {dst, dstStep, dstRoi}, angle, xShift, yShift, borderValue));
}

IppStatus ippiRotateCenter(const unsigned char* src, const IppiSize& srcSize, int srcStep, const IppiRect& srcRoi,
                           unsigned char* dst, int dstStep, const IppiRect& dstRoi, double angle, double xCenter,
                           double yCenter, int /*interpolation*/, int type, const cv::Scalar& borderValue) {
    const cv::Point2f centre(static_cast<float>(xCenter), static_cast<float>(yCenter));
    return Tools::OSErrToIppStatus(
        rotateAbout({src, srcSize, srcStep, srcRoi, type}, {dst, dstStep, dstRoi}, angle, centre, borderValue));
}

void KVMac_ippiGetRotateShift(double xCenter, double yCenter, double angle, double* xShift, double* yShift) {
    if (!xShift || !yShift) return;
    const double radians = angle * CV_PI / 180;
    const double s = std::sin(radians);
    const double c = std::cos(radians);
    *xShift = std::fma(-yCenter, s, std::fma(-xCenter, c, xCenter));
    *yShift = std::fma(-yCenter, c, std::fma(xCenter, s, yCenter));
}

OSErr KVMac_ippiRotate_8u_C1R(const unsigned char* src, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                              unsigned char* dst, int dstStep, IppiRect dstRoi, double angle, double xShift,
                              double yShift, int interpolation) {
    return rotateOnBlack({src, srcSize, srcStep, srcRoi, CV_8UC1}, {dst, dstStep, dstRoi}, angle, xShift, yShift,
                         interpolation);
}

OSErr KVMac_ippiRotate_8u_C3R(const unsigned char* src, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                              unsigned char* dst, int dstStep, IppiRect dstRoi, double angle, double xShift,
                              double yShift, int interpolation) {
    return rotateOnBlack({src, srcSize, srcStep, srcRoi, CV_8UC3}, {dst, dstStep, dstRoi}, angle, xShift, yShift,
                         interpolation);
}
