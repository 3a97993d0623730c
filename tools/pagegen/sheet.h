// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The page that pagegen draws, step by step.
#pragma once

#include <opencv2/core.hpp>

constexpr int kSheetDpi = 300;

// An A4 sheet at 300 dpi, in red, green, blue: a title, text and a picture, or more text, on paper. Sharp, straight and
// clean.
cv::Mat drawSheet(bool picture = true);

// The sheet turned clockwise for a positive skew, on the dark lid of the scanner.
cv::Mat skewed(const cv::Mat& sheet, double degrees);

// The illumination at a position on the page, which decreases towards the edges.
double lightAt(cv::Point place, cv::Size page);

// Applies illumination that decreases towards the edges, and sensor noise with a standard deviation of `sigma` levels,
// the same for all channels of a pixel.
void shadeAndAddNoise(cv::Mat& page, unsigned seed, double sigma = 5);
