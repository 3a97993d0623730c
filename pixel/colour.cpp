// Conversion between RGB and YUV, packed and planar.
#include <memory>
#include <opencv2/imgproc.hpp>

#include "OPCV_dlib.h"
#include "pixel/views.h"

namespace {

OSErr convertColour(const unsigned char* pSrc, int srcStep, unsigned char* pDst, int dstStep, IppiSize roi, int code) {
    cv::Mat from;
    if (const OSErr err = viewPacked(pSrc, srcStep, roi, from)) return err;
    cv::Mat to;
    if (const OSErr err = viewPacked(pDst, dstStep, roi, to)) return err;
    cv::cvtColor(from, to, code);
    return noErr;
}

struct PlaneDeleter {
    void operator()(unsigned char* p) const { IPPMini_ippiFree(p); }
};
using PackedBlock = std::unique_ptr<unsigned char, PlaneDeleter>;

// The two steps of a planar conversion answer with an IppStatus, which callers get to see as if it had been an OSErr:
// whatever goes wrong in a step, memory that cannot be had included, is a bad argument.
IppStatus statusOfSteps(IppStatus status) { return Tools::OSErrToIppStatus(static_cast<OSErr>(status)); }

}    // namespace

IppStatus IPPShare_ippiRGBToYUV_8u_C3R(const unsigned char* pSrc, int srcStep, unsigned char* pDst, int dstStep,
                                       IppiSize roiSize) {
    return Tools::OSErrToIppStatus(convertColour(pSrc, srcStep, pDst, dstStep, roiSize, cv::COLOR_RGB2YUV));
}

IppStatus IPPShare_ippiYUVToRGB_8u_C3R(const unsigned char* pSrc, int srcStep, unsigned char* pDst, int dstStep,
                                       IppiSize roiSize) {
    return Tools::OSErrToIppStatus(convertColour(pSrc, srcStep, pDst, dstStep, roiSize, cv::COLOR_YUV2RGB));
}

IppStatus IPPMini_ippiRGBToYUV_8u_C3P3R(const unsigned char* pSrc, int srcStep, unsigned char* const pDst[3],
                                        int dstStep, IppiSize roiSize) {
    int step = 0;
    const PackedBlock packed(IPPMini_ippiMalloc_8u_C3(roiSize.width, roiSize.height, &step));
    if (!packed) return ippStsNoMemErr;
    IppStatus status = IPPShare_ippiRGBToYUV_8u_C3R(pSrc, srcStep, packed.get(), step, roiSize);
    if (status == ippStsNoErr) status = IPPMini_ippiCopy_8u_C3P3R(packed.get(), step, pDst, dstStep, roiSize);
    return statusOfSteps(status);
}

IppStatus IPPMini_ippiYUVToRGB_8u_P3C3R(const unsigned char* const pSrc[3], int srcStep, unsigned char* pDst,
                                        int dstStep, IppiSize roiSize) {
    int step = 0;
    const PackedBlock packed(IPPMini_ippiMalloc_8u_C3(roiSize.width, roiSize.height, &step));
    if (!packed) return ippStsNoMemErr;
    IppStatus status = IPPMini_ippiCopy_8u_P3C3R(pSrc, srcStep, packed.get(), step, roiSize);
    if (status == ippStsNoErr) status = IPPShare_ippiYUVToRGB_8u_C3R(packed.get(), step, pDst, dstStep, roiSize);
    return statusOfSteps(status);
}
