#include "write.h"

#include <tiffio.h>
#include <unistd.h>

#include "result_file.h"

namespace {

// PBM and fax mean black by a set bit, the library's packing means white.
std::vector<uint8_t> invertedRow(const Bits& bits, int y) {
    const uint8_t* row = bits.bytes.data() + ptrdiff_t{y} * bits.step;
    std::vector<uint8_t> inverted(row, row + (bits.width + 7) / 8);
    for (uint8_t& b : inverted) b = static_cast<uint8_t>(~b);
    return inverted;
}

}    // namespace

size_t writeJpeg(const KVIMG& page, KVImageDescriptionHandle description, int mode, const std::string& file) {
    void* data = nullptr;
    unsigned size = 0;
    require(CompressJPEGEx(&page, description, mode, &data, &size), "compressing");
    const std::unique_ptr<void, void (*)(void*)> owner(data, std::free);
    ResultFile out(file);
    out.write(data, size);
    return out.commit();
}

size_t writePbm(const Bits& bits, const std::string& file) {
    ResultFile out(file);
    std::vector<uint8_t> bytes;
    for (const char c : "P4\n" + std::to_string(bits.width) + ' ' + std::to_string(bits.height) + '\n')
        bytes.push_back(static_cast<uint8_t>(c));
    for (int y = 0; y < bits.height; ++y) {
        const std::vector<uint8_t> row = invertedRow(bits, y);
        bytes.insert(bytes.end(), row.begin(), row.end());
    }
    out.write(bytes.data(), bytes.size());
    return out.commit();
}

size_t writeG4(const Bits& bits, const KVImageDescription& description, const std::string& file) {
    ResultFile out(file);
    std::unique_ptr<TIFF, void (*)(TIFF*)> tiff(TIFFFdOpen(dup(out.descriptor()), file.c_str(), "w"), TIFFClose);
    bool good = tiff != nullptr;
    if (good) {
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
    }
    for (int y = 0; good && y < bits.height; ++y) {
        std::vector<uint8_t> row = invertedRow(bits, y);
        good = TIFFWriteScanline(tiff.get(), row.data(), static_cast<uint32_t>(y), 0) >= 0;
    }
    if (!good || TIFFWriteDirectory(tiff.get()) == 0) throw std::runtime_error(file + " cannot be written");
    // All is written. The commit closes the file before libtiff does, which would keep a fault of its close to itself.
    return out.commit();
}
