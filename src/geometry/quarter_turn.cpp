// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Turns of a page record by multiples of 90 degrees.
#include <cmath>
#include <opencv2/core.hpp>
#include <optional>

#include "core/ownership.h"
#include "core/region.h"
#include "geometry/page.h"
#include "geometry/quarter_turn_kernels.h"

namespace opcv {
namespace {

enum class Turn { kQuarterClockwise, kHalf, kQuarterCounterClockwise };

// A positive angle turns clockwise, unlike in the deskew functions. The fraction is dropped, so that 90.9 is 90.
std::optional<Turn> turnOf(double angle) {
    if (!(std::abs(angle) < 360)) return std::nullopt;
    switch (static_cast<int>(angle)) {
        case 90:
        case -270: return Turn::kQuarterClockwise;
        case 180:
        case -180: return Turn::kHalf;
        case 270:
        case -90: return Turn::kQuarterCounterClockwise;
        default: return std::nullopt;
    }
}

SourceRows downwards(const cv::Mat& m) { return {m.data, static_cast<ptrdiff_t>(m.step[0])}; }
SourceRows upwards(const cv::Mat& m) { return {m.ptr(m.rows - 1), -static_cast<ptrdiff_t>(m.step[0])}; }
TargetRows downwards(cv::Mat& m) { return {m.data, static_cast<ptrdiff_t>(m.step[0])}; }
TargetRows upwards(cv::Mat& m) { return {m.ptr(m.rows - 1), -static_cast<ptrdiff_t>(m.step[0])}; }

void turnPixels(const cv::Mat& from, cv::Mat& to, Turn turn) {
    const int pixelSize = static_cast<int>(from.elemSize());
    switch (turn) {
        case Turn::kQuarterClockwise: return transpose(upwards(from), downwards(to), from.cols, from.rows, pixelSize);
        case Turn::kHalf: return mirror(upwards(from), downwards(to), from.cols, from.rows, pixelSize);
        default: return transpose(downwards(from), upwards(to), from.cols, from.rows, pixelSize);
    }
}

OSErr turnPage(const Page& page, const KVIMG& turned, Turn turn) {
    cv::Mat from;
    if (const OSErr err = viewOf(page.record->data, page.record->rowBytes, page.format.type, page.size(), from))
        return err;
    cv::Mat to;
    const IppiSize turnedSize = {turned.width, turned.height};
    if (const OSErr err = viewOf(turned.data, turned.rowBytes, page.format.type, turnedSize, to)) return err;
    turnPixels(from, to, turn);
    return noErr;
}

}    // namespace
}    // namespace opcv

using namespace opcv;

OSErr RotateImageWithIPP(const KVIMG* src, KVImageDescriptionHandle description, KVIMG** dst, double angle) {
    if (!dst) return paramErr;
    RecordSlot slot(dst);
    Page page;
    if (const OSErr err = describePage(src, description, page)) return err;
    const std::optional<Turn> turn = turnOf(angle);
    if (!turn) return badAngleErr;

    const KVRect upright = page.bounds();
    const KVRect onItsSide = {0, 0, page.width, page.height};
    RecordPtr turned;
    if (const OSErr err = createRecord(*turn == Turn::kHalf ? upright : onItsSide, page.depth, turned)) return err;
    if (const OSErr err = turnPage(page, *turned, *turn)) return err;
    slot.handOver(std::move(turned));
    return noErr;
}
