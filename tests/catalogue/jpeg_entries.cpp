// JPEG compression and reading.
#include <algorithm>
#include <array>

#include "oracle/jpeg.h"
#include "catalogue/catalogue.h"

namespace {

const std::vector<int> kModes = {0, 286, 389, 450, 788};
constexpr int kCompressVariants = 10;    // modes of both depths

int depthOf(const Case& c) { return c.variant % 2 == 0 ? 8 : 24; }
int modeOf(const Case& c) { return pick(kModes, c.variant / 2); }

void compress(Case& c) {
    const Page page = pageOf(c, depthOf(c), Rows::kPixelsOnly);
    c.call = [&c, page] { return CompressJPEG(page.record, 300, modeOf(c), &c.stream, &c.streamSize); };
}

using Compressor = OSErr (*)(const KVIMG*, KVImageDescriptionHandle, int, void**, unsigned*);

std::function<void(Case&)> compressWith(Compressor compressor) {
    return [compressor](Case& c) {
        const Page page = pageOf(c, depthOf(c), Rows::kPixelsOnly);
        c.call = [&c, compressor, page] {
            return compressor(page.record, page.description, modeOf(c), &c.stream, &c.streamSize);
        };
    };
}

int statusOf(bool complete) { return complete ? 0 : ippStsNoMemErr; }

void compressGrey(Case& c) {
    const Image src = c.source({c.size});
    c.call = [&c, src] {
        return statusOf(CompressGray2Gray444(src.data, src.step, c.size.width, c.size.height, c.vector, 80, 300, 200,
                                             c.variant == 1));
    };
}

void compressColour(Case& c) {
    const Image src = c.source({c.size, 3});
    c.call = [&c, src] {
        return statusOf(CompressRGB2YCbCr444(src.data, src.step, c.size.width, c.size.height, c.vector, 80, 300, 200,
                                             c.variant == 1));
    };
}

void compressSubsampled(Case& c) {
    const Image src = c.source({c.size, 3});
    c.call = [&c, src] {
        return statusOf(CompressRGB2YCbCr411(src.data, src.step, c.size.width, c.size.height, c.vector, 80, 300, 200));
    };
}

// Grey, colour, colour with subsampled chroma, the same cut, progressive.
constexpr int kStreamVariants = 5;

// Without the last third of the coded bytes, where that leaves whole rows.
void cut(Bytes& stream, int height) {
    constexpr int kFewestRows = 40;
    const std::array<uint8_t, 2> startOfScan = {0xFF, 0xDA};
    const auto scan = std::search(stream.begin(), stream.end(), startOfScan.begin(), startOfScan.end());
    if (height >= kFewestRows) stream.erase(stream.end() - (stream.end() - scan) / 3, stream.end());
}

// By libjpeg alone: OpenCV's codecs take the locks of other people's libraries in a changing order.
Bytes progressive(const Bytes& pixels, IppiSize size) {
    oracle::JpegSettings settings;
    settings.components = 3;
    settings.progressive = true;
    return oracle::encodeJpeg(pixels.data(), size.width * 3, size.width, size.height, settings);
}

Bytes streamOf(Case& c) {
    Bytes pixels(static_cast<size_t>(c.size.width) * static_cast<size_t>(c.size.height) * 3);
    c.random.fill(pixels.data(), pixels.size());
    const int w = c.size.width;
    const int h = c.size.height;
    Bytes stream;
    switch (c.variant) {
        case 0: CompressGray2Gray444(pixels.data(), w, w, h, stream, 80, 300, 300, true); break;
        case 1: CompressRGB2YCbCr444(pixels.data(), 3 * w, w, h, stream, 80, 300, 300, false); break;
        case 2: CompressRGB2YCbCr411(pixels.data(), 3 * w, w, h, stream, 80, 300, 300); break;
        case 3:
            CompressRGB2YCbCr411(pixels.data(), 3 * w, w, h, stream, 80, 300, 300);
            cut(stream, h);
            break;
        default: stream = progressive(pixels, c.size);
    }
    return stream;
}

using Reader = OSErr (*)(const void*, unsigned, KVImageDescriptionHandle*, KVIMG**);

std::function<void(Case&)> readWith(Reader reader) {
    return [reader](Case& c) {
        const Bytes bytes = streamOf(c);
        const unsigned char* stream = c.sourceOf(bytes);
        const auto length = static_cast<unsigned>(bytes.size());
        KVImageDescription* where = c.targetEvenOnFailure(descriptionOf({7, 8}, -1));
        KVImageDescriptionHandle handle = c.sourceOf(where);
        auto* description = c.sourceOf(handle);
        c.call = [&c, reader, stream, length, description] { return reader(stream, length, description, &c.record); };
    };
}

void readPiece(Case& c) {
    const Bytes bytes = streamOf(c);
    const unsigned char* stream = c.sourceOf(bytes);
    const auto length = static_cast<unsigned>(bytes.size());
    KVImageDescription* where = c.targetOf(descriptionOf(c.size, -1));
    KVImageDescriptionHandle description = c.sourceOf(where);
    c.call = [&c, stream, length, description] { return ReadSplitJPEG(stream, length, description, &c.record); };
}

}    // namespace

Entries jpegEntries() {
    const OutOfMemory records = OutOfMemory::answers(memFullErr);
    const OutOfMemory buffers = OutOfMemory::answersOrThrows(ippStsNoMemErr).as("false");
    return {
        {"CompressJPEG", kCompressVariants, records, compress},
        {"CompressJPEGEx", kCompressVariants, records, compressWith(CompressJPEGEx)},
        {"CompressJPEGWithIPP", kCompressVariants, records, compressWith(CompressJPEGWithIPP)},
        {"CompressJPEGWithIPPEx", kCompressVariants, records, compressWith(CompressJPEGWithIPPEx)},
        {"CompressGray2Gray444", 2, buffers, compressGrey},
        {"CompressRGB2YCbCr444", 2, buffers, compressColour},
        {"CompressRGB2YCbCr411", 1, buffers, compressSubsampled},
        {"ReadJPEG", kStreamVariants, records, readWith(ReadJPEG)},
        {"ReadJPEGWithIPP", kStreamVariants, records, readWith(ReadJPEGWithIPP)},
        {"ReadSplitJPEG", kStreamVariants, records, readPiece},
    };
}
