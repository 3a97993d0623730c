// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Shared by the fuzz targets: values drawn from the input, and images in blocks of exactly the bytes that a function
// may access, so that the address sanitizer detects every access out of bounds.
#pragma once

#include <fuzzer/FuzzedDataProvider.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <opencv2/core.hpp>
#include <vector>

#include "OPCV_dlib.h"

namespace fuzz {

// Reports a finding and aborts unless the condition holds.
void require(bool condition, const char* what);

// Runs a call in which OpenCV may throw. False if it did.
template <class Calls>
bool survives(Calls calls) {
    try {
        calls();
        return true;
    } catch (const cv::Exception&) {
        return false;
    }
}

class Draw {
public:
    Draw(const uint8_t* data, size_t size) : provider_(data, size) {}

    // Both ends included.
    int between(int low, int high) { return provider_.ConsumeIntegralInRange<int>(low, high); }
    uint8_t byte() { return provider_.ConsumeIntegral<uint8_t>(); }
    bool chance(int oneIn) { return between(1, oneIn) == oneIn; }
    double real(double low, double high) { return provider_.ConsumeFloatingPointInRange<double>(low, high); }

    // Any value of the type, including the ends of its range and NaN.
    int anyInt();
    double anyReal();

    void fill(uint8_t* bytes, size_t count);

private:
    FuzzedDataProvider provider_;
};

struct Margin {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
};

// A region with margins. With a negative margin the block ends within the region, and pixels outside it are
// inaccessible. Rows may have padding, except the last one, unless `kWhole` is given.
class Image {
public:
    enum class LastRow { kUsed, kWhole };

    Image(Draw& draw, IppiSize region, int pixelSize, Margin margin = {}, LastRow lastRow = LastRow::kUsed);

    uint8_t* region() { return block_.data() + offset_; }
    int step() const { return step_; }
    int usedRow() const { return usedRow_; }    // bytes from the left margin's first to the right margin's last
    int width() const { return size_.width; }
    int height() const { return size_.height; }
    IppiSize size() const { return size_; }
    int pixelSize() const { return pixelSize_; }
    const std::vector<uint8_t>& bytes() const { return block_; }

    // Whether it is unchanged since its creation, everywhere or outside the region.
    void requireUntouched() const;
    void requireUntouchedAroundRegion() const;

private:
    IppiSize size_;
    int pixelSize_;
    int usedRow_;
    int step_;
    ptrdiff_t offset_;
    std::vector<uint8_t> block_;    // never grows, so that it ends where its allocation ends
    std::vector<uint8_t> before_;
};

IppiSize anySize(Draw& draw, int most = 70);

// The first number of the input selects the operation.
template <size_t count>
void runOneOf(const std::array<void (*)(Draw&), count>& operations, Draw& draw) {
    operations[static_cast<size_t>(draw.between(0, static_cast<int>(count) - 1))](draw);
}

// The arguments of a call from one image to another. One call in eight has one invalid argument.
struct Call {
    Call(Draw& draw, Image& source, Image& target, bool checksSourceStep = true);

    // Checks the status: 0 and nothing written around the region, or an error and nothing written at all.
    void requireStatus(int status, const Image& target) const;

    const uint8_t* src;
    int srcStep;
    uint8_t* dst;
    int dstStep;
    IppiSize roi;
    bool broken = false;
};

}    // namespace fuzz
