// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "jpeg_resolution.h"

#include <cstring>

namespace binding {

namespace {

// The resolution in the headers before the first scan.
struct Headers {
    bool known = false;
    Dpi dpi;
    int width = 0;
    int height = 0;
};

class HeaderReader {
public:
    HeaderReader(const unsigned char* data, size_t size) : data_(data), size_(size) {}

    Headers read() const {
        Headers headers;
        for (size_t at = 2; at + 4 <= size_ && data_[at] == 0xFF;) {
            const int marker = data_[at + 1];
            if (marker == 0xFF) {    // fill byte
                ++at;
                continue;
            }
            if (marker == kStartOfScan) break;
            const auto length = static_cast<size_t>(word(at + 2));
            if (length < 2 || at + 2 + length > size_) break;
            readSegment(marker, at + 4, length - 2, headers);
            at += 2 + length;
        }
        return headers;
    }

private:
    static constexpr int kStartOfScan = 0xDA;
    static constexpr int kApp0 = 0xE0;

    int word(size_t at) const { return data_[at] << 8 | data_[at + 1]; }

    static bool isFrame(int marker) {
        constexpr int kHuffmanTables = 0xC4;
        constexpr int kReserved = 0xC8;
        constexpr int kArithmetic = 0xCC;
        return marker >= 0xC0 && marker <= 0xCF && marker != kHuffmanTables && marker != kReserved &&
               marker != kArithmetic;
    }

    void readSegment(int marker, size_t at, size_t length, Headers& headers) const {
        if (marker == kApp0 && length >= 12 && std::memcmp(data_ + at, "JFIF", 5) == 0) readDensity(at + 7, headers);
        if (isFrame(marker) && length >= 5) {
            headers.height = word(at + 1);
            headers.width = word(at + 3);
        }
    }

    void readDensity(size_t at, Headers& headers) const {
        constexpr int kPerInch = 1;
        constexpr int kPerCentimetre = 2;
        constexpr double kCentimetresOfInch = 2.54;
        const int unit = data_[at];
        const double scale = unit == kPerCentimetre ? kCentimetresOfInch : 1;
        headers.dpi = {scaledDpi(word(at + 1), scale), scaledDpi(word(at + 3), scale)};
        headers.known = (unit == kPerInch || unit == kPerCentimetre) && word(at + 1) != 0 && word(at + 3) != 0;
    }

    const unsigned char* data_;
    size_t size_;
};

}    // namespace

Dpi resolutionOf(const unsigned char* stream, size_t size, const KVIMG& page, int otherwise) {
    const Headers headers = HeaderReader(stream, size).read();
    if (!headers.known) return {otherwise, otherwise};
    const bool turned = headers.width != headers.height && headers.width == page.height && headers.height == page.width;
    return turned ? Dpi{headers.dpi.y, headers.dpi.x} : headers.dpi;
}

}    // namespace binding
