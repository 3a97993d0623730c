#include "formats.h"

#include <tiffio.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "result_file.h"

namespace {

// PBM and fax mean black by a set bit, the library's packing means white.
std::vector<uint8_t> invertedRow(const Bits& bits, int y) {
    const uint8_t* row = bits.bytes.data() + ptrdiff_t{y} * bits.step;
    std::vector<uint8_t> inverted(row, row + (bits.width + 7) / 8);
    for (uint8_t& b : inverted) b = static_cast<uint8_t>(~b);
    return inverted;
}

// What libtiff takes for a file. Its fax coder passes over writes that fail, so they are made when it is done.
struct MemoryFile {
    std::vector<uint8_t> bytes;
    size_t position = 0;
    bool lost = false;    // there was no memory for some of it
};

MemoryFile& fileOf(thandle_t handle) { return *static_cast<MemoryFile*>(handle); }

tmsize_t readFile(thandle_t, void*, tmsize_t) { return 0; }

tmsize_t writeFile(thandle_t handle, void* data, tmsize_t size) {
    MemoryFile& file = fileOf(handle);
    const size_t end = file.position + static_cast<size_t>(size);
    try {
        file.bytes.resize(std::max(end, file.bytes.size()));
    } catch (const std::bad_alloc&) {    // must not pass through libtiff
        file.lost = true;
        return 0;
    }
    std::memcpy(file.bytes.data() + file.position, data, static_cast<size_t>(size));
    file.position = end;
    return size;
}

toff_t seekFile(thandle_t handle, toff_t offset, int whence) {
    MemoryFile& file = fileOf(handle);
    const size_t from = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? file.position : file.bytes.size();
    file.position = from + static_cast<size_t>(offset);
    return file.position;
}

int closeFile(thandle_t) { return 0; }

toff_t sizeOfFile(thandle_t handle) { return fileOf(handle).bytes.size(); }

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
    MemoryFile memory;
    std::unique_ptr<TIFF, void (*)(TIFF*)> tiff(TIFFClientOpen(file.c_str(), "w", &memory, readFile, writeFile,
                                                               seekFile, closeFile, sizeOfFile, nullptr, nullptr),
                                                TIFFClose);
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
    good = good && TIFFWriteDirectory(tiff.get()) != 0;
    tiff.reset();
    if (!good || memory.lost) throw std::runtime_error(file + " cannot be made: no memory");
    ResultFile out(file);
    out.write(memory.bytes.data(), memory.bytes.size());
    return out.commit();
}
