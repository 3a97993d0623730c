// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// A small parser of JPEG streams: the segments in order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <vector>

struct JpegSegment {
    int marker;                      // low byte: 0xD8 is SOI
    std::vector<uint8_t> payload;    // without the length field
    std::vector<uint8_t> coded;      // entropy-coded bytes after an SOS
};

class JpegStream {
public:
    enum : int {
        kSOF0 = 0xC0,
        kDHT = 0xC4,
        kSOI = 0xD8,
        kEOI = 0xD9,
        kSOS = 0xDA,
        kDQT = 0xDB,
        kAPP0 = 0xE0,
        kCOM = 0xFE
    };

    explicit JpegStream(const std::vector<uint8_t>& bytes) : bytes_(bytes) {
        while (at_ < bytes_.size()) segments.push_back(next());
    }

    std::vector<int> markers() const {
        std::vector<int> all;
        for (const JpegSegment& segment : segments) all.push_back(segment.marker);
        return all;
    }

    // The payloads of all segments of one kind.
    std::vector<std::vector<uint8_t>> all(int marker) const {
        std::vector<std::vector<uint8_t>> found;
        for (const JpegSegment& segment : segments)
            if (segment.marker == marker) found.push_back(segment.payload);
        return found;
    }
    std::vector<uint8_t> first(int marker) const { return all(marker).at(0); }

    // The values of a quantisation table in natural order.
    std::vector<unsigned> quantTable(int slot) const {
        static constexpr int kNaturalOfZigzag[64] = {0,  1,  8,  16, 9,  2,  3,  10, 17, 24, 32, 25, 18, 11, 4,  5,
                                                     12, 19, 26, 33, 40, 48, 41, 34, 27, 20, 13, 6,  7,  14, 21, 28,
                                                     35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23, 30, 37, 44, 51,
                                                     58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63};
        for (const auto& payload : all(kDQT))
            for (size_t i = 0; i + 65 <= payload.size(); i += 65)
                if (payload[i] == slot) {
                    std::vector<unsigned> table(64);
                    for (size_t k = 0; k < 64; ++k)
                        table[static_cast<size_t>(kNaturalOfZigzag[k])] = payload[i + 1 + k];
                    return table;
                }
        throw std::runtime_error("no such table");
    }

    std::vector<JpegSegment> segments;

private:
    uint8_t byte() {
        if (at_ >= bytes_.size()) throw std::runtime_error("stream ends within a segment");
        return bytes_[at_++];
    }

    JpegSegment next() {
        if (byte() != 0xFF) throw std::runtime_error("no marker");
        JpegSegment segment{byte(), {}, {}};
        if (segment.marker == kSOI || segment.marker == kEOI) return segment;
        const size_t high = byte();
        const size_t length = high * 256 + byte();
        for (size_t i = 2; i < length; ++i) segment.payload.push_back(byte());
        if (segment.marker == kSOS)
            while (at_ + 1 < bytes_.size() && !(bytes_[at_] == 0xFF && bytes_[at_ + 1] != 0))
                segment.coded.push_back(byte());
        return segment;
    }

    const std::vector<uint8_t>& bytes_;
    size_t at_ = 0;
};
