#include "write.h"

#include <tiffio.h>

#include <fstream>

namespace {

// PBM and fax mean black by a set bit, the library's packing means white.
std::vector<uint8_t> invertedRow(const Bits& bits, int y) {
    const uint8_t* row = bits.bytes.data() + ptrdiff_t{y} * bits.step;
    std::vector<uint8_t> inverted(row, row + (bits.width + 7) / 8);
    for (uint8_t& b : inverted) b = static_cast<uint8_t>(~b);
    return inverted;
}

}    // namespace

void writeFile(const void* data, size_t size, const std::string& file) {
    std::ofstream out(file, std::ios::binary);
    out.write(static_cast<const char*>(data), static_cast<std::streamsize>(size));
    if (!out.flush()) throw std::runtime_error(file + " cannot be written");
}

void writePbm(const Bits& bits, const std::string& file) {
    std::ofstream out(file, std::ios::binary);
    out << "P4\n" << bits.width << ' ' << bits.height << '\n';
    for (int y = 0; y < bits.height; ++y) {
        const std::vector<uint8_t> row = invertedRow(bits, y);
        out.write(reinterpret_cast<const char*>(row.data()), static_cast<std::streamsize>(row.size()));
    }
    if (!out.flush()) throw std::runtime_error(file + " cannot be written");
}

void writeG4(const Bits& bits, const KVImageDescription& description, const std::string& file) {
    const std::unique_ptr<TIFF, void (*)(TIFF*)> tiff(TIFFOpen(file.c_str(), "w"), TIFFClose);
    if (!tiff) throw std::runtime_error(file + " cannot be written");
    TIFFSetField(tiff.get(), TIFFTAG_IMAGEWIDTH, bits.width);
    TIFFSetField(tiff.get(), TIFFTAG_IMAGELENGTH, bits.height);
    TIFFSetField(tiff.get(), TIFFTAG_BITSPERSAMPLE, 1);
    TIFFSetField(tiff.get(), TIFFTAG_SAMPLESPERPIXEL, 1);
    TIFFSetField(tiff.get(), TIFFTAG_COMPRESSION, COMPRESSION_CCITTFAX4);
    TIFFSetField(tiff.get(), TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISWHITE);
    TIFFSetField(tiff.get(), TIFFTAG_ROWSPERSTRIP, bits.height);
    TIFFSetField(tiff.get(), TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
    TIFFSetField(tiff.get(), TIFFTAG_XRESOLUTION, static_cast<double>(description.horizontalResolution));
    TIFFSetField(tiff.get(), TIFFTAG_YRESOLUTION, static_cast<double>(description.verticalResolution));
    for (int y = 0; y < bits.height; ++y) {
        std::vector<uint8_t> row = invertedRow(bits, y);
        if (TIFFWriteScanline(tiff.get(), row.data(), static_cast<uint32_t>(y), 0) < 0)
            throw std::runtime_error(file + " cannot be written");
    }
}
