// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include <memory>
#include <opencv2/core.hpp>
#include <string>

#include "OPCV_dlib.h"
#include "core/ownership.h"
#include "page_record.h"
#include "support.h"

namespace {

using bench::PageRecord;

cv::Mat viewOf(const KVIMG& record) {
    return {record.height, record.width, CV_MAKETYPE(CV_8U, record.depth / 8), record.data,
            static_cast<size_t>(record.rowBytes)};
}

void compareTurn(IppiSize size, int depth, int code) {
    const auto page = std::make_shared<PageRecord>(size, depth);
    const double angle = 90.0 * (code + 1);
    const bool onItsSide = code != cv::ROTATE_180;
    const IppiSize turnedSize = onItsSide ? IppiSize{size.height, size.width} : size;
    bench::compare(
        {"RotateImageWithIPP", std::to_string(depth) + " bit by " + std::to_string(90 * (code + 1)), size, depth / 8},
        [page, angle] {
            KVIMG* turned = nullptr;
            RotateImageWithIPP(&page->record, &page->pointer, &turned, angle);
            const opcv::RecordPtr owner(turned);
        },
        bench::openCV([page, turnedSize, depth, code] {
            opcv::RecordPtr record;
            opcv::createRecord({0, 0, turnedSize.height, turnedSize.width}, static_cast<unsigned char>(depth), record);
            cv::Mat to = viewOf(*record);
            cv::rotate(viewOf(page->record), to, code);
        }));
}

void compareTurns() {
    for (const IppiSize size : bench::sizes())
        for (const int depth : {8, 24, 32})
            for (const int code : {cv::ROTATE_90_CLOCKWISE, cv::ROTATE_180, cv::ROTATE_90_COUNTERCLOCKWISE})
                compareTurn(size, depth, code);
}

const bench::Goals goals({
    {"RotateImageWithIPP", "8 bit by 90", 0.31},
    {"RotateImageWithIPP", "8 bit by 180", 0.16},
    {"RotateImageWithIPP", "8 bit by 270", 0.3},
    {"RotateImageWithIPP", "24 bit by 90", 0.4},
    {"RotateImageWithIPP", "24 bit by 180", 0.45},
    {"RotateImageWithIPP", "24 bit by 270", 0.5},
});

const bench::Registration registration("Quarter turns", compareTurns);

}    // namespace
