// Turns of a page record by multiples of 90 degrees.
#include <cmath>
#include <opencv2/core.hpp>

#include "core/Tools.h"
#include "core/ownership.h"
#include "geometry/page.h"

namespace {

// A positive angle turns clockwise here, against the deskew functions. The fraction is dropped, so that 90.9 is 90.
bool rotateCodeOf(double angle, int& code) {
    if (!(std::abs(angle) < 360)) return false;
    switch (static_cast<int>(angle)) {
        case 90:
        case -270: code = cv::ROTATE_90_CLOCKWISE; return true;
        case 180:
        case -180: code = cv::ROTATE_180; return true;
        case 270:
        case -90: code = cv::ROTATE_90_COUNTERCLOCKWISE; return true;
        default: return false;
    }
}

OSErr turn(const Page& page, const KVIMG& turned, int code) {
    cv::Mat from;
    if (const OSErr err = Tools::CreateAndCutImageMat(page.record->data, page.record->rowBytes,
                                                      cv::Rect(0, 0, page.width, page.height), page.format.type, from))
        return err;
    cv::Mat to;
    if (const OSErr err = Tools::CreateAndCutImageMat(
            turned.data, turned.rowBytes, cv::Rect(0, 0, turned.width, turned.height), page.format.type, to))
        return err;
    cv::rotate(from, to, code);
    return noErr;
}

}    // namespace

OSErr RotateImageWithIPP(const KVIMG* src, KVImageDescriptionHandle description, KVIMG** dst, double angle) {
    if (!dst) return paramErr;
    RecordSlot slot(dst);
    Page page;
    if (const OSErr err = describePage(src, description, page)) return err;
    int code = 0;
    if (!rotateCodeOf(angle, code)) return badAngleErr;

    const KVRect upright = page.bounds();
    const KVRect onItsSide = {0, 0, page.width, page.height};
    RecordPtr turned;
    if (const OSErr err = createRecord(code == cv::ROTATE_180 ? upright : onItsSide, page.depth, turned)) return err;
    if (const OSErr err = turn(page, *turned, code)) return err;
    slot.handOver(std::move(turned));
    return noErr;
}
