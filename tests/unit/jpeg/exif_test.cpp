// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <opencv2/imgcodecs.hpp>
#include <string>
#include <vector>

#include "jpeg/exif.h"
#include "support/fenced_memory.h"
#include "support/jpeg_reading.h"
#include "support/random.h"

namespace {

// A directory entry of 12 bytes. `value` is in its last four, a short one in the first two of them.
struct Entry {
    unsigned tag;
    unsigned type;
    uint32_t count;
    uint32_t value;
    bool isShort;
};

constexpr unsigned kOrientation = 0x0112;

Entry orientationEntry(unsigned value) { return {kOrientation, 3, 1, value, true}; }

class TiffWriter {
public:
    explicit TiffWriter(bool littleEndian) : littleEndian_(littleEndian) {
        text("Exif");
        put(0, 2);
        text(littleEndian ? "II" : "MM");
        put(42, 2);
        put(8, 4);
    }

    void text(const std::string& characters) {
        for (const char c : characters) bytes.push_back(static_cast<uint8_t>(c));
    }
    void put(uint32_t value, int size) {
        for (int i = 0; i < size; ++i) {
            const int shift = 8 * (littleEndian_ ? i : size - 1 - i);
            bytes.push_back(static_cast<uint8_t>(value >> shift));
        }
    }
    void directory(const std::vector<Entry>& entries) {
        put(static_cast<uint32_t>(entries.size()), 2);
        for (const Entry& entry : entries) {
            put(entry.tag, 2);
            put(entry.type, 2);
            put(entry.count, 4);
            put(entry.value, entry.isShort ? 2 : 4);
            if (entry.isShort) put(0, 2);
        }
        put(0, 4);
    }

    Bytes bytes;

private:
    bool littleEndian_;
};

Bytes blockOf(const std::vector<Entry>& entries, bool littleEndian = false) {
    TiffWriter writer(littleEndian);
    writer.directory(entries);
    return writer.bytes;
}

// The payload as an APP1 segment after the start of the image.
Bytes withApp1(Bytes stream, const Bytes& payload) {
    const size_t length = payload.size() + 2;
    Bytes segment = {0xFF, 0xE1, static_cast<uint8_t>(length / 256), static_cast<uint8_t>(length % 256)};
    segment.insert(segment.end(), payload.begin(), payload.end());
    stream.insert(stream.begin() + 2, segment.begin(), segment.end());
    return stream;
}

// The tag's value, 1 to 8, that leads to this orientation.
unsigned numberOf(Orientation o) {
    const unsigned mirroring[2][4] = {{1, 2, 4, 3}, {5, 8, 6, 7}};
    return mirroring[o.transposed ? 1 : 0][(o.upsideDown ? 2 : 0) + (o.mirrored ? 1 : 0)];
}

unsigned orientationOf(const Bytes& payload) {
    FencedMemory block(payload.size(), FencedMemory::Fence::kBehind);
    std::copy(payload.begin(), payload.end(), block.data());
    return numberOf(::orientationOf(exifOrientationTag(block.data(), block.size())));
}

TEST(ExifOrientation, IsFoundInBothByteOrders) {
    for (const bool littleEndian : {false, true})
        for (unsigned value = 1; value <= 8; ++value)
            EXPECT_EQ(orientationOf(blockOf({orientationEntry(value)}, littleEndian)), value);
}

TEST(ExifOrientation, UnknownValuesLeaveThePageAsStored) {
    for (const unsigned value : {0U, 9U, 0x0100U, 0x0600U, 0xFFFFU}) {
        const Orientation o = ::orientationOf(exifOrientationTag(blockOf({orientationEntry(value)}).data(), 100));
        EXPECT_FALSE(o.transposed || o.mirrored || o.upsideDown) << value;
    }
}

TEST(ExifOrientation, TheFirstTagCounts) {
    EXPECT_EQ(orientationOf(blockOf({orientationEntry(6), orientationEntry(3)})), 6U);
    EXPECT_EQ(orientationOf(blockOf({orientationEntry(0), orientationEntry(3)})), 1U);
}

TEST(ExifOrientation, ABrokenEntryInFrontHidesIt) {
    const uint32_t far = 5000;
    for (const unsigned tag : {0x010EU, 0x010FU, 0x0110U, 0x0131U, 0x0132U, 0x8298U}) {
        const Entry text = {tag, 2, 5, far, false};
        EXPECT_EQ(orientationOf(blockOf({text, orientationEntry(6)})), 1U) << tag;
        EXPECT_EQ(orientationOf(blockOf({orientationEntry(6), text})), 6U) << tag;
        EXPECT_EQ(orientationOf(blockOf({{tag, 2, 4, far, false}, orientationEntry(6)})), 6U) << tag;
    }
    for (const unsigned tag : {0x011AU, 0x011BU, 0x013EU, 0x013FU, 0x0211U, 0x0214U})
        EXPECT_EQ(orientationOf(blockOf({{tag, 5, 1, far, false}, orientationEntry(6)})), 1U) << tag;
    for (const unsigned tag : {0x0128U, 0x0213U, 0x8769U, 0x0100U})
        EXPECT_EQ(orientationOf(blockOf({{tag, 4, 1, far, false}, orientationEntry(6)})), 6U) << tag;
}

// The value of an earlier entry ends with the block, or one byte after it.
TEST(ExifOrientation, ValuesMayReachTheEndOfTheBlock) {
    struct Kind {
        unsigned tag;
        uint32_t bytes;
    };
    for (const Kind kind :
         {Kind{0x011A, 8}, Kind{0x011B, 8}, Kind{0x013E, 16}, Kind{0x0211, 24}, Kind{0x013F, 48}, Kind{0x0214, 48}}) {
        Bytes block = blockOf({{kind.tag, 5, 1, 38, false}, orientationEntry(6)});
        block.resize(6 + 38 + kind.bytes);
        EXPECT_EQ(orientationOf(block), 6U) << kind.tag;
        block.pop_back();
        EXPECT_EQ(orientationOf(block), 1U) << kind.tag;
    }
    Bytes block = blockOf({{0x010F, 2, 9, 38, false}, orientationEntry(6)});
    block.resize(6 + 38 + 9);
    EXPECT_EQ(orientationOf(block), 6U);
    block.pop_back();
    EXPECT_EQ(orientationOf(block), 1U);
}

TEST(ExifOrientation, EveryCutOfABlock) {
    const Bytes whole = blockOf({{0x010F, 2, 4, 0, false}, orientationEntry(8)});
    const size_t needed = 6 + 10 + 12 + 10;    // up to the value
    for (size_t length = 0; length <= whole.size(); ++length) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(length));
        EXPECT_EQ(orientationOf(cut), length >= needed ? 8U : 1U) << length;
    }
}

TEST(ExifOrientation, NeedsTheMarkOfATiffBlock) {
    Bytes block = blockOf({orientationEntry(6)});
    block[9] = 43;
    EXPECT_EQ(orientationOf(block), 1U);
    block = blockOf({orientationEntry(6)});
    for (const char first : {'X', 'I'}) {    // any other order than II is the big one
        block[6] = static_cast<uint8_t>(first);
        EXPECT_EQ(orientationOf(block), 6U);
    }
}

void expectAsOpenCV(const Bytes& stream, const char* what, int round) {
    expectSame(read(stream), decodeWithOpenCV(stream, cv::IMREAD_ANYCOLOR), what, round);
    const cv::Mat colour = decodeWithOpenCV(stream, cv::IMREAD_COLOR);
    expectSame(readSplit(stream, colour.cols, colour.rows), colour, what, round);
}

TEST(ExifOrientation, TurnsPagesOfEveryShape) {
    Random random(31);
    const std::pair<int, int> shapes[] = {{1, 1}, {1, 40}, {40, 1}, {15, 16}, {16, 15}, {17, 33}, {33, 17}, {50, 64}};
    for (const auto& [width, height] : shapes)
        for (unsigned orientation = 1; orientation <= 8; ++orientation)
            for (const int components : {1, 3, 4}) {
                const Bytes stored = components == 4 ? fourComponents(random, width, height, JCS_YCCK)
                                                     : anyStream(random, components, width, height);
                const bool littleEndian = random.chance(50);
                const Bytes stream = withApp1(stored, blockOf({orientationEntry(orientation)}, littleEndian));
                expectAsOpenCV(stream, "turned", static_cast<int>(orientation));
            }
}

// Only the first APP1 segment in front of the scan is looked at, whatever it holds.
TEST(ExifOrientation, TheFirstApp1SegmentCounts) {
    Random random(32);
    const Bytes stored = anyStream(random, 3, 12, 7);
    const Bytes turned = blockOf({orientationEntry(6)});
    const Bytes other = blockOf({orientationEntry(3)});
    int round = 0;
    for (const Bytes& first : {turned, other, Bytes(), Bytes{'h'}, Bytes(6, 'x'), Bytes(7, 'x')})
        expectAsOpenCV(withApp1(withApp1(stored, turned), first), "first", ++round);

    Bytes bogus = withApp1(stored, turned);
    const Bytes noLength = {0xFF, 0xE1, 0, 1};
    bogus.insert(bogus.begin() + 2, noLength.begin(), noLength.end());
    EXPECT_EQ(read(bogus).image->width, 7);
    expectAsOpenCV(bogus, "bogus length", 0);

    Bytes behind = stored;    // after the scan's header
    const Bytes app1 = withApp1({0xFF, 0xD8}, turned);
    behind.insert(behind.end() - 2, app1.begin() + 2, app1.end());
    EXPECT_EQ(read(behind).image->width, 12);
    expectAsOpenCV(behind, "behind", 0);
}

Bytes brokenBlock(Random& random) {
    static constexpr unsigned kTags[] = {0x010E, 0x010F, 0x0110, 0x0112, 0x011A, 0x011B, 0x0128, 0x0131, 0x0132,
                                         0x013E, 0x013F, 0x0211, 0x0213, 0x0214, 0x8298, 0x8769, 0x8825, 0x0100};
    std::vector<Entry> entries;
    const int count = random.between(0, 5);
    const auto anyOffset = [&] {
        return static_cast<uint32_t>(random.chance(70) ? random.between(0, 40 + 12 * count)
                                                       : random.between(0, INT_MAX));
    };
    for (int i = 0; i < count; ++i) {
        const unsigned tag = kTags[random.between(0, 17)];
        entries.push_back({tag, 2, static_cast<uint32_t>(random.between(0, 12)), anyOffset(), false});
    }
    entries.insert(entries.begin() + random.between(0, count),
                   orientationEntry(static_cast<unsigned>(random.between(0, 9))));
    Bytes block = blockOf(entries, random.chance(50));
    for (int i = random.between(0, 40); i > 0; --i) block.push_back(random.byte());
    if (random.chance(30)) block.resize(static_cast<size_t>(random.between(0, static_cast<int>(block.size()))));
    if (random.chance(40) && !block.empty())
        for (int i = random.between(1, 3); i > 0; --i)
            block[static_cast<size_t>(random.between(0, static_cast<int>(block.size()) - 1))] =
                random.chance(50) ? random.byte() : static_cast<uint8_t>(random.between(0, 40));
    return block;
}

TEST(ExifOrientation, BrokenExifBlocksTurnAsOpenCVTurns) {
    Random random(33);
    const Bytes stored = anyStream(random, 1, 5, 3);
    int turned = 0;
    for (int round = 0; round < 4000; ++round) {
        const Bytes stream = withApp1(stored, brokenBlock(random));
        const Reading r = read(stream);
        expectSame(r, decodeWithOpenCV(stream, cv::IMREAD_ANYCOLOR), "broken block", round);
        turned += r.image->width == 3;
    }
    EXPECT_GT(turned, 400);
    EXPECT_LT(turned, 3000);
}

}    // namespace
