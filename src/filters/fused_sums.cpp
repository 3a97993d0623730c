#include "filters/fused_sums.h"

#include <opencv2/core/utility.hpp>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/fused_sums.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace {
namespace HWY_NAMESPACE {

bool targetFuses() { return HWY_NATIVE_FMA; }

}    // namespace HWY_NAMESPACE
}    // namespace
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace {
HWY_EXPORT(targetFuses);

// OpenCV's own choice, which `cv::setUseOptimized` controls.
bool openCVFuses() {
    return cv::checkHardwareSupport(CV_CPU_NEON) ||
           (cv::checkHardwareSupport(CV_CPU_AVX2) && cv::checkHardwareSupport(CV_CPU_FMA3));
}

}    // namespace

bool filters::sumsAsOpenCVDoes() { return HWY_DYNAMIC_DISPATCH(targetFuses)() && openCVFuses(); }
#endif    // HWY_ONCE
