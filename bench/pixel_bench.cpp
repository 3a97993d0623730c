// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include <cstdlib>
#include <memory>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "OPCV_dlib.h"
#include "oracle/threshold.h"
#include "support.h"

namespace {

cv::Mat viewOf(const bench::Page& page, int type) {
    return {page.size().height, page.size().width, type, const_cast<uint8_t*>(page.data()),
            static_cast<size_t>(page.step())};
}

short* shorts(uint8_t* p) { return reinterpret_cast<short*>(p); }
const short* shorts(const uint8_t* p) { return reinterpret_cast<const short*>(p); }

// In place, so that runs after the first one find nothing to change. This affects the time of neither kernel nor loop.
void compareThresholds(IppiSize size) {
    bench::Page& bytes = bench::target(size, 1);
    bench::Page& plainBytes = bench::otherTarget(size, 1);
    bench::compare({"IPPShare_ippiThreshold_LTVal_8u_C1IR", "", size, 1},
                   [&bytes, size] { IPPShare_ippiThreshold_LTVal_8u_C1IR(bytes.data(), bytes.step(), size, 128, 128); },
                   {"loop", [&plainBytes, size] {
                        oracle::threshold<uint8_t>(plainBytes.data(), plainBytes.step(), size.width, size.height, 128,
                                                   128);
                    }});
    bench::Page& words = bench::target(size, 2);
    bench::Page& plainWords = bench::otherTarget(size, 2);
    bench::compare(
        {"IPPShare_ippiThreshold_LTVal_16s_C1IR", "", size, 2},
        [&words, size] { IPPShare_ippiThreshold_LTVal_16s_C1IR(shorts(words.data()), words.step(), size, 128, 128); },
        {"loop", [&plainWords, size] {
             oracle::threshold<short>(plainWords.data(), plainWords.step(), size.width, size.height, 128, 128);
         }});
}

void compareFill(IppiSize size) {
    bench::Page& ours = bench::target(size, 1);
    bench::Page& plain = bench::otherTarget(size, 1);
    bench::compare(
        {"IPPShare_ippiSet_8u_C1R", "", size, 0, bench::bytesOf(size, 1)},
        [&ours, size] { IPPShare_ippiSet_8u_C1R(77, ours.data(), ours.step(), size); },
        bench::openCV([&plain] { viewOf(plain, CV_8UC1).setTo(77); }), [&] { return ours.sameRegion(plain); });
}

void compareDepth(IppiSize size) {
    const bench::Page& bytes = bench::source(size, 1);
    const bench::Page& words = bench::source(size, 2);
    bench::Page& wide = bench::target(size, 2);
    bench::Page& plainWide = bench::otherTarget(size, 2);
    bench::Page& narrow = bench::target(size, 1);
    bench::Page& plainNarrow = bench::otherTarget(size, 1);
    bench::compare(
        {"IPPShare_ippiConvert_8u16s_C1R", "", size, bench::bytesOf(size, 1), bench::bytesOf(size, 2)},
        [&bytes, &wide, size] {
            IPPShare_ippiConvert_8u16s_C1R(bytes.data(), bytes.step(), shorts(wide.data()), wide.step(), size);
        },
        bench::openCV([&bytes, &plainWide] {
            cv::Mat to = viewOf(plainWide, CV_16SC1);
            viewOf(bytes, CV_8UC1).convertTo(to, CV_16S);
        }),
        [&] { return wide.sameRegion(plainWide); });
    bench::compare(
        {"IPPShare_ippiConvert_16s8u_C1R", "", size, bench::bytesOf(size, 2), bench::bytesOf(size, 1)},
        [&words, &narrow, size] {
            IPPShare_ippiConvert_16s8u_C1R(shorts(words.data()), words.step(), narrow.data(), narrow.step(), size);
        },
        bench::openCV([&words, &plainNarrow] {
            cv::Mat to = viewOf(plainNarrow, CV_8UC1);
            viewOf(words, CV_16SC1).convertTo(to, CV_8U);
        }),
        [&] { return narrow.sameRegion(plainNarrow); });
}

void comparePackedColour(IppiSize size, const std::string& name, decltype(&IPPShare_ippiRGBToYUV_8u_C3R) convert,
                         int code) {
    const bench::Page& from = bench::source(size, 3);
    bench::Page& to = bench::target(size, 3);
    bench::Page& plain = bench::otherTarget(size, 3);
    bench::compare(
        {name, "", size, 3},
        [&from, &to, size, convert] { convert(from.data(), from.step(), to.data(), to.step(), size); },
        bench::openCV([&from, &plain, code] {
            cv::Mat result = viewOf(plain, CV_8UC3);
            cv::cvtColor(viewOf(from, CV_8UC3), result, code);
        }),
        [&to, &plain] { return to.sameRegion(plain); });
}

// Three planes of a region, with rows of a multiple of 64 bytes.
class Planes {
public:
    explicit Planes(IppiSize size) : step_((size.width + 63) / 64 * 64) {
        for (size_t i = 0; i < 3; ++i) {
            views_.emplace_back(size.height, step_, CV_8UC1, cv::Scalar(static_cast<double>(60 + 50 * i)));
            pointers_.push_back(views_[i].data);
            views_[i] = views_[i].colRange(0, size.width);
        }
    }

    unsigned char* const* pointers() const { return pointers_.data(); }
    int step() const { return step_; }
    std::vector<cv::Mat>& views() { return views_; }

    bool operator==(const Planes& other) const {
        for (size_t i = 0; i < 3; ++i)
            if (cv::norm(views_[i], other.views_[i], cv::NORM_INF) != 0) return false;
        return true;
    }

private:
    int step_;
    std::vector<cv::Mat> views_;
    std::vector<unsigned char*> pointers_;
};

// The packed image between the two steps of a planar conversion.
struct Temporary {
    explicit Temporary(IppiSize size)
        : block(IPPMini_ippiMalloc_8u_C3(size.width, size.height, &step), IPPMini_ippiFree),
          view(size.height, size.width, CV_8UC3, block.get(), static_cast<size_t>(step)) {}

    int step = 0;
    std::unique_ptr<unsigned char, void (*)(void*)> block;
    cv::Mat view;
};

void comparePlanar(IppiSize size) {
    const bench::Page& packed = bench::source(size, 3);
    bench::Page& to = bench::target(size, 3);
    bench::Page& plainTo = bench::otherTarget(size, 3);
    const auto planes = std::make_shared<Planes>(size);
    const auto plainPlanes = std::make_shared<Planes>(size);
    const auto samePlanes = [planes, plainPlanes] { return *planes == *plainPlanes; };
    const auto samePacked = [&to, &plainTo] { return to.sameRegion(plainTo); };

    bench::compare(
        {"IPPMini_ippiCopy_8u_C3P3R", "", size, 3},
        [&packed, planes, size] {
            IPPMini_ippiCopy_8u_C3P3R(packed.data(), packed.step(), planes->pointers(), planes->step(), size);
        },
        bench::openCV([&packed, plainPlanes] { cv::split(viewOf(packed, CV_8UC3), plainPlanes->views()); }),
        samePlanes);
    bench::compare(
        {"IPPMini_ippiCopy_8u_P3C3R", "", size, 3},
        [&to, planes, size] {
            IPPMini_ippiCopy_8u_P3C3R(planes->pointers(), planes->step(), to.data(), to.step(), size);
        },
        bench::openCV([&plainTo, plainPlanes] {
            cv::Mat result = viewOf(plainTo, CV_8UC3);
            cv::merge(plainPlanes->views(), result);
        }),
        samePacked);
    bench::compare(
        {"IPPMini_ippiRGBToYUV_8u_C3P3R", "", size, 3},
        [&packed, planes, size] {
            IPPMini_ippiRGBToYUV_8u_C3P3R(packed.data(), packed.step(), planes->pointers(), planes->step(), size);
        },
        bench::openCV([&packed, plainPlanes, size] {
            Temporary temporary(size);
            cv::cvtColor(viewOf(packed, CV_8UC3), temporary.view, cv::COLOR_RGB2YUV);
            cv::split(temporary.view, plainPlanes->views());
        }),
        samePlanes);
    bench::compare(
        {"IPPMini_ippiYUVToRGB_8u_P3C3R", "", size, 3},
        [&to, planes, size] {
            IPPMini_ippiYUVToRGB_8u_P3C3R(planes->pointers(), planes->step(), to.data(), to.step(), size);
        },
        bench::openCV([&plainTo, plainPlanes, size] {
            Temporary temporary(size);
            cv::merge(plainPlanes->views(), temporary.view);
            cv::Mat result = viewOf(plainTo, CV_8UC3);
            cv::cvtColor(temporary.view, result, cv::COLOR_YUV2RGB);
        }),
        samePacked);
}

void comparePixelConversion() {
    for (const IppiSize size : bench::sizes()) {
        compareThresholds(size);
        compareFill(size);
        compareDepth(size);
        comparePackedColour(size, "IPPShare_ippiRGBToYUV_8u_C3R", IPPShare_ippiRGBToYUV_8u_C3R, cv::COLOR_RGB2YUV);
        comparePackedColour(size, "IPPShare_ippiYUVToRGB_8u_C3R", IPPShare_ippiYUVToRGB_8u_C3R, cv::COLOR_YUV2RGB);
        comparePlanar(size);
    }
}

const bench::Goals goals({
    {"IPPShare_ippiThreshold_LTVal_8u_C1IR", "", 0.6, bench::Goal::kMemcpy},
    {"IPPShare_ippiThreshold_LTVal_16s_C1IR", "", 0.6, bench::Goal::kMemcpy},
    {"IPPShare_ippiSet_8u_C1R", "", 1.05, bench::Goal::kMemcpy},
    {"IPPShare_ippiRGBToYUV_8u_C3R", "", 0.8},
    {"IPPShare_ippiYUVToRGB_8u_C3R", "", 0.8},
    {"IPPMini_ippiRGBToYUV_8u_C3P3R", "", 0.5},
    {"IPPMini_ippiYUVToRGB_8u_P3C3R", "", 0.4},
});

const bench::Registration registration("Depth, thresholds, fill, colour and planes", comparePixelConversion);

}    // namespace
