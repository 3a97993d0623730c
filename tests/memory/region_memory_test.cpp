// Every allocation of the image functions fails, one after the other. Each time the call succeeds without it, or says
// so by its status or by OpenCV's exception with the destination untouched.
#include <gtest/gtest.h>

#include <functional>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

#include "OPCV_dlib.h"
#include "failing_heap.h"
#include "support/random.h"

namespace {

using Bytes = std::vector<uint8_t>;

constexpr IppiSize kSize = {52, 40};
constexpr int kMargin = 12;
constexpr int kSide = 52 + 2 * kMargin;

// Room for every pixel size and margin, with rows that all steps below divide.
class Image {
public:
    explicit Image(unsigned seed) : bytes_(size_t{kSide} * kSide * 6) {
        Random(seed).fill(bytes_.data(), bytes_.size());
    }
    uint8_t* at(int pixelSize) { return bytes_.data() + ptrdiff_t{kMargin} * pixelSize * (kSide + 1); }
    short* shorts() { return reinterpret_cast<short*>(at(2)); }
    static int step(int pixelSize) { return kSide * pixelSize; }

    Bytes bytes_;
};

struct RegionCall {
    std::string name;
    std::function<int(Image& source, Image& target)> run;    // 0 for success
    int noMemory;
    size_t lostByOpenCV = 0;
};

// Some OpenCV functions make a matrix of their own. Its pixels are lost when the small block that keeps count of them
// cannot be had: OpenCV's own allocator takes the pixels first.
constexpr size_t kOneTemporary = 1;

void checkEveryFailure(const RegionCall& call) {
    SCOPED_TRACE(call.name);
    Image source(61);
    const Image empty(62);
    Image expected = empty;
    ASSERT_EQ(call.run(source, expected), 0);    // also lets OpenCV fill its caches
    for (const auto failure : {FailingHeap::Failure::kOnce, FailingHeap::Failure::kLasting})
        for (long n = 1;; ++n) {
            SCOPED_TRACE("allocation " + std::to_string(n));
            Image target = empty;
            int status = 0;
            bool thrown = false;
            FailingHeap::arm(n, failure);
            try {
                status = call.run(source, target);
            } catch (const std::bad_alloc&) {
                thrown = true;
            } catch (const cv::Exception& e) {
                thrown = e.code == cv::Error::StsNoMem;
            }
            const bool failed = FailingHeap::disarm();
            if (thrown || status != 0) {
                ASSERT_TRUE(failed);
                ASSERT_TRUE(thrown || status == call.noMemory) << status;
                ASSERT_EQ(target.bytes_, empty.bytes_);
            } else {
                ASSERT_EQ(target.bytes_, expected.bytes_);
            }
            ASSERT_LE(FailingHeap::liveBlocks(), call.lostByOpenCV);
            if (!failed) break;
        }
}

const std::vector<int> kKernel(81, 1);
const std::vector<float> kFloats(3 * 81, 0.01F);
const Bytes kMask(81, 1);

RegionCall median(int side) {
    return {"median " + std::to_string(side),
            [side](Image& s, Image& t) {
                return IPPShare_ippiFilterMedian_8u_C3R(s.at(3), Image::step(3), t.at(3), Image::step(3), kSize,
                                                        {side, side}, {side / 2, side / 2});
            },
            ippStsNoMemErr, side > 9 ? kOneTemporary : 0};
}

RegionCall dilation(int side) {
    return {"dilate " + std::to_string(side),
            [side](Image& s, Image& t) {
                return IPPShare_ippiDilate_8u_C1R(s.at(1), Image::step(1), t.at(1), Image::step(1), kSize, kMask.data(),
                                                  {side, side}, {side / 2, side / 2});
            },
            ippStsNoMemErr};
}

RegionCall convolution(int side) {
    return {"convolution " + std::to_string(side),
            [side](Image& s, Image& t) {
                return IPPShare_ippiFilter_8u_C3R(s.at(3), Image::step(3), t.at(3), Image::step(3), kSize,
                                                  kKernel.data(), {side, side}, {side / 2, side / 2}, side * side);
            },
            ippStsNoMemErr};
}

RegionCall convolution16(int side) {
    return {"convolution 16s " + std::to_string(side),
            [side](Image& s, Image& t) {
                return IPPShare_ippiFilter_16s_C1R(s.shorts(), Image::step(2), t.shorts(), Image::step(2), kSize,
                                                   kKernel.data(), {side, side}, {side / 2, side / 2}, side * side);
            },
            ippStsNoMemErr};
}

RegionCall convolution32f(int side) {
    return {"convolution 32f " + std::to_string(side),
            [side](Image& s, Image& t) {
                return IPPMini_ippiFilter32f_8u_C3R(s.at(3), Image::step(3), t.at(3), Image::step(3), kSize,
                                                    kFloats.data(), {side, side}, {side / 2, side / 2});
            },
            ippStsNoMemErr};
}

RegionCall bilateral(int side) {
    return {"bilateral " + std::to_string(side),
            [side](Image& s, Image& t) {
                return OPCV_ippiFilterBilateral_8u_C1R(s.at(1), Image::step(1), t.at(1), Image::step(1), kSize,
                                                       {side, side}, 400.0F, 400.0F);
            },
            ippStsNoMemErr, side == 3 || side == 5 ? 0 : kOneTemporary};
}

// In place: it reads the target.
RegionCall box(int side) {
    return {
        "box " + std::to_string(side),
        [side](Image& /*s*/, Image& t) {
            return IPPMini_ippiFilterBox_8u_C3IR(t.at(3), Image::step(3), kSize, {side, side}, {side / 2, side / 2});
        },
        ippStsNoMemErr};
}

RegionCall rotation(int type, double angle) {
    const int pixelSize = static_cast<int>(CV_ELEM_SIZE(type));
    return {"rotation of type " + std::to_string(type),
            [=](Image& s, Image& t) {
                return ippiRotate(s.at(pixelSize), kSize, Image::step(pixelSize), {0, 0, kSize.width, kSize.height},
                                  t.at(pixelSize), Image::step(pixelSize), {0, 0, kSize.width, kSize.height}, angle, 5,
                                  -3, 0, type, cv::Scalar(1, 2, 3, 4));
            },
            ippStsNoMemErr, type == CV_16SC1 ? kOneTemporary : 0};
}

TEST(OutOfMemory, Medians) {
    for (const int side : {1, 3, 5, 7, 9, 11, 13, 17}) checkEveryFailure(median(side));
}

TEST(OutOfMemory, Morphology) {
    for (const int side : {1, 2, 3, 5, 8, 9}) checkEveryFailure(dilation(side));
}

TEST(OutOfMemory, Convolutions) {
    for (const int side : {1, 2, 3, 4, 5, 7, 9}) {
        checkEveryFailure(convolution(side));
        checkEveryFailure(convolution16(side));
        checkEveryFailure(convolution32f(side));
    }
}

TEST(OutOfMemory, BoxAndBilateral) {
    for (const int side : {1, 3, 5, 7, 9}) {
        checkEveryFailure(bilateral(side));
        checkEveryFailure(box(side));
    }
    checkEveryFailure(box(2));
    checkEveryFailure(box(17));
}

TEST(OutOfMemory, Rotations) {
    for (const int type : {CV_8UC1, CV_8UC3, CV_8UC4, CV_16SC1})
        for (const double angle : {1.5, 33.0}) checkEveryFailure(rotation(type, angle));
}

TEST(OutOfMemory, ColourAndPlanes) {
    const int step = Image::step(1);
    const auto planesOf = [step](Image& image, unsigned char* planes[3]) {
        for (int c = 0; c < 3; ++c) planes[c] = image.at(1) + ptrdiff_t{c} * step * kSide;
    };
    checkEveryFailure({"RGB to YUV planes",
                       [=](Image& s, Image& t) {
                           unsigned char* planes[3];
                           planesOf(t, planes);
                           return IPPMini_ippiRGBToYUV_8u_C3P3R(s.at(3), Image::step(3), planes, step, kSize);
                       },
                       ippStsNoMemErr});
    checkEveryFailure({"YUV planes to RGB",
                       [=](Image& s, Image& t) {
                           unsigned char* planes[3];
                           planesOf(s, planes);
                           return IPPMini_ippiYUVToRGB_8u_P3C3R(planes, step, t.at(3), Image::step(3), kSize);
                       },
                       ippStsNoMemErr});
    checkEveryFailure({"RGB to YUV",
                       [](Image& s, Image& t) {
                           return IPPShare_ippiRGBToYUV_8u_C3R(s.at(3), Image::step(3), t.at(3), Image::step(3), kSize);
                       },
                       ippStsNoMemErr});
    checkEveryFailure({"8 to 16 bits",
                       [](Image& s, Image& t) {
                           return IPPShare_ippiConvert_8u16s_C1R(s.at(1), Image::step(1), t.shorts(), Image::step(2),
                                                                 kSize);
                       },
                       ippStsNoMemErr});
    checkEveryFailure({"resize of a grey region",
                       [](Image& s, Image& t) {
                           const IppiRect roi = {0, 0, kSize.width, kSize.height};
                           return OPCV_ippiResizeSqrPixel_8u_C1R(s.at(1), kSize, Image::step(1), roi, t.at(1),
                                                                 Image::step(1), roi, 0.8, 0.7, 1, 1, 0, nullptr);
                       },
                       ippStsNoMemErr});
    checkEveryFailure({"resize of a colour region",
                       [](Image& s, Image& t) {
                           return IPPMini_ippiResize_8u_C3R(s.at(3), kSize, Image::step(3),
                                                            {0, 0, kSize.width, kSize.height}, t.at(3), Image::step(3),
                                                            {41, 33}, 1, 1, 0);
                       },
                       ippStsNoMemErr});
}

TEST(OutOfMemory, ColourConvolutionsAndNoiseReduction) {
    checkEveryFailure({"Convolution24",
                       [](Image& s, Image& t) {
                           return Convolution24(s.bytes_.data(), t.bytes_.data(), kSize, 2, kFloats.data())
                                      ? 0
                                      : ippStsNoMemErr;
                       },
                       ippStsNoMemErr});
    // These say nothing: the result is either there or nothing is.
    const auto silent = [](Image& t, const Image& before) { return t.bytes_ == before.bytes_ ? ippStsNoMemErr : 0; };
    checkEveryFailure({"Convolution24MonoFilter",
                       [silent](Image& s, Image& t) {
                           const Image before = t;
                           Convolution24MonoFilter(s.bytes_.data(), t.bytes_.data(), kSize, 1, kFloats.data());
                           return silent(t, before);
                       },
                       ippStsNoMemErr});
    for (const int mode : {0, 2}) {
        checkEveryFailure({"DeosNr",
                           [=](Image& s, Image& t) {
                               const Image before = t;
                               DeosNr(s.bytes_.data(), t.bytes_.data(), kSize, mode, 5);
                               return silent(t, before);
                           },
                           ippStsNoMemErr});
        checkEveryFailure({"DeosNrRGB",
                           [=](Image& s, Image& t) {
                               const Image before = t;
                               const int code =
                                   DeosNrRGB(s.bytes_.data(), t.bytes_.data(), kSize.width, kSize.height, mode, 5);
                               return code != 0 ? code : silent(t, before);
                           },
                           ippStsNoMemErr});
    }
}

TEST(OutOfMemory, Numbers) {
    checkEveryFailure({"sgemm",
                       [](Image& /*s*/, Image& t) {
                           static const std::vector<float> a(64, 0.5F);
                           auto* c = reinterpret_cast<float*>(t.bytes_.data());
                           OPCV_cblas_sgemm(101, 112, 112, 8, 8, 8, 1, a.data(), 8, a.data(), 8, 0, c, 8);
                           return 0;
                       },
                       ippStsNoMemErr});
}

}    // namespace
