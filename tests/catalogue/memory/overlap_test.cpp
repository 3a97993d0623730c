// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Conversions whose destination overlaps their source need a temporary image, and allocating it may fail.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "failing_heap.h"
#include "support/planar_colour.h"
#include "support/random.h"

namespace {

using Bytes = std::vector<uint8_t>;

constexpr IppiSize kSize = {37, 5};
constexpr int kPackedStep = 3 * kSize.width;
constexpr size_t kPlane = size_t{kSize.width} * kSize.height;

// Three planes behind each other, from the second packed pixel on: where the two overlap.
uint8_t* planeOf(Bytes& bytes, size_t plane) { return bytes.data() + 3 + plane * kPlane; }

IppStatus toPlanes(Bytes& bytes) {
    uint8_t* const planes[3] = {planeOf(bytes, 0), planeOf(bytes, 1), planeOf(bytes, 2)};
    return toYuvPlanes(bytes.data(), kPackedStep, planes, kSize.width, kSize);
}

IppStatus fromPlanes(Bytes& bytes) {
    const uint8_t* const planes[3] = {planeOf(bytes, 0), planeOf(bytes, 1), planeOf(bytes, 2)};
    return fromYuvPlanes(planes, kSize.width, bytes.data(), kPackedStep, kSize);
}

Bytes anyBytes() {
    Bytes bytes(3 * kPlane + 3);
    Random(95).fill(bytes.data(), bytes.size());
    return bytes;
}

TEST(OutOfMemory, OverlappingPlanesStayAsTheyWere) {
    for (const auto convert : {toPlanes, fromPlanes}) {
        const Bytes before = anyBytes();
        Bytes bytes = before;
        FailingHeap::arm(1, FailingHeap::Failure::kOnce);
        const IppStatus status = convert(bytes);
        EXPECT_TRUE(FailingHeap::disarm());
        EXPECT_EQ(status, ippStsNoMemErr);
        EXPECT_EQ(bytes, before);
        EXPECT_EQ(FailingHeap::liveBlocks(), 0U);
    }
}

}    // namespace
