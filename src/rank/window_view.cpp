#include "rank/window_view.h"

#include <climits>
#include <cstdint>
#include <functional>

#include "core/Tools.h"

OSErr viewOfWindows(const void* pSrc, int srcStep, int type, const IppiSize& roi, const IppiSize& mask,
                    const IppiPoint& anchor, cv::Mat& view) {
    const int64_t width = int64_t{roi.width} + mask.width / 2 * 2;
    const int64_t height = int64_t{roi.height} + mask.height / 2 * 2;
    if (width > INT_MAX || height > INT_MAX) return paramErr;
    const int64_t back = int64_t{anchor.y} * srcStep + int64_t{anchor.x} * static_cast<int64_t>(CV_ELEM_SIZE(type));
    auto* origin = const_cast<unsigned char*>(static_cast<const unsigned char*>(pSrc)) - back;
    return Tools::CreateAndCutImageMat(origin, srcStep,
                                       cv::Rect(0, 0, static_cast<int>(width), static_cast<int>(height)), type, view);
}

bool mayOverlap(const cv::Mat& a, const cv::Mat& b) {
    const auto end = [](const cv::Mat& m) { return m.ptr(m.rows - 1) + static_cast<size_t>(m.cols) * m.elemSize(); };
    const std::less<> before;
    return before(a.data, end(b)) && before(b.data, end(a));
}
