// The frame of every entry point that runs OpenCV: views over the caller's memory on the way in, one copy on the way
// out, and the translation between the two kinds of status.
#pragma once

#include <opencv2/core.hpp>

#include "OPCV_dlib.h"

namespace Tools {

IppStatus OSErrToIppStatus(OSErr err);

// Not the inverse of the above: every status that has no OSErr of its own is a parameter error.
OSErr IppStatusToOSErr(IppStatus status);

// A header over `data`: `height` rows of step / pixel size columns. The pitch is that many pixels, so that a step which
// is no multiple of the pixel size moves each further row by the remainder.
OSErr CreateImageMat(void* data, int step, int height, int type, cv::Mat& out);

OSErr CutImageMat(const cv::Mat& src, const cv::Rect& r, cv::Mat& out);

OSErr CreateAndCutImageMat(void* data, int step, const cv::Rect& r, int type, cv::Mat& out);

// Copies from `src` at `srcOfs` to `dst` at `dstOfs`; the size is clipped to what `src` holds, never to `dst`.
OSErr CopyImageMatData(const cv::Mat& src, const cv::Point& srcOfs, void* dst, int dstStep, const cv::Point& dstOfs,
                       cv::Size size);

// A header over a dense array, row after row.
OSErr CreateKernelMat(void* data, const IppiSize& size, int type, cv::Mat& out);

// A kernel for OpenCV's correlation that makes it a convolution: turned by 180 degrees, in a matrix with odd sides. An
// even kernel lies at its bottom right, behind a row or column of zeros. D is the matrix depth code of T.
template <typename T, unsigned D>
OSErr CreateKernelMatReverse(const T* kernel, const IppiSize& size, cv::Mat& out);

}    // namespace Tools
