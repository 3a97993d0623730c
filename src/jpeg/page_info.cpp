// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "jpeg/page_info.h"

#include <algorithm>

namespace {

constexpr int kMaxSide = 65500;    // libjpeg's

// Bounds of the time that decoding can take. A unit of work is a sample in a scan: 5 ns for Huffman's coding, 100 ns for
// arithmetic coding, which also decodes them from next to no bytes. What the samples hold costs time as well, up to twice
// that for each byte. docs/reliability.md has the measurements.
constexpr int64_t kMaxHuffmanWork = int64_t{1} << 33;
constexpr int64_t kMaxArithmeticWork = int64_t{1} << 29;
constexpr int64_t kWorkOfAByte = 2;

bool isJpeg(const unsigned char* stream, size_t length) {
    return length >= 3 && stream[0] == 0xFF && stream[1] == 0xD8 && stream[2] == 0xFF;
}

bool holdsAPage(const StreamSurvey& stored) {
    const bool knownLayout = stored.components == 1 || stored.components == 3 || stored.components == 4;
    return knownLayout && stored.width > 0 && stored.height > 0 && stored.width <= kMaxSide &&
           stored.height <= kMaxSide && stored.scans > 0;
}

// The image in units that hold a block or more of each component. Sampling factors that libjpeg refuses count as 1.
struct Units {
    static constexpr int64_t kBlock = 8;
    static int64_t factor(int stated) {
        constexpr int kMost = 4;
        return std::clamp(stated, 1, kMost);
    }

    explicit Units(const StreamSurvey& stored) {
        for (int i = 0; i < stored.components; ++i) {
            widest = std::max(widest, factor(stored.sampling[static_cast<size_t>(i)].horizontal));
            tallest = std::max(tallest, factor(stored.sampling[static_cast<size_t>(i)].vertical));
        }
        across = (stored.width - 1) / (kBlock * widest) + 1;
        down = (stored.height - 1) / (kBlock * tallest) + 1;
    }

    int64_t paddedWidth() const { return across * widest * kBlock; }
    int64_t samples() const { return paddedWidth() * down * tallest * kBlock; }    // of the largest component

    int64_t widest = 1;    // blocks
    int64_t tallest = 1;
    int64_t across = 0;
    int64_t down = 0;
};

bool exceeds(const ReadLimits& limits, const StreamSurvey& stored, size_t length) {
    if (int64_t{stored.width} * stored.height > limits.pixels || stored.scans > limits.scans) return true;
    const int64_t work =
        Units(stored).samples() * stored.scannedComponents + kWorkOfAByte * static_cast<int64_t>(length);
    return work > (stored.arithmetic ? kMaxArithmeticWork : kMaxHuffmanWork);
}

// libjpeg holds some rows of blocks of each component and of the page, and all coefficients of a stream of several
// scans.
int64_t bytesToDecode(const StreamSurvey& stored, int channels) {
    constexpr int64_t kBytesOfABlock = 128;    // coefficients
    constexpr int64_t kRowGroups = 10;         // of a block row and its neighbours
    constexpr int64_t kStripRows = 16;         // see decode.cpp
    constexpr int64_t kTablesAndPools = 1 << 17;
    const Units units(stored);
    const bool keepsCoefficients = stored.progressive || stored.componentsOfFirstScan < stored.components;
    int64_t bytes = kTablesAndPools + kStripRows * stored.width * std::max(channels, stored.components);
    for (int i = 0; i < stored.components; ++i) {
        const StreamSurvey::Sampling& sampling = stored.sampling[static_cast<size_t>(i)];
        const int64_t across = units.across * Units::factor(sampling.horizontal);
        const int64_t down = units.down * Units::factor(sampling.vertical);
        bytes += kRowGroups * Units::factor(sampling.vertical) * across * Units::kBlock;    // decoded rows
        bytes += units.tallest * units.paddedWidth();                                       // the same, upsampled
        if (keepsCoefficients) bytes += down * (across * kBytesOfABlock + static_cast<int64_t>(sizeof(void*)));
    }
    return bytes;
}

Resolution resolutionOf(const StreamSurvey& stored) {
    constexpr int kPerInch = 1;
    constexpr int kPerCentimetre = 2;
    constexpr double kCentimetresOfInch = 2.54;
    const bool known = stored.densityUnit == kPerInch || stored.densityUnit == kPerCentimetre;
    if (!known || stored.densityX == 0 || stored.densityY == 0) return exifResolution(stored.exif, stored.exifLength);
    const double scale = stored.densityUnit == kPerCentimetre ? kCentimetresOfInch : 1;
    return {stored.densityX * scale, stored.densityY * scale};
}

}    // namespace

Outcome inspectStream(const unsigned char* stream, size_t length, const ReadLimits& limits, PageInfo& page) {
    if (!isJpeg(stream, length)) return Outcome::kUnreadable;
    if (length > limits.bytes) return Outcome::kOverLimit;
    page.stored = surveyStream(stream, length);
    const StreamSurvey& stored = page.stored;
    if (!holdsAPage(stored)) return Outcome::kUnreadable;
    page.orientationTag = exifOrientationTag(stored.exif, stored.exifLength);
    page.orientation = orientationOf(page.orientationTag);
    page.resolution = resolutionOf(stored);
    page.width = stored.width;
    page.height = stored.height;
    if (page.orientation.transposed) {
        std::swap(page.width, page.height);
        std::swap(page.resolution.x, page.resolution.y);
    }
    page.channels = stored.components == 1 ? 1 : 3;
    page.decoderBytes = bytesToDecode(stored, page.channels);
    return exceeds(limits, stored, length) ? Outcome::kOverLimit : Outcome::kDone;
}
