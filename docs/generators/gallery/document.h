// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Writes docs/gallery.md and its pictures, or compares them with the existing files.
#pragma once

#include <opencv2/core.hpp>
#include <string>
#include <utility>

class Gallery {
public:
    Gallery(std::string folder, bool check) : folder_(std::move(folder)), check_(check) {}

    void text(const std::string& lines) { text_ += lines; }
    void show(const std::string& name, const std::string& caption, const cv::Mat& rgb);

    // Writes the document; with `check`, returns whether everything is up to date.
    bool finish();

private:
    void differ(const std::string& file);

    std::string folder_;
    std::string text_;
    bool check_;
    bool same_ = true;
};
