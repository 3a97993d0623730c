// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Grey images without lines of text, whose skew nobody can tell or wants to have corrected.
#pragma once

#include <opencv2/core.hpp>
#include <string>
#include <vector>

struct NonPage {
    std::string name;
    cv::Mat image;
};

// Blank sheets, edges of a scan, noise, photographs, maps, patterns; each kind turned by several angles.
std::vector<NonPage> drawNonPages();
