// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "tiff_file.h"

#include <algorithm>

#include "record.h"
#include "tiff_pixels.h"

namespace {

constexpr tmsize_t kMostMemory = tmsize_t{1} << 30;    // of one block that libtiff allocates
constexpr double kCentimetresPerInch = 2.54;

bool isPage(TIFF* tiff) {
    uint32_t kind = 0;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SUBFILETYPE, &kind);
    return (kind & (FILETYPE_REDUCEDIMAGE | FILETYPE_MASK)) == 0;
}

Resolution resolutionOf(TIFF* tiff) {
    float x = 0;
    float y = 0;
    uint16_t unit = RESUNIT_INCH;
    TIFFGetField(tiff, TIFFTAG_XRESOLUTION, &x);
    TIFFGetField(tiff, TIFFTAG_YRESOLUTION, &y);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_RESOLUTIONUNIT, &unit);
    if (unit == RESUNIT_NONE) return {};
    const double scale = unit == RESUNIT_CENTIMETER ? kCentimetresPerInch : 1;
    return {x * scale, y * scale};
}

// The page as its orientation lays it out. Those above 4 exchange rows and columns.
Record laidOut(Record page, uint16_t orientation) {
    if (orientation <= ORIENTATION_TOPLEFT || orientation > ORIENTATION_LEFTBOT) return page;
    const bool exchanged = orientation >= ORIENTATION_LEFTTOP;
    const bool fromRight = orientation == ORIENTATION_TOPRIGHT || orientation == ORIENTATION_BOTRIGHT ||
                           orientation == ORIENTATION_RIGHTTOP || orientation == ORIENTATION_RIGHTBOT;
    const bool fromBottom = orientation == ORIENTATION_BOTRIGHT || orientation == ORIENTATION_BOTLEFT ||
                            orientation == ORIENTATION_RIGHTBOT || orientation == ORIENTATION_LEFTBOT;
    const int channels = page->depth / 8;
    Record result =
        exchanged ? newRecord(page->height, page->width, channels) : newRecord(page->width, page->height, channels);
    for (int y = 0; y < result->height; ++y) {
        uint8_t* to = result->data + ptrdiff_t{y} * result->rowBytes;
        for (int x = 0; x < result->width; ++x, to += channels) {
            const int along = fromRight ? result->width - 1 - x : x;
            const int down = fromBottom ? result->height - 1 - y : y;
            const uint8_t* from = page->data + ptrdiff_t{exchanged ? along : down} * page->rowBytes +
                                  ptrdiff_t{exchanged ? down : along} * channels;
            std::copy_n(from, channels, to);
        }
    }
    return result;
}

}    // namespace

TiffFile::TiffFile(InputFile& file) : source_{file}, tiff_(nullptr, TIFFClose) {
    const std::unique_ptr<TIFFOpenOptions, void (*)(TIFFOpenOptions*)> options(TIFFOpenOptionsAlloc(),
                                                                               TIFFOpenOptionsFree);
    if (!options) throw std::bad_alloc();
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), kMostMemory);
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), complain, &source_);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), complain, &source_);
    tiff_.reset(TIFFClientOpenExt("", "rm", &source_, readBytes, writeBytes, seek, closeFile, sizeOfFile, nullptr,
                                  nullptr, options.get()));
    if (!tiff_) throw std::runtime_error("cannot be decoded");
    findPages();
}

void TiffFile::findPages() {
    do {
        if (isPage(tiff_.get())) directories_.push_back(TIFFCurrentDirOffset(tiff_.get()));
        chainIsBroken_ = TIFFLastDirectory(tiff_.get()) == 0;
    } while (TIFFReadDirectory(tiff_.get()) != 0);
    if (directories_.empty()) throw std::runtime_error("cannot be decoded");
}

DecodedPage TiffFile::decode(size_t page, int assumedDpi) {
    if (TIFFSetSubDirectory(tiff_.get(), directories_.at(page)) == 0) throw std::runtime_error("cannot be decoded");
    DecodedPage decoded = decodeDirectory(assumedDpi);
    if (decoded.damage.empty() && chainIsBroken_ && page + 1 == pages())
        decoded.damage = "is damaged: the pages behind this one cannot be found";
    return decoded;
}

DecodedPage TiffFile::decodeDirectory(int assumedDpi) {
    uint16_t orientation = ORIENTATION_TOPLEFT;
    TIFFGetFieldDefaulted(tiff_.get(), TIFFTAG_ORIENTATION, &orientation);
    Resolution resolution = resolutionOf(tiff_.get());
    source_.complaint = false;    // those about tags do not matter
    TiffPixels pixels = readPixels(tiff_.get(), source_.file.size());
    DecodedPage page{};
    if (pixels.rows < pixels.record->height)
        page.damage = rowsMissing(pixels.rows, pixels.record->height);
    else if (source_.complaint)
        page.damage = "is damaged: its data contain errors";
    page.isBilevel = pixels.isBilevel;
    page.record = laidOut(std::move(pixels.record), orientation);
    if (orientation >= ORIENTATION_LEFTTOP) std::swap(resolution.x, resolution.y);
    page.description = describe(*page.record, resolution, assumedDpi);
    return page;
}

// Exceptions must not propagate through libtiff; fewer bytes than it wants are an error to it.
tmsize_t TiffFile::readBytes(thandle_t handle, void* to, tmsize_t size) {
    Source& source = *static_cast<Source*>(handle);
    try {
        const size_t got = source.file.readAt(source.place, to, static_cast<size_t>(size));
        source.place += got;
        return static_cast<tmsize_t>(got);
    } catch (const std::exception&) {
        return -1;
    }
}

tmsize_t TiffFile::writeBytes(thandle_t, void*, tmsize_t) { return -1; }

toff_t TiffFile::seek(thandle_t handle, toff_t offset, int whence) {
    Source& source = *static_cast<Source*>(handle);
    const uint64_t from = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? source.place : source.file.size();
    source.place = std::min<uint64_t>(from + offset, source.file.size());
    return source.place;
}

int TiffFile::closeFile(thandle_t) { return 0; }

toff_t TiffFile::sizeOfFile(thandle_t handle) { return static_cast<Source*>(handle)->file.size(); }

int TiffFile::complain(TIFF*, void* source, const char*, const char*, va_list) {
    static_cast<Source*>(source)->complaint = true;
    return 1;    // nothing is printed
}
