// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Measurements on pages.
#pragma once

#include <cstdint>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

std::string fixed(double value, int digits);

// "1.25 | 33.1 dB": the mean absolute error and the PSNR.
std::string errorCells(const cv::Mat& page, const cv::Mat& clean);

// The page with one bit per pixel, in rows of whole 32-bit words.
std::vector<uint8_t> reducedToBits(const cv::Mat& grey, int& step);

// The angle by which a page is turned clockwise, as measured by Leptonica from its lines of text.
double skewOf(const cv::Mat& page);
