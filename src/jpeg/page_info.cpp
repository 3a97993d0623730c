#include "jpeg/page_info.h"

#include <algorithm>

namespace {

constexpr int kMaxSide = 65500;    // libjpeg's

// Limits on decoding time. Huffman decoding is also limited by the length of the stream, because every coefficient
// takes bits. Arithmetic decoding is not: a few bytes are enough for a whole scan, so it has a tighter limit, on the
// components of all scans.
constexpr int64_t kMaxScannedPixels = int64_t{1} << 33;
constexpr int64_t kMaxArithmeticSamples = int64_t{1} << 29;

bool isJpeg(const unsigned char* stream, size_t length) {
    return length >= 3 && stream[0] == 0xFF && stream[1] == 0xD8 && stream[2] == 0xFF;
}

bool holdsAPage(const StreamSurvey& stored) {
    const bool knownLayout = stored.components == 1 || stored.components == 3 || stored.components == 4;
    return knownLayout && stored.width > 0 && stored.height > 0 && stored.width <= kMaxSide &&
           stored.height <= kMaxSide && stored.scans > 0;
}

bool exceeds(const ReadLimits& limits, const StreamSurvey& stored) {
    const int64_t pixels = int64_t{stored.width} * stored.height;
    if (pixels > limits.pixels || stored.scans > limits.scans) return true;
    return stored.arithmetic ? pixels * stored.scannedComponents > kMaxArithmeticSamples
                             : pixels * stored.scans > kMaxScannedPixels;
}

int64_t roundedUp(int64_t value, int64_t multiple) { return (value + multiple - 1) / multiple * multiple; }

// libjpeg allocates some rows of blocks for each component and for the page, and all coefficients if the stream has
// several scans. Sampling factors that libjpeg rejects count as 1.
int64_t bytesToDecode(const StreamSurvey& stored, int channels) {
    constexpr int kBlock = 8;
    constexpr int64_t kBytesOfABlock = 128;    // coefficients
    constexpr int64_t kRowGroups = 10;         // of a block row and its neighbours
    constexpr int64_t kStripRows = 16;         // see decode.cpp
    constexpr int64_t kTablesAndPools = 1 << 17;
    const auto factor = [](int stated) {
        constexpr int kMost = 4;
        return std::clamp(stated, 1, kMost);
    };
    int64_t widest = 1;
    int64_t tallest = 1;
    for (int i = 0; i < stored.components; ++i) {
        widest = std::max<int64_t>(widest, factor(stored.sampling[static_cast<size_t>(i)].horizontal));
        tallest = std::max<int64_t>(tallest, factor(stored.sampling[static_cast<size_t>(i)].vertical));
    }
    const int64_t columns =
        roundedUp(stored.width, kBlock * widest) / (kBlock * widest);    // of units of all components
    const int64_t rows = roundedUp(stored.height, kBlock * tallest) / (kBlock * tallest);
    const bool keepsCoefficients = stored.progressive || stored.componentsOfFirstScan < stored.components;
    int64_t bytes = kTablesAndPools + kStripRows * stored.width * std::max(channels, stored.components);
    for (int i = 0; i < stored.components; ++i) {
        const StreamSurvey::Sampling& sampling = stored.sampling[static_cast<size_t>(i)];
        const int64_t across = columns * factor(sampling.horizontal);
        const int64_t down = rows * factor(sampling.vertical);
        bytes += kRowGroups * factor(sampling.vertical) * across * kBlock;    // decoded rows
        bytes += tallest * columns * widest * kBlock;                         // the same, upsampled
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
    return exceeds(limits, stored) ? Outcome::kOverLimit : Outcome::kDone;
}
