// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "result_mark.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <functional>
#include <optional>
#include <string_view>
#include <system_error>

#include "sum.h"

namespace {

constexpr size_t kPiece = 1 << 20;
constexpr std::string_view kStart = "scanpage: page ";
constexpr std::string_view kBeforeSum = ", sum ";
constexpr std::string_view kNoSum = "0000000000000000";
constexpr std::string_view kPng = "\x89PNG";
constexpr std::string_view::size_type kPngChecksum = 4;    // of the comment, behind its text

std::string digitsOf(uint64_t value) {
    char text[17];
    std::snprintf(text, sizeof(text), "%016llx", static_cast<unsigned long long>(value));
    return text;
}

// Reads up to `size` bytes from a place and returns how many there are.
using Reader = std::function<size_t(size_t place, char* to, size_t size)>;

Reader readerOf(const std::vector<uint8_t>& file) {
    return [&file](size_t place, char* to, size_t size) {
        const size_t count = std::min(size, file.size() - std::min(place, file.size()));
        if (count > 0) std::memcpy(to, file.data() + place, count);
        return count;
    };
}

// Up to kPiece bytes of a file from a place on.
std::string pieceOf(int descriptor, size_t place) {
    if (lseek(descriptor, static_cast<off_t>(place), SEEK_SET) < 0)
        throw std::system_error(errno, std::generic_category());
    std::string piece(kPiece, '\0');
    size_t filled = 0;
    while (filled < kPiece) {
        const ssize_t got = read(descriptor, piece.data() + filled, kPiece - filled);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) throw std::system_error(errno, std::generic_category());
        if (got == 0) break;
        filled += static_cast<size_t>(got);
    }
    piece.resize(filled);
    return piece;
}

// Keeps a piece, so that a usual result is read once.
Reader readerOf(int descriptor) {
    return
        [descriptor, piece = pieceOf(descriptor, 0), start = size_t{0}](size_t place, char* to, size_t size) mutable {
            const bool isLast = piece.size() < kPiece;
            if (place < start || (place + size > start + piece.size() && !isLast)) {
                piece = pieceOf(descriptor, place);
                start = place;
            }
            const size_t from = std::min(place - start, piece.size());
            return piece.copy(to, size, from);
        };
}

// Where the line begins and where the digits of its sum do.
struct Place {
    size_t start, digits;
};

// The first of them in the file, from a place on. Pieces overlap, so that none is missed between two.
std::optional<size_t> find(const Reader& reader, std::string_view wanted, size_t from) {
    std::string piece(kPiece, '\0');
    for (size_t place = from;; place += kPiece - wanted.size() + 1) {
        const size_t count = reader(place, piece.data(), kPiece);
        const size_t found = std::string_view(piece.data(), count).find(wanted);
        if (found != std::string_view::npos) return place + found;
        if (count < kPiece) return std::nullopt;
    }
}

std::optional<Place> findMark(const Reader& reader) {
    const auto start = find(reader, kStart, 0);
    if (!start) return std::nullopt;
    const auto beforeSum = find(reader, kBeforeSum, *start);
    if (!beforeSum) return std::nullopt;
    return Place{*start, *beforeSum + kBeforeSum.size()};
}

std::string textAt(const Reader& reader, size_t place, size_t size) {
    std::string text(size, '\0');
    text.resize(reader(place, text.data(), size));
    return text;
}

// In a PNG a checksum of the comment follows the digits and depends on them.
std::string sealedSum(const Reader& reader, const Place& place, const std::string& name) {
    const bool png = textAt(reader, 0, kPng.size()) == kPng;
    Sum sum;
    sum.add(name.data(), name.size() + 1);
    std::string piece(kPiece, '\0');
    for (size_t at = 0; at < place.digits;) {
        const size_t count = reader(at, piece.data(), std::min(kPiece, place.digits - at));
        if (count == 0) break;
        sum.add(piece.data(), count);
        at += count;
    }
    for (size_t at = place.digits + kNoSum.size() + (png ? kPngChecksum : 0);;) {
        const size_t count = reader(at, piece.data(), kPiece);
        sum.add(piece.data(), count);
        at += count;
        if (count < kPiece) return digitsOf(sum.value());
    }
}

}    // namespace

std::string resultMark(uint64_t pageSum, const std::string& options) {
    return std::string(kStart) + digitsOf(pageSum) + ", options " + options + std::string(kBeforeSum) +
           std::string(kNoSum);
}

void seal(std::vector<uint8_t>& file, const std::string& name) {
    const Reader reader = readerOf(file);
    const auto place = findMark(reader);
    if (!place) return;
    const std::string sum = sealedSum(reader, *place, name);
    std::copy(sum.begin(), sum.end(), file.begin() + static_cast<ptrdiff_t>(place->digits));
}

void seal(int descriptor, const std::string& name) {
    const Reader reader = readerOf(descriptor);
    const auto place = findMark(reader);
    if (!place) return;
    const std::string sum = sealedSum(reader, *place, name);
    if (lseek(descriptor, static_cast<off_t>(place->digits), SEEK_SET) < 0 ||
        write(descriptor, sum.data(), sum.size()) != static_cast<ssize_t>(sum.size()))
        throw std::system_error(errno, std::generic_category());
}

std::string markOf(int descriptor, const std::string& name) {
    try {
        const Reader reader = readerOf(descriptor);
        const auto place = findMark(reader);
        if (!place || textAt(reader, place->digits, kNoSum.size()) != sealedSum(reader, *place, name)) return {};
        return textAt(reader, place->start, place->digits - place->start) + std::string(kNoSum);
    } catch (const std::system_error&) {
        return {};
    }
}
