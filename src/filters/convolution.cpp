// Convolution of a region with a caller's kernel.
//
// OpenCV computes correlations, so the kernel is turned by 180 degrees first. A turned kernel has odd sides and its
// centre as the anchor; the caller's anchor only determines where the source region begins:
//
//     first column of the view = anchor.x - 2 * half    (half = kernel width / 2, rows likewise)
//     first column of the region in the result = half
//
// The library's kernels filter 8-bit and 16-bit signed pixels with kernels of moderate size directly from source to
// destination; OpenCV filters everything else. Both give the same bytes.
#include <climits>
#include <opencv2/imgproc.hpp>

#include "core/Tools.h"
#include "core/region.h"
#include "core/result_matrix.h"
#include "filters/convolution_kernels.h"
#include "filters/fused_sums.h"

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

// With this number of cells or more, OpenCV may use a Fourier transform, which rounds differently, if a view is as wide
// as its rows.
constexpr size_t kFewestTransformed = 50;

bool mayBeTransformed(const cv::Mat& view, const cv::Mat& kernel) {
    const bool wholeRows = static_cast<size_t>(view.cols) * view.elemSize() == view.step;
    return wholeRows && kernel.total() >= kFewestTransformed;
}

bool hasDirectKernel(int type) { return type == CV_8UC1 || type == CV_8UC3 || type == CV_8UC4 || type == CV_16SC1; }

filters::Taps tapsOf(const cv::Mat& kernel, int channels) {
    filters::Taps taps;
    taps.rows = kernel.rows;
    taps.reach = (kernel.cols - 1) * channels;
    for (int row = 0; row < kernel.rows; ++row)
        for (int column = 0; column < kernel.cols; ++column) {
            const float weight = kernel.at<float>(row, column);
            if (weight == 0) continue;
            taps.taps[static_cast<size_t>(taps.count++)] = {row, column * channels, {weight, weight, weight}};
        }
    return taps;
}

void filterDirectly(const cv::Mat& view, const cv::Mat& kernel, cv::Mat& region) {
    const filters::Taps taps = tapsOf(kernel, view.channels());
    const filters::Shape shape = {region.cols * region.channels(), region.rows};
    const auto srcStep = static_cast<ptrdiff_t>(view.step);
    const auto dstStep = static_cast<ptrdiff_t>(region.step);
    if (view.depth() == CV_8U)
        filters::convolve8u(view.ptr<uint8_t>(), srcStep, region.ptr<uint8_t>(), dstStep, shape, taps);
    else
        filters::convolve16s(view.ptr<int16_t>(), srcStep, region.ptr<int16_t>(), dstStep, shape, taps);
}

// Without BORDER_ISOLATED, OpenCV reads the pixels around a view, even past the caller's last row. With it, OpenCV
// treats every view as one that is as wide as its rows and may use its Fourier transform, so only small kernels set it.
// The border itself never affects the region.
int borderFor(const cv::Mat& kernel) {
    return kernel.total() < kFewestTransformed ? cv::BORDER_REFLECT_101 | cv::BORDER_ISOLATED : cv::BORDER_REFLECT_101;
}

bool hasIntegers(const cv::Mat& m) { return m.depth() == CV_8U || m.depth() == CV_16U || m.depth() == CV_16S; }

// OpenCV converts sums to int; if one is out of range, its result depends on the processor. Here it saturates.
void saturateBeyondInts(const cv::Mat& view, const cv::Mat& kernel, cv::Mat& filtered) {
    constexpr double kFirstBeyond = 2147483648.0;
    constexpr double kLargestPixel = 65535;
    if (!hasIntegers(view) || cv::norm(kernel, cv::NORM_L1) * kLargestPixel < kFirstBeyond) return;
    ResultMatrix sums;
    cv::filter2D(view, sums, CV_32F, kernel, cv::Point(-1, -1), 0.0, borderFor(kernel));
    const cv::Mat flatSums = sums.reshape(1);
    cv::Mat pixels = filtered.reshape(1);
    ResultMatrix beyond;
    cv::compare(flatSums, kFirstBeyond, beyond, cv::CMP_GE);
    pixels.setTo(view.depth() == CV_8U ? UCHAR_MAX : view.depth() == CV_16S ? SHRT_MAX : USHRT_MAX, beyond);
    cv::compare(flatSums, -kFirstBeyond, beyond, cv::CMP_LT);
    pixels.setTo(view.depth() == CV_16S ? SHRT_MIN : 0, beyond);
}

OSErr filterWithOpenCV(const cv::Mat& view, const cv::Mat& kernel, const IppiSize& roi, const Target& target) {
    // OpenCV has no filter for 16-bit floats. With small kernels it throws; with large ones and several channels it
    // calls through a null pointer.
    if (view.depth() == CV_16F && view.channels() > 1)
        CV_Error(cv::Error::StsNotImplemented, "no convolution of several channels of 16-bit floats");
    ResultMatrix filtered;
    const cv::Point centre(-1, -1);
    cv::filter2D(view, filtered, -1, kernel, centre, 0.0, borderFor(kernel));
    if (!filtered.data) return memFullErr;
    saturateBeyondInts(view, kernel, filtered);
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

    if (hasDirectKernel(view.type()) && kernel.total() <= filters::Taps::kMost && !mayBeTransformed(view, kernel) &&
        !opcv::overlap(view, region) && filters::sumsAsOpenCVDoes()) {
        filterDirectly(view, kernel, region);
        return noErr;
    }
    return filterWithOpenCV(view, kernel, roi, target);
}

OSErr filter(const Source& source, const Target& target, const IppiSize& roi, const int* kernel,
             const IppiSize& kernelSize, const IppiPoint& anchor, int divisor) {
    if (!source.pixels || divisor == 0) return paramErr;

    ResultMatrix turned;
    if (const OSErr err = Tools::CreateKernelMatReverse<int, CV_32S>(kernel, kernelSize, turned)) return err;
    ResultMatrix weights;
    turned.convertTo(weights, CV_32F);
    if (!weights.data) return memFullErr;
    weights.convertTo(weights, CV_32F, 1.0 / divisor);
    return convolve(source, target, roi, weights, anchor);
}

OSErr filter32f(const Source& source, const Target& target, const IppiSize& roi, const float* kernel,
                const IppiSize& kernelSize, const IppiPoint& anchor) {
    if (!source.pixels) return paramErr;

    ResultMatrix turned;
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
