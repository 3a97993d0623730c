// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "records.h"

#include <cstring>
#include <opencv2/imgproc.hpp>
#include <stdexcept>
#include <string>

#include "pagegen/sheet.h"

void require(int status, const char* step) {
    if (status != 0) throw std::runtime_error(std::string(step) + " failed with status " + std::to_string(status));
}

Record recordOf(const cv::Mat& page) {
    const KVRect all = {0, 0, page.rows, page.cols};
    KVIMG* made = nullptr;
    require(CreateNewKVIMGPtr(&made, &all, static_cast<unsigned char>(8 * page.elemSize())), "making a record");
    Record record(made);
    for (int y = 0; y < page.rows; ++y)
        std::memcpy(record->data + ptrdiff_t{y} * record->rowBytes, page.ptr(y),
                    static_cast<size_t>(page.cols) * page.elemSize());
    return record;
}

cv::Mat pageOf(const KVIMG& record) {
    const int type = record.depth == 8 ? CV_8UC1 : CV_8UC3;
    return cv::Mat(record.height, record.width, type, record.data, static_cast<size_t>(record.rowBytes)).clone();
}

cv::Mat greyOf(const cv::Mat& page) {
    if (page.channels() == 1) return page;
    cv::Mat grey;
    cv::cvtColor(page, grey, cv::COLOR_RGB2GRAY);
    return grey;
}

KVImageDescription descriptionOf(const KVIMG& record) {
    return {record.width, record.height, kSheetDpi, kSheetDpi, 0, static_cast<int16_t>(record.depth)};
}
