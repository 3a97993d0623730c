// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Compression of any raster: the result is the stream that libjpeg writes with the same settings, or an error.
#include <array>
#include <cstdlib>
#include <memory>

#include "jpeg/KVCompress.h"
#include "oracle/jpeg.h"
#include "support.h"

namespace {

using fuzz::Draw;
using fuzz::Image;
using fuzz::require;

using Stream = std::vector<unsigned char>;

struct Layout {
    int channels;
    int lumaSampling;
    bool ownTables;
};

Stream expected(Image& image, const Layout& layout, int quality, int yResolution, int xResolution) {
    oracle::JpegSettings settings;
    settings.components = layout.channels;
    settings.lumaSampling = layout.lumaSampling;
    settings.quality = quality;
    if (layout.ownTables) {
        settings.luminance = g_customLuminanceQuant;
        if (layout.channels == 3) settings.chrominance = g_customChrominanceQuant;
    }
    settings.xDensity = xResolution;
    settings.yDensity = yResolution;
    return oracle::encodeJpeg(image.region(), image.step(), image.width(), image.height(), settings);
}

void compressBuffer(Draw& draw) {
    const Layout layout = std::array<Layout, 3>{
        {{1, 1, draw.chance(2)}, {3, 1, draw.chance(2)}, {3, 2, false}}}[static_cast<size_t>(draw.between(0, 2))];
    Image image(draw, fuzz::anySize(draw), layout.channels);
    const int quality = draw.between(1, 100);
    const int yResolution = draw.anyInt();
    const int xResolution = draw.anyInt();
    Stream before(static_cast<size_t>(draw.between(0, 9)), 5);
    Stream out = before;
    const auto [width, height] = image.size();
    const bool done =
        layout.channels == 1 ? CompressGray2Gray444(image.region(), image.step(), width, height, out, quality,
                                                    yResolution, xResolution, layout.ownTables)
        : layout.lumaSampling == 1
            ? CompressRGB2YCbCr444(image.region(), image.step(), width, height, out, quality, yResolution, xResolution,
                                   layout.ownTables)
            : CompressRGB2YCbCr411(image.region(), image.step(), width, height, out, quality, yResolution, xResolution);
    require(done, "a good raster is compressed");
    const Stream stream = expected(image, layout, quality, yResolution, xResolution);
    before.insert(before.end(), stream.begin(), stream.end());
    require(out == before, "the stream is libjpeg's, behind what was there");
}

struct Mode {
    int code;
    int quality[3];
};
constexpr std::array<Mode, 5> kModes = {
    {{0, {15, 14, 15}}, {286, {50, 35, 45}}, {389, {67, 55, 67}}, {450, {80, 70, 80}}, {788, {95, 95, 95}}}};

using Compressor = OSErr (*)(const KVIMG*, KVImageDescriptionHandle, int, void**, unsigned*);

struct Result {
    OSErr status;
    std::unique_ptr<void, decltype(&std::free)> block{nullptr, std::free};
    unsigned size = 0xABCD;

    Stream stream() const {
        const auto* bytes = static_cast<const unsigned char*>(block.get());
        return {bytes, bytes + size};
    }
};

Result compress(Compressor compressor, const KVIMG& record, KVImageDescription description, int mode) {
    Result result{};
    KVImageDescription* handle = &description;
    void* block = nullptr;
    result.status = compressor(&record, &handle, mode, &block, &result.size);
    result.block.reset(block);
    return result;
}

OSErr compressPlain(const KVIMG* image, KVImageDescriptionHandle description, int mode, void** data, unsigned* size) {
    return CompressJPEG(image, (*description)->horizontalResolution, mode, data, size);
}

void compressRecord(Draw& draw) {
    const int depth = draw.chance(2) ? 8 : 24;
    Image image(draw, fuzz::anySize(draw), depth / 8);
    KVIMG record = {image.region(), depth, image.width(), image.height(), image.step(), 0};
    const KVImageDescription description = {0, 0, draw.anyInt(), draw.anyInt(), 0, 0};
    const Mode mode = kModes[static_cast<size_t>(draw.between(0, 4))];
    const Result plain = compress(compressPlain, record, description, mode.code);
    require(plain.status == noErr, "a good record is compressed");
    require(plain.stream() == expected(image, {depth / 8, 1, true}, mode.quality[0], description.horizontalResolution,
                                       description.horizontalResolution),
            "CompressJPEG");
    const Layout layout = {depth / 8, depth == 24 ? 2 : 1, false};
    const auto requireStream = [&](Compressor compressor, int quality, const char* what) {
        const Result result = compress(compressor, record, description, mode.code);
        require(result.status == noErr &&
                    result.stream() == expected(image, layout, quality, description.verticalResolution,
                                                description.horizontalResolution),
                what);
    };
    requireStream(CompressJPEGEx, mode.quality[1], "CompressJPEGEx");
    requireStream(CompressJPEGWithIPPEx, mode.quality[1], "CompressJPEGWithIPPEx");
    requireStream(CompressJPEGWithIPP, mode.quality[2], "CompressJPEGWithIPP");
}

void refusedRecord(Draw& draw) {
    unsigned char pixel[3] = {1, 2, 3};
    KVIMG record = {pixel, 8, 1, 1, 1, 1};
    int mode = kModes[static_cast<size_t>(draw.between(0, 4))].code;
    OSErr status = paramErr;
    switch (draw.between(0, 5)) {
        case 0: record.depth = draw.anyInt() & ~0x1F; break;    // neither 8 nor 24
        case 1: mode = draw.anyInt() | 1; break;                // 389 is the one odd code
        case 2: record.width = -draw.between(0, 99); break;
        case 3: record.height = -draw.between(0, 99); break;
        case 4: record.data = nullptr; break;
        default:    // more than libjpeg accepts; it must fail before it reads a row
            (draw.chance(2) ? record.width : record.height) = draw.between(65501, 1 << 30);
            status = memFullErr;
    }
    if (mode == 389 && status == paramErr && record.depth == 8 && record.width > 0 && record.height > 0 && record.data)
        return;
    for (const Compressor compressor : {compressPlain, CompressJPEGEx, CompressJPEGWithIPP, CompressJPEGWithIPPEx}) {
        const Result result = compress(compressor, record, {}, mode);
        require(result.status == status, "a broken record is refused");
        require(!result.block && result.size == 0xABCD, "nothing is written");
    }
}

// The encoder alone: any order of calls, sampling and table, small work buffers, raw sizes.
void driveEncoder(Draw& draw) {
    const bool colour = draw.chance(2);
    Image image(draw, fuzz::anySize(draw), colour ? 3 : 1);
    Stream out;
    Stream again;
    std::vector<unsigned char> comment(static_cast<size_t>(draw.between(0, 40)));
    draw.fill(comment.data(), comment.size());
    const int quality = draw.chance(4) ? draw.anyInt() : draw.between(1, 100);
    const int layout = draw.between(0, 1);
    const bool tables = draw.chance(2);
    const auto encode = [&](int workBuffer, Stream& stream) {
        KVCompress encoder;
        const auto init = colour ? &KVCompress::InitWithRGB : &KVCompress::InitWithGray;
        require((encoder.*init)(image.width(), image.height(), workBuffer, stream), "Init");
        if (tables)
            encoder.SetQuality(quality, g_customLuminanceQuant, colour ? g_customChrominanceQuant : nullptr);
        else
            encoder.SetQuality(quality);
        if (!colour)
            encoder.SetOutImageGray444();
        else if (layout == 0)
            encoder.SetOutImageYCbCr444();
        else
            encoder.SetOutImageYCbCr411();
        encoder.SetResolution(1, 200, 300);
        return encoder.Compress(image.region(), image.step(), comment.data(), static_cast<int>(comment.size()));
    };
    require(encode(draw.between(1, 600), out), "Compress");
    require(encode(524288, again), "Compress");
    require(out == again, "the work buffer's size does not matter");
}

}    // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Draw draw(data, size);
    constexpr std::array kOperations = {compressBuffer, compressRecord, refusedRecord, driveEncoder};
    fuzz::runOneOf(kOperations, draw);
    return 0;
}
