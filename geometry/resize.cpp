// Bilinear resize: of a page record by a ratio, of a grey region with placement, of a colour region to a given size.
#include <climits>
#include <cmath>
#include <cstdint>
#include <opencv2/imgproc.hpp>

#include "core/Tools.h"
#include "core/ownership.h"
#include "geometry/page_format.h"

namespace {

bool exceeds(const IppiRect& roi, const IppiSize& size) { return size.width < roi.width || size.height < roi.height; }

bool fitsInt(int64_t value) { return value >= INT_MIN && value <= INT_MAX; }

// A conversion that would leave the type differs between processors, so the range comes first.
bool truncateToInt(double value, int& truncated) {
    if (value <= double{INT_MIN} - 1 || value >= double{INT_MAX} + 1) return false;
    truncated = std::isnan(value) ? 0 : static_cast<int>(value);
    return true;
}

OSErr viewOf(const unsigned char* pixels, int step, const IppiRect& r, int type, cv::Mat& view) {
    return Tools::CreateAndCutImageMat(const_cast<unsigned char*>(pixels), step, cv::Rect(r.x, r.y, r.width, r.height),
                                       type, view);
}

OSErr viewOf(const KVIMG& record, int type, cv::Mat& view) {
    return viewOf(record.data, record.rowBytes, {0, 0, record.width, record.height}, type, view);
}

OSErr resizePage(const KVIMG& src, double scale, RecordPtr& scaled) {
    int width = 0;
    int height = 0;
    if (!truncateToInt(scale * src.width, width) || !truncateToInt(scale * src.height, height)) return memFullErr;
    KVRect bounds;
    KVSetRect(&bounds, 0, 0, width, height);
    if (const OSErr err = createRecord(bounds, static_cast<unsigned char>(src.depth), scaled)) return err;

    PageFormat format;
    if (!pageFormatOf(src.depth, format)) return rotateFailedErr;
    cv::Mat from;
    if (const OSErr err = viewOf(src, format.type, from)) return err;
    cv::Mat to;
    if (const OSErr err = viewOf(*scaled, format.type, to)) return err;
    cv::resize(from, to, to.size(), 0, 0, cv::INTER_LINEAR);
    return noErr;
}

// One direction of the placement of a scaled image in the destination rectangle.
struct Span {
    int from;     // first pixel of the scaled image that is read
    int to;       // where it goes
    int count;    // how many the rectangle takes
};

bool place(double shift, int start, int count, Span& span) {
    int by = 0;
    const double rounded = std::round(shift);
    if (std::isnan(rounded) || !truncateToInt(rounded, by)) return false;
    const int64_t skipped = by < 0 ? -int64_t{by} : 0;
    const int64_t moved = by < 0 ? 0 : by;
    if (!fitsInt(skipped) || !fitsInt(start + moved) || !fitsInt(count - moved)) return false;
    span = {static_cast<int>(skipped), static_cast<int>(start + moved), static_cast<int>(count - moved)};
    return true;
}

struct Factors {
    double x;
    double y;
};

OSErr resizeAndPlace(const unsigned char* src, const IppiSize& srcSize, int srcStep, const IppiRect& srcRoi,
                     unsigned char* dst, int dstStep, const IppiRect& dstRoi, Factors factors, double xShift,
                     double yShift) {
    if (exceeds(srcRoi, srcSize)) return paramErr;
    cv::Mat from;
    if (const OSErr err = viewOf(src, srcStep, srcRoi, CV_8UC1, from)) return err;
    cv::Mat scaled;
    cv::resize(from, scaled, cv::Size(), factors.x, factors.y, cv::INTER_LINEAR);
    if (!scaled.data) return memFullErr;

    Span columns{};
    Span rows{};
    if (!place(xShift, dstRoi.x, dstRoi.width, columns) || !place(yShift, dstRoi.y, dstRoi.height, rows))
        return paramErr;
    return Tools::CopyImageMatData(scaled, cv::Point(columns.from, rows.from), dst, dstStep,
                                   cv::Point(columns.to, rows.to), cv::Size(columns.count, rows.count));
}

OSErr resizeToFit(const unsigned char* src, const IppiSize& srcSize, int srcStep, const IppiRect& srcRoi,
                  unsigned char* dst, int dstStep, const IppiSize& dstSize, Factors factors) {
    if (exceeds(srcRoi, srcSize)) return paramErr;
    cv::Mat from;
    if (const OSErr err = viewOf(src, srcStep, srcRoi, CV_8UC3, from)) return err;
    cv::Mat to;
    if (const OSErr err = viewOf(dst, dstStep, {0, 0, dstSize.width, dstSize.height}, CV_8UC3, to)) return err;
    cv::resize(from, to, to.size(), factors.x, factors.y, cv::INTER_LINEAR);
    return noErr;
}

}    // namespace

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
                                    unsigned char* dst, int dstStep, IppiSize dstRoiSize, double xFactor,
                                    double yFactor, int /*interpolation*/) {
    return Tools::OSErrToIppStatus(
        resizeToFit(src, srcSize, srcStep, srcRoi, dst, dstStep, dstRoiSize, {xFactor, yFactor}));
}
