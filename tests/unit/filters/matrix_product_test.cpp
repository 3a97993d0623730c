// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include "OPCV_dlib.h"
#include "support/random.h"

namespace {

// A stored matrix with some elements after each row (column, if column-major).
struct Stored {
    Stored(Random& random, bool rowMajor, int rows, int columns)
        : rowMajor(rowMajor), leading((rowMajor ? columns : rows) + random.between(0, 3)) {
        elements.resize(static_cast<size_t>(leading) * static_cast<size_t>(rowMajor ? rows : columns));
        for (float& element : elements) element = static_cast<float>(random.real(-2, 2));
    }

    size_t indexOf(int row, int column) const {
        return static_cast<size_t>(rowMajor ? row * leading + column : column * leading + row);
    }
    double at(int row, int column) const { return elements[indexOf(row, column)]; }

    bool rowMajor;
    int leading;
    std::vector<float> elements;
};

void expectProduct(Random& random, int order, int transA, int transB, int M, int N, int K) {
    const bool rowMajor = order == 101;
    const bool plainA = transA == 111;
    const bool plainB = transB == 111;
    const Stored a(random, rowMajor, plainA ? M : K, plainA ? K : M);
    const Stored b(random, rowMajor, plainB ? K : N, plainB ? N : K);
    Stored c(random, rowMajor, M, N);
    const Stored before = c;
    const auto alpha = static_cast<float>(random.real(-2, 2));
    const float beta = random.chance(30) ? 0 : static_cast<float>(random.real(-2, 2));
    OPCV_cblas_sgemm(order, transA, transB, M, N, K, alpha, a.elements.data(), a.leading, b.elements.data(), b.leading,
                     beta, c.elements.data(), c.leading);
    std::vector<bool> written(c.elements.size());
    for (int i = 0; i < M; ++i)
        for (int j = 0; j < N; ++j) {
            double sum = 0;
            double magnitude = 0;
            for (int k = 0; k < K; ++k) {
                const double term = (plainA ? a.at(i, k) : a.at(k, i)) * (plainB ? b.at(k, j) : b.at(j, k));
                sum += term;
                magnitude += std::abs(term);
            }
            const double expected = alpha * sum + beta * before.at(i, j);
            ASSERT_NEAR(c.at(i, j), expected, 1e-5 * (1 + magnitude))
                << "order " << order << " transposes " << transA << " " << transB << " sizes " << M << " " << N << " "
                << K << " at " << i << "," << j;
            written[c.indexOf(i, j)] = true;
        }
    for (size_t i = 0; i < written.size(); ++i) {
        if (!written[i]) {
            ASSERT_EQ(c.elements[i], before.elements[i]);
        }
    }
}

TEST(MatrixProduct, GivesWhatTheTripleLoopGives) {
    Random random(661);
    for (const int order : {101, 102, 0, 111})
        for (const int transA : {111, 112, 113, 0})
            for (const int transB : {111, 112, 113, 101})
                for (int round = 0; round < 6; ++round) {
                    expectProduct(random, order, transA, transB, random.between(1, 12), random.between(1, 12),
                                  random.between(1, 12));
                    if (HasFatalFailure()) return;
                }
    expectProduct(random, 101, 111, 112, 130, 40, 120);
    expectProduct(random, 102, 112, 111, 33, 140, 101);
}

TEST(MatrixProduct, OneElement) {
    const float a = 3;
    const float b = 5;
    float c = 7;
    OPCV_cblas_sgemm(101, 111, 111, 1, 1, 1, 2, &a, 1, &b, 1, 1, &c, 1);
    EXPECT_EQ(c, 37);
}

TEST(MatrixProduct, BetaZeroDoesNotReadC) {
    const float a = 3;
    const float b = 5;
    float c = std::numeric_limits<float>::quiet_NaN();
    OPCV_cblas_sgemm(101, 111, 111, 1, 1, 1, 1, &a, 1, &b, 1, 0, &c, 1);
    EXPECT_EQ(c, 15);
}

TEST(MatrixProduct, LeavesCAloneWhenAnArgumentIsRefused) {
    const std::vector<float> a(12, 1);
    const std::vector<float> b(12, 1);
    std::vector<float> c(12, 9);
    const std::vector<float> before = c;
    for (const int order : {101, 102})
        for (const int trans : {111, 112}) {
            const auto call = [&](const float* pa, const float* pb, float* pc, int M, int N, int K, int lda, int ldb,
                                  int ldc) {
                OPCV_cblas_sgemm(order, trans, trans, M, N, K, 1, pa, lda, pb, ldb, 1, pc, ldc);
                EXPECT_EQ(c, before);
            };
            call(nullptr, b.data(), c.data(), 3, 3, 3, 3, 3, 3);
            call(a.data(), nullptr, c.data(), 3, 3, 3, 3, 3, 3);
            call(a.data(), b.data(), nullptr, 3, 3, 3, 3, 3, 3);
            for (const int none : {0, -1, INT_MIN}) {
                call(a.data(), b.data(), c.data(), none, 3, 3, 3, 3, 3);
                call(a.data(), b.data(), c.data(), 3, none, 3, 3, 3, 3);
                call(a.data(), b.data(), c.data(), 3, 3, none, 3, 3, 3);
                call(a.data(), b.data(), c.data(), 3, 3, 3, none, 3, 3);
                call(a.data(), b.data(), c.data(), 3, 3, 3, 3, none, 3);
                call(a.data(), b.data(), c.data(), 3, 3, 3, 3, 3, none);
            }
            call(a.data(), b.data(), c.data(), 3, 3, 3, 2, 3, 3);
            call(a.data(), b.data(), c.data(), 3, 3, 3, 3, 2, 3);
            call(a.data(), b.data(), c.data(), 3, 3, 3, 3, 3, 2);
            // 4 x leading dimension would wrap to 12.
            call(a.data(), b.data(), c.data(), 3, 3, 3, (1 << 30) + 3, 3, 3);
            call(a.data(), b.data(), c.data(), 3, 3, 3, 3, (1 << 30) + 3, 3);
            call(a.data(), b.data(), c.data(), 3, 3, 3, 3, 3, (1 << 30) + 3);
            call(a.data(), b.data(), c.data(), 3, 3, 3, 3, 3, INT_MIN + 3);
        }
}

}    // namespace
