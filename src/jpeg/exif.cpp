// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Reads the orientation and the resolution from a TIFF directory.
//
// Broken blocks are common, and the orientation of a page must not depend on the reader. So this one stops exactly
// where OpenCV does: at the first entry of a tag that OpenCV reads whose value lies outside the block. An orientation
// before that entry counts.
#include "jpeg/exif.h"

#include <cstdint>

namespace {

constexpr size_t kPrefix = 6;    // "Exif" and two zeros, which are not checked
constexpr uint16_t kTiffMark = 42;
constexpr size_t kEntrySize = 12;
constexpr uint16_t kOrientation = 0x0112;
constexpr uint16_t kXResolution = 0x011A;
constexpr uint16_t kYResolution = 0x011B;
constexpr uint16_t kResolutionUnit = 0x0128;

class TiffBlock {
public:
    TiffBlock(const unsigned char* bytes, size_t size) : bytes_(bytes), size_(size) {
        littleEndian_ = size >= 2 && bytes[0] == 'I' && bytes[1] == 'I';
    }

    bool holds(uint64_t offset, uint64_t count) const { return offset + count <= size_; }

    // Both return false, with the value unchanged, if it lies outside the block.
    bool read16(uint64_t offset, uint16_t& value) const {
        if (!holds(offset, 2)) return false;
        const unsigned first = bytes_[offset];
        const unsigned second = bytes_[offset + 1];
        value = static_cast<uint16_t>(littleEndian_ ? second << 8 | first : first << 8 | second);
        return true;
    }
    bool read32(uint64_t offset, uint32_t& value) const {
        uint16_t first = 0;
        uint16_t second = 0;
        if (!read16(offset, first) || !read16(offset + 2, second)) return false;
        const uint32_t high = littleEndian_ ? second : first;
        value = high << 16 | (littleEndian_ ? first : second);
        return true;
    }

private:
    const unsigned char* bytes_;
    size_t size_;
    bool littleEndian_ = false;
};

// Whether the value of a directory entry lies within the block, for the tags that OpenCV reads.
bool isSound(const TiffBlock& block, uint64_t entry, uint16_t tag) {
    uint32_t length = 0;
    uint32_t offset = 0;
    const auto hasText = [&] {
        constexpr uint32_t kWithinEntry = 4;
        return block.read32(entry + 4, length) &&
               (length <= kWithinEntry || (block.read32(entry + 8, offset) && block.holds(offset, length)));
    };
    const auto hasRationals = [&](uint64_t count) {
        return block.read32(entry + 8, offset) && block.holds(offset, 8 * count);
    };
    switch (tag) {
        case 0x010E:                      // image description
        case 0x010F:                      // make
        case 0x0110:                      // model
        case 0x0131:                      // software
        case 0x0132:                      // date and time
        case 0x8298: return hasText();    // copyright
        case kXResolution:
        case kYResolution: return hasRationals(1);
        case 0x013E: return hasRationals(2);    // white point
        case 0x0211: return hasRationals(3);    // weights of luma
        case 0x013F:                            // primaries
        case 0x0214: return hasRationals(6);    // reference black and white
        default: return true;
    }
}

// The value of the first orientation tag of the first directory; 0 if there is none.
uint16_t orientationTag(const TiffBlock& block) {
    uint16_t mark = 0;
    uint32_t directory = 0;
    uint16_t count = 0;
    if (!block.read16(2, mark) || mark != kTiffMark) return 0;
    if (!block.read32(4, directory) || !block.read16(directory, count)) return 0;
    for (uint64_t i = 0; i < count; ++i) {
        const uint64_t entry = directory + 2 + kEntrySize * i;
        uint16_t tag = 0;
        if (!block.read16(entry, tag) || !isSound(block, entry, tag)) return 0;
        uint16_t value = 0;
        if (tag == kOrientation) return block.read16(entry + 8, value) ? value : uint16_t{0};
    }
    return 0;
}

// A rational above 0 that an entry points at.
bool readRational(const TiffBlock& block, uint64_t entry, double& value) {
    uint32_t offset = 0;
    uint32_t numerator = 0;
    uint32_t denominator = 0;
    if (!block.read32(entry + 8, offset) || !block.read32(offset, numerator) ||
        !block.read32(uint64_t{offset} + 4, denominator) || numerator == 0 || denominator == 0)
        return false;
    value = double{1} * numerator / denominator;
    return true;
}

}    // namespace

int exifOrientationTag(const unsigned char* payload, size_t length) {
    if (length <= kPrefix) return 1;
    const int tag = orientationTag(TiffBlock(payload + kPrefix, length - kPrefix));
    return tag >= 1 && tag <= 8 ? tag : 1;
}

Orientation orientationOf(int tag) {
    switch (tag) {
        case 2: return {false, true, false};
        case 3: return {false, true, true};
        case 4: return {false, false, true};
        case 5: return {true, false, false};
        case 6: return {true, false, true};
        case 7: return {true, true, true};
        case 8: return {true, true, false};
        default: return {};
    }
}

Resolution exifResolution(const unsigned char* payload, size_t length) {
    constexpr uint16_t kPerCentimetre = 3;
    constexpr double kCentimetresOfInch = 2.54;
    if (length <= kPrefix) return {};
    const TiffBlock block(payload + kPrefix, length - kPrefix);
    uint16_t mark = 0;
    uint32_t directory = 0;
    uint16_t count = 0;
    if (!block.read16(2, mark) || mark != kTiffMark) return {};
    if (!block.read32(4, directory) || !block.read16(directory, count)) return {};
    Resolution found;
    uint16_t unit = 0;    // inch by default
    for (uint64_t i = 0; i < count; ++i) {
        const uint64_t entry = directory + 2 + kEntrySize * i;
        uint16_t tag = 0;
        if (!block.read16(entry, tag)) break;
        if (tag == kXResolution && !readRational(block, entry, found.x)) return {};
        if (tag == kYResolution && !readRational(block, entry, found.y)) return {};
        if (tag == kResolutionUnit && !block.read16(entry + 8, unit)) return {};
    }
    if (unit == 1 || found.x == 0 || found.y == 0) return {};    // 1: a ratio of the sides of a pixel
    const double scale = unit == kPerCentimetre ? kCentimetresOfInch : 1;
    return {found.x * scale, found.y * scale};
}
