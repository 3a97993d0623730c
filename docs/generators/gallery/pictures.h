// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The pictures: tiles side by side, each with its caption.
#pragma once

#include <opencv2/core.hpp>
#include <string>
#include <utility>
#include <vector>

using Shot = std::pair<std::string, cv::Mat>;

constexpr int kThumbnailHeight = 240;

cv::Mat inColour(const cv::Mat& page);

cv::Mat sideBySide(const std::vector<Shot>& shots);

// The whole page, reduced, with a red frame around the detail.
cv::Mat thumbnail(const cv::Mat& page, const cv::Rect& detail);

// The detail, with each pixel enlarged to a square.
cv::Mat enlarged(const cv::Mat& page, const cv::Rect& detail);

// The first page with the frame, then the detail of every shot.
cv::Mat picture(const cv::Rect& detail, const std::vector<Shot>& shots);
