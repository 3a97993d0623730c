// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "non_pages.h"

#include <cmath>
#include <opencv2/imgproc.hpp>

namespace {

const cv::Size kSize(1240, 1754);    // A4 at 150 dots per inch

cv::Mat sheetOf(double level) { return cv::Mat(kSize, CV_8UC1, cv::Scalar(level)); }

void addNoise(cv::Mat& image, cv::RNG& random, double sigma) {
    cv::Mat noise(image.size(), CV_16SC1);
    random.fill(noise, cv::RNG::NORMAL, 0, sigma);
    cv::add(image, noise, image, cv::noArray(), CV_8U);
}

cv::Mat turned(const cv::Mat& image, double degrees, double outside) {
    const cv::Point2f centre(static_cast<float>(image.cols) / 2, static_cast<float>(image.rows) / 2);
    cv::Mat result;
    cv::warpAffine(image, result, cv::getRotationMatrix2D(centre, -degrees, 1), image.size(), cv::INTER_CUBIC,
                   cv::BORDER_CONSTANT, cv::Scalar(outside));
    return result;
}

cv::Mat blank(cv::RNG& random) {
    cv::Mat sheet = sheetOf(random.uniform(190, 250));
    addNoise(sheet, random, random.uniform(2.0, 8.0));
    return sheet;
}

// A blank sheet on the dark lid.
cv::Mat scanEdges(cv::RNG& random) {
    cv::Mat sheet = turned(sheetOf(240), random.uniform(-5.0, 5.0), 40);
    cv::line(sheet, {0, random.uniform(0, 300)}, {kSize.width, random.uniform(0, 300)}, cv::Scalar(20), 9, cv::LINE_AA);
    addNoise(sheet, random, 4);
    return sheet;
}

cv::Mat specks(cv::RNG& random) {
    cv::Mat sheet = sheetOf(235);
    for (int i = random.uniform(500, 20000); i > 0; --i)
        cv::circle(sheet, {random.uniform(0, kSize.width), random.uniform(0, kSize.height)}, random.uniform(0, 4),
                   cv::Scalar(random.uniform(20, 120)), cv::FILLED);
    return sheet;
}

// Noise on all scales, each with less contrast than the next larger one, as in pictures of nature.
cv::Mat photograph(cv::RNG& random) {
    cv::Mat sum(kSize, CV_32FC1, cv::Scalar(128));
    for (int cell = 512; cell >= 2; cell /= 2) {
        cv::Mat values(kSize.height / cell + 2, kSize.width / cell + 2, CV_32FC1);
        random.fill(values, cv::RNG::NORMAL, 0, 2.2 * std::sqrt(static_cast<double>(cell)));
        cv::resize(values, values, kSize, 0, 0, cv::INTER_CUBIC);
        sum += values;
    }
    cv::Mat picture;
    sum.convertTo(picture, CV_8U);
    return picture;
}

std::vector<cv::Point> wander(cv::RNG& random, int steps) {
    std::vector<cv::Point> points;
    cv::Point2d place(random.uniform(200, kSize.width - 200), random.uniform(200, kSize.height - 200));
    double heading = random.uniform(0.0, 2 * CV_PI);
    for (int i = 0; i < steps; ++i) {
        points.emplace_back(cv::Point(place));
        heading += random.gaussian(0.4);
        place += cv::Point2d(14 * std::cos(heading), 14 * std::sin(heading));
    }
    return points;
}

// Rivers and borders in a frame, and a few names of places.
cv::Mat map(cv::RNG& random) {
    cv::Mat sheet = sheetOf(225);
    for (int i = 0; i < 40; ++i)
        cv::polylines(sheet, wander(random, 80), false, cv::Scalar(random.uniform(20, 120)), random.uniform(1, 4),
                      cv::LINE_AA);
    for (int i = 0; i < 12; ++i)
        cv::putText(sheet, "Oberau", {random.uniform(150, 1000), random.uniform(150, 1600)}, cv::FONT_HERSHEY_COMPLEX,
                    0.7, cv::Scalar(30), 1, cv::LINE_AA);
    cv::rectangle(sheet, {100, 100}, {kSize.width - 100, kSize.height - 100}, cv::Scalar(30), 3, cv::LINE_AA);
    return turned(sheet, random.uniform(-3.0, 3.0), 225);
}

cv::Mat chequers(cv::RNG& random) {
    cv::Mat sheet = sheetOf(230);
    for (int y = 2; y < 14; ++y)
        for (int x = 2; x < 10; ++x)
            if ((x + y) % 2 != 0)
                cv::rectangle(sheet, cv::Rect(x * 100, y * 100, 100, 100), cv::Scalar(40), cv::FILLED);
    return turned(sheet, random.uniform(-8.0, 8.0), 230);
}

cv::Mat rings(cv::RNG& random) {
    cv::Mat sheet = sheetOf(230);
    const cv::Point centre(random.uniform(400, 800), random.uniform(600, 1100));
    for (int radius = 30; radius < 600; radius += random.uniform(8, 40))
        cv::circle(sheet, centre, radius, cv::Scalar(40), 2, cv::LINE_AA);
    return sheet;
}

cv::Mat barcode(cv::RNG& random) {
    cv::Mat sheet = sheetOf(230);
    for (int x = 200; x < 1000;) {
        const int width = random.uniform(3, 14);
        cv::rectangle(sheet, cv::Rect(x, 600, width, 300), cv::Scalar(30), cv::FILLED);
        x += width + random.uniform(4, 16);
    }
    cv::putText(sheet, "4 006381 333931", {300, 950}, cv::FONT_HERSHEY_COMPLEX, 1.2, cv::Scalar(30), 2, cv::LINE_AA);
    return turned(sheet, random.uniform(-5.0, 5.0), 230);
}

// Short strokes that follow a field of directions, as an engraving has them.
cv::Mat hatching(cv::RNG& random) {
    cv::Mat sheet = sheetOf(225);
    const double phase = random.uniform(0.0, 6.0);
    for (int i = 0; i < 9000; ++i) {
        const cv::Point2d from(random.uniform(150, kSize.width - 150), random.uniform(150, kSize.height - 150));
        const double angle = std::sin(from.x * 0.006 + phase) * 1.5 + std::cos(from.y * 0.004 - phase) * 1.5;
        cv::line(sheet, cv::Point(from), cv::Point(from + cv::Point2d(30 * std::cos(angle), 30 * std::sin(angle))),
                 cv::Scalar(40), 1, cv::LINE_AA);
    }
    return sheet;
}

}    // namespace

std::vector<NonPage> drawNonPages() {
    constexpr int kOfEach = 6;
    const std::vector<std::pair<const char*, cv::Mat (*)(cv::RNG&)>> kinds = {
        {"blank sheet", blank}, {"edges of a scan", scanEdges}, {"specks", specks}, {"photograph", photograph},
        {"map", map},           {"chequers", chequers},         {"rings", rings},   {"barcode", barcode},
        {"hatching", hatching},
    };
    std::vector<NonPage> all;
    for (const auto& [name, draw] : kinds)
        for (int i = 1; i <= kOfEach; ++i) {
            cv::RNG random(static_cast<uint64_t>(i));
            all.push_back({std::string(name) + ' ' + std::to_string(i), draw(random)});
        }
    return all;
}
