// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Deskew of a page record: a turn about its centre, whole or cropped, or about a given point.
#include "core/ownership.h"
#include "geometry/page.h"
#include "geometry/turn.h"

namespace opcv {
namespace {

cv::Scalar fillOf(const Page& page, unsigned char whiteFill) {
    return whiteFill ? page.format.white : cv::Scalar::all(0);
}

IppiRect wholeOf(const KVIMG& record) { return {0, 0, record.width, record.height}; }

double centreColumn(const Page& page) { return (page.width - 1.0) * 0.5; }
double centreRow(const Page& page) { return (page.height - 1.0) * 0.5; }

// Turns the page about its first pixel and moves it by the shift, into the whole new record.
OSErr turnAndShift(const Page& page, const KVIMG& turned, int interpolation, const cv::Scalar& fill, double angle,
                   double xShift, double yShift) {
    const IppStatus status = ippiRotate(page.record->data, page.size(), page.record->rowBytes, page.rect(), turned.data,
                                        turned.rowBytes, wholeOf(turned), angle, static_cast<float>(xShift),
                                        static_cast<float>(yShift), interpolation, page.format.type, fill);
    return status == ippStsNoErr ? noErr : rotateFailedErr;
}

void moveIntoPage(KVRect& crop) {
    if (crop.top < 0) crop = {0, crop.left, crop.bottom - crop.top, crop.right};
    if (crop.left < 0) crop = {crop.top, 0, crop.bottom, crop.right - crop.left};
}

}    // namespace
}    // namespace opcv

using namespace opcv;

OSErr DeskewImageWithIPP(const KVIMG* src, KVImageDescriptionHandle description, KVIMG** dst, int interpolation,
                         unsigned char whiteFill, double angle) {
    if (!dst) return paramErr;
    RecordSlot slot(dst);
    Page page;
    if (const OSErr err = describePage(src, description, page)) return err;
    RecordPtr turned;
    if (const OSErr err = createRecord(page.bounds(), page.depth, turned)) return err;

    const IppStatus status = ippiRotateCenter(src->data, page.size(), src->rowBytes, page.rect(), turned->data,
                                              turned->rowBytes, page.rect(), angle, centreColumn(page), centreRow(page),
                                              interpolation, page.format.type, fillOf(page, whiteFill));
    if (status != ippStsNoErr) return rotateFailedErr;
    slot.handOver(std::move(turned));
    return noErr;
}

OSErr DeskewImageWithIPPEx(const KVIMG* src, KVImageDescriptionHandle description, KVIMG** dst, int interpolation,
                           unsigned char whiteFill, KVRect* crop, double angle) {
    if (!dst) return paramErr;
    RecordSlot slot(dst);
    if (!crop) return paramErr;
    Page page;
    if (const OSErr err = describePage(src, description, page)) return err;
    RecordPtr turned;
    if (const OSErr err = createRecord(*crop, page.depth, turned)) return err;

    const KVRect asked = *crop;
    moveIntoPage(*crop);
    const Shift shift = shiftAbout(centreColumn(page), centreRow(page), angle);
    if (const OSErr err = turnAndShift(page, *turned, interpolation, fillOf(page, whiteFill), angle,
                                       shift.x - asked.left, shift.y - asked.top))
        return err;
    slot.handOver(std::move(turned));
    return noErr;
}

OSErr DeskewImageWithIPPExWithShirftPoint(const KVIMG* src, KVImageDescriptionHandle description, KVIMG** dst,
                                          int interpolation, unsigned char whiteFill, KVRect* crop, int64_t xPoint,
                                          int64_t yPoint, double angle) {
    if (!dst) return paramErr;
    RecordSlot slot(dst);
    if (!crop) return paramErr;
    Page page;
    if (const OSErr err = describePage(src, description, page)) return err;
    RecordPtr turned;
    if (const OSErr err = createRecord(*crop, page.depth, turned)) return err;

    const auto x = static_cast<double>(xPoint);
    const auto y = static_cast<double>(yPoint);
    const Shift shift = shiftAbout(x, y, angle);
    if (const OSErr err =
            turnAndShift(page, *turned, interpolation, fillOf(page, whiteFill), angle, shift.x - x, shift.y - y))
        return err;
    slot.handOver(std::move(turned));
    return noErr;
}
