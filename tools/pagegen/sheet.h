// The page that pagegen draws, step by step.
#pragma once

#include <opencv2/core.hpp>

constexpr int kSheetDpi = 300;

// An A4 sheet at 300 dpi, in red, green, blue: a title, text and a picture on paper. Sharp, straight and clean.
cv::Mat drawSheet();

// The sheet turned clockwise for a positive skew, on the dark lid of the scanner.
cv::Mat skewed(const cv::Mat& sheet, double degrees);

// How much of the lamp's light reaches a place on the page: less towards the edges.
double lightAt(cv::Point place, cv::Size page);

// Light that falls off towards the edges, and the noise of a sensor: the same for all channels of a pixel, with a standard
// deviation of `sigma` levels.
void shadeAndAddNoise(cv::Mat& page, unsigned seed, double sigma = 5);
