// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Shared by all entry points that call OpenCV: views over the caller's memory, one copy of the result, and the
// translation between the two kinds of status.
#pragma once

#include <opencv2/core.hpp>

#include "OPCV_dlib.h"

namespace Tools {

IppStatus OSErrToIppStatus(OSErr err);

// Not the inverse of the function above: every status without a corresponding OSErr becomes paramErr.
OSErr IppStatusToOSErr(IppStatus status);

// A header over `data`: `height` rows of step / pixel size columns. The pitch is that many pixels, so if the step is
// not a multiple of the pixel size, each row starts that remainder earlier than the row before it.
OSErr CreateImageMat(void* data, int step, int height, int type, cv::Mat& out);

OSErr CutImageMat(const cv::Mat& src, const cv::Rect& r, cv::Mat& out);

OSErr CreateAndCutImageMat(void* data, int step, const cv::Rect& r, int type, cv::Mat& out);

// Copies from `src` at `srcOfs` to `dst` at `dstOfs`; the size is clipped to `src`, never to `dst`.
OSErr CopyImageMatData(const cv::Mat& src, const cv::Point& srcOfs, void* dst, int dstStep, const cv::Point& dstOfs,
                       cv::Size size);

// A header over a dense array, row after row.
OSErr CreateKernelMat(void* data, const IppiSize& size, int type, cv::Mat& out);

// A kernel with which OpenCV's correlation becomes a convolution: turned by 180 degrees, in a matrix with odd sides. An
// even kernel is at the bottom right of it, after a row or column of zeros. D is the matrix depth code of T.
template <typename T, unsigned D>
OSErr CreateKernelMatReverse(const T* kernel, const IppiSize& size, cv::Mat& out);

}    // namespace Tools
