// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Compression of rasters into a vector and of records into a new block.
#include <algorithm>
#include <climits>
#include <cstdint>
#include <optional>
#include <vector>

#include "OPCV_dlib.h"
#include "jpeg/KVCompress.h"
#include "jpeg/block_destination.h"

namespace {

constexpr int64_t kLargestWorkBuffer = 524288;
constexpr int64_t kSmallestWorkBuffer = 4096;
constexpr int kDotsPerInch = 1;

struct Raster {
    const unsigned char* pixels;
    int rowBytes;
    int width;
    int height;
};

struct Resolution {
    int x;
    int y;
};

using Init = bool (KVCompress::*)(int width, int height, int bufferSize, std::vector<unsigned char>& out);
using Layout = void (KVCompress::*)();

// Sets libjpeg's tables, or with `own` the library's, scaled by a quality from 1 to 100.
struct Style {
    Init init;
    Layout layout;
    int quality;
    bool own;

    void applyTo(KVCompress& encoder) const {
        const bool colour = init == &KVCompress::InitWithRGB;
        if (own)
            encoder.SetQuality(quality, g_customLuminanceQuant, colour ? g_customChrominanceQuant : nullptr);
        else
            encoder.SetQuality(quality);
        (encoder.*layout)();
    }
};

Style greyStyle(int quality, bool own) {
    return {&KVCompress::InitWithGray, &KVCompress::SetOutImageGray444, quality, own};
}
Style fullColourStyle(int quality, bool own) {
    return {&KVCompress::InitWithRGB, &KVCompress::SetOutImageYCbCr444, quality, own};
}
Style subsampledStyle(int quality) {
    return {&KVCompress::InitWithRGB, &KVCompress::SetOutImageYCbCr411, quality, false};
}

// Everything except Init, which lets the encoder write to a vector through its work buffer.
bool encodeWith(KVCompress& encoder, const Raster& raster, const Style& style, Resolution resolution) {
    style.applyTo(encoder);
    encoder.SetResolution(kDotsPerInch, resolution.y, resolution.x);
    return encoder.Compress(raster.pixels, raster.rowBytes, DEFAULT_CREATOR, sizeof(DEFAULT_CREATOR));
}

// No larger than the raster, which the stream rarely exceeds: for a small image, clearing half a megabyte would cost
// more than it saves.
int workBufferOf(const Raster& raster) {
    return static_cast<int>(
        std::clamp(int64_t{raster.rowBytes} * raster.height, kSmallestWorkBuffer, kLargestWorkBuffer));
}

bool encode(const Raster& raster, const Style& style, Resolution resolution, std::vector<unsigned char>& out) {
    KVCompress encoder;
    return (encoder.*style.init)(raster.width, raster.height, workBufferOf(raster), out) &&
           encodeWith(encoder, raster, style, resolution);
}

bool encode(const Raster& raster, const Style& style, Resolution resolution, BlockDestination& destination) {
    KVCompress encoder;
    std::vector<unsigned char> unused;
    if (!(encoder.*style.init)(raster.width, raster.height, 0, unused)) return false;
    destination.attachTo(encoder.cinfo);
    return encodeWith(encoder, raster, style, resolution);
}

// The mode codes with their three columns of qualities, which differ by contract.
struct Mode {
    int code;
    int plain;
    int ex;
    int withIPP;
};
constexpr Mode kModes[] = {{0, 15, 14, 15}, {286, 50, 35, 45}, {389, 67, 55, 67}, {450, 80, 70, 80}, {788, 95, 95, 95}};

std::optional<int> qualityOf(int code, int Mode::*column) {
    for (const Mode& mode : kModes)
        if (mode.code == code) return mode.*column;
    return std::nullopt;
}

Style withOwnTables(int depth, int quality) {
    return depth == 8 ? greyStyle(quality, true) : fullColourStyle(quality, true);
}

Style subsampled(int depth, int quality) { return depth == 8 ? greyStyle(quality, false) : subsampledStyle(quality); }

using StyleOfDepth = Style (*)(int depth, int quality);

OSErr compressRecord(const KVIMG* image, Resolution resolution, int mode, int Mode::*column, StyleOfDepth styleOfDepth,
                     void** outData, unsigned* outSize) {
    if (!outData || !outSize || !image || !image->data || image->width <= 0 || image->height <= 0) return paramErr;
    const std::optional<int> quality = qualityOf(mode, column);
    if (!quality) return paramErr;
    if (image->depth != 8 && image->depth != 24) return paramErr;

    const Raster raster = {image->data, image->rowBytes, image->width, image->height};
    BlockDestination stream;
    if (!encode(raster, styleOfDepth(image->depth, *quality), resolution, stream)) return memFullErr;
    if (stream.length() > UINT_MAX) return memFullErr;
    *outSize = static_cast<unsigned>(stream.length());
    *outData = stream.take().release();
    return *outData ? noErr : memFullErr;
}

OSErr compressDescribed(const KVIMG* image, KVImageDescriptionHandle description, int mode, int Mode::*column,
                        void** outData, unsigned* outSize) {
    if (!image || !description || !*description) return paramErr;
    const Resolution resolution = {(*description)->horizontalResolution, (*description)->verticalResolution};
    return compressRecord(image, resolution, mode, column, subsampled, outData, outSize);
}

}    // namespace

bool CompressGray2Gray444(const unsigned char* pixels, int rowBytes, int width, int height,
                          std::vector<unsigned char>& out, int quality, int yResolution, int xResolution,
                          bool useCustomTables) {
    return encode({pixels, rowBytes, width, height}, greyStyle(quality, useCustomTables), {xResolution, yResolution},
                  out);
}

bool CompressRGB2YCbCr444(const unsigned char* pixels, int rowBytes, int width, int height,
                          std::vector<unsigned char>& out, int quality, int yResolution, int xResolution,
                          bool useCustomTables) {
    return encode({pixels, rowBytes, width, height}, fullColourStyle(quality, useCustomTables),
                  {xResolution, yResolution}, out);
}

bool CompressRGB2YCbCr411(const unsigned char* pixels, int rowBytes, int width, int height,
                          std::vector<unsigned char>& out, int quality, int yResolution, int xResolution) {
    return encode({pixels, rowBytes, width, height}, subsampledStyle(quality), {xResolution, yResolution}, out);
}

OSErr CompressJPEG(const KVIMG* image, int resolution, int mode, void** outData, unsigned* outSize) {
    return compressRecord(image, {resolution, resolution}, mode, &Mode::plain, withOwnTables, outData, outSize);
}

OSErr CompressJPEGEx(const KVIMG* image, KVImageDescriptionHandle description, int mode, void** outData,
                     unsigned* outSize) {
    return compressDescribed(image, description, mode, &Mode::ex, outData, outSize);
}

OSErr CompressJPEGWithIPP(const KVIMG* image, KVImageDescriptionHandle description, int mode, void** outData,
                          unsigned* outSize) {
    return compressDescribed(image, description, mode, &Mode::withIPP, outData, outSize);
}

OSErr CompressJPEGWithIPPEx(const KVIMG* image, KVImageDescriptionHandle description, int mode, void** outData,
                            unsigned* outSize) {
    return CompressJPEGEx(image, description, mode, outData, outSize);
}
