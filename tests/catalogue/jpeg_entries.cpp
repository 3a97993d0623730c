// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// JPEG compression and reading.
#include <algorithm>
#include <array>
#include <memory>

#include "OPCV_dlib_read.h"
#include "catalogue/catalogue.h"
#include "oracle/jpeg.h"
#include "support/jpeg_report.h"

namespace {

const std::vector<int> kModes = {0, 286, 389, 450, 788};
constexpr int kCompressVariants = 10;    // modes of both depths

int depthOf(const Case& c) { return c.variant % 2 == 0 ? 8 : 24; }
int modeOf(const Case& c) { return pick(kModes, c.variant / 2); }

// Receives a stream and its length. After a failure they are unchanged or, if only allocating the block failed, null
// and the length of the stream.
struct StreamSlot {
    static constexpr unsigned kUnset = 0xABCDEF01;

    void* data = nullptr;
    unsigned size = kUnset;
    unsigned wholeSize = 0;    // of the last call that succeeded

    void reset() {
        data = &size;
        size = kUnset;
    }
    std::string fault() const {
        const bool untouched = data == &size && size == kUnset;
        const bool onlyBlockMissing = !data && size == wholeSize;
        return untouched || onlyBlockMissing ? "" : "the stream's slot is neither untouched nor null";
    }
};

// `function(image, description, mode, data, size)`, in which the description may count or not.
using Compressor = std::function<OSErr(const KVIMG*, KVImageDescriptionHandle, int, void**, unsigned*)>;

std::function<void(Case&)> compressWith(const Compressor& compressor, bool takesDescription) {
    return [=](Case& c) {
        const Page page = pageOf(c, depthOf(c), Rows::kPixelsOnly);
        const int goodMode = modeOf(c);
        const auto slot = std::make_shared<StreamSlot>();
        c.before = [slot] { slot->reset(); };
        c.afterFailure = [slot] { return slot->fault(); };
        c.call = [=, &c] {
            const OSErr err = compressor(page.record, page.description, goodMode, &slot->data, &slot->size);
            if (err == noErr) {
                c.stream = slot->data;
                c.streamSize = slot->wholeSize = slot->size;
            }
            return err;
        };
        const auto refuse = [&](const char* what, const KVIMG* image, KVImageDescriptionHandle description, int mode) {
            c.refuse(what, paramErr, [=] { return compressor(image, description, mode, &slot->data, &slot->size); });
        };
        refuse("a null image", nullptr, page.description, goodMode);
        for (const int mode : {1, -1, 100}) refuse("an unknown mode", page.record, page.description, mode);
        const auto changed = [&](auto change) {
            KVIMG image = *page.record;
            change(image);
            return c.sourceOf(image);
        };
        for (const int depth : {1, 32})
            refuse("a depth that no stream has", changed([depth](KVIMG& image) { image.depth = depth; }),
                   page.description, goodMode);
        refuse("no pixels", changed([](KVIMG& image) { image.data = nullptr; }), page.description, goodMode);
        refuse("no columns", changed([](KVIMG& image) { image.width = 0; }), page.description, goodMode);
        refuse("no rows", changed([](KVIMG& image) { image.height = 0; }), page.description, goodMode);
        c.refuse("no place for the stream", paramErr,
                 [=] { return compressor(page.record, page.description, goodMode, nullptr, &slot->size); });
        c.refuse("no place for the length", paramErr,
                 [=] { return compressor(page.record, page.description, goodMode, &slot->data, nullptr); });
        if (!takesDescription) return;
        refuse("a null handle", page.record, nullptr, goodMode);
        refuse("a null description", page.record, c.sourceOf<KVImageDescription*>(nullptr), goodMode);
    };
}

OSErr compressPlain(const KVIMG* image, KVImageDescriptionHandle /*none*/, int mode, void** data, unsigned* size) {
    return CompressJPEG(image, 300, mode, data, size);
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

// Grey, colour, colour with subsampled chroma, the same cut, progressive, turned by an EXIF orientation in grey and
// colour.
constexpr int kStreamVariants = 7;
constexpr int kFirstTurned = 5;

bool isTurned(const Case& c) { return c.variant >= kFirstTurned; }

// Turns by 90 degrees.
void addOrientation(Bytes& stream) {
    const Bytes exif = {0xFF, 0xE1, 0, 34, 'E', 'x', 'i', 'f', 0, 0, 'M', 'M', 0, 42, 0, 0, 0, 8,
                        0,    1,    1, 18, 0,   3,   0,   0,   0, 1, 0,   6,   0, 0,  0, 0, 0, 0};
    stream.insert(stream.begin() + 2, exif.begin(), exif.end());
}

// As the reader finds it.
IppiSize sizeOfPage(const Case& c) { return isTurned(c) ? IppiSize{c.size.height, c.size.width} : c.size; }

// Without the last third of the coded bytes, which leaves whole rows.
void cut(Bytes& stream, int height) {
    constexpr int kFewestRows = 40;
    const std::array<uint8_t, 2> startOfScan = {0xFF, 0xDA};
    const auto scan = std::search(stream.begin(), stream.end(), startOfScan.begin(), startOfScan.end());
    if (height >= kFewestRows) stream.erase(stream.end() - (stream.end() - scan) / 3, stream.end());
}

// Uses libjpeg only: OpenCV's codecs take locks of other libraries in varying order.
Bytes progressive(const Bytes& pixels, IppiSize size) {
    oracle::JpegSettings settings;
    settings.components = 3;
    settings.progressive = true;
    return oracle::encodeJpeg(pixels.data(), size.width * 3, size.width, size.height, settings);
}

Bytes streamOf(Case& c) {
    Bytes pixels(static_cast<size_t>(c.size.width) * static_cast<size_t>(c.size.height) * 3);
    c.fill(pixels.data(), pixels.size(), 3 * c.size.width, 3);
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
        case 4: stream = progressive(pixels, c.size); break;
        case kFirstTurned: CompressGray2Gray444(pixels.data(), w, w, h, stream, 80, 300, 300, true); break;
        default: CompressRGB2YCbCr411(pixels.data(), 3 * w, w, h, stream, 80, 300, 300);
    }
    if (isTurned(c)) addOrientation(stream);
    return stream;
}

bool isGrey(const Case& c) { return c.variant == 0 || c.variant == kFirstTurned; }

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
        // The size is known from the markers and written before anything is allocated; a rejected call writes nothing.
        c.afterFailure = [where, whole = sizeOfPage(c), depth = isGrey(c) ? 8 : 24] {
            const auto is = [where](IppiSize size, int bits) {
                return where->width == size.width && where->height == size.height && where->depth == bits;
            };
            return is(whole, depth) || is({7, 8}, -1) ? "" : "the description is neither the page's nor untouched";
        };
        c.refuse("a null stream", paramErr, [=, &c] { return reader(nullptr, length, description, &c.record); });
        c.refuse("an empty stream", paramErr, [=, &c] { return reader(stream, 0, description, &c.record); });
        c.refuse("a stream that is not JPEG", paramErr,
                 [=, &c] { return reader(stream + 2, length - 2, description, &c.record); });
        c.refuse("headers alone", paramErr, [=, &c] { return reader(stream, 20, description, &c.record); });
        c.refuse("a null pointer to the handle", paramErr,
                 [=, &c] { return reader(stream, length, nullptr, &c.record); });
        c.refuse("no slot", paramErr, [=] { return reader(stream, length, description, nullptr); });
        auto* noHandle = c.sourceOf<KVImageDescriptionHandle>(nullptr);
        c.refuse("a null handle", paramErr, [=, &c] { return reader(stream, length, noHandle, &c.record); });
        auto* noRecord = c.sourceOf<KVImageDescription*>(nullptr);
        auto* empty = c.sourceOf<KVImageDescriptionHandle>(noRecord);
        c.refuse("a null description", paramErr, [=, &c] { return reader(stream, length, empty, &c.record); });
    };
}

void readPiece(Case& c) {
    const Bytes bytes = streamOf(c);
    const unsigned char* stream = c.sourceOf(bytes);
    const auto length = static_cast<unsigned>(bytes.size());
    const IppiSize size = sizeOfPage(c);
    KVImageDescription* where = c.targetOf(descriptionOf(size, -1));
    KVImageDescriptionHandle description = c.sourceOf(where);
    const auto read = [length](const unsigned char* data, KVImageDescriptionHandle handle, KVIMG** slot) {
        return [=] { return ReadSplitJPEG(data, length, handle, slot); };
    };
    c.call = read(stream, description, &c.record);
    c.refuse("a null stream", paramErr, read(nullptr, description, &c.record));
    c.refuse("a null handle", paramErr, read(stream, nullptr, &c.record));
    c.refuse("a null description", paramErr, read(stream, c.sourceOf<KVImageDescription*>(nullptr), &c.record));
    c.refuse("no slot", paramErr, read(stream, description, nullptr));
    c.refuse("headers alone", paramErr, [=, &c] { return ReadSplitJPEG(stream, 20, description, &c.record); });
    KVImageDescription* other = c.targetOf(descriptionOf({size.width + 1, size.height}, -1));
    c.refuse("another size", paramErr, read(stream, c.sourceOf(other), &c.record));
}

// The arguments that the functions of OPCV_dlib_read.h share, and their checks.
struct LimitedCall {
    const unsigned char* stream;
    size_t length;
    const opcv_read_options* options;
    opcv_read_report* report;
};

template <class Read>
LimitedCall readLimited(Case& c, Read read) {
    const Bytes bytes = streamOf(c);
    const auto options = newOptions();
    const LimitedCall good = {c.sourceOf(bytes), bytes.size(), c.sourceOf(options), c.targetEvenOnFailure(newReport())};
    c.call = [read, good] { return read(good); };
    const auto refuse = [&](const char* what, int status, auto change) {
        LimitedCall wrong = good;
        change(wrong);
        c.refuse(what, status, [read, wrong] { return read(wrong); });
    };
    refuse("a null stream", OPCV_READ_BAD_ARGUMENT, [](LimitedCall& l) { l.stream = nullptr; });
    refuse("an empty stream", OPCV_READ_BAD_ARGUMENT, [](LimitedCall& l) { l.length = 0; });
    refuse("a stream that is not JPEG", OPCV_READ_UNREADABLE, [](LimitedCall& l) {
        l.stream += 2;
        l.length -= 2;
    });
    refuse("headers alone", OPCV_READ_UNREADABLE, [](LimitedCall& l) { l.length = 20; });
    const auto refuseOptions = [&](const char* what, int status, auto change) {
        opcv_read_options wrong = options;
        change(wrong);
        refuse(what, status, [where = c.sourceOf(wrong)](LimitedCall& l) { l.options = where; });
    };
    refuseOptions("short options", OPCV_READ_BAD_ARGUMENT, [](opcv_read_options& o) { --o.struct_size; });
    refuseOptions("a negative limit", OPCV_READ_BAD_ARGUMENT, [](opcv_read_options& o) { o.max_pixels = -1; });
    refuseOptions("a limit of bytes", OPCV_READ_OVER_LIMIT, [](opcv_read_options& o) { o.max_bytes = 30; });
    refuseOptions("a limit of memory", OPCV_READ_OVER_LIMIT, [](opcv_read_options& o) { o.max_memory = 1; });
    opcv_read_report shortReport = newReport();
    --shortReport.struct_size;
    refuse("a short report", OPCV_READ_BAD_ARGUMENT,
           [where = c.sourceOf(shortReport)](LimitedCall& l) { l.report = where; });
    return good;
}

void readHeaders(Case& c) {
    const auto read = [](const LimitedCall& l) { return opcv_read_info(l.stream, l.length, l.options, l.report); };
    LimitedCall wrong = readLimited(c, read);
    wrong.report = nullptr;
    c.refuse("no report", OPCV_READ_BAD_ARGUMENT, [read, wrong] { return read(wrong); });
}

void readRecord(Case& c) {
    const LimitedCall good = readLimited(
        c, [&c](const LimitedCall& l) { return opcv_read_page(l.stream, l.length, l.options, &c.record, l.report); });
    c.refuse("no slot", OPCV_READ_BAD_ARGUMENT,
             [good] { return opcv_read_page(good.stream, good.length, good.options, nullptr, good.report); });
}

void readRows(Case& c) {
    const IppiSize size = sizeOfPage(c);
    const int channels = isGrey(c) ? 1 : 3;
    const Image to = c.target({size, channels});
    const opcv_rows rows = {to.data, to.step, size.width, size.height, channels};
    const auto readInto = [](const opcv_rows* where) {
        return [where](const LimitedCall& l) { return opcv_read_rows(l.stream, l.length, l.options, where, l.report); };
    };
    const LimitedCall good = readLimited(c, readInto(c.sourceOf(rows)));
    const auto refuse = [&](const char* what, int status, auto change) {
        opcv_rows wrong = rows;
        change(wrong);
        c.refuse(what, status, [read = readInto(c.sourceOf(wrong)), good] { return read(good); });
    };
    refuse("no pixels", OPCV_READ_BAD_ARGUMENT, [](opcv_rows& r) { r.data = nullptr; });
    refuse("a short step", OPCV_READ_BAD_ARGUMENT, [](opcv_rows& r) { r.step = r.width * r.channels - 1; });
    refuse("two channels", OPCV_READ_BAD_ARGUMENT, [](opcv_rows& r) { r.channels = 2; });
    refuse("another height", OPCV_READ_WRONG_SIZE, [](opcv_rows& r) { ++r.height; });
    c.refuse("no rows", OPCV_READ_BAD_ARGUMENT, [read = readInto(nullptr), good] { return read(good); });
}

}    // namespace

Entries limitedReadingEntries() {
    const OutOfMemory answers = OutOfMemory::answers(OPCV_READ_NO_MEMORY);
    const std::vector<Shape> pages = {{"8 bits", 0}, {"24 bits", 2}};
    return {
        {"opcv_read_info", kStreamVariants, OutOfMemory::never(), readHeaders, {{"", 0}}, kNoImageWork},
        {"opcv_read_page", kStreamVariants, answers, readRecord, pages, "ReadJPEG"},
        {"opcv_read_rows", kStreamVariants, answers, readRows, pages, "ReadJPEG"},
    };
}

Entries jpegEntries() {
    const OutOfMemory records = OutOfMemory::answers(memFullErr);
    const OutOfMemory buffers = OutOfMemory::answersOrThrows(ippStsNoMemErr).as("false");
    const std::vector<Shape> modes = {{"8 bits, mode 450", 6}, {"24 bits, mode 450", 7}};
    const std::vector<Shape> qualities = {{"quality 80", 0}};
    const std::vector<Shape> pages = {{"8 bits", 0}, {"24 bits", 2}};
    const std::vector<Shape> pieces = {{"24 bits", 2}};
    const std::string ex = "CompressJPEGEx";
    const std::string reading = "ReadJPEG";
    return {
        {"CompressJPEG", kCompressVariants, records, compressWith(compressPlain, false), modes},
        {ex, kCompressVariants, records, compressWith(CompressJPEGEx, true), modes},
        {"CompressJPEGWithIPP", kCompressVariants, records, compressWith(CompressJPEGWithIPP, true), modes, ex},
        {"CompressJPEGWithIPPEx", kCompressVariants, records, compressWith(CompressJPEGWithIPPEx, true), modes, ex},
        {"CompressGray2Gray444", 2, buffers, compressGrey, qualities},
        {"CompressRGB2YCbCr444", 2, buffers, compressColour, qualities},
        {"CompressRGB2YCbCr411", 1, buffers, compressSubsampled, qualities},
        {reading, kStreamVariants, records, readWith(ReadJPEG), pages},
        {"ReadJPEGWithIPP", kStreamVariants, records, readWith(ReadJPEGWithIPP), pages, reading},
        {"ReadSplitJPEG", kStreamVariants, records, readPiece, pieces},
    };
}
