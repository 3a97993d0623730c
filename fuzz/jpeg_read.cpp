// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Reading of arbitrary bytes: the result is an error, or the page that OpenCV's decoder returns.
#include <algorithm>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include "core/ownership.h"
#include "core/pixel_memory.h"
#include "support.h"
#include "support/jpeg_report.h"
#include "support/reading.h"

namespace {

using fuzz::require;

// Checks that the record matches its block, and the description the record.
void requireWhole(const Reading& r) {
    require((r.status == noErr) == (r.image != nullptr), "a record is made exactly on success");
    require(r.status == noErr || r.status == paramErr || r.status == memFullErr, "one of three statuses");
    require(r.description.horizontalResolution == 300 && r.description.verticalResolution == 600 &&
                r.description.reserved == 77,
            "the description's other fields are the caller's");
    if (!r.image) return;
    const KVIMG& image = *r.image;
    require(image.depth == 8 || image.depth == 24, "depth");
    require(image.rowBytes == image.width * image.depth / 8 && image.size == image.rowBytes * image.height, "size");
    require(r.description.width == image.width && r.description.height == image.height &&
                r.description.depth == image.depth,
            "description");
}

cv::Mat decode(const std::vector<uint8_t>& stream, int flags) {
    cv::Mat image;
    fuzz::survives([&] { image = cv::imdecode(stream, flags); });
    return image;
}

// An upper bound: the marker codes may also occur inside segments.
bool mayHaveTooManyScans(const std::vector<uint8_t>& stream) {
    int count = 0;
    for (size_t i = 0; i + 1 < stream.size(); ++i) count += stream[i] == 0xFF && stream[i + 1] == 0xDA;
    return count > 100;
}

void requireSamePixels(const KVIMG& image, const cv::Mat& decoded) {
    require(image.width == decoded.cols && image.height == decoded.rows && image.depth == 8 * decoded.channels(),
            "OpenCV's size");
    cv::Mat rgb = decoded;
    if (decoded.channels() == 3) cv::cvtColor(decoded, rgb, cv::COLOR_BGR2RGB);
    require(std::equal(image.data, image.data + image.size, rgb.data), "OpenCV's pixels");
}

void requireAsOpenCV(const Reading& r, const std::vector<uint8_t>& stream, int flags) {
    if (r.status == memFullErr) return;
    const cv::Mat decoded = decode(stream, flags);
    if (r.image) {
        require(decoded.data != nullptr, "OpenCV reads what is read");
        requireSamePixels(*r.image, decoded);
    } else if (decoded.data && !mayHaveTooManyScans(stream)) {
        require(holdsNoRow(decode(stream, flags | cv::IMREAD_IGNORE_ORIENTATION)), "what OpenCV reads is read");
    }
}

// A grey page needs three times its memory in colour.
bool colourCanBeHad(const KVIMG& image) {
    const size_t bytes = 3 * static_cast<size_t>(image.width) * static_cast<size_t>(image.height);
    return opcv::PixelBlock(static_cast<unsigned char*>(opcv::allocatePixels(bytes))) != nullptr;
}

// The page of a report in rows of the caller's, and its headers alone.
void requireSameRows(const std::vector<uint8_t>& stream, const PageReading& page) {
    opcv_read_report headers = newReport();
    require(opcv_read_info(stream.data(), stream.size(), nullptr, &headers) == OPCV_READ_OK &&
                headers.width == page.report.width && headers.height == page.report.height,
            "the headers of a page");
    std::vector<uint8_t> pixels(static_cast<size_t>(page.image->size));
    const opcv_rows rows = {pixels.data(), page.image->rowBytes, headers.width, headers.height, headers.channels};
    const opcv_read_status status = opcv_read_rows(stream.data(), stream.size(), nullptr, &rows, nullptr);
    require(status == OPCV_READ_NO_MEMORY || (status == OPCV_READ_OK && pixels == page.pixels()), "the same rows");
}

// The reader with a report gives the same page, and says no less than the page shows.
void requireSameWithReport(const Reading& r, const std::vector<uint8_t>& stream) {
    PageReading page;
    KVIMG* record = nullptr;
    page.status = opcv_read_page(stream.data(), stream.size(), nullptr, &record, &page.report);
    page.image.reset(record);
    if (r.status == memFullErr || page.status == OPCV_READ_NO_MEMORY) return;
    require((page.status == OPCV_READ_OK) == (r.status == noErr), "both readers read, or neither");
    const opcv_read_report& report = page.report;
    require(report.rows_decoded >= 0 && report.rows_decoded <= report.rows, "rows");
    require(page.status != OPCV_READ_UNREADABLE || report.damaged == 1, "what cannot be read is damaged");
    if (!page.image) return;
    require(page.pixels() == r.pixels() && report.width == r.image->width && report.height == r.image->height,
            "the same page");
    require(report.damaged == 1 ||
                (report.rows_decoded == report.rows && report.end_marker_seen == 1 && report.warnings == 0),
            "a whole page");
    requireSameRows(stream, page);
}

bool isJpeg(const std::vector<uint8_t>& stream) {
    return stream.size() >= 3 && stream[0] == 0xFF && stream[1] == 0xD8 && stream[2] == 0xFF;
}

}    // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::vector<uint8_t> stream(data, data + size);    // ends where its allocation ends
    const Reading r = read(stream, size % 2 == 0 ? ReadJPEG : ReadJPEGWithIPP);
    requireWhole(r);
    requireSameWithReport(r, stream);
    if (!isJpeg(stream)) {
        require(r.status == paramErr, "other formats are refused");
        return 0;
    }
    requireAsOpenCV(r, stream, cv::IMREAD_ANYCOLOR);

    if (!r.image) {
        requireWhole(readSplit(stream, r.description.width, r.description.height, ReadSplitJPEG));
        return 0;
    }
    const Reading piece = readSplit(stream, r.image->width, r.image->height, ReadSplitJPEG);
    requireWhole(piece);
    if (piece.image) {
        require(piece.image->depth == 24, "a page of the stated size is read in colour");
        requireAsOpenCV(piece, stream, cv::IMREAD_COLOR);
    } else {
        require(piece.status == memFullErr && !colourCanBeHad(*r.image), "a page of the stated size is read");
    }
    require(readSplit(stream, r.image->width + 1, r.image->height, ReadSplitJPEG).status == paramErr,
            "another width is refused");
    require(readSplit(stream, r.image->width, r.image->height - 1, ReadSplitJPEG).status == paramErr,
            "another height is refused");
    return 0;
}
