// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// OpenCV's images are blue, green, red; records are red, green, blue. A matrix can refer to the pixels of a record, but
// the channels have to be swapped once.
#include <OPCV_dlib.h>

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

int main() {
    const cv::Mat orange(8, 8, CV_8UC3, cv::Scalar(0, 128, 255));    // blue, green, red

    const KVRect all = {0, 0, orange.rows, orange.cols};
    KVIMG* page = nullptr;
    if (CreateNewKVIMGPtr(&page, &all, 24) != noErr || !page) return 1;
    cv::Mat view(page->height, page->width, CV_8UC3, page->data, static_cast<size_t>(page->rowBytes));
    cv::cvtColor(orange, view, cv::COLOR_BGR2RGB);

    const bool redFirst = page->data[0] == 255 && page->data[1] == 128 && page->data[2] == 0;
    DisposeKVIMG(page);
    return redFirst ? 0 : 2;
}
