// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Matrix product and cosine transform, compared with plain loops over the same formula or with OpenCV's call. Their
// sizes are those of matrices, not of pages.
#include <memory>
#include <opencv2/core.hpp>
#include <vector>

#include "OPCV_dlib.h"
#include "support.h"

namespace {

constexpr int kRowMajor = 101;
constexpr int kNoTranspose = 111;

std::vector<float> ramp(int count) {
    std::vector<float> values(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) values[static_cast<size_t>(i)] = static_cast<float>(i % 17) / 4;
    return values;
}

void compareProduct(int n) {
    const auto a = std::make_shared<std::vector<float>>(ramp(n * n));
    const auto b = std::make_shared<std::vector<float>>(ramp(n * n));
    const auto c = std::make_shared<std::vector<float>>(ramp(n * n));
    const auto plain = std::make_shared<std::vector<float>>(ramp(n * n));
    bench::compare(
        {"OPCV_cblas_sgemm", "", {n, n}, static_cast<int>(3 * sizeof(float))},
        [=] {
            OPCV_cblas_sgemm(kRowMajor, kNoTranspose, kNoTranspose, n, n, n, 1, a->data(), n, b->data(), n, 0,
                             c->data(), n);
        },
        bench::openCV([=] {
            cv::Mat to(n, n, CV_32FC1, plain->data());
            cv::gemm(cv::Mat(n, n, CV_32FC1, a->data()), cv::Mat(n, n, CV_32FC1, b->data()), 1, cv::noArray(), 0, to);
        }));
}

// Forward and inverse, so that the values do not change.
void compareCosineTransform(int n) {
    struct Square {
        explicit Square(int side) : values(static_cast<size_t>(side * side), 3.5) {
            for (int y = 0; y < side; ++y) rows.push_back(values.data() + ptrdiff_t{y} * side);
        }
        std::vector<double> values;
        std::vector<double*> rows;
    };
    const auto ours = std::make_shared<Square>(n);
    const auto plain = std::make_shared<Square>(n);
    bench::compare(
        {"ddct", "", {n, n}, static_cast<int>(sizeof(double))},
        [=] {
            ddct(0, ours->rows.data(), n);
            ddct(-1, ours->rows.data(), n);
        },
        bench::openCV([=] {
            cv::Mat view(1, n * n, CV_64FC1, plain->values.data());
            cv::dct(view, view, cv::DCT_ROWS);
            cv::dct(view, view, cv::DCT_ROWS | cv::DCT_INVERSE);
        }));
}

void compareMatrices() {
    const int side = bench::kTile.width;
    compareProduct(side);
    compareCosineTransform(side);
}

const bench::Registration registration("Matrix product and cosine transform", compareMatrices);

}    // namespace
