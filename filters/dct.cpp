// Discrete cosine transform of a square table, taken as one row of all its values.
#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <opencv2/core.hpp>
#include <vector>

#include "OPCV_dlib.h"

namespace {

// OpenCV transforms even lengths only. For odd ones the definition is summed up: with N values,
//     forward:  X[k] = s(k) * sum over j of x[j] * cos(pi * k * (2j + 1) / 2N),    s(0) = sqrt(1/N), s(k) = sqrt(2/N)
//     inverse:  x[j] = sum over k of s(k) * X[k] * cos(pi * k * (2j + 1) / 2N)
std::vector<double> transformOddLength(const std::vector<double>& values, bool inverse) {
    const size_t n = values.size();
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
            transformed[to] += values[from] * (inverse ? basis(from, to) : basis(to, from));
    return transformed;
}

std::vector<double> transformEvenLength(const std::vector<double>& values, bool inverse) {
    std::vector<double> transformed;
    cv::dct(values, transformed, cv::DCT_ROWS | (inverse ? cv::DCT_INVERSE : 0));
    return transformed;
}

}    // namespace

void ddct(int direction, double** rows, int n) {
    const int64_t count = int64_t{n} * n;
    if (!rows || n <= 0 || count > INT_MAX) return;

    std::vector<double> values;
    values.reserve(static_cast<size_t>(count));
    for (int row = 0; row < n; ++row) {
        if (!rows[row]) return;
        values.insert(values.end(), rows[row], rows[row] + n);
    }
    const bool inverse = direction < 0;
    const std::vector<double> transformed =
        n % 2 == 0 ? transformEvenLength(values, inverse) : transformOddLength(values, inverse);
    for (int row = 0; row < n; ++row) std::copy_n(transformed.begin() + ptrdiff_t{row} * n, n, rows[row]);
}
