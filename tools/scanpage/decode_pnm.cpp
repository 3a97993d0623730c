// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// PBM, PGM and PPM, binary and plain. A file may hold several images; the first is the page.
#include <algorithm>
#include <cstring>

#include "decode.h"
#include "record.h"

namespace {

constexpr unsigned kMostDigits = 9;

bool isSpace(int c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool isDigit(int c) { return c >= '0' && c <= '9'; }

class PnmReader {
public:
    PnmReader(const std::vector<uint8_t>& stream, size_t fileBytes) : stream_(stream) { readHeader(fileBytes); }

    DecodedPage page(int assumedDpi) {
        DecodedPage page{};
        page.record = newRecord(width_, height_, channels_);
        page.isBilevel = isBitmap();
        const int rows = readRows(*page.record);
        if (rows == 0) throw std::runtime_error("cannot be decoded");
        if (rows < height_) page.damage = rowsMissing(rows, height_);
        whitenRows(*page.record, rows);
        page.description = describe(*page.record, {}, assumedDpi);
        return page;
    }

private:
    bool isBitmap() const { return kind_ == 1 || kind_ == 4; }
    bool isPlain() const { return kind_ <= 3; }
    size_t samplesInRow() const { return static_cast<size_t>(width_) * static_cast<size_t>(channels_); }

    size_t bytesInRow() const {
        if (isPlain()) return samplesInRow();    // at least
        return isBitmap() ? (samplesInRow() + 7) / 8 : samplesInRow() * (most_ > 255 ? 2 : 1);
    }

    void readHeader(size_t fileBytes) {
        kind_ = stream_.at(1) - '0';
        channels_ = kind_ == 3 || kind_ == 6 ? 3 : 1;
        const uint32_t width = readNumber();
        const uint32_t height = readNumber();
        most_ = isBitmap() ? 1 : readNumber();
        if (most_ == 0 || most_ > 65535) throw std::runtime_error("cannot be decoded");
        requirePageSize(width, height);
        width_ = static_cast<int>(width);
        height_ = static_cast<int>(height);
        requirePlausible(fileBytes, bytesInRow() * height, 1);
        ++next_;    // one space in front of the pixels
    }

    // -1 at the end.
    int peek() const { return next_ < stream_.size() ? stream_[next_] : -1; }

    void skipSpaceAndComments() {
        for (; isSpace(peek()) || peek() == '#'; ++next_)
            if (peek() == '#')
                while (peek() != '\n' && peek() != '\r' && peek() >= 0) ++next_;
    }

    // A negative number stands for none.
    int64_t findNumber() {
        skipSpaceAndComments();
        if (!isDigit(peek())) return -1;
        int64_t value = 0;
        for (unsigned digits = 0; isDigit(peek()); ++next_) {
            if (++digits > kMostDigits) return -1;
            value = 10 * value + (peek() - '0');
        }
        return value;
    }

    uint32_t readNumber() {
        const int64_t value = findNumber();
        if (value < 0) throw std::runtime_error("cannot be decoded");
        return static_cast<uint32_t>(value);
    }

    // Returns the number of whole rows.
    int readRows(KVIMG& page) {
        for (int y = 0; y < height_; ++y) {
            uint8_t* row = page.data + ptrdiff_t{y} * page.rowBytes;
            if (!(isPlain() ? readPlainRow(row) : readBinaryRow(row))) return y;
        }
        return height_;
    }

    bool readPlainRow(uint8_t* row) {
        for (size_t i = 0; i < samplesInRow(); ++i) {
            const int64_t value = isBitmap() ? findBit() : findNumber();
            if (value < 0) return false;
            row[i] = level(static_cast<uint32_t>(value));
        }
        return true;
    }

    // Bits need no space between them.
    int64_t findBit() {
        skipSpaceAndComments();
        const int c = peek();
        ++next_;
        return c == '0' || c == '1' ? c - '0' : -1;
    }

    bool readBinaryRow(uint8_t* row) {
        if (next_ > stream_.size() || stream_.size() - next_ < bytesInRow()) return false;
        const uint8_t* from = stream_.data() + next_;
        next_ += bytesInRow();
        if (most_ == 255) {
            std::memcpy(row, from, samplesInRow());
            return true;
        }
        for (size_t i = 0; i < samplesInRow(); ++i) {
            if (isBitmap())
                row[i] = level(from[i / 8] >> (7 - i % 8) & 1U);
            else
                row[i] = level(most_ > 255 ? uint32_t{from[2 * i]} << 8 | from[2 * i + 1] : from[i]);
        }
        return true;
    }

    // Ones of a bitmap are black; otherwise the largest value is white.
    uint8_t level(uint32_t value) const {
        if (isBitmap()) return value == 0 ? 255 : 0;
        return static_cast<uint8_t>((std::min(value, most_) * 255 + most_ / 2) / most_);
    }

    const std::vector<uint8_t>& stream_;
    size_t next_ = 2;
    int kind_ = 0, channels_ = 1, width_ = 0, height_ = 0;
    uint32_t most_ = 1;
};

}    // namespace

DecodedPage decodePnm(const std::vector<uint8_t>& stream, int assumedDpi) {
    return PnmReader(stream, stream.size()).page(assumedDpi);
}

void requirePnm(const std::vector<uint8_t>& start, size_t fileBytes) { PnmReader(start, fileBytes); }
