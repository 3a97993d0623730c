// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "measures.h"

#include <OPCV_dlib.h>

#include <cstdio>
#include <memory>
#include <new>
#include <opencv2/core.hpp>
#include <stdexcept>

#include <leptonica/allheaders.h>

#include "records.h"

namespace {

double meanAbsoluteError(const cv::Mat& a, const cv::Mat& b) {
    return cv::norm(a, b, cv::NORM_L1) / (static_cast<double>(a.total()) * a.channels());
}

}    // namespace

std::string fixed(double value, int digits) {
    char text[32];
    std::snprintf(text, sizeof text, "%.*f", digits, value);
    return text;
}

std::string errorCells(const cv::Mat& page, const cv::Mat& clean) {
    return fixed(meanAbsoluteError(page, clean), 2) + " | " + fixed(cv::PSNR(page, clean), 1) + " dB";
}

std::vector<uint8_t> reducedToBits(const cv::Mat& grey, int& step) {
    step = (grey.cols + 31) / 32 * 4;
    std::vector<uint8_t> bits(static_cast<size_t>(step) * static_cast<size_t>(grey.rows), 0xFF);
    require(IPPShare_ippiReduceBits_8u1u_C1R(grey.data, static_cast<int>(grey.step[0]), bits.data(), step, 0,
                                             {grey.cols, grey.rows}, 0, 0, 0, 127),
            "reducing to 1 bit");
    return bits;
}

double skewOf(const cv::Mat& page) {
    int step = 0;
    const std::vector<uint8_t> bits = reducedToBits(greyOf(page), step);
    const std::unique_ptr<PIX, void (*)(PIX*)> pix(pixCreate(page.cols, page.rows, 1), [](PIX* p) { pixDestroy(&p); });
    if (!pix) throw std::bad_alloc();
    uint32_t* to = pixGetData(pix.get());
    // In Leptonica a set bit is black, and the leftmost pixel is the most significant bit of a word.
    for (size_t i = 0; i < bits.size(); i += 4)
        *to++ = ~(uint32_t{bits[i]} << 24 | uint32_t{bits[i + 1]} << 16 | uint32_t{bits[i + 2]} << 8 | bits[i + 3]);
    float turnBack = 0;
    float confidence = 0;
    if (pixFindSkewSweepAndSearch(pix.get(), &turnBack, &confidence, 2, 1, 5, 1, 0.01F) != 0)
        throw std::runtime_error("no skew found");
    return -static_cast<double>(turnBack);
}
