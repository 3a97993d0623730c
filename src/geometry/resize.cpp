// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Bilinear resize: a page record by a ratio, a grey region with placement, a colour region to a given size.
#include <algorithm>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdint>
#include <opencv2/imgproc.hpp>
#include <optional>
#include <utility>

#include "core/Tools.h"
#include "core/ownership.h"
#include "core/region.h"
#include "core/result_matrix.h"
#include "core/row_bands.h"
#include "geometry/page_format.h"
#include "geometry/resize_kernels.h"

namespace opcv {
namespace {

bool fitsInt(int64_t value) { return value >= INT_MIN && value <= INT_MAX; }

// Out-of-range conversions differ between processors, so the range is checked first. Not a number becomes 0.
std::optional<int> truncatedToInt(double value) {
    if (value <= double{INT_MIN} - 1 || value >= double{INT_MAX} + 1) return std::nullopt;
    return std::isnan(value) ? 0 : static_cast<int>(value);
}

OSErr viewOfRecord(const KVIMG& record, int type, cv::Mat& view) {
    return viewOf(record.data, record.rowBytes, type, IppiSize{record.width, record.height}, view);
}

// A source and the rectangle of the scaled image to compute.
BilinearJob jobOf(const cv::Mat& from, double xScale, double yScale, const cv::Point& origin, const cv::Mat& to) {
    return {from.data,
            static_cast<ptrdiff_t>(from.step[0]),
            from.cols,
            from.rows,
            from.channels(),
            xScale,
            yScale,
            origin.x,
            origin.y,
            to.cols,
            to.rows,
            to.data,
            static_cast<ptrdiff_t>(to.step[0])};
}

// OpenCV handles equal sizes, which are a copy, and reductions to exactly half in both directions, which are a mean.
bool isDirect(const BilinearJob& job, const cv::Size& scaled) {
    const auto isTwo = [](double scale) { return std::abs(scale - 2) < DBL_EPSILON; };
    return scaled != cv::Size(job.sourceWidth, job.sourceHeight) && !(isTwo(job.xScale) && isTwo(job.yScale)) &&
           BilinearResize::canDo(job);
}

void resizeDirectly(const BilinearJob& job) {
    const BilinearResize resize(job);
    forEachBand(job.height, double{1} * job.width * job.height,
                [&](int firstRow, int endRow) { resize.run(firstRow, endRow - firstRow); });
}

// The scale is the ratio of the two sizes.
void resizeInto(const cv::Mat& from, cv::Mat& to) {
    const double xScale = 1 / (static_cast<double>(to.cols) / from.cols);
    const double yScale = 1 / (static_cast<double>(to.rows) / from.rows);
    const BilinearJob job = jobOf(from, xScale, yScale, {0, 0}, to);
    if (isDirect(job, to.size()))
        resizeDirectly(job);
    else
        withOpenCVThreads([&] { cv::resize(from, to, to.size(), 0, 0, cv::INTER_LINEAR); });
}

OSErr resizePage(const KVIMG& src, double scale, RecordPtr& scaled) {
    const std::optional<int> width = truncatedToInt(scale * src.width);
    const std::optional<int> height = truncatedToInt(scale * src.height);
    KVRect bounds = {0, 0, INT_MAX, INT_MAX};    // larger than any record
    if (width && height) bounds = {0, 0, *height, *width};
    if (const OSErr err = createRecord(bounds, static_cast<unsigned char>(src.depth), scaled)) return err;

    const std::optional<PageFormat> format = pageFormatOf(src.depth);
    if (!format) return rotateFailedErr;
    cv::Mat from;
    if (const OSErr err = viewOfRecord(src, format->type, from)) return err;
    cv::Mat to;
    if (const OSErr err = viewOfRecord(*scaled, format->type, to)) return err;
    resizeInto(from, to);
    return noErr;
}

// One direction of the placement of a scaled image in the destination rectangle.
struct Span {
    int from;     // first pixel of the scaled image that is read
    int to;       // its position in the rectangle
    int count;    // pixels up to the end of the rectangle
};

std::optional<Span> spanOf(double shift, int start, int count) {
    const std::optional<int> by = truncatedToInt(std::round(shift));
    if (std::isnan(shift) || !by) return std::nullopt;
    const int64_t skipped = *by < 0 ? -int64_t{*by} : 0;
    const int64_t moved = *by < 0 ? 0 : *by;
    if (!fitsInt(skipped) || !fitsInt(start + moved) || !fitsInt(count - moved)) return std::nullopt;
    return Span{static_cast<int>(skipped), static_cast<int>(start + moved), static_cast<int>(count - moved)};
}

struct Factors {
    double x;
    double y;
};

struct Spans {
    Span columns;
    Span rows;
};

// Computes only the placed pixels, directly into the destination. Returns false, with nothing written, if this is not
// possible or an argument is invalid.
bool placeDirectly(const cv::Mat& from, Factors factors, const Spans& at, unsigned char* dst, int dstStep) {
    const double width = from.cols * factors.x;
    const double height = from.rows * factors.y;
    if (!(width > 0 && width < INT_MAX && height > 0 && height < INT_MAX)) return false;
    const cv::Size scaled(cvRound(width), cvRound(height));
    const IppiRect covered = {at.columns.to, at.rows.to, std::min(scaled.width - at.columns.from, at.columns.count),
                              std::min(scaled.height - at.rows.from, at.rows.count)};
    cv::Mat to;
    if (viewOf(dst, dstStep, CV_8UC1, covered, to) != noErr || overlap(from, to)) return false;
    const cv::Point origin(at.columns.from, at.rows.from);
    const BilinearJob job = jobOf(from, 1 / factors.x, 1 / factors.y, origin, to);
    if (!isDirect(job, scaled)) return false;
    resizeDirectly(job);
    return true;
}

OSErr resizeAndPlace(const unsigned char* src, const IppiSize& srcSize, int srcStep, const IppiRect& srcRoi,
                     unsigned char* dst, int dstStep, const IppiRect& dstRoi, Factors factors, double xShift,
                     double yShift) {
    if (!fitsIn(srcSize, srcRoi)) return paramErr;
    cv::Mat from;
    if (const OSErr err = viewOf(src, srcStep, CV_8UC1, srcRoi, from)) return err;
    const std::optional<Span> columns = spanOf(xShift, dstRoi.x, dstRoi.width);
    const std::optional<Span> rows = spanOf(yShift, dstRoi.y, dstRoi.height);
    if (columns && rows && placeDirectly(from, factors, {*columns, *rows}, dst, dstStep)) return noErr;

    ResultMatrix scaled;
    withOpenCVThreads([&] { cv::resize(from, scaled, cv::Size(), factors.x, factors.y, cv::INTER_LINEAR); });
    if (!scaled.data) return memFullErr;
    if (!columns || !rows) return paramErr;
    return Tools::CopyImageMatData(scaled, cv::Point(columns->from, rows->from), dst, dstStep,
                                   cv::Point(columns->to, rows->to), cv::Size(columns->count, rows->count));
}

OSErr resizeToFit(const unsigned char* src, const IppiSize& srcSize, int srcStep, const IppiRect& srcRoi,
                  unsigned char* dst, int dstStep, const IppiSize& dstSize) {
    if (!fitsIn(srcSize, srcRoi)) return paramErr;
    cv::Mat from;
    if (const OSErr err = viewOf(src, srcStep, CV_8UC3, srcRoi, from)) return err;
    cv::Mat to;
    if (const OSErr err = viewOf(dst, dstStep, CV_8UC3, dstSize, to)) return err;
    resizeInto(from, to);
    return noErr;
}

}    // namespace
}    // namespace opcv

using namespace opcv;

OSErr ResizeImageWithIPPEx(const KVIMG* src, KVIMG** dst, double denominator, double numerator) {
    if (!dst) return paramErr;
    RecordSlot slot(dst);
    if (!src) return paramErr;
    RecordPtr scaled;
    if (const OSErr err = resizePage(*src, numerator / denominator, scaled)) return err;
    slot.handOver(std::move(scaled));
    return noErr;
}

IppStatus OPCV_ippiResizeSqrPixel_8u_C1R(const unsigned char* src, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                                         unsigned char* dst, int dstStep, IppiRect dstRoi, double xFactor,
                                         double yFactor, double xShift, double yShift, int /*interpolation*/,
                                         unsigned char* /*buffer*/) {
    return Tools::OSErrToIppStatus(
        resizeAndPlace(src, srcSize, srcStep, srcRoi, dst, dstStep, dstRoi, {xFactor, yFactor}, xShift, yShift));
}

IppStatus IPPMini_ippiResize_8u_C3R(const unsigned char* src, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                                    unsigned char* dst, int dstStep, IppiSize dstRoiSize, double /*xFactor*/,
                                    double /*yFactor*/, int /*interpolation*/) {
    return Tools::OSErrToIppStatus(resizeToFit(src, srcSize, srcStep, srcRoi, dst, dstStep, dstRoiSize));
}
