// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "document.h"

#include <cstdio>
#include <fstream>
#include <iterator>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <stdexcept>

void Gallery::show(const std::string& name, const std::string& caption, const cv::Mat& rgb) {
    cv::Mat bgr;
    cv::cvtColor(rgb, bgr, cv::COLOR_RGB2BGR);
    const std::string file = folder_ + "/images/" + name + ".png";
    if (check_) {
        const cv::Mat there = cv::imread(file, cv::IMREAD_COLOR);
        if (there.size() != bgr.size() || cv::norm(there, bgr, cv::NORM_INF) != 0) differ(file);
    } else if (!cv::imwrite(file, bgr, {cv::IMWRITE_PNG_COMPRESSION, 9})) {
        throw std::runtime_error(file + " cannot be written");
    }
    text_ += "![" + caption + "](images/" + name + ".png)\n\n";
}

bool Gallery::finish() {
    const std::string file = folder_ + "/gallery.md";
    if (check_) {
        std::ifstream in(file);
        const std::string there{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
        if (there != text_) differ(file);
        return same_;
    }
    std::ofstream out(file);
    out << text_;
    if (!out.flush()) throw std::runtime_error(file + " cannot be written");
    return true;
}

void Gallery::differ(const std::string& file) {
    std::fprintf(stderr, "gallery: %s is out of date\n", file.c_str());
    same_ = false;
}
