// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Discrete cosine transform of a square table, taken as one row of all its values.
#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <opencv2/core.hpp>
#include <vector>

#include "OPCV_dlib.h"

namespace {

struct Line {
    double* values;
    int count;
};

// OpenCV transforms even lengths only. Odd ones are computed by the definition. With N values:
//     forward:  X[k] = s(k) * sum over j of x[j] * cos(pi * k * (2j + 1) / 2N),    s(0) = sqrt(1/N), s(k) = sqrt(2/N)
//     inverse:  x[j] = sum over k of s(k) * X[k] * cos(pi * k * (2j + 1) / 2N)
void transformOddLength(Line line, bool inverse) {
    const auto n = static_cast<size_t>(line.count);
    const size_t period = std::max<size_t>(4 * n, 1);    // of the cosine, in steps of pi / 2N
    std::vector<double> cosines(period);
    for (size_t i = 0; i < period; ++i)
        cosines[i] = std::cos(CV_PI * static_cast<double>(i) / (2.0 * static_cast<double>(n)));
    const double firstScale = std::sqrt(1.0 / static_cast<double>(n));
    const double scale = std::sqrt(2.0 / static_cast<double>(n));
    const auto basis = [&](size_t k, size_t j) {
        return (k == 0 ? firstScale : scale) * cosines[k * (2 * j + 1) % period];
    };

    std::vector<double> transformed(n);
    for (size_t to = 0; to < n; ++to)
        for (size_t from = 0; from < n; ++from)
            transformed[to] += line.values[from] * (inverse ? basis(from, to) : basis(to, from));
    std::copy(transformed.begin(), transformed.end(), line.values);
}

void transform(Line line, bool inverse) {
    if (line.count % 2 != 0) return transformOddLength(line, inverse);
    cv::Mat view(1, line.count, CV_64FC1, line.values);
    cv::dct(view, view, cv::DCT_ROWS | (inverse ? cv::DCT_INVERSE : 0));
}

// Whether the rows of the table are already contiguous.
bool isOneLine(double* const* rows, int n) {
    for (int row = 1; row < n; ++row)
        if (rows[row] != rows[row - 1] + n) return false;
    return true;
}

}    // namespace

void ddct(int direction, double** rows, int n) {
    const int64_t count = int64_t{n} * n;
    if (!rows || n <= 0 || count > INT_MAX || std::find(rows, rows + n, nullptr) != rows + n) return;
    const bool inverse = direction < 0;
    if (isOneLine(rows, n)) return transform({rows[0], static_cast<int>(count)}, inverse);

    std::vector<double> values;
    values.reserve(static_cast<size_t>(count));
    for (int row = 0; row < n; ++row) values.insert(values.end(), rows[row], rows[row] + n);
    transform({values.data(), static_cast<int>(count)}, inverse);
    for (int row = 0; row < n; ++row) std::copy_n(values.begin() + ptrdiff_t{row} * n, n, rows[row]);
}
