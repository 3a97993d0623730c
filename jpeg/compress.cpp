// Compression of rasters into a vector and of records into a block of their own.
#include <climits>
#include <cstdlib>
#include <cstring>
#include <exception>

#include "OPCV_dlib.h"
#include "jpeg/KVCompress.h"

namespace {

constexpr int kWorkBuffer = 524288;
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

// libjpeg's tables, or with `own` the library's, scaled by a quality from 1 to 100.
struct Quality {
    int percent;
    bool own;
    const unsigned* luminance;
    const unsigned* chrominance;

    void applyTo(KVCompress& encoder) const {
        if (own)
            encoder.SetQuality(percent, luminance, chrominance);
        else
            encoder.SetQuality(percent);
    }
};

using Init = bool (KVCompress::*)(int width, int height, int bufferSize, std::vector<unsigned char>& out);
using Layout = void (KVCompress::*)();

bool encode(const Raster& raster, Init init, const Quality& quality, Layout layout, Resolution resolution,
            std::vector<unsigned char>& out) {
    KVCompress encoder;
    if (!(encoder.*init)(raster.width, raster.height, kWorkBuffer, out)) return false;
    quality.applyTo(encoder);
    (encoder.*layout)();
    encoder.SetResolution(kDotsPerInch, resolution.y, resolution.x);
    return encoder.Compress(raster.pixels, raster.rowBytes, DEFAULT_CREATOR, sizeof(DEFAULT_CREATOR));
}

// The mode codes with their three columns of qualities, which differ on purpose.
struct Mode {
    int code;
    int plain;
    int ex;
    int withIPP;
};
constexpr Mode kModes[] = {{0, 15, 14, 15}, {286, 50, 35, 45}, {389, 67, 55, 67}, {450, 80, 70, 80}, {788, 95, 95, 95}};

bool qualityOf(int code, int Mode::*column, int& quality) {
    for (const Mode& mode : kModes)
        if (mode.code == code) {
            quality = mode.*column;
            return true;
        }
    return false;
}

bool encodeWithOwnTables(const KVIMG& image, int quality, Resolution resolution, std::vector<unsigned char>& out) {
    const auto encoder = image.depth == 8 ? CompressGray2Gray444 : CompressRGB2YCbCr444;
    return encoder(image.data, image.rowBytes, image.width, image.height, out, quality, resolution.y, resolution.x,
                   true);
}

bool encodeSubsampled(const KVIMG& image, int quality, Resolution resolution, std::vector<unsigned char>& out) {
    if (image.depth == 8)
        return CompressGray2Gray444(image.data, image.rowBytes, image.width, image.height, out, quality, resolution.y,
                                    resolution.x, false);
    return CompressRGB2YCbCr411(image.data, image.rowBytes, image.width, image.height, out, quality, resolution.y,
                                resolution.x);
}

using RecordEncoder = bool (*)(const KVIMG& image, int quality, Resolution resolution, std::vector<unsigned char>& out);

// Memory that runs out is a failed encoding like any other.
bool encodeRecord(RecordEncoder encoder, const KVIMG& image, int quality, Resolution resolution,
                  std::vector<unsigned char>& out) {
    try {
        return encoder(image, quality, resolution, out) && out.size() <= UINT_MAX;
    } catch (const std::exception&) {
        return false;
    }
}

OSErr compressRecord(const KVIMG* image, Resolution resolution, int mode, int Mode::*column, RecordEncoder encoder,
                     void** outData, unsigned* outSize) {
    if (!outData || !outSize || !image || !image->data || image->width <= 0 || image->height <= 0) return paramErr;
    int quality = 0;
    if (!qualityOf(mode, column, quality)) return paramErr;
    if (image->depth != 8 && image->depth != 24) return paramErr;

    std::vector<unsigned char> stream;
    if (!encodeRecord(encoder, *image, quality, resolution, stream)) return memFullErr;
    *outSize = static_cast<unsigned>(stream.size());
    *outData = std::malloc(stream.size());
    if (!*outData) return memFullErr;
    std::memcpy(*outData, stream.data(), stream.size());
    return noErr;
}

OSErr compressDescribed(const KVIMG* image, KVImageDescriptionHandle description, int mode, int Mode::*column,
                        void** outData, unsigned* outSize) {
    if (!image || !description || !*description) return paramErr;
    const Resolution resolution = {(*description)->horizontalResolution, (*description)->verticalResolution};
    return compressRecord(image, resolution, mode, column, encodeSubsampled, outData, outSize);
}

}    // namespace

bool CompressGray2Gray444(const unsigned char* pixels, int rowBytes, int width, int height,
                          std::vector<unsigned char>& out, int quality, int yResolution, int xResolution,
                          bool useCustomTables) {
    return encode({pixels, rowBytes, width, height}, &KVCompress::InitWithGray,
                  {quality, useCustomTables, g_customLuminanceQuant, nullptr}, &KVCompress::SetOutImageGray444,
                  {xResolution, yResolution}, out);
}

bool CompressRGB2YCbCr444(const unsigned char* pixels, int rowBytes, int width, int height,
                          std::vector<unsigned char>& out, int quality, int yResolution, int xResolution,
                          bool useCustomTables) {
    return encode({pixels, rowBytes, width, height}, &KVCompress::InitWithRGB,
                  {quality, useCustomTables, g_customLuminanceQuant, g_customChrominanceQuant},
                  &KVCompress::SetOutImageYCbCr444, {xResolution, yResolution}, out);
}

bool CompressRGB2YCbCr411(const unsigned char* pixels, int rowBytes, int width, int height,
                          std::vector<unsigned char>& out, int quality, int yResolution, int xResolution) {
    return encode({pixels, rowBytes, width, height}, &KVCompress::InitWithRGB, {quality, false, nullptr, nullptr},
                  &KVCompress::SetOutImageYCbCr411, {xResolution, yResolution}, out);
}

OSErr CompressJPEG(const KVIMG* image, int resolution, int mode, void** outData, unsigned* outSize) {
    return compressRecord(image, {resolution, resolution}, mode, &Mode::plain, encodeWithOwnTables, outData, outSize);
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
