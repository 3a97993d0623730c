// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Strips of grey, palette and RGB pixels are read row by row. libtiff converts the rest: tiles, separate planes, CMYK,
// CIE L*a*b* and YCbCr that is not JPEG.
#include "tiff_pixels.h"

#include <array>
#include <string>

#include "record.h"

namespace {

constexpr uint64_t kBestRatio = 1500;    // of LZW; deflate reaches 1032
constexpr uint64_t kRowsPerByte = 8;     // of fax: a row takes a bit at least

template <class T>
T tag(TIFF* tiff, uint32_t name, T otherwise) {
    T value = otherwise;
    TIFFGetFieldDefaulted(tiff, name, &value);
    return value;
}

bool isFax(uint16_t compression) {
    return compression == COMPRESSION_CCITTFAX4 || compression == COMPRESSION_CCITTFAX3 ||
           compression == COMPRESSION_CCITTRLE || compression == COMPRESSION_CCITTRLEW;
}

// How the pixels are stored.
struct Layout {
    explicit Layout(TIFF* tiff)
        : width(tag<uint32_t>(tiff, TIFFTAG_IMAGEWIDTH, 0)),
          height(tag<uint32_t>(tiff, TIFFTAG_IMAGELENGTH, 0)),
          bits(tag<uint16_t>(tiff, TIFFTAG_BITSPERSAMPLE, 1)),
          samples(tag<uint16_t>(tiff, TIFFTAG_SAMPLESPERPIXEL, 1)),
          kind(tag<uint16_t>(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISWHITE)),
          compression(tag<uint16_t>(tiff, TIFFTAG_COMPRESSION, COMPRESSION_NONE)) {
        uint16_t count = 0;
        uint16_t* kinds = nullptr;
        TIFFGetFieldDefaulted(tiff, TIFFTAG_EXTRASAMPLES, &count, &kinds);
        if (count > 0 && kinds[0] != EXTRASAMPLE_UNSPECIFIED) opacity = samples - count;
        premultiplied = count > 0 && kinds[0] == EXTRASAMPLE_ASSOCALPHA;
        inRows = TIFFIsTiled(tiff) == 0 && (samples == 1 || tag<uint16_t>(tiff, TIFFTAG_PLANARCONFIG, 1) == 1);
        inWholeNumbers = tag<uint16_t>(tiff, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT) == SAMPLEFORMAT_UINT;
    }

    bool isGrey() const { return kind == PHOTOMETRIC_MINISWHITE || kind == PHOTOMETRIC_MINISBLACK; }
    bool isBilevel() const { return isGrey() && bits == 1 && samples == 1; }

    bool canBeReadByRows() const {
        const bool known = (isGrey() && samples >= 1) || (kind == PHOTOMETRIC_PALETTE && samples == 1 && bits <= 8) ||
                           (kind == PHOTOMETRIC_RGB && samples >= 3);
        const bool usual = bits == 1 || bits == 2 || bits == 4 || bits == 8 || bits == 16;
        return inRows && inWholeNumbers && known && usual;
    }

    uint32_t width, height;
    uint16_t bits, samples, kind, compression;
    int opacity = 0;    // the sample that holds it; 0: none
    bool premultiplied = false, inRows = false, inWholeNumbers = false;
};

// Rows of samples to rows of a page.
class RowConverter {
public:
    RowConverter(TIFF* tiff, const Layout& layout) : layout_(layout), samples_(size_t{layout.width} * layout.samples) {
        if (layout.kind == PHOTOMETRIC_PALETTE) readPalette(tiff);
    }

    int channels() const { return layout_.isGrey() ? 1 : 3; }

    void convert(const std::vector<uint8_t>& from, uint8_t* to) {
        if (layout_.bits == 16)
            scale16(from.data());
        else
            spread(from);
        const uint8_t* p = samples_.data();
        for (uint32_t x = 0; x < layout_.width; ++x, p += layout_.samples, to += channels())
            for (int c = 0; c < channels(); ++c) to[c] = colour(p, c);
    }

private:
    void scale16(const uint8_t* from) {
        const auto* words = reinterpret_cast<const uint16_t*>(from);    // aligned as all that new returns
        for (size_t i = 0; i < samples_.size(); ++i)
            samples_[i] = static_cast<uint8_t>((words[i] * 255U + 32895U) >> 16);
    }

    // Samples of 1 to 8 bits; those of a palette are its indices.
    void spread(const std::vector<uint8_t>& from) {
        const unsigned most = (1U << layout_.bits) - 1;
        const unsigned scale = layout_.kind == PHOTOMETRIC_PALETTE ? 1 : 255 / most;
        const unsigned perByte = 8U / layout_.bits;
        for (size_t i = 0; i < samples_.size(); ++i) {
            const auto shift = static_cast<unsigned>(perByte - 1 - i % perByte) * layout_.bits;
            samples_[i] = static_cast<uint8_t>((from[i / perByte] >> shift & most) * scale);
        }
    }

    uint8_t colour(const uint8_t* pixel, int channel) const {
        if (layout_.kind == PHOTOMETRIC_PALETTE) return palette_[static_cast<size_t>(channel)][pixel[0]];
        int value = pixel[channel];
        if (layout_.kind == PHOTOMETRIC_MINISWHITE) value = 255 - value;
        if (layout_.opacity == 0) return static_cast<uint8_t>(value);
        const int opacity = pixel[layout_.opacity];    // on white paper
        if (layout_.premultiplied) return static_cast<uint8_t>(std::min(255, value + 255 - opacity));
        return static_cast<uint8_t>(255 - ((255 - value) * opacity + 127) / 255);
    }

    // Old files have palettes of 8 bits.
    void readPalette(TIFF* tiff) {
        std::array<uint16_t*, 3> colours{};
        if (TIFFGetField(tiff, TIFFTAG_COLORMAP, &colours[0], &colours[1], &colours[2]) == 0)
            throw std::runtime_error("cannot be decoded");
        const size_t count = size_t{1} << layout_.bits;
        bool has16 = false;
        for (const uint16_t* map : colours)
            for (size_t i = 0; i < count; ++i) has16 = has16 || map[i] > 255;
        for (size_t c = 0; c < 3; ++c)
            for (size_t i = 0; i < count; ++i)
                palette_[c][i] = static_cast<uint8_t>(has16 ? colours[c][i] >> 8 : colours[c][i]);
    }

    const Layout& layout_;
    std::vector<uint8_t> samples_;
    std::array<std::array<uint8_t, 256>, 3> palette_{};
};

void requirePossible(TIFF* tiff, const Layout& layout, size_t fileBytes) {
    requirePageSize(layout.width, layout.height);
    if (layout.compression == COMPRESSION_NONE)
        requirePlausible(fileBytes, static_cast<uint64_t>(TIFFScanlineSize64(tiff)) * layout.height, 1);
    else if (!isFax(layout.compression))
        requirePlausible(fileBytes, static_cast<uint64_t>(TIFFScanlineSize64(tiff)) * layout.height, kBestRatio);
    else if (layout.height / kRowsPerByte > fileBytes)
        throw std::runtime_error("cannot be decoded: it is too short for a page of its size");
}

// The page is allocated when its first row is there.
TiffPixels readRows(TIFF* tiff, const Layout& layout) {
    RowConverter converter(tiff, layout);
    std::vector<uint8_t> row(static_cast<size_t>(TIFFScanlineSize64(tiff)));
    TiffPixels pixels;
    pixels.isBilevel = layout.isBilevel();
    for (; pixels.rows < static_cast<int>(layout.height); ++pixels.rows) {
        if (TIFFReadScanline(tiff, row.data(), static_cast<uint32_t>(pixels.rows), 0) < 0) break;
        if (!pixels.record)
            pixels.record =
                newRecord(static_cast<int>(layout.width), static_cast<int>(layout.height), converter.channels());
        converter.convert(row, pixels.record->data + ptrdiff_t{pixels.rows} * pixels.record->rowBytes);
    }
    if (!pixels.record) throw std::runtime_error("cannot be decoded");
    whitenRows(*pixels.record, pixels.rows);
    return pixels;
}

// Pixels that cannot be read stay white. libtiff reports the fault.
TiffPixels readAll(TIFF* tiff, const Layout& layout) {
    std::array<char, 1024> reason{};
    if (TIFFRGBAImageOK(tiff, reason.data()) == 0)
        throw std::runtime_error("cannot be decoded: " + std::string(reason.data()));
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);    // no flipping here
    std::vector<uint32_t> raster(size_t{layout.width} * layout.height, 0xFFFFFFFF);
    TIFFReadRGBAImageOriented(tiff, layout.width, layout.height, raster.data(), ORIENTATION_TOPLEFT, 0);
    TiffPixels pixels;
    const int channels = layout.isGrey() ? 1 : 3;
    pixels.record = newRecord(static_cast<int>(layout.width), static_cast<int>(layout.height), channels);
    pixels.rows = static_cast<int>(layout.height);
    pixels.isBilevel = layout.isBilevel();
    const uint32_t* from = raster.data();
    for (int y = 0; y < pixels.rows; ++y) {
        uint8_t* to = pixels.record->data + ptrdiff_t{y} * pixels.record->rowBytes;
        for (uint32_t x = 0; x < layout.width; ++x, ++from)
            for (int c = 0; c < channels; ++c) {    // premultiplied, on white paper
                const uint32_t value = (*from >> (8 * c) & 255) + 255 - TIFFGetA(*from);
                *to++ = static_cast<uint8_t>(std::min<uint32_t>(255, value));
            }
    }
    return pixels;
}

}    // namespace

TiffPixels readPixels(TIFF* tiff, size_t fileBytes) {
    Layout layout(tiff);
    if (layout.kind == PHOTOMETRIC_YCBCR && layout.compression == COMPRESSION_JPEG && layout.inRows) {
        TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
        layout.kind = PHOTOMETRIC_RGB;
    }
    requirePossible(tiff, layout, fileBytes);
    return layout.canBeReadByRows() ? readRows(tiff, layout) : readAll(tiff, layout);
}
