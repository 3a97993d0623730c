// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Rotation of a region about a point by any angle, with the results of OpenCV's bilinear affine warp of the padded
// region. For the usual pixel types a kernel computes only the destination rectangle, directly into it.
#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <opencv2/imgproc.hpp>
#include <optional>

#include "core/Tools.h"
#include "core/region.h"
#include "core/result_matrix.h"
#include "core/row_bands.h"
#include "geometry/rotate_kernel.h"

namespace opcv {
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

// The position of the destination rectangle in the work image, and the padding of the source region that makes it fit.
struct WorkArea {
    int64_t x = 0, y = 0;
    int64_t left = 0, top = 0, right = 0, bottom = 0;

    bool padded() const { return left || top || right || bottom; }
    bool fitsInt(const IppiRect& src) const {
        return std::max({x, y, left, top, right, bottom, left + src.width + right, top + src.height + bottom}) <=
               INT_MAX;
    }
};

bool isShift(float rounded) { return rounded >= static_cast<float>(INT_MIN) && rounded < -static_cast<float>(INT_MIN); }

// The target's first pixel shows the point at minus the shift. The shift is deliberately rounded to whole pixels,
// because sub-pixel placement would blur a page that is only moved.
std::optional<WorkArea> workAreaOf(float xShift, float yShift, const IppiRect& src, const IppiRect& dst) {
    const float x = std::round(xShift);
    const float y = std::round(yShift);
    if (!isShift(x) || !isShift(y)) return std::nullopt;
    WorkArea area;
    area.x = -static_cast<int64_t>(x);
    area.y = -static_cast<int64_t>(y);
    area.left = std::max<int64_t>(-area.x, 0);
    area.top = std::max<int64_t>(-area.y, 0);
    area.x = std::max<int64_t>(area.x, 0);
    area.y = std::max<int64_t>(area.y, 0);
    area.right = std::max<int64_t>(area.x + dst.width - area.left - src.width, 0);
    area.bottom = std::max<int64_t>(area.y + dst.height - area.top - src.height, 0);
    if (!area.fitsInt(src)) return std::nullopt;
    return area;
}

// Turns the region in the work image and cuts the target out of the result.
struct Turn {
    cv::Mat region;
    WorkArea area;
    cv::Point2f centre;
    double angle;
    const cv::Scalar& border;
    const Target& target;

    cv::Size workSize() const {
        return {region.cols + static_cast<int>(area.left + area.right),
                region.rows + static_cast<int>(area.top + area.bottom)};
    }
    cv::Point origin() const { return {static_cast<int>(area.x), static_cast<int>(area.y)}; }
};

OSErr turnByOpenCV(const Turn& turn) {
    // Without BORDER_ISOLATED, the padding shows the source image around the region where it exists, otherwise the
    // value.
    const WorkArea& area = turn.area;
    ResultMatrix work;
    if (!area.padded())
        work = turn.region;
    else
        cv::copyMakeBorder(turn.region, work, static_cast<int>(area.top), static_cast<int>(area.bottom),
                           static_cast<int>(area.left), static_cast<int>(area.right), cv::BORDER_CONSTANT, turn.border);
    if (!work.data) return memFullErr;

    const cv::Matx23d matrix = cv::getRotationMatrix2D_(turn.centre, turn.angle, 1.0);
    ResultMatrix turned;
    withOpenCVThreads(
        [&] { cv::warpAffine(work, turned, matrix, work.size(), cv::INTER_LINEAR, cv::BORDER_CONSTANT, turn.border); });
    if (!turned.data) return memFullErr;

    const IppiRect& r = turn.target.roi;
    return Tools::CopyImageMatData(turned, turn.origin(), turn.target.pixels, turn.target.step, cv::Point(r.x, r.y),
                                   cv::Size(r.width, r.height));
}

// Whether the kernel can be used. For longer images OpenCV is called, which throws an exception.
bool isDirect(int type, cv::Size work, const AffineMap& map) {
    const bool knownType = type == CV_8UC1 || type == CV_8UC3 || type == CV_8UC4;
    return knownType && work.width < SHRT_MAX && work.height < SHRT_MAX && map.isWellConditioned();
}

// No padded image is created: the view is enlarged by the image around the region, and everything outside is border.
OSErr turnDirectly(const Turn& turn, AffineMap map) {
    const IppiRect& r = turn.target.roi;
    const cv::Size rest = turn.workSize() - cv::Size(turn.origin());
    const IppiRect covered = {r.x, r.y, std::min(r.width, rest.width), std::min(r.height, rest.height)};
    cv::Mat to;
    if (const OSErr err = viewOf(turn.target.pixels, turn.target.step, turn.region.type(), covered, to)) return err;

    const WorkArea& area = turn.area;
    cv::Size whole;
    cv::Point regionAt;
    turn.region.locateROI(whole, regionAt);
    cv::Mat from = turn.region;
    if (area.padded())
        from.adjustROI(static_cast<int>(area.top), static_cast<int>(area.bottom), static_cast<int>(area.left),
                       static_cast<int>(area.right));
    if (overlap(from, to)) return turnByOpenCV(turn);
    cv::Point fromAt;
    from.locateROI(whole, fromAt);

    RotationJob job;
    map.moveOrigins(turn.origin().x, turn.origin().y, static_cast<int>(area.left) - (regionAt.x - fromAt.x),
                    static_cast<int>(area.top) - (regionAt.y - fromAt.y));
    job.map = map;
    job.source = from.data;
    job.sourceStep = static_cast<ptrdiff_t>(from.step[0]);
    job.sourceWidth = from.cols;
    job.sourceHeight = from.rows;
    job.target = to.data;
    job.targetStep = static_cast<ptrdiff_t>(to.step[0]);
    job.targetWidth = to.cols;
    job.channels = from.channels();
    for (int i = 0; i < RotationJob::kMaxChannels; ++i)
        job.border[static_cast<size_t>(i)] = cv::saturate_cast<uint8_t>(turn.border[i]);
    forEachBand(to.rows, double{1} * to.cols * to.rows,
                [&](int firstRow, int endRow) { rotateRows(job, firstRow, endRow); });
    return noErr;
}

OSErr run(const Turn& turn) {
    const AffineMap map = AffineMap::inverseOf(cv::getRotationMatrix2D_(turn.centre, turn.angle, 1.0).val);
    return isDirect(turn.region.type(), turn.workSize(), map) ? turnDirectly(turn, map) : turnByOpenCV(turn);
}

OSErr rotate(const Image& source, const Target& target, double angle, float xShift, float yShift,
             const cv::Scalar& border) {
    if (!fitsIn(source.size, source.roi)) return paramErr;
    const std::optional<WorkArea> area = workAreaOf(xShift, yShift, source.roi, target.roi);
    if (!area) return paramErr;
    cv::Mat region;
    if (const OSErr err = viewOf(source.pixels, source.step, source.type, source.roi, region)) return err;
    const cv::Point2f centre(static_cast<float>(area->left), static_cast<float>(area->top));
    return run({region, *area, centre, angle, border, target});
}

OSErr rotateAbout(const Image& source, const Target& target, double angle, cv::Point2f centre,
                  const cv::Scalar& border) {
    if (!fitsIn(source.size, source.roi)) return paramErr;
    cv::Mat region;
    if (const OSErr err = viewOf(source.pixels, source.step, source.type, source.roi, region)) return err;
    return run({region, WorkArea(), centre, angle, border, target});
}

OSErr rotateOnBlack(const Image& source, const Target& target, double angle, double xShift, double yShift,
                    int interpolation) {
    return Tools::IppStatusToOSErr(ippiRotate(
        source.pixels, source.size, source.step, source.roi, target.pixels, target.step, target.roi, angle,
        static_cast<float>(xShift), static_cast<float>(yShift), interpolation, source.type, cv::Scalar::all(0)));
}

}    // namespace
}    // namespace opcv

using namespace opcv;

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
