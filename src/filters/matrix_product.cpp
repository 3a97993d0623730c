// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Single-precision matrix product with the arguments of CBLAS, computed by OpenCV.
#include <climits>
#include <cstdint>
#include <opencv2/core.hpp>

#include "core/Tools.h"
#include "core/result_matrix.h"

namespace {

constexpr int kRowMajor = 101;         // every other value: column-major
constexpr int kNotTransposed = 111;    // every other value: transposed

OSErr viewOf(const float* elements, int leadingDimension, int width, int height, cv::Mat& view) {
    const int64_t step = int64_t{leadingDimension} * static_cast<int64_t>(sizeof(float));
    if (step > INT_MAX || step < INT_MIN) return paramErr;
    return Tools::CreateAndCutImageMat(const_cast<float*>(elements), static_cast<int>(step),
                                       cv::Rect(0, 0, width, height), CV_32FC1, view);
}

struct Operand {
    const float* elements;
    int leadingDimension;
    bool transposed;
};

// The operand as a `height` x `width` matrix, transposed if necessary.
OSErr matrixOf(const Operand& operand, int width, int height, cv::Mat& matrix) {
    if (!operand.transposed) return viewOf(operand.elements, operand.leadingDimension, width, height, matrix);
    cv::Mat stored;
    if (const OSErr err = viewOf(operand.elements, operand.leadingDimension, height, width, stored)) return err;
    cv::transpose(stored, matrix);
    return noErr;
}

}    // namespace

void OPCV_cblas_sgemm(int order, int transA, int transB, int M, int N, int K, float alpha, const float* A, int lda,
                      const float* B, int ldb, float beta, float* C, int ldc) {
    if (!A || !B || !C) return;

    const Operand a = {A, lda, transA != kNotTransposed};
    const Operand b = {B, ldb, transB != kNotTransposed};
    opcv::ResultMatrix left;
    opcv::ResultMatrix right;
    cv::Mat product;
    if (order == kRowMajor) {
        if (viewOf(C, ldc, N, M, product) || matrixOf(a, K, M, left) || matrixOf(b, N, K, right)) return;
    } else {
        // Column-major storage read as rows is the transpose: C' = B' x A'.
        if (viewOf(C, ldc, M, N, product) || matrixOf(a, M, K, right) || matrixOf(b, K, N, left)) return;
    }
    cv::gemm(left, right, alpha, product, beta, product);
}
