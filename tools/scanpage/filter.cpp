// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "filter.h"

#include <array>
#include <cstring>

namespace {

constexpr int kMask3x3 = 33;
constexpr int kCentreWeight = 3;
constexpr int kNeighbourhood5x5 = 2;

// A copy of a page or plane without row padding; its width is rounded up to a multiple by repeating the last pixel.
struct Packed {
    int width, height, pixelSize;
    std::vector<uint8_t> bytes;

    int step() const { return width * pixelSize; }
    uint8_t* at(int x, int y) { return bytes.data() + ptrdiff_t{y} * step() + ptrdiff_t{x} * pixelSize; }
};

Packed packedCopy(const KVIMG& page, int multiple) {
    const int pixelSize = page.depth / 8;
    Packed copy{(page.width + multiple - 1) / multiple * multiple, page.height, pixelSize, {}};
    copy.bytes.resize(static_cast<size_t>(copy.step()) * static_cast<size_t>(copy.height));
    for (int y = 0; y < page.height; ++y) {
        const uint8_t* row = page.data + ptrdiff_t{y} * page.rowBytes;
        std::memcpy(copy.at(0, y), row, static_cast<size_t>(page.width) * static_cast<size_t>(pixelSize));
        for (int x = page.width; x < copy.width; ++x)
            std::memcpy(copy.at(x, y), copy.at(page.width - 1, y), static_cast<size_t>(pixelSize));
    }
    return copy;
}

// Filters one channel by windows of 3 x 3 pixels, from the copy into the inner region of the page.
void filterPlane(const uint8_t* from, int fromStep, uint8_t* to, int toStep, IppiSize inner, Median median) {
    if (median == Median::kCross)
        require(IPPShare_ippiFilterMedianCross_8u_C1R(from, fromStep, to, toStep, inner, kMask3x3), "cross median");
    else
        require(IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R(from, fromStep, to, toStep, inner, kCentreWeight),
                "weighted median");
}

void filterChannels(KVIMG& page, Median median) {
    const IppiSize size = {page.width, page.height};
    const IppiSize inner = {page.width - 2, page.height - 2};
    const size_t planeBytes = static_cast<size_t>(page.width) * static_cast<size_t>(page.height);
    std::vector<uint8_t> before(3 * planeBytes);
    const std::array<uint8_t*, 3> planes = {before.data(), before.data() + planeBytes, before.data() + 2 * planeBytes};
    require(IPPMini_ippiCopy_8u_C3P3R(page.data, page.rowBytes, planes.data(), page.width, size), "splitting");
    std::vector<uint8_t> after = before;
    std::array<const uint8_t*, 3> filtered{};
    const ptrdiff_t corner = ptrdiff_t{page.width} + 1;
    for (size_t c = 0; c < 3; ++c) {
        uint8_t* plane = after.data() + c * planeBytes;
        filterPlane(planes[c] + corner, page.width, plane + corner, page.width, inner, median);
        filtered[c] = plane;
    }
    require(IPPMini_ippiCopy_8u_P3C3R(filtered.data(), page.width, page.data, page.rowBytes, size), "joining");
}

}    // namespace

void filterMedian(KVIMG& page, Median median) {
    const IppiSize inner = {page.width - 2, page.height - 2};
    if (median == Median::kNone || inner.width < 1 || inner.height < 1) return;
    const bool colour = page.depth == 24;
    if (colour && median != Median::kColour) return filterChannels(page, median);

    Packed before = packedCopy(page, 1);
    uint8_t* to = page.data + page.rowBytes + before.pixelSize;
    if (colour)
        require(
            IPPShare_ippiFilterMedianColor_8u_C3R(before.at(1, 1), before.step(), to, page.rowBytes, inner, kMask3x3),
            "colour median");
    else
        filterPlane(before.at(1, 1), before.step(), to, page.rowBytes, inner, median);
}

void reduceNoise(KVIMG& page, int strength) {
    const bool colour = page.depth == 24;
    Packed before = packedCopy(page, colour ? 4 : 1);
    Packed after = before;
    const IppiSize size = {before.width, before.height};
    if (colour)
        require(
            DeosNrRGB(before.bytes.data(), after.bytes.data(), size.width, size.height, kNeighbourhood5x5, strength),
            "noise reduction");
    else
        DeosNr(before.bytes.data(), after.bytes.data(), size, kNeighbourhood5x5, strength);
    for (int y = 0; y < page.height; ++y)
        std::memcpy(page.data + ptrdiff_t{y} * page.rowBytes, after.at(0, y),
                    static_cast<size_t>(page.width) * static_cast<size_t>(before.pixelSize));
}
