// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// A TIFF whose pages are the compressed streams as they are. Each is one strip.
#include <tiffio.h>
#include <unistd.h>

#include <system_error>

#include "book.h"
#include "unnamed_file.h"

namespace {

constexpr uint64_t kMostOfClassicTiff = 4000000000;

void setTags(TIFF* tiff, const PageStream& page, size_t number, size_t count) {
    const bool fax = page.kind == PageStream::kG4;
    const bool colour = page.kind == PageStream::kColourJpeg;
    TIFFSetField(tiff, TIFFTAG_SUBFILETYPE, FILETYPE_PAGE);
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, page.width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, page.height);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, fax ? 1 : 8);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, colour ? 3 : 1);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, fax ? COMPRESSION_CCITTFAX4 : COMPRESSION_JPEG);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC,
                 fax ? PHOTOMETRIC_MINISWHITE : (colour ? PHOTOMETRIC_YCBCR : PHOTOMETRIC_MINISBLACK));
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, page.height);
    TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
    TIFFSetField(tiff, TIFFTAG_XRESOLUTION, static_cast<double>(page.dpiX));
    TIFFSetField(tiff, TIFFTAG_YRESOLUTION, static_cast<double>(page.dpiY));
    if (count <= 65535) TIFFSetField(tiff, TIFFTAG_PAGENUMBER, static_cast<int>(number), static_cast<int>(count));
}

// The factors by which the chroma of a JPEG stream is reduced: those of its first component.
void setSubsampling(TIFF* tiff, const std::vector<uint8_t>& jpeg) {
    for (size_t i = 2; i + 11 < jpeg.size(); i += 2 + (size_t{jpeg[i + 2]} << 8 | jpeg[i + 3]))
        if (jpeg[i + 1] >= 0xC0 && jpeg[i + 1] <= 0xC2) {
            TIFFSetField(tiff, TIFFTAG_YCBCRSUBSAMPLING, jpeg[i + 11] >> 4, jpeg[i + 11] & 15);
            return;
        }
}

}    // namespace

void writeTiff(const BookPages& pages, const Spool& spool, UnnamedFile& file, const std::string& title,
               const std::string& mark) {
    errno = 0;
    const std::unique_ptr<TIFF, void (*)(TIFF*)> tiff(
        TIFFFdOpen(dup(file.descriptor()), "", spool.size() > kMostOfClassicTiff ? "w8" : "w"), TIFFClose);
    bool good = tiff != nullptr;
    size_t number = 0;
    for (auto it = pages.begin(); good && it != pages.end(); ++it, ++number) {
        std::vector<uint8_t> bytes = spool.read(it->second.place);
        setTags(tiff.get(), it->second.page, number, pages.size());
        if (it->second.page.kind == PageStream::kColourJpeg) setSubsampling(tiff.get(), bytes);
        if (number == 0) TIFFSetField(tiff.get(), TIFFTAG_IMAGEDESCRIPTION, mark.c_str());
        TIFFSetField(tiff.get(), TIFFTAG_DOCUMENTNAME, title.c_str());
        good = TIFFWriteRawStrip(tiff.get(), 0, bytes.data(), static_cast<tmsize_t>(bytes.size())) >= 0 &&
               TIFFWriteDirectory(tiff.get()) != 0;
    }
    if (!good) throw std::system_error(errno != 0 ? errno : EIO, std::generic_category());
}
