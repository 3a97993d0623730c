// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "page_file.h"

#include <algorithm>
#include <cctype>
#include <set>
#include <string>
#include <string_view>

#include "jpeg_header.h"
#include "sum.h"

namespace {

using namespace std::string_view_literals;

constexpr size_t kPiece = 65536;

bool beginsWith(const std::vector<uint8_t>& bytes, std::string_view start) {
    return bytes.size() >= start.size() && std::equal(start.begin(), start.end(), bytes.begin(),
                                                      [](char a, uint8_t b) { return static_cast<uint8_t>(a) == b; });
}

bool isTiff(const std::vector<uint8_t>& bytes) {
    for (const std::string_view start : {"II*\0"sv, "MM\0*"sv, "II+\0"sv, "MM\0+"sv})
        if (beginsWith(bytes, start)) return true;
    return false;
}

bool isJpeg(const std::vector<uint8_t>& bytes) { return beginsWith(bytes, "\xFF\xD8"sv); }

bool isPng(const std::vector<uint8_t>& bytes) { return beginsWith(bytes, "\x89PNG\r\n\x1A\n\0\0\0\rIHDR"sv); }

bool isPnm(const std::vector<uint8_t>& bytes) {
    if (bytes.size() < 3 || bytes[0] != 'P' || bytes[1] < '1' || bytes[1] > '6') return false;
    return std::string_view(" \t\n\v\f\r#").find(static_cast<char>(bytes[2])) != std::string_view::npos;
}

void readJpeg(InputFile& file, std::vector<uint8_t>& bytes) {
    JpegHeader header;
    for (;;) {
        if (!header.accept(bytes)) throw std::runtime_error("is not a JPEG file");
        if (bytes.size() >= file.size()) return;
        file.append(bytes, header.scanFound() ? file.size() : kPiece);
    }
}

}    // namespace

bool beginsLikePage(const std::vector<uint8_t>& bytes) { return isJpeg(bytes) || isPng(bytes) || isTiff(bytes); }

bool isNamedLikePage(const std::string& name) {
    std::string ending = name.substr(std::min(name.rfind('.'), name.size()));
    std::transform(ending.begin(), ending.end(), ending.begin(), [](unsigned char c) { return std::tolower(c); });
    static const std::set<std::string> kEndings = {".jpg", ".jpeg", ".png", ".tif", ".tiff",
                                                   ".pnm", ".pbm",  ".pgm", ".ppm"};
    return kEndings.count(ending) > 0;
}

PageFile::PageFile(InputFile file) : file_(std::move(file)) {
    file_.append(stream_, kSignature);
    if (isJpeg(stream_)) {
        readJpeg(file_, stream_);
        decodeStream_ = decodeJpeg;
    } else if (isTiff(stream_)) {
        tiff_.emplace(file_);
    } else if (isPng(stream_)) {
        decodeStream_ = decodePng;
    } else if (isPnm(stream_)) {
        file_.append(stream_, kPiece);
        requirePnm(stream_, file_.size());
        decodeStream_ = decodePnm;
    } else {
        throw std::runtime_error("is not a JPEG, PNG, TIFF or PNM file");
    }
    readSum();
}

void PageFile::readSum() {
    Sum sum;
    if (!tiff_) {
        file_.append(stream_, file_.size());
        sum.add(stream_.data(), stream_.size());
    } else {
        std::vector<uint8_t> piece(kPiece);
        for (size_t place = 0; place < file_.size(); place += kPiece)
            sum.add(piece.data(), file_.readAt(place, piece.data(), kPiece));
    }
    sum_ = sum.value();
}

uint64_t PageFile::sumOf(size_t page) const {
    Sum sum;
    sum.add(&sum_, sizeof(sum_));
    sum.add(&page, sizeof(page));
    return pages() == 1 ? sum_ : sum.value();
}

DecodedPage PageFile::decode(size_t page, int assumedDpi) {
    if (tiff_) return tiff_->decode(page, assumedDpi);
    const std::vector<uint8_t> stream = std::move(stream_);
    return decodeStream_(stream, assumedDpi);
}
