#include "scene.h"

#include <opencv2/imgproc.hpp>

#include "pagegen/sheet.h"

cv::Mat drawnPage() {
    cv::Mat page;
    cv::resize(skewed(drawSheet(), 2.3), page, {kPage.width, kPage.height}, 0, 0, cv::INTER_AREA);
    shadeAndAddNoise(page, 1);
    return page;
}

cv::Mat greyOf(const cv::Mat& page) {
    cv::Mat grey;
    cv::cvtColor(page, grey, cv::COLOR_RGB2GRAY);
    return grey;
}
