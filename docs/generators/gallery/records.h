// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Conversion between records and OpenCV matrices. Pages are grey or red, green, blue, without padding.
#pragma once

#include <OPCV_dlib.h>

#include <memory>
#include <opencv2/core.hpp>

struct RecordDeleter {
    void operator()(KVIMG* record) const { DisposeKVIMG(record); }
};
using Record = std::unique_ptr<KVIMG, RecordDeleter>;

// Throws unless the status is 0.
void require(int status, const char* step);

Record recordOf(const cv::Mat& page);

cv::Mat pageOf(const KVIMG& record);

cv::Mat greyOf(const cv::Mat& page);

KVImageDescription descriptionOf(const KVIMG& record);
