// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "formats.h"

#include <tiffio.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

// A set bit is black in PBM and fax, and white in the library's packing.
std::vector<uint8_t> invertedRow(const Bits& bits, int y) {
    const uint8_t* row = bits.bytes.data() + ptrdiff_t{y} * bits.step;
    std::vector<uint8_t> inverted(row, row + (bits.width + 7) / 8);
    for (uint8_t& b : inverted) b = static_cast<uint8_t>(~b);
    return inverted;
}

void append(std::vector<uint8_t>& bytes, const std::string& text) {
    bytes.insert(bytes.end(), text.begin(), text.end());
}

// The file that libtiff writes to.
struct MemoryFile {
    std::vector<uint8_t> bytes;
    size_t position = 0;
    bool outOfMemory = false;
};

MemoryFile& fileOf(thandle_t handle) { return *static_cast<MemoryFile*>(handle); }

tmsize_t readFile(thandle_t, void*, tmsize_t) { return 0; }

tmsize_t writeFile(thandle_t handle, void* data, tmsize_t size) {
    MemoryFile& file = fileOf(handle);
    const size_t end = file.position + static_cast<size_t>(size);
    try {
        file.bytes.resize(std::max(end, file.bytes.size()));
    } catch (const std::bad_alloc&) {    // must not propagate through libtiff
        file.outOfMemory = true;
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

// Where the first segment of a JPEG stream ends: the JFIF header must stay the first.
size_t endOfFirstSegment(const uint8_t* stream) { return 4U + (static_cast<size_t>(stream[4]) << 8 | stream[5]); }

std::string commentSegment(const std::string& text) {
    const size_t length = text.size() + 2;
    return std::string("\xFF\xFE") + static_cast<char>(length >> 8) + static_cast<char>(length & 255) + text;
}

void setTags(TIFF* tiff, const Bits& bits, const KVImageDescription& description, const std::string& mark) {
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, bits.width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, bits.height);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 1);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_CCITTFAX4);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISWHITE);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, bits.height);
    TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
    TIFFSetField(tiff, TIFFTAG_XRESOLUTION, static_cast<double>(description.horizontalResolution));
    TIFFSetField(tiff, TIFFTAG_YRESOLUTION, static_cast<double>(description.verticalResolution));
    TIFFSetField(tiff, TIFFTAG_IMAGEDESCRIPTION, mark.c_str());
}

struct Strip {
    uint64_t start, size;
};

// Writes a file with one page. Returns where its rows are.
Strip writeStrip(MemoryFile& memory, const Bits& bits, const KVImageDescription& description, const std::string& mark) {
    std::unique_ptr<TIFF, void (*)(TIFF*)> tiff(
        TIFFClientOpen("", "w", &memory, readFile, writeFile, seekFile, closeFile, sizeOfFile, nullptr, nullptr),
        TIFFClose);
    bool good = tiff != nullptr;
    if (good) setTags(tiff.get(), bits, description, mark);
    for (int y = 0; good && y < bits.height; ++y) {
        std::vector<uint8_t> row = invertedRow(bits, y);
        good = TIFFWriteScanline(tiff.get(), row.data(), static_cast<uint32_t>(y), 0) >= 0;
    }
    good = good && TIFFFlushData(tiff.get()) != 0;
    const Strip strip =
        good ? Strip{TIFFGetStrileOffset(tiff.get(), 0), TIFFGetStrileByteCount(tiff.get(), 0)} : Strip{};
    good = good && TIFFWriteDirectory(tiff.get()) != 0;
    tiff.reset();
    if (!good || memory.outOfMemory) throw std::bad_alloc();
    return strip;
}

// Grey, or colour subsampled as by mode.
std::vector<uint8_t> jpegOfPercent(const KVIMG& page, const KVImageDescription& description, int quality) {
    std::vector<uint8_t> stream;
    const int dpiX = description.horizontalResolution, dpiY = description.verticalResolution;
    const bool done = page.depth == 8 ? CompressGray2Gray444(page.data, page.rowBytes, page.width, page.height, stream,
                                                             quality, dpiY, dpiX, false)
                                      : CompressRGB2YCbCr411(page.data, page.rowBytes, page.width, page.height, stream,
                                                             quality, dpiY, dpiX);
    if (!done) throw std::bad_alloc();
    return stream;
}

}    // namespace

std::vector<uint8_t> jpegStream(const KVIMG& page, KVImageDescriptionHandle description, JpegQuality quality) {
    if (quality.percent > 0) return jpegOfPercent(page, **description, quality.percent);
    void* data = nullptr;
    unsigned size = 0;
    require(CompressJPEGEx(&page, description, quality.mode, &data, &size), "compressing");
    const std::unique_ptr<void, void (*)(void*)> owner(data, std::free);
    const auto* stream = static_cast<const uint8_t*>(data);
    return {stream, stream + size};
}

std::vector<uint8_t> jpegFile(const std::vector<uint8_t>& stream, const std::string& mark) {
    const auto start = stream.begin() + static_cast<ptrdiff_t>(endOfFirstSegment(stream.data()));
    std::vector<uint8_t> file;
    file.reserve(stream.size() + mark.size() + 4);
    file.assign(stream.begin(), start);
    append(file, commentSegment(mark));
    file.insert(file.end(), start, stream.end());
    return file;
}

std::vector<uint8_t> pbmFile(const Bits& bits, const std::string& mark) {
    std::vector<uint8_t> file;
    append(file, "P4\n# " + mark + "\n" + std::to_string(bits.width) + ' ' + std::to_string(bits.height) + '\n');
    for (int y = 0; y < bits.height; ++y) {
        const std::vector<uint8_t> row = invertedRow(bits, y);
        file.insert(file.end(), row.begin(), row.end());
    }
    return file;
}

std::vector<uint8_t> tiffFile(const Bits& bits, const KVImageDescription& description, const std::string& mark) {
    MemoryFile memory;
    writeStrip(memory, bits, description, mark);
    return std::move(memory.bytes);
}

std::vector<uint8_t> g4Stream(const Bits& bits) {
    MemoryFile memory;
    const Strip strip = writeStrip(memory, bits, {}, "");
    const auto start = memory.bytes.begin() + static_cast<ptrdiff_t>(strip.start);
    return {start, start + static_cast<ptrdiff_t>(strip.size)};
}
