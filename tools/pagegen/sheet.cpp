// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "sheet.h"

#include <cmath>
#include <opencv2/imgproc.hpp>
#include <random>

namespace {

constexpr int kWidth = 2480;
constexpr int kHeight = 3508;
constexpr int kMargin = 260;

const char* const kText[] = {
    "A page that leaves the feeder is never quite straight. One roller",
    "grips a little earlier than the other, the sheet turns by a degree",
    "or two, and every line of text runs downhill. Nobody minds at first.",
    "Then the reader of the archive searches for a word, and the word is",
    "not found, because the letters stood on a slope when they were read.",
    "Straightening is cheap: find the angle at which the rows of ink and",
    "the rows of paper between them are most distinct, and turn the page",
    "back by that angle. What comes in from outside the sheet is painted",
    "white, so that no black wedge remains at the corners of the picture.",
    "The light of a scanner falls off towards the edges, and its sensor",
    "adds a little noise to every dot. Both stay in this picture, so that",
    "what is shown here is what a real page would show.",
};

void drawText(cv::Mat& page, int top, int lines, int first) {
    constexpr int kLeading = 74;
    constexpr int kLines = sizeof(kText) / sizeof(kText[0]);
    for (int i = 0; i < lines; ++i)
        cv::putText(page, kText[(first + i) % kLines], {kMargin, top + i * kLeading}, cv::FONT_HERSHEY_COMPLEX, 1.62,
                    cv::Scalar(38, 34, 36), 3, cv::LINE_AA);
}

// Hills under a low sun.
void drawPicture(cv::Mat picture) {
    for (int y = 0; y < picture.rows; ++y)
        picture.row(y).setTo(
            cv::Scalar(250 - 70.0 * y / picture.rows, 200 - 60.0 * y / picture.rows, 150 + 60.0 * y / picture.rows));
    cv::circle(picture, {picture.cols * 2 / 3, picture.rows / 2}, picture.rows / 6, cv::Scalar(255, 235, 170),
               cv::FILLED, cv::LINE_AA);
    for (int hill = 0; hill < 4; ++hill) {
        const cv::Scalar colour(120 - 24 * hill, 150 - 26 * hill, 110 - 22 * hill);
        for (int x = 0; x < picture.cols; ++x) {
            const double wave = std::sin(x * (0.004 + 0.002 * hill) + 1.7 * hill) + 0.4 * std::sin(x * 0.013 + hill);
            const int y = static_cast<int>(picture.rows * (0.45 + 0.13 * hill) + wave * picture.rows * 0.07);
            cv::line(picture, {x, y}, {x, picture.rows - 1}, colour);
        }
    }
    cv::rectangle(picture, {0, 0}, {picture.cols - 1, picture.rows - 1}, cv::Scalar(60, 55, 55), 4);
}

}    // namespace

cv::Mat drawSheet(bool picture) {
    cv::Mat page(kHeight, kWidth, CV_8UC3, cv::Scalar(248, 245, 236));
    cv::putText(page, "ON STRAIGHT LINES", {kMargin, 420}, cv::FONT_HERSHEY_TRIPLEX, 4.4, cv::Scalar(150, 38, 40), 8,
                cv::LINE_AA);
    cv::line(page, {kMargin, 480}, {kWidth - kMargin, 480}, cv::Scalar(60, 55, 55), 4, cv::LINE_AA);
    if (!picture) {
        drawText(page, 610, 36, 0);
        return page;
    }
    drawText(page, 610, 14, 0);
    drawPicture(page(cv::Rect(kMargin, 1700, kWidth - 2 * kMargin, 760)));
    drawText(page, 2590, 9, 2);
    return page;
}

cv::Mat skewed(const cv::Mat& sheet, double degrees) {
    const cv::Point2f centre(static_cast<float>(sheet.cols) / 2, static_cast<float>(sheet.rows) / 2);
    const cv::Mat matrix = cv::getRotationMatrix2D(centre, -degrees, 1.0);
    cv::Mat page;
    cv::warpAffine(sheet, page, matrix, sheet.size(), cv::INTER_CUBIC, cv::BORDER_CONSTANT, cv::Scalar(58, 56, 60));
    return page;
}

double lightAt(cv::Point place, cv::Size page) {
    const double dx = 2.0 * place.x / page.width - 1.1;
    const double dy = 2.0 * place.y / page.height - 0.9;
    return 1.0 - 0.10 * dx * dx - 0.06 * dy * dy;
}

void shadeAndAddNoise(cv::Mat& page, unsigned seed, double sigma) {
    std::mt19937 engine(seed);
    std::normal_distribution<double> noise(0, 1);
    for (int y = 0; y < page.rows; ++y) {
        auto* row = page.ptr<cv::Vec3b>(y);
        for (int x = 0; x < page.cols; ++x) {
            const double light = lightAt({x, y}, page.size());
            const double grain = sigma * noise(engine);
            for (int c = 0; c < 3; ++c) row[x][c] = cv::saturate_cast<uchar>(row[x][c] * light + grain);
        }
    }
}
