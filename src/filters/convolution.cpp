// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Convolution of a region with a caller's kernel.
//
// OpenCV computes correlations, so the kernel is turned by 180 degrees first. A turned kernel has odd sides and its
// centre as the anchor; the caller's anchor only determines where the source region begins:
//
//     first column of the view = anchor.x - 2 * half    (half = kernel width / 2, rows likewise)
//     first column of the region in the result = half
//
// The library's kernels filter pixels of 8-bit and 16-bit integers, in any number of channels, from a copy of the
// source if the destination overlaps it. Their sums are defined to the last bit (convolution_kernels.cpp), so the
// result does not depend on the version of OpenCV. For usual kernels it equals OpenCV's; with 50 or 130 cells or more
// OpenCV may transform the image instead and differ by one. OpenCV filters all other pixel types.
#include <opencv2/imgproc.hpp>
#include <type_traits>

#include "core/Tools.h"
#include "core/region.h"
#include "core/result_matrix.h"
#include "filters/convolution_kernels.h"
#include "filters/source_apart.h"

namespace {

struct Source {
    const void* pixels;
    int step;
    int type;
};

struct Target {
    void* pixels;
    int step;
};

IppiSize halfOf(const cv::Mat& kernel) { return opcv::halfOf(IppiSize{kernel.cols, kernel.rows}); }

OSErr viewUnderKernel(const Source& source, const IppiSize& roi, const cv::Mat& kernel, const IppiPoint& anchor,
                      cv::Mat& view) {
    const IppiSize half = halfOf(kernel);
    return opcv::Region(source.pixels, source.step, source.type, roi)
        .withMargin(half)
        .movedBy(int64_t{anchor.x} - half.width, int64_t{anchor.y} - half.height)
        .view(view);
}

bool hasDirectKernel(const cv::Mat& view) {
    return view.depth() == CV_8U || view.depth() == CV_16U || view.depth() == CV_16S;
}

OSErr filterDirectly(const filters::SourceApart& view, const cv::Mat& kernel, cv::Mat& region) {
    const filters::TurnedKernel turned = {kernel.ptr<float>(), kernel.cols, kernel.rows};
    const auto run = [&](const auto& convolve, auto* dst) {
        const auto* src = reinterpret_cast<const std::remove_pointer_t<decltype(dst)>*>(view.rows());
        return convolve({src, view.step(), dst, static_cast<ptrdiff_t>(region.step), region.cols, region.rows,
                         region.channels()},
                        turned)
                   ? OSErr{noErr}
                   : OSErr{memFullErr};
    };
    switch (region.depth()) {
        case CV_8U: return run(filters::convolve8u, region.ptr<uint8_t>());
        case CV_16U: return run(filters::convolve16u, region.ptr<uint16_t>());
        default: return run(filters::convolve16s, region.ptr<int16_t>());
    }
}

// With this number of cells or more, OpenCV may use a Fourier transform.
constexpr size_t kFewestTransformed = 50;

// Without BORDER_ISOLATED, OpenCV reads the pixels around a view, even past the caller's last row. With it, OpenCV
// treats every view as one that is as wide as its rows and may use its Fourier transform, so only small kernels set it.
// The border itself never affects the region.
int borderFor(const cv::Mat& kernel) {
    return kernel.total() < kFewestTransformed ? cv::BORDER_REFLECT_101 | cv::BORDER_ISOLATED : cv::BORDER_REFLECT_101;
}

OSErr filterWithOpenCV(const cv::Mat& view, const cv::Mat& kernel, const IppiSize& roi, const Target& target) {
    // OpenCV has no filter for 16-bit floats. With small kernels it throws; with large ones and several channels it
    // calls through a null pointer.
    if (view.depth() == CV_16F && view.channels() > 1)
        CV_Error(cv::Error::StsNotImplemented, "no convolution of several channels of 16-bit floats");
    opcv::ResultMatrix filtered;
    const cv::Point centre(-1, -1);
    cv::filter2D(view, filtered, -1, kernel, centre, 0.0, borderFor(kernel));
    if (!filtered.data) return memFullErr;
    const IppiSize half = halfOf(kernel);
    return Tools::CopyImageMatData(filtered, cv::Point(half.width, half.height), target.pixels, target.step,
                                   cv::Point(0, 0), cv::Size(roi.width, roi.height));
}

// `kernel` is a turned float kernel.
OSErr convolve(const Source& source, const Target& target, const IppiSize& roi, const cv::Mat& kernel,
               const IppiPoint& anchor) {
    cv::Mat view;
    if (const OSErr err = viewUnderKernel(source, roi, kernel, anchor, view)) return err;
    cv::Mat region;
    if (const OSErr err = opcv::viewOf(target.pixels, target.step, source.type, roi, region)) return err;

    if (!hasDirectKernel(view)) return filterWithOpenCV(view, kernel, roi, target);
    const filters::SourceApart apart(view, region);
    return apart.rows() ? filterDirectly(apart, kernel, region) : OSErr{memFullErr};
}

OSErr filter(const Source& source, const Target& target, const IppiSize& roi, const int* kernel,
             const IppiSize& kernelSize, const IppiPoint& anchor, int divisor) {
    if (!source.pixels || divisor == 0) return paramErr;

    opcv::ResultMatrix turned;
    if (const OSErr err = Tools::CreateKernelMatReverse<int, CV_32S>(kernel, kernelSize, turned)) return err;
    opcv::ResultMatrix weights;
    turned.convertTo(weights, CV_32F);
    if (!weights.data) return memFullErr;
    weights.convertTo(weights, CV_32F, 1.0 / divisor);
    return convolve(source, target, roi, weights, anchor);
}

OSErr filter32f(const Source& source, const Target& target, const IppiSize& roi, const float* kernel,
                const IppiSize& kernelSize, const IppiPoint& anchor) {
    if (!source.pixels) return paramErr;

    opcv::ResultMatrix turned;
    if (const OSErr err = Tools::CreateKernelMatReverse<float, CV_32F>(kernel, kernelSize, turned)) return err;
    return convolve(source, target, roi, turned, anchor);
}

}    // namespace

IppStatus ippiFilter(const void* src, int srcStep, int type, void* dst, int dstStep, const IppiSize& roi,
                     const int* kernel, const IppiSize& kernelSize, const IppiPoint& anchor, int divisor) {
    return Tools::OSErrToIppStatus(
        filter({src, srcStep, type}, {dst, dstStep}, roi, kernel, kernelSize, anchor, divisor));
}

IppStatus ippiFilter32f(const void* src, int srcStep, int type, void* dst, int dstStep, const IppiSize& roi,
                        const float* kernel, const IppiSize& kernelSize, const IppiPoint& anchor) {
    return Tools::OSErrToIppStatus(filter32f({src, srcStep, type}, {dst, dstStep}, roi, kernel, kernelSize, anchor));
}

IppStatus IPPShare_ippiFilter_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst, int dstStep,
                                     IppiSize dstRoiSize, const int* pKernel, IppiSize kernelSize, IppiPoint anchor,
                                     int divisor) {
    return ippiFilter(pSrc, srcStep, CV_8UC1, pDst, dstStep, dstRoiSize, pKernel, kernelSize, anchor, divisor);
}

IppStatus IPPShare_ippiFilter_8u_C3R(const unsigned char* pSrc, int srcStep, unsigned char* pDst, int dstStep,
                                     IppiSize dstRoiSize, const int* pKernel, IppiSize kernelSize, IppiPoint anchor,
                                     int divisor) {
    return ippiFilter(pSrc, srcStep, CV_8UC3, pDst, dstStep, dstRoiSize, pKernel, kernelSize, anchor, divisor);
}

IppStatus IPPShare_ippiFilter_16s_C1R(const short* pSrc, int srcStep, short* pDst, int dstStep, IppiSize dstRoiSize,
                                      const int* pKernel, IppiSize kernelSize, IppiPoint anchor, int divisor) {
    return ippiFilter(pSrc, srcStep, CV_16SC1, pDst, dstStep, dstRoiSize, pKernel, kernelSize, anchor, divisor);
}

IppStatus IPPMini_ippiFilter32f_8u_C3R(const unsigned char* pSrc, int srcStep, unsigned char* pDst, int dstStep,
                                       IppiSize dstRoiSize, const float* pKernel, IppiSize kernelSize,
                                       IppiPoint anchor) {
    return ippiFilter32f(pSrc, srcStep, CV_8UC3, pDst, dstStep, dstRoiSize, pKernel, kernelSize, anchor);
}
