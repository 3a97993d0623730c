// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include <opencv2/imgproc.hpp>

#include "OPCV_dlib.h"
#include "core/ownership.h"
#include "support.h"

namespace {

cv::Mat viewOf(const KVIMG& record) {
    return {record.height, record.width, CV_8UC(record.depth / 8), record.data, static_cast<size_t>(record.rowBytes)};
}

KVIMG recordOf(const bench::Page& page, int channels) {
    return {const_cast<uint8_t*>(page.data()), 8 * channels, page.size().width, page.size().height, page.step(), 0};
}

opcv::RecordPtr ours(const KVIMG& from, double denominator, double numerator) {
    KVIMG* scaled = nullptr;
    ResizeImageWithIPPEx(&from, &scaled, denominator, numerator);
    return opcv::RecordPtr(scaled);
}

opcv::RecordPtr plain(const KVIMG& from, double denominator, double numerator) {
    const double scale = numerator / denominator;
    opcv::RecordPtr record;
    opcv::createRecord({0, 0, static_cast<int>(scale * from.height), static_cast<int>(scale * from.width)},
                       static_cast<unsigned char>(from.depth), record);
    cv::Mat to = viewOf(*record);
    cv::resize(viewOf(from), to, to.size(), 0, 0, cv::INTER_LINEAR);
    return record;
}

void comparePages(IppiSize size, int channels, int denominator, int numerator) {
    const KVIMG from = recordOf(bench::source(size, channels), channels);
    const IppiSize to = {size.width * numerator / denominator, size.height * numerator / denominator};
    bench::compare(
        {"ResizeImageWithIPPEx",
         std::to_string(8 * channels) + " bit " + std::to_string(denominator) + ":" + std::to_string(numerator), size,
         bench::bytesOf(size, channels), bench::bytesOf(to, channels)},
        [from, denominator, numerator] { ours(from, denominator, numerator); },
        bench::openCV([from, denominator, numerator] { plain(from, denominator, numerator); }),
        [from, denominator, numerator] {
            return cv::norm(viewOf(*ours(from, denominator, numerator)), viewOf(*plain(from, denominator, numerator)),
                            cv::NORM_INF) == 0;
        });
}

// A page scaled by 2 / 3 into a rectangle of the page's size, moved by a few pixels.
void comparePlaced(IppiSize size) {
    const bench::Page& from = bench::source(size, 1);
    bench::Page& to = bench::target(size, 1);
    bench::Page& expected = bench::otherTarget(size, 1);
    const IppiRect all = {0, 0, size.width, size.height};
    const double factor = 2.0 / 3;
    const IppiSize scaledSize = {cvRound(size.width * factor), cvRound(size.height * factor)};
    bench::compare(
        {"OPCV_ippiResizeSqrPixel_8u_C1R", "3:2", size, bench::bytesOf(size, 1), bench::bytesOf(scaledSize, 1)},
        [&from, &to, size, all, factor] {
            OPCV_ippiResizeSqrPixel_8u_C1R(from.data(), size, from.step(), all, to.data(), to.step(), all, factor,
                                           factor, 3, 5, 0, nullptr);
        },
        bench::openCV([&from, &expected, size, factor] {
            const cv::Mat source(size.height, size.width, CV_8UC1, const_cast<uint8_t*>(from.data()),
                                 static_cast<size_t>(from.step()));
            cv::Mat scaled;
            cv::resize(source, scaled, cv::Size(), factor, factor, cv::INTER_LINEAR);
            cv::Mat target(size.height, size.width, CV_8UC1, expected.data(), static_cast<size_t>(expected.step()));
            scaled.copyTo(target(cv::Rect(3, 5, scaled.cols, scaled.rows)));
        }),
        [&to, &expected] { return to.sameRegion(expected); });
}

void compareColour(IppiSize size) {
    const bench::Page& from = bench::source(size, 3);
    const IppiSize half = {size.width / 2 + 1, size.height / 2 + 1};
    bench::Page& to = bench::target(half, 3);
    bench::Page& expected = bench::otherTarget(half, 3);
    bench::compare(
        {"IPPMini_ippiResize_8u_C3R", "about 2:1", size, bench::bytesOf(size, 3), bench::bytesOf(half, 3)},
        [&from, &to, size, half] {
            IPPMini_ippiResize_8u_C3R(from.data(), size, from.step(), {0, 0, size.width, size.height}, to.data(),
                                      to.step(), half, 1, 1, 0);
        },
        bench::openCV([&from, &expected, size, half] {
            const cv::Mat source(size.height, size.width, CV_8UC3, const_cast<uint8_t*>(from.data()),
                                 static_cast<size_t>(from.step()));
            cv::Mat target(half.height, half.width, CV_8UC3, expected.data(), static_cast<size_t>(expected.step()));
            cv::resize(source, target, target.size(), 0, 0, cv::INTER_LINEAR);
        }),
        [&to, &expected] { return to.sameRegion(expected); });
}

void compareResize() {
    for (const IppiSize size : bench::sizes()) {
        for (const int channels : {1, 3, 4}) {
            comparePages(size, channels, 3, 2);
            comparePages(size, channels, 4, 3);
            comparePages(size, channels, 3, 4);
            comparePages(size, channels, 5, 2);
        }
        comparePlaced(size);
        compareColour(size);
    }
}

const bench::Goals goals({
    {"ResizeImageWithIPPEx", "8 bit 3:2", 0.65},
    {"ResizeImageWithIPPEx", "8 bit 4:3", 0.65},
    {"ResizeImageWithIPPEx", "8 bit 3:4", 0.65},
    {"ResizeImageWithIPPEx", "24 bit 3:2", 0.8},
    {"ResizeImageWithIPPEx", "24 bit 4:3", 0.8},
    {"ResizeImageWithIPPEx", "24 bit 3:4", 0.8},
});

const bench::Registration registration("Resize", compareResize);

}    // namespace
