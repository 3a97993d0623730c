// Checked entry points of the medians with a fixed window.
#include <cstdint>

#include "OPCV_dlib.h"

namespace opcv {
namespace {

using Kernel = void (*)(const unsigned char*, int, unsigned char*, int, int, int);

// Any source step is accepted: a kernel reads the pixels of the windows, wherever the caller's rows are.
IppStatus filter(Kernel kernel, const unsigned char* pSrc, int srcStep, unsigned char* pDst, int dstStep, IppiSize size,
                 int pixelSize) {
    if (!kernel || !pSrc || !pDst || size.width <= 0 || size.height <= 0) return ippStsBadArgErr;
    if (int64_t{pixelSize} * size.width > dstStep) return ippStsBadArgErr;
    kernel(pSrc, srcStep, pDst, dstStep, size.width, size.height);
    return ippStsNoErr;
}

Kernel crossKernel(int mask) {
    switch (mask) {
        case 33: return FilterMedianCross3x3_8u_C1R;
        case 55: return FilterMedianCross5x5_8u_C1R;
        default: return nullptr;
    }
}

Kernel weightedCenterKernel(int weight) {
    switch (weight) {
        case 3: return FilterMedianWeightedCenter3x3_3_8u_C1R;
        case 5: return FilterMedianWeightedCenter3x3_5_8u_C1R;
        default: return nullptr;
    }
}

Kernel colorKernel(int mask) { return mask == 33 ? FilterMedianColor3x3_8u_C3R : nullptr; }

}    // namespace
}    // namespace opcv

using namespace opcv;

IppStatus IPPShare_ippiFilterMedianCross_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst,
                                                int dstStep, IppiSize dstRoiSize, int mask) {
    return filter(crossKernel(mask), pSrc, srcStep, pDst, dstStep, dstRoiSize, 1);
}

IppStatus IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R(const unsigned char* pSrc, int srcStep, unsigned char* pDst,
                                                            int dstStep, IppiSize dstRoiSize, int weight) {
    return filter(weightedCenterKernel(weight), pSrc, srcStep, pDst, dstStep, dstRoiSize, 1);
}

IppStatus IPPShare_ippiFilterMedianColor_8u_C3R(const unsigned char* pSrc, int srcStep, unsigned char* pDst,
                                                int dstStep, IppiSize dstRoiSize, int mask) {
    return filter(colorKernel(mask), pSrc, srcStep, pDst, dstStep, dstRoiSize, 3);
}
