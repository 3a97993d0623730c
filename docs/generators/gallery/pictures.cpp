// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "pictures.h"

#include <opencv2/imgproc.hpp>

namespace {

constexpr int kGap = 10;
constexpr int kCaption = 22;

// A tile with its caption above it.
cv::Mat captioned(const Shot& shot) {
    cv::Mat tile(kCaption + kThumbnailHeight, shot.second.cols, CV_8UC3, cv::Scalar::all(255));
    shot.second.copyTo(tile(cv::Rect(0, kCaption, shot.second.cols, shot.second.rows)));
    cv::rectangle(tile, {0, kCaption, shot.second.cols, shot.second.rows}, cv::Scalar::all(120), 1);
    cv::putText(tile, shot.first, {1, 15}, cv::FONT_HERSHEY_SIMPLEX, 0.42, cv::Scalar::all(20), 1, cv::LINE_AA);
    return tile;
}

}    // namespace

cv::Mat inColour(const cv::Mat& page) {
    if (page.channels() == 3) return page.clone();
    cv::Mat colour;
    cv::cvtColor(page, colour, cv::COLOR_GRAY2RGB);
    return colour;
}

cv::Mat sideBySide(const std::vector<Shot>& shots) {
    std::vector<cv::Mat> tiles;
    const cv::Mat gap(kCaption + kThumbnailHeight, kGap, CV_8UC3, cv::Scalar::all(255));
    for (const Shot& shot : shots) {
        if (!tiles.empty()) tiles.push_back(gap);
        tiles.push_back(captioned(shot));
    }
    cv::Mat picture;
    cv::hconcat(tiles, picture);
    return picture;
}

cv::Mat thumbnail(const cv::Mat& page, const cv::Rect& detail) {
    cv::Mat small;
    const double scale = static_cast<double>(kThumbnailHeight) / page.rows;
    cv::resize(inColour(page), small, cv::Size(static_cast<int>(page.cols * scale), kThumbnailHeight), 0, 0,
               cv::INTER_AREA);
    const cv::Rect frame(static_cast<int>(detail.x * scale) - 2, static_cast<int>(detail.y * scale) - 2,
                         static_cast<int>(detail.width * scale) + 4, static_cast<int>(detail.height * scale) + 4);
    cv::rectangle(small, frame, cv::Scalar(220, 30, 30), 2);
    return small;
}

cv::Mat enlarged(const cv::Mat& page, const cv::Rect& detail) {
    cv::Mat large;
    const double scale = static_cast<double>(kThumbnailHeight) / detail.height;
    cv::resize(inColour(page(detail)), large, cv::Size(), scale, scale, cv::INTER_NEAREST);
    return large;
}

cv::Mat picture(const cv::Rect& detail, const std::vector<Shot>& shots) {
    std::vector<Shot> tiles = {{"page", thumbnail(shots.front().second, detail)}};
    for (const Shot& shot : shots) tiles.emplace_back(shot.first, enlarged(shot.second, detail));
    return sideBySide(tiles);
}
