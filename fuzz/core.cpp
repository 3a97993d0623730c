// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Records, planes, statuses and the matrix adapters, with arbitrary arguments.
#include <algorithm>
#include <array>
#include <climits>

#include "core/Tools.h"
#include "support.h"

namespace {

using fuzz::Draw;
using fuzz::require;

int64_t rowOf(int64_t width, int depth, bool forUnite) {
    const auto to16 = [](int64_t bytes) { return (bytes + 15) / 16 * 16; };
    switch (depth) {
        case 1: return to16((width + 7) / 8);
        case 24: return forUnite ? (3 * width + 3) / 4 * 4 : 3 * width;
        case 32: return to16(4 * width);
        default: return to16(width);
    }
}

bool hasRowRule(int depth) { return depth == 1 || depth == 8 || depth == 24 || depth == 32 || depth == 40; }

void makeRecord(Draw& draw) {
    const bool forUnite = draw.chance(2);
    const auto function = forUnite ? CreateNewKVIMGPtrForUnite : CreateNewKVIMGPtr;
    const bool wild = draw.chance(2);
    const auto side = [&] { return wild ? draw.anyInt() : draw.between(-20, 3000); };
    KVRect r{};
    const int left = side();
    const int top = side();
    const int right = side();
    KVSetRect(&r, left, top, right, side());
    const int depth =
        draw.chance(4) ? draw.byte() : std::array{1, 8, 24, 32, 40}[static_cast<size_t>(draw.between(0, 4))];
    KVIMG* made = nullptr;
    const OSErr status = function(&made, &r, static_cast<unsigned char>(depth));
    require(status == noErr || (status == memFullErr && !made), "0, or no memory and no record");
    require(hasRowRule(depth) ? (status == noErr) == (made != nullptr) : status == noErr && !made, "depths");
    const int64_t width = int64_t{r.right} - r.left;
    const int64_t height = int64_t{r.bottom} - r.top;
    if (!made) {
        constexpr int64_t kSide = 4096;
        constexpr int64_t kSmall = 1 << 20;
        const bool small = width >= 0 && height >= 0 && std::max(width, height) < kSide &&
                           rowOf(width, depth, forUnite) * height < kSmall;
        require(!hasRowRule(depth) || !small, "a small record is made");
        return;
    }
    require(made->width == width && made->height == height && made->depth == depth, "the rectangle's size");
    require(int64_t{made->rowBytes} * made->height == made->size, "the size is the rows'");
    if (width >= 0) require(made->rowBytes == rowOf(width, depth, forUnite), "the row's rule");
    for (int64_t i = 0; i < made->size; i += 61) made->data[i] = 1;
    if (made->size > 0) made->data[made->size - 1] = 1;
    DisposeKVIMG(made);
}

template <typename T, typename Allocator>
void requirePlane(Allocator allocator, int pixelSize, int width, int height, bool share) {
    constexpr int kUntouched = -77;
    int step = kUntouched;
    T* plane = allocator(width, height, &step);
    if (width <= 0 || height <= 0) require(!plane && step == kUntouched, "an empty plane is refused");
    if (plane) {
        require(step % 64 == 0 && step >= width * pixelSize && step < width * pixelSize + 64, "the step");
        auto* bytes = reinterpret_cast<unsigned char*>(plane);
        bytes[0] = 1;
        bytes[int64_t{step} * height - 1] = 1;
    }
    if (share)
        IPPShare_ippiFree(plane);
    else
        IPPMini_ippiFree(plane);
    require(!allocator(width, height, nullptr), "a step is needed");
}

void makePlane(Draw& draw) {
    const bool wild = draw.chance(2);
    const int width = wild ? draw.anyInt() : draw.between(-2, 999);
    const int height = wild ? draw.anyInt() : draw.between(-2, 999);
    const bool share = draw.chance(2);
    if (draw.chance(2))
        requirePlane<short>(IPPShare_ippiMalloc_16s_C1, 2, width, height, share);
    else
        requirePlane<unsigned char>(IPPMini_ippiMalloc_8u_C3, 3, width, height, share);
}

void translate(Draw& draw) {
    const auto err = static_cast<OSErr>(draw.anyInt());
    const IppStatus expected = err == 0 ? 0 : err == memFullErr ? ippStsNoMemErr : ippStsBadArgErr;
    require(Tools::OSErrToIppStatus(err) == expected, "OSErr to IppStatus");
    const IppStatus status = draw.chance(2) ? draw.between(-7, 2) : draw.anyInt();
    const OSErr back = status == 0 ? noErr : status == ippStsNoMemErr ? memFullErr : paramErr;
    require(Tools::IppStatusToOSErr(status) == back, "IppStatus to OSErr");
    require(IppInit() == 0 && IPPMini_ippStaticInit() == 0 && IPPShare_ippStaticInit() == 0, "initialisation");
}

int anyType(Draw& draw) { return draw.between(0, 7) + 8 * draw.between(0, 3); }

int near(Draw& draw, int value) { return draw.chance(6) ? draw.anyInt() : draw.between(-3, value + 3); }

// Views over a block that any accepted step and rectangle stays within.
void wrapMemory(Draw& draw) {
    const int type = anyType(draw);
    const auto pixelSize = static_cast<int>(CV_ELEM_SIZE(type));
    const int step = draw.between(1, 200);
    const int rows = draw.between(1, 20);
    std::vector<uint8_t> block(static_cast<size_t>(step * rows));
    draw.fill(block.data(), block.size());
    const cv::Rect r(near(draw, 5), near(draw, 5), near(draw, step / pixelSize), near(draw, rows));
    if (int64_t{r.y} + r.height > rows) return;
    cv::Mat view;
    const OSErr status = Tools::CreateAndCutImageMat(block.data(), step, r, type, view);
    const bool fits = r.x >= 0 && r.y >= 0 && r.width > 0 && r.height > 0 &&
                      int64_t{r.x} + r.width <= step / pixelSize && int64_t{r.y} + r.height <= rows;
    require((status == noErr) == fits, "a view is made exactly where it fits");
    if (status != noErr) return;
    view.row(view.rows - 1).setTo(1);

    // Copied out again, to another position and size.
    const int dstStep = draw.between(1, 200);
    const int dstRows = draw.between(1, 20);
    std::vector<uint8_t> target(static_cast<size_t>(dstStep * dstRows), 3);
    const cv::Point from(near(draw, 4), near(draw, 4));
    const cv::Point to(near(draw, 4), draw.between(0, 4));
    const cv::Size size(near(draw, r.width), draw.between(-4, dstRows - to.y));
    const OSErr copied = Tools::CopyImageMatData(view, from, target.data(), dstStep, to, size);
    require(copied == noErr || copied == paramErr, "copied or refused");
    if (copied == noErr) return;
    for (const uint8_t byte : target) require(byte == 3, "nothing is written");
}

template <typename T, unsigned D>
void turnKernel(Draw& draw) {
    const IppiSize size = {draw.between(-1, 9), draw.between(-1, 9)};
    const auto count = static_cast<size_t>(std::max(size.width, 0) * std::max(size.height, 0));
    std::vector<T> cells(count);
    for (T& cell : cells) cell = static_cast<T>(draw.between(-99, 99));
    cv::Mat turned;
    const OSErr status = Tools::CreateKernelMatReverse<T, D>(cells.data(), size, turned);
    require((status == noErr) == (size.width > 0 && size.height > 0), "kernels have cells");
    if (status != noErr) return;
    require(turned.cols == (size.width | 1) && turned.rows == (size.height | 1), "kernels have odd sides");
    for (int j = 0; j < size.height; ++j)
        for (int i = 0; i < size.width; ++i)
            require(turned.at<T>(turned.rows - 1 - j, turned.cols - 1 - i) ==
                        cells[static_cast<size_t>(j) * static_cast<size_t>(size.width) + static_cast<size_t>(i)],
                    "kernels are turned");
    cv::Mat dense;
    require(Tools::CreateKernelMat(cells.data(), size, D, dense) == noErr && dense.total() == count, "dense kernels");
}

}    // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Draw draw(data, size);
    constexpr std::array kOperations = {makeRecord, makePlane,           translate,
                                        wrapMemory, turnKernel<int, 4U>, turnKernel<float, 5U>};
    fuzz::runOneOf(kOperations, draw);
    return 0;
}
