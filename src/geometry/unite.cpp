// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Rotation of an image about its centre onto the centre of a canvas of another size.
#include <cmath>
#include <cstdint>
#include <cstring>

#include "core/ownership.h"
#include "geometry/page_format.h"
#include "geometry/turn.h"

namespace opcv {
namespace {

constexpr int kLinearSmoothEdge = static_cast<int>(0x80000002U);

unsigned char firstByteOfDepth(const KVImageHeader& header) {
    unsigned char depth = 0;
    std::memcpy(&depth, &header.depth, 1);
    return depth;
}

// A positive angle turns clockwise; 180 itself is not wrapped.
double counterClockwise(double angle) { return angle > 180.0 ? -(angle - 360.0) : -angle; }

// The canvas is written with the header's step, in whole pixels. The rows must not extend beyond the record's pixels.
bool staysWithin(const KVIMG& record, int rowStep) {
    const int pixelSize = record.depth / 8;
    const int64_t pitch = rowStep / pixelSize * pixelSize;
    return pitch * (int64_t{record.height} - 1) + int64_t{record.width} * pixelSize <= record.size;
}

}    // namespace
}    // namespace opcv

using namespace opcv;

OSErr UniteImageIplRotateImage(KVImageHeader* dstHeader, const KVImageHeader* srcHeader, KVIMG** unitedRecord,
                               double angle) {
    if (!dstHeader || !srcHeader || !unitedRecord) return uniteFailedErr;
    const unsigned char depth = firstByteOfDepth(*dstHeader);
    const KVRect canvas = {0, 0, dstHeader->height, dstHeader->width};
    const std::optional<PageFormat> format = pageFormatOf(depth);
    RecordPtr united;
    if (!format || createRecord(canvas, depth, united, CreateNewKVIMGPtrForUnite) != noErr) return uniteFailedErr;
    dstHeader->pixels = united->data;
    if (!staysWithin(*united, dstHeader->rowStep)) return uniteFailedErr;

    const double turn = counterClockwise(angle);
    const double xCentre = srcHeader->width * 0.5;
    const double yCentre = srcHeader->height * 0.5;
    const Shift shift = shiftAbout(xCentre, yCentre, turn);
    const double xShift = std::fma(dstHeader->width, 0.5, -xCentre) + shift.x;
    const double yShift = std::fma(dstHeader->height, 0.5, -yCentre) + shift.y;

    const IppiSize size = {srcHeader->width, srcHeader->height};
    const IppiRect all = {0, 0, srcHeader->width, srcHeader->height};
    const IppiRect target = {0, 0, dstHeader->width, dstHeader->height};
    const IppStatus status = ippiRotate(srcHeader->pixels, size, srcHeader->rowStep, all, dstHeader->pixels,
                                        dstHeader->rowStep, target, turn, static_cast<float>(xShift),
                                        static_cast<float>(yShift), kLinearSmoothEdge, format->type, format->white);
    if (status != ippStsNoErr) return uniteFailedErr;
    *unitedRecord = united.release();
    return noErr;
}
