// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "support.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

int silent(int /*status*/, const char* /*function*/, const char* /*text*/, const char* /*file*/, int /*line*/,
           void* /*data*/) {
    return 0;
}

size_t blockSize(int rows, int step, int usedRow, fuzz::Image::LastRow lastRow) {
    const auto last = static_cast<size_t>(lastRow == fuzz::Image::LastRow::kWhole ? step : usedRow);
    return static_cast<size_t>(rows - 1) * static_cast<size_t>(step) + last;
}

}    // namespace

// OpenCV's messages would fill the log, and with its threads failures could not be attributed to an input.
extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    cv::redirectError(silent);
    cv::setNumThreads(1);
    return 0;
}

namespace fuzz {

void require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "Not so: %s\n", what);
    std::abort();
}

int Draw::anyInt() {
    static constexpr int kEdges[] = {INT_MIN, INT_MIN + 1, -65536, -1,    0,           1,      46340,
                                     46341,   65500,       65501,  65536, INT_MAX - 1, INT_MAX};
    return chance(2) ? provider_.PickValueInArray(kEdges) : provider_.ConsumeIntegral<int>();
}

double Draw::anyReal() {
    const auto bits = provider_.ConsumeIntegral<uint64_t>();
    double value = 0;
    std::memcpy(&value, &bits, sizeof(value));
    return value;
}

// The bytes of the input, repeated with a change in each repetition.
void Draw::fill(uint8_t* bytes, size_t count) {
    const std::vector<uint8_t> drawn = provider_.ConsumeBytes<uint8_t>(static_cast<size_t>(between(1, 64)));
    const uint8_t change = byte();
    for (size_t i = 0; i < count; ++i)
        bytes[i] = drawn.empty() ? static_cast<uint8_t>(i * change)
                                 : static_cast<uint8_t>(drawn[i % drawn.size()] + i / drawn.size() * change);
}

Image::Image(Draw& draw, IppiSize region, int pixelSize, Margin margin, LastRow lastRow)
    : size_(region),
      pixelSize_(pixelSize),
      usedRow_((margin.left + region.width + margin.right) * pixelSize),
      step_(usedRow_ + pixelSize * (draw.chance(2) ? draw.between(0, 9) : 0)),
      offset_(ptrdiff_t{margin.top} * step_ + ptrdiff_t{margin.left} * pixelSize),
      block_(blockSize(margin.top + region.height + margin.bottom, step_, usedRow_, lastRow)) {
    draw.fill(block_.data(), block_.size());
    before_ = block_;
}

void Image::requireUntouched() const { require(block_ == before_, "nothing is written"); }

void Image::requireUntouchedAroundRegion() const {
    std::vector<uint8_t> now = block_;
    for (int y = 0; y < size_.height; ++y) {
        const auto row = offset_ + ptrdiff_t{y} * step_;
        std::copy_n(before_.begin() + row, size_.width * pixelSize_, now.begin() + row);
    }
    require(now == before_, "nothing around the region is written");
}

IppiSize anySize(Draw& draw, int most) {
    const int width = draw.between(1, most);
    return {width, draw.between(1, std::min(most, 12))};
}

Call::Call(Draw& draw, Image& source, Image& target, bool checksSourceStep)
    : src(source.region()), srcStep(source.step()), dst(target.region()), dstStep(target.step()), roi(target.size()) {
    if (!draw.chance(8)) return;
    broken = true;
    switch (draw.between(0, checksSourceStep ? 5 : 4)) {
        case 0: src = nullptr; break;
        case 1: dst = nullptr; break;
        case 2: roi.width = -draw.between(0, INT_MAX); break;
        case 3: roi.height = -draw.between(0, INT_MAX); break;
        case 4: dstStep = draw.between(-dstStep, target.usedRow() - 1); break;
        case 5: srcStep = draw.between(-srcStep, source.usedRow() - 1); break;
    }
}

void Call::requireStatus(int status, const Image& target) const {
    require((status != 0) == broken, broken ? "a broken call is refused" : "a good call is done");
    if (broken)
        target.requireUntouched();
    else
        target.requireUntouchedAroundRegion();
}

}    // namespace fuzz
