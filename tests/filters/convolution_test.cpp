#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <cstring>
#include <vector>

#include "OPCV_dlib.h"
#include "oracle/filters.h"
#include "oracle/plain_filters.h"
#include "support/fenced_memory.h"
#include "support/guarded_image.h"
#include "support/random.h"

namespace {

struct PixelType {
    int code;
    int channels;
    int depthBytes;
    int low;
    int high;

    int bytes() const { return channels * depthBytes; }
};
constexpr PixelType k8uC1 = {CV_8UC1, 1, 1, 0, 255};
constexpr PixelType k8uC3 = {CV_8UC3, 3, 1, 0, 255};
constexpr PixelType k16sC1 = {CV_16SC1, 1, 2, -32768, 32767};
constexpr PixelType k8uC4 = {CV_8UC4, 4, 1, 0, 255};

int valueAt(const GuardedImage& image, const PixelType& type, int channel, int x, int y) {
    const uint8_t* pixel = image.at(x, y);
    if (type.depthBytes == 1) return pixel[channel];
    int16_t value = 0;
    std::memcpy(&value, pixel, sizeof(value));
    return value;
}

GuardedImage::Layout anyLayout(Random& random, const PixelType& type, int margin) {
    GuardedImage::Layout layout = GuardedImage::anyLayout(random, type.bytes(), margin);
    layout.misalignment -= layout.misalignment % type.depthBytes;
    return layout;
}

// A kernel with the source around a region that it needs.
template <typename T>
struct Kernel {
    IppiSize size;
    IppiPoint anchor;
    std::vector<T> cells;

    int margin() const {
        return 2 * std::max(size.width, size.height) + std::max(std::abs(anchor.x), std::abs(anchor.y));
    }
    double magnitude() const {
        double sum = 0;
        for (const T cell : cells) sum += std::abs(static_cast<double>(cell));
        return sum;
    }
};

IppiSize anyKernelSize(Random& random) {
    switch (random.between(0, 5)) {
        case 0: return {random.between(1, 20), 1};
        case 1: return {1, random.between(1, 20)};
        case 2: return {3, 3};
        case 3: return {5, 5};
        default: return {random.between(1, 7), random.between(1, 7)};
    }
}

IppiPoint anyAnchor(Random& random, IppiSize size) {
    if (random.chance(50)) return {size.width / 2, size.height / 2};
    return {random.between(-2, size.width + 1), random.between(-2, size.height + 1)};
}

template <typename T, typename Cell>
Kernel<T> kernelOf(IppiSize size, IppiPoint anchor, const Cell& cell) {
    Kernel<T> kernel = {size, anchor, {}};
    for (int i = 0; i < size.width * size.height; ++i) kernel.cells.push_back(cell());
    return kernel;
}

// Cells of 0, small, or so large that both ends of the range are met.
Kernel<int> anyKernel(Random& random) {
    const IppiSize size = anyKernelSize(random);
    const int reach = std::array{3, 60, 40000}[static_cast<size_t>(random.between(0, 2))];
    return kernelOf<int>(size, anyAnchor(random, size),
                         [&] { return random.chance(20) ? 0 : random.between(-reach / 3, reach); });
}

// Sums stay below 2^31, where OpenCV's conversion to integers ends.
int anyDivisor(Random& random, const PixelType& type, const Kernel<int>& kernel) {
    int sum = 0;
    for (const int cell : kernel.cells) sum += cell;
    const std::array<int, 6> divisors = {sum, 1, -1, random.between(1, 100), random.between(-100000, -1), 1 << 20};
    const int divisor = divisors[static_cast<size_t>(random.between(0, 5))];
    const double smallest = kernel.magnitude() * (type.high + 1) / INT_MAX;
    return std::abs(divisor) > smallest ? divisor : static_cast<int>(smallest) + 1;
}

Kernel<float> anyKernel32f(Random& random) {
    const IppiSize size = anyKernelSize(random);
    const double reach = random.chance(70) ? 4.0 / (size.width * size.height) : 500;
    return kernelOf<float>(size, anyAnchor(random, size), [&] {
        return random.chance(20) ? 0.0F : static_cast<float>(random.real(-reach / 4, reach));
    });
}

IppiSize anyRegion(Random& random, const PixelType& type) {
    return {random.between(1, 250 / type.channels), random.between(1, 5)};
}

IppStatus filter(const PixelType& type, const GuardedImage& src, GuardedImage& dst, const Kernel<int>& kernel,
                 int divisor) {
    const auto* source16 = reinterpret_cast<const short*>(src.data());
    auto* target16 = reinterpret_cast<short*>(dst.data());
    switch (type.code) {
        case CV_8UC1:
            return IPPShare_ippiFilter_8u_C1R(src.data(), src.step(), dst.data(), dst.step(), dst.size(),
                                              kernel.cells.data(), kernel.size, kernel.anchor, divisor);
        case CV_8UC3:
            return IPPShare_ippiFilter_8u_C3R(src.data(), src.step(), dst.data(), dst.step(), dst.size(),
                                              kernel.cells.data(), kernel.size, kernel.anchor, divisor);
        case CV_16SC1:
            return IPPShare_ippiFilter_16s_C1R(source16, src.step(), target16, dst.step(), dst.size(),
                                               kernel.cells.data(), kernel.size, kernel.anchor, divisor);
        default:
            return ippiFilter(src.data(), src.step(), type.code, dst.data(), dst.step(), dst.size(),
                              kernel.cells.data(), kernel.size, kernel.anchor, divisor);
    }
}

IppStatus filter(const PixelType& type, const GuardedImage& src, GuardedImage& dst, const Kernel<float>& kernel, int) {
    if (type.code == CV_8UC3)
        return IPPMini_ippiFilter32f_8u_C3R(src.data(), src.step(), dst.data(), dst.step(), dst.size(),
                                            kernel.cells.data(), kernel.size, kernel.anchor);
    return ippiFilter32f(src.data(), src.step(), type.code, dst.data(), dst.step(), dst.size(), kernel.cells.data(),
                         kernel.size, kernel.anchor);
}

void filterPlainly(const PixelType& type, const GuardedImage& src, GuardedImage& dst, const Kernel<int>& kernel,
                   int divisor) {
    oracle::plainFilter(src.data(), src.step(), type.code, dst.data(), dst.step(), dst.size(), kernel.cells.data(),
                        kernel.size, kernel.anchor, divisor);
}

void filterPlainly(const PixelType& type, const GuardedImage& src, GuardedImage& dst, const Kernel<float>& kernel,
                   int) {
    oracle::plainFilter32f(src.data(), src.step(), type.code, dst.data(), dst.step(), dst.size(), kernel.cells.data(),
                           kernel.size, kernel.anchor);
}

bool sameRegion(const GuardedImage& a, const GuardedImage& b) {
    for (int y = 0; y < a.size().height; ++y)
        if (std::memcmp(a.at(0, y), b.at(0, y), static_cast<size_t>(a.rowBytes())) != 0) return false;
    return true;
}

// The largest error against the definition, beyond what sums of floats of the kernel's magnitude lose. Every third pixel
// is looked at.
template <typename T>
double worstError(const PixelType& type, const GuardedImage& src, const GuardedImage& dst, const Kernel<T>& kernel,
                  int divisor) {
    double worst = 0;
    for (int channel = 0; channel < type.channels; ++channel) {
        const auto at = [&](int x, int y) { return valueAt(src, type, channel, x, y); };
        for (int y = 0; y < dst.size().height; ++y)
            for (int x = y % 3; x < dst.size().width; x += 3) {
                const double sum =
                    oracle::convolutionSum(at, x, y, kernel.cells.data(), kernel.size, kernel.anchor) / divisor;
                worst =
                    std::max(worst, oracle::roundingError(valueAt(dst, type, channel, x, y), sum, type.low, type.high));
            }
    }
    return worst - 1e-6 * kernel.magnitude() * type.high / std::abs(divisor);
}

template <typename T>
void expectConvolution(Random& random, const PixelType& type, IppiSize size, const Kernel<T>& kernel, int divisor) {
    const GuardedImage src(random, size, anyLayout(random, type, kernel.margin()), random.anyValues());
    GuardedImage dst(random, size, anyLayout(random, type, 0));
    GuardedImage expected(random, size, {type.bytes(), 0, 0, 0});
    ASSERT_EQ(filter(type, src, dst, kernel, divisor), ippStsNoErr);
    ASSERT_TRUE(dst.untouchedOutsideRegion());
    filterPlainly(type, src, expected, kernel, divisor);
    const auto shape = [&] {
        return testing::Message() << "type " << type.code << " region " << size.width << "x" << size.height
                                  << " kernel " << kernel.size.width << "x" << kernel.size.height << " anchor "
                                  << kernel.anchor.x << "," << kernel.anchor.y << " divisor " << divisor;
    };
    ASSERT_TRUE(sameRegion(dst, expected)) << shape();
    ASSERT_LE(worstError(type, src, dst, kernel, divisor), 0.5) << shape();
}

TEST(Convolution, IntegerKernelsGiveWhatOpenCVAndTheDefinitionGive) {
    Random random(601);
    for (const PixelType& type : {k8uC1, k8uC3, k16sC1, k8uC4})
        for (int round = 0; round < 100; ++round) {
            const Kernel<int> kernel = anyKernel(random);
            expectConvolution(random, type, anyRegion(random, type), kernel, anyDivisor(random, type, kernel));
            if (HasFatalFailure()) return;
        }
}

TEST(Convolution, FloatKernelsGiveWhatOpenCVAndTheDefinitionGive) {
    Random random(602);
    for (const PixelType& type : {k8uC1, k8uC3, k16sC1, k8uC4})
        for (int round = 0; round < 100; ++round) {
            expectConvolution(random, type, anyRegion(random, type), anyKernel32f(random), 1);
            if (HasFatalFailure()) return;
        }
}

TEST(Convolution, EveryWidthIsFilteredToItsEnd) {
    Random random(603);
    for (const PixelType& type : {k8uC1, k8uC3, k16sC1})
        for (int width = 1; width <= 200; ++width) {
            const auto kernel = kernelOf<int>({3, 3}, {1, 1}, [&] { return random.between(-10, 20); });
            expectConvolution(random, type, {width, 2}, kernel, 37);
            if (HasFatalFailure()) return;
        }
}

// Rows that are too long for one strip of columns, and the kernel heights that leave least room.
TEST(Convolution, LongRowsAreFilteredInStrips) {
    Random random(613);
    for (const PixelType& type : {k8uC1, k8uC3, k16sC1})
        for (const IppiSize side : {IppiSize{3, 3}, {5, 5}, {7, 7}, {1, 49}, {3, 43}}) {
            const auto kernel =
                kernelOf<int>(side, {side.width / 2, side.height / 2}, [&] { return random.between(-10, 20); });
            const int longest = 25000 / side.height;
            for (const int elements : {longest - 500, longest + 100, 3 * longest}) {
                const IppiSize size = {elements / type.channels, 2};
                const GuardedImage src(random, size, {type.bytes(), 50, 0, 0});
                GuardedImage dst(random, size, {type.bytes(), 0, 0, 0});
                GuardedImage expected(random, size, {type.bytes(), 0, 0, 0});
                ASSERT_EQ(filter(type, src, dst, kernel, 60), ippStsNoErr);
                ASSERT_TRUE(dst.untouchedOutsideRegion());
                filterPlainly(type, src, expected, kernel, 60);
                ASSERT_TRUE(sameRegion(dst, expected)) << "type " << type.code << " kernel " << side.width << "x"
                                                       << side.height << " width " << size.width;
            }
        }
}

// 49 cells is the last size that is always summed up, from 50 or 130 cells on OpenCV may transform; either way the bytes
// are OpenCV's.
TEST(Convolution, LargeKernelsGiveWhatOpenCVGives) {
    Random random(604);
    for (const PixelType& type : {k8uC1, k8uC3, k16sC1})
        for (const IppiSize size : {IppiSize{7, 7},
                                    {49, 1},
                                    {1, 49},
                                    {50, 1},
                                    {1, 50},
                                    {10, 5},
                                    {8, 7},
                                    {43, 3},
                                    {129, 1},
                                    {1, 129},
                                    {131, 1},
                                    {13, 10},
                                    {15, 15}}) {
            const auto kernel = kernelOf<float>(size, {size.width / 2, size.height / 2}, [&] {
                return static_cast<float>(random.real(-1, 3)) / static_cast<float>(size.width * size.height);
            });
            for (const bool wholeRows : {false, true}) {
                const IppiSize region = {random.between(1, 150), random.between(1, 5)};
                const int margin = std::max(size.width, size.height);
                const GuardedImage::Layout layout = anyLayout(random, type, margin);
                const GuardedImage wide(random, region, layout);
                // Rows as long as the view: its first column is the row's first.
                const IppiSize whole = {region.width + size.width / 2 * 2, region.height + size.height / 2 * 2};
                const GuardedImage exact(random, whole, {type.bytes(), 0, 0, 0});
                const uint8_t* source = wholeRows ? exact.at(size.width / 2, size.height / 2) : wide.data();
                const int step = wholeRows ? exact.step() : wide.step();
                GuardedImage dst(random, region, {type.bytes(), 0, 0, 0});
                GuardedImage expected(random, region, {type.bytes(), 0, 0, 0});
                ASSERT_EQ(ippiFilter32f(source, step, type.code, dst.data(), dst.step(), region, kernel.cells.data(),
                                        kernel.size, kernel.anchor),
                          ippStsNoErr);
                oracle::plainFilter32f(source, step, type.code, expected.data(), expected.step(), region,
                                       kernel.cells.data(), kernel.size, kernel.anchor);
                ASSERT_TRUE(sameRegion(dst, expected)) << "type " << type.code << " kernel " << size.width << "x"
                                                       << size.height << " whole rows " << wholeRows;
            }
        }
}

TEST(Convolution, PixelTypesWithoutAKernelOfTheirOwnAreOpenCVs) {
    Random random(605);
    const auto kernel = kernelOf<int>({3, 3}, {1, 1}, [&] { return random.between(-10, 20); });
    for (const PixelType& type : {PixelType{CV_16UC1, 1, 2, 0, 65535}, {CV_16SC3, 3, 2, -32768, 32767}}) {
        const GuardedImage src(random, {40, 3}, {type.bytes(), 4, 0, 0});
        GuardedImage dst(random, {40, 3}, {type.bytes(), 0, 0, 0});
        GuardedImage expected(random, {40, 3}, {type.bytes(), 0, 0, 0});
        ASSERT_EQ(filter(type, src, dst, kernel, 50), ippStsNoErr);
        filterPlainly(type, src, expected, kernel, 50);
        EXPECT_TRUE(sameRegion(dst, expected)) << type.code;
    }
}

TEST(Convolution, ASingleCellCopiesOrShifts) {
    Random random(606);
    const std::vector<int> centre = {0, 0, 0, 0, 1, 0, 0, 0, 0};
    const GuardedImage src(random, {50, 4}, {1, 3, 0, 0});
    GuardedImage dst(random, {50, 4}, {});
    ASSERT_EQ(filter(k8uC1, src, dst, Kernel<int>{{3, 3}, {1, 1}, centre}, 1), ippStsNoErr);
    EXPECT_TRUE(sameRegion(dst, src));
    ASSERT_EQ(filter(k8uC1, src, dst, Kernel<int>{{3, 3}, {0, 0}, centre}, 1), ippStsNoErr);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 50; ++x) ASSERT_EQ(*dst.at(x, y), *src.at(x - 1, y - 1));
}

TEST(Convolution, OnesOverNineGiveTheRoundedMean) {
    Random random(607);
    const GuardedImage src(random, {64, 4}, {1, 3, 0, 0});
    GuardedImage dst(random, {64, 4}, {});
    ASSERT_EQ(filter(k8uC1, src, dst, Kernel<int>{{3, 3}, {1, 1}, std::vector<int>(9, 1)}, 9), ippStsNoErr);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 64; ++x) {
            const auto at = [&](int column, int row) { return *src.at(column, row); };
            ASSERT_EQ(*dst.at(x, y), (oracle::boxSum(at, x, y, {3, 3}, {1, 1}) + 4) / 9);
        }
}

TEST(Convolution, HalvesAreRoundedToEven) {
    std::array<uint8_t, 8> src = {0, 1, 2, 3, 4, 5, 6, 7};
    std::array<uint8_t, 8> dst{};
    const int one = 1;
    ASSERT_EQ(IPPShare_ippiFilter_8u_C1R(src.data(), 8, dst.data(), 8, {8, 1}, &one, {1, 1}, {0, 0}, 2), ippStsNoErr);
    EXPECT_EQ(dst, (std::array<uint8_t, 8>{0, 0, 1, 2, 2, 2, 3, 4}));
}

TEST(Convolution, SaturatesAtBothEnds) {
    const std::array<short, 4> src = {30000, -30000, 20000, -16384};
    std::array<short, 4> dst{};
    const std::array<int, 2> cells = {2, -2};
    ASSERT_EQ(IPPShare_ippiFilter_16s_C1R(src.data(), 8, dst.data(), 8, {4, 1}, cells.data(), {1, 1}, {0, 0}, 1),
              ippStsNoErr);
    EXPECT_EQ(dst, (std::array<short, 4>{32767, -32768, 32767, -32768}));
    ASSERT_EQ(IPPShare_ippiFilter_16s_C1R(src.data(), 8, dst.data(), 8, {4, 1}, &cells[1], {1, 1}, {0, 0}, 1),
              ippStsNoErr);
    EXPECT_EQ(dst, (std::array<short, 4>{-32768, 32767, -32768, 32767}));

    const std::array<uint8_t, 3> grey = {0, 100, 200};
    std::array<uint8_t, 3> filtered{};
    ASSERT_EQ(IPPShare_ippiFilter_8u_C1R(grey.data(), 3, filtered.data(), 3, {3, 1}, cells.data(), {1, 1}, {0, 0}, 1),
              ippStsNoErr);
    EXPECT_EQ(filtered, (std::array<uint8_t, 3>{0, 200, 255}));
    ASSERT_EQ(IPPShare_ippiFilter_8u_C1R(grey.data(), 3, filtered.data(), 3, {3, 1}, cells.data(), {1, 1}, {0, 0}, -1),
              ippStsNoErr);
    EXPECT_EQ(filtered, (std::array<uint8_t, 3>{0, 0, 0}));
}

TEST(Convolution, AKernelOfZerosGivesZero) {
    Random random(608);
    const GuardedImage src(random, {33, 3}, {3, 2, 0, 0});
    GuardedImage dst(random, {33, 3}, {3, 0, 0, 0});
    ASSERT_EQ(filter(k8uC3, src, dst, Kernel<float>{{3, 3}, {1, 1}, std::vector<float>(9)}, 1), ippStsNoErr);
    for (int y = 0; y < 3; ++y) EXPECT_TRUE(std::all_of(dst.at(0, y), dst.at(33, y), [](int v) { return v == 0; }));
}

TEST(Convolution, ReadsAndWritesNoByteTooMany) {
    Random random(609);
    for (const auto fence : {FencedMemory::Fence::kBehind, FencedMemory::Fence::kInFront})
        for (const PixelType& type : {k8uC1, k8uC3, k16sC1})
            for (const IppiSize side : {IppiSize{1, 1}, {3, 3}, {5, 5}, {7, 3}})
                for (int width = 1; width <= 70; width += 1 + width / 20) {
                    const auto kernel =
                        kernelOf<int>(side, {side.width / 2, side.height / 2}, [&] { return random.between(-2, 9); });
                    const int height = random.between(1, 3);
                    const int viewRow = (width + side.width - 1) * type.bytes();
                    const int step = viewRow + random.between(0, 3) * type.bytes();
                    const int viewRows = height + side.height - 1;
                    FencedMemory src(static_cast<size_t>(step * (viewRows - 1) + viewRow), fence);
                    random.fill(src.data(), src.size());
                    const int dstRow = width * type.bytes();
                    FencedMemory dst(static_cast<size_t>((dstRow + 2 * type.bytes()) * (height - 1) + dstRow), fence);
                    const uint8_t* first =
                        src.data() + side.height / 2 * step + ptrdiff_t{side.width / 2} * type.bytes();
                    ASSERT_EQ(ippiFilter(first, step, type.code, dst.data(), dstRow + 2 * type.bytes(), {width, height},
                                         kernel.cells.data(), side, kernel.anchor, 20),
                              ippStsNoErr);
                }
}

TEST(Convolution, SourceAndDestinationMayOverlap) {
    Random random(610);
    for (const PixelType& type : {k8uC1, k8uC3, k16sC1})
        for (const int shift : {0, 1, -1, 3}) {
            const auto kernel = kernelOf<int>({5, 3}, {2, 1}, [&] { return random.between(-5, 9); });
            GuardedImage image(random, {120, 9}, {type.bytes(), 6, 0, 0});
            GuardedImage expected(random, {120, 9}, {type.bytes(), 0, 0, 0});
            filterPlainly(type, image, expected, kernel, 30);
            ASSERT_EQ(ippiFilter(image.data(), image.step(), type.code, image.at(shift, shift), image.step(), {120, 9},
                                 kernel.cells.data(), kernel.size, kernel.anchor, 30),
                      ippStsNoErr);
            for (int y = 0; y < 9; ++y)
                ASSERT_EQ(std::memcmp(image.at(shift, y + shift), expected.at(0, y),
                                      static_cast<size_t>(expected.rowBytes())),
                          0)
                    << "type " << type.code << " shift " << shift << " row " << y;
        }
}

// Rows start early by the remainder, on both sides.
TEST(Convolution, AStepThatIsNoMultipleOfThePixelShiftsTheRows) {
    Random random(611);
    const auto kernel = kernelOf<int>({3, 3}, {1, 1}, [&] { return random.between(0, 9); });
    std::vector<uint8_t> src(3000);
    random.fill(src.data(), src.size());
    for (const int remainder : {1, 2}) {
        const int step = 3 * 40 + remainder;
        std::vector<uint8_t> dst(1000, 7);
        std::vector<uint8_t> expected(1000, 7);
        ASSERT_EQ(IPPShare_ippiFilter_8u_C3R(src.data() + 600, step, dst.data(), step, {30, 5}, kernel.cells.data(),
                                             kernel.size, kernel.anchor, 40),
                  ippStsNoErr);
        oracle::plainFilter(src.data() + 600, step, CV_8UC3, expected.data(), step, {30, 5}, kernel.cells.data(),
                            kernel.size, kernel.anchor, 40);
        EXPECT_EQ(dst, expected);
    }
}

TEST(Convolution, RefusesBadArguments) {
    Random random(612);
    const GuardedImage src(random, {20, 5}, {3, 8, 0, 0});
    GuardedImage dst(random, {20, 5}, {3, 0, 6, 0});
    const std::vector<int> cells(9, 1);
    const std::vector<float> weights(9, 0.1F);
    const auto refused = [&](const uint8_t* pSrc, int srcStep, uint8_t* pDst, int dstStep, IppiSize roi,
                             bool withKernel, IppiSize kernelSize, IppiPoint anchor, int divisor) {
        const IppStatus status = IPPShare_ippiFilter_8u_C3R(
            pSrc, srcStep, pDst, dstStep, roi, withKernel ? cells.data() : nullptr, kernelSize, anchor, divisor);
        EXPECT_TRUE(dst.untouched());
        if (divisor == 0) return status == ippStsBadArgErr;
        const IppStatus status32f = IPPMini_ippiFilter32f_8u_C3R(
            pSrc, srcStep, pDst, dstStep, roi, withKernel ? weights.data() : nullptr, kernelSize, anchor);
        EXPECT_TRUE(dst.untouched());
        return status == ippStsBadArgErr && status32f == ippStsBadArgErr;
    };
    const uint8_t* pSrc = src.data();
    uint8_t* pDst = dst.data();
    const int step = src.step();
    const IppiSize roi = {20, 5};
    EXPECT_TRUE(refused(nullptr, step, pDst, 66, roi, true, {3, 3}, {1, 1}, 1));
    EXPECT_TRUE(refused(pSrc, step, nullptr, 66, roi, true, {3, 3}, {1, 1}, 1));
    EXPECT_TRUE(refused(pSrc, step, pDst, 66, roi, false, {3, 3}, {1, 1}, 1));
    EXPECT_TRUE(refused(pSrc, step, pDst, 66, roi, true, {3, 3}, {1, 1}, 0));
    for (const IppiSize empty : {IppiSize{0, 3}, {3, 0}, {-1, 3}, {3, -1}, {INT_MIN, INT_MIN}}) {
        EXPECT_TRUE(refused(pSrc, step, pDst, 66, empty, true, {3, 3}, {1, 1}, 1));
        EXPECT_TRUE(refused(pSrc, step, pDst, 66, roi, true, empty, {1, 1}, 1));
    }
    // 22 columns are read, 20 are written.
    EXPECT_TRUE(refused(pSrc, 22 * 3 - 1, pDst, 66, roi, true, {3, 3}, {1, 1}, 1));
    EXPECT_TRUE(refused(pSrc, step, pDst, 59, roi, true, {3, 3}, {1, 1}, 1));
    EXPECT_TRUE(refused(pSrc, -step, pDst, 66, roi, true, {3, 3}, {1, 1}, 1));
    EXPECT_TRUE(refused(pSrc, step, pDst, -66, roi, true, {3, 3}, {1, 1}, 1));
    EXPECT_TRUE(refused(pSrc, INT_MAX, pDst, INT_MAX, {INT_MAX, 1}, true, {3, 3}, {1, 1}, 1));
    EXPECT_TRUE(refused(pSrc, step, pDst, 66, {1, INT_MAX}, true, {3, 3}, {1, 1}, 1));
    EXPECT_EQ(IPPShare_ippiFilter_8u_C3R(pSrc, 22 * 3, pDst, 60, {20, 1}, cells.data(), {3, 3}, {1, 1}, 9),
              ippStsNoErr);
}

TEST(Convolution, CoreRoutinesRefuseANullSourceAndADivisorOfZero) {
    const uint8_t src = 9;
    uint8_t dst = 5;
    const int one = 1;
    const float weight = 1;
    EXPECT_EQ(ippiFilter(nullptr, 1, CV_8UC1, &dst, 1, {1, 1}, &one, {1, 1}, {0, 0}, 1), ippStsBadArgErr);
    EXPECT_EQ(ippiFilter(&src, 1, CV_8UC1, &dst, 1, {1, 1}, &one, {1, 1}, {0, 0}, 0), ippStsBadArgErr);
    EXPECT_EQ(ippiFilter32f(nullptr, 1, CV_8UC1, &dst, 1, {1, 1}, &weight, {1, 1}, {0, 0}), ippStsBadArgErr);
    EXPECT_EQ(dst, 5);
    EXPECT_EQ(ippiFilter32f(&src, 1, CV_8UC1, &dst, 1, {1, 1}, &weight, {1, 1}, {0, 0}), ippStsNoErr);
    EXPECT_EQ(dst, 9);
}

TEST(FilterOfAnyType, HalvesOfSeveralChannelsThrowUnderAnyKernel) {
    for (const int side : {1, 3, 13}) {
        const std::vector<float> kernel(static_cast<size_t>(side) * static_cast<size_t>(side), 1.0F);
        constexpr int kSide = 64;
        const std::vector<uint16_t> source(static_cast<size_t>(kSide) * kSide * 3, 0x3C00);
        std::vector<uint16_t> output(3, 0xBEEF);
        const uint16_t* middle = &source[(kSide / 2 * kSide + kSide / 2) * 3];
        const int half = side / 2;
        EXPECT_THROW(ippiFilter32f(middle, kSide * 6, CV_16FC3, output.data(), 6, {1, 1}, kernel.data(), {side, side},
                                   {half, half}),
                     cv::Exception)
            << side;
        EXPECT_EQ(output, std::vector<uint16_t>(3, 0xBEEF));
    }
}

}    // namespace
