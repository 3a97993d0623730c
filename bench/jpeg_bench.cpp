// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Reading, compressing and the round trip of a page through memory. The plain way to read is OpenCV's decoder and one
// copy into a new record, in the record's channel order; to compress, libjpeg with its own growing destination, one row
// at a time.
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <string>
#include <tuple>
#include <vector>

#include "OPCV_dlib.h"
#include "core/ownership.h"
#include "jpeg/KVCompress.h"
#include "jpeg/survey.h"
#include "oracle/jpeg.h"
#include "support.h"

namespace {

constexpr double kAngle = 2.3;

using Stream = std::vector<unsigned char>;

// The same page in three layouts, created once.
enum class Layout { kGrey, k444, k420 };

std::string nameOf(Layout layout) {
    switch (layout) {
        case Layout::kGrey: return "8 bit";
        case Layout::k444: return "24 bit 4:4:4";
        default: return "24 bit 4:2:0";
    }
}

int channelsOf(Layout layout) { return layout == Layout::kGrey ? 1 : 3; }

const Stream& streamOf(IppiSize size, Layout layout) {
    static std::map<std::tuple<int, int, Layout>, Stream> streams;
    Stream& stream = streams[{size.width, size.height, layout}];
    if (stream.empty()) {
        const bench::Page& page = bench::source(size, channelsOf(layout));
        if (layout == Layout::kGrey)
            CompressGray2Gray444(page.data(), page.step(), size.width, size.height, stream, 80, 300, 300, false);
        else if (layout == Layout::k444)
            CompressRGB2YCbCr444(page.data(), page.step(), size.width, size.height, stream, 80, 300, 300, false);
        else
            CompressRGB2YCbCr411(page.data(), page.step(), size.width, size.height, stream, 80, 300, 300);
    }
    return stream;
}

opcv::RecordPtr readPage(const Stream& stream, KVImageDescription& description) {
    KVImageDescription* record = &description;
    KVImageDescriptionHandle handle = &record;
    KVIMG* page = nullptr;
    ReadJPEG(stream.data(), static_cast<unsigned>(stream.size()), &handle, &page);
    return opcv::RecordPtr(page);
}

void readPlain(const Stream& stream) {
    const cv::Mat page = cv::imdecode(stream, cv::IMREAD_ANYCOLOR);
    opcv::RecordPtr record;
    opcv::createRecord({0, 0, page.rows, page.cols}, static_cast<unsigned char>(8 * page.channels()), record);
    cv::Mat to(page.rows, page.cols, page.type(), record->data, static_cast<size_t>(record->rowBytes));
    if (page.channels() == 3)
        cv::cvtColor(page, to, cv::COLOR_BGR2RGB);
    else
        page.copyTo(to);
}

size_t bytesRead(IppiSize size, Layout layout) { return streamOf(size, layout).size(); }

void compareReading(IppiSize size, Layout layout) {
    const size_t pixels = bench::bytesOf(size, channelsOf(layout));
    bench::compare(
        {"ReadJPEG", nameOf(layout), size, bytesRead(size, layout), pixels},
        [size, layout] {
            KVImageDescription description{};
            readPage(streamOf(size, layout), description);
        },
        bench::openCV([size, layout] { readPlain(streamOf(size, layout)); }));
    // As in a program that reads page after page: the heap still holds the memory of the previous one.
    constexpr int kInARow = 4;
    const auto inARow = [](const bench::Action& once) {
        return [once] {
            for (int i = 0; i < kInARow; ++i) once();
        };
    };
    bench::compare(
        {"ReadJPEG", nameOf(layout) + ", four in a row", size, kInARow * bytesRead(size, layout), kInARow * pixels},
        inARow([size, layout] {
            KVImageDescription description{};
            readPage(streamOf(size, layout), description);
        }),
        bench::openCV(inARow([size, layout] { readPlain(streamOf(size, layout)); })));
    // The cost of examining a stream before it is decoded.
    bench::compare({"ReadJPEG", std::string("markers alone, ") + nameOf(layout), size, bytesRead(size, layout), pixels},
                   [size, layout] {
                       const Stream& stream = streamOf(size, layout);
                       surveyStream(stream.data(), stream.size());
                   },
                   {"the whole ReadJPEG", [size, layout] {
                        KVImageDescription description{};
                        readPage(streamOf(size, layout), description);
                    }});
    if (layout == Layout::kGrey) return;
    bench::compare(
        {"ReadSplitJPEG", nameOf(layout), size, bytesRead(size, layout), pixels},
        [size, layout] {
            const Stream& stream = streamOf(size, layout);
            KVImageDescription description{size.width, size.height, 0, 0, 0, 0};
            KVImageDescription* record = &description;
            KVIMG* page = nullptr;
            ReadSplitJPEG(stream.data(), static_cast<unsigned>(stream.size()), &record, &page);
            const opcv::RecordPtr owner(page);
        },
        bench::openCV([size, layout] { readPlain(streamOf(size, layout)); }));
}

// A record over a shared page, and its description.
struct PageRecord {
    PageRecord(IppiSize size, int channels) {
        const bench::Page& page = bench::source(size, channels);
        record = {const_cast<uint8_t*>(page.data()), 8 * channels, size.width, size.height, page.step(), 0};
        description = {size.width, size.height, 300, 300, 0, static_cast<int16_t>(8 * channels)};
    }

    KVIMG record{};
    KVImageDescription description{};
};

constexpr int kMode = 450;    // quality 80 in CompressJPEG, 70 in CompressJPEGEx

oracle::JpegSettings settingsOf(int channels, int lumaSampling, int quality, bool ownTables) {
    oracle::JpegSettings settings;
    settings.components = channels;
    settings.lumaSampling = lumaSampling;
    settings.quality = quality;
    settings.xDensity = 300;
    settings.yDensity = 300;
    if (ownTables) settings.luminance = g_customLuminanceQuant;
    if (ownTables && channels == 3) settings.chrominance = g_customChrominanceQuant;
    return settings;
}

// Stores a stream where `compare` expects it.
using Compressor = std::function<void(const PageRecord& page, Stream* stream)>;

void compareCompressor(const char* function, const std::string& variant, IppiSize size,
                       const oracle::JpegSettings& settings, const Compressor& compress) {
    const auto page = std::make_shared<PageRecord>(size, settings.components);
    const KVIMG& image = page->record;
    const auto plain = [page, &image, settings] {
        return oracle::encodeJpeg(image.data, image.rowBytes, image.width, image.height, settings);
    };
    const size_t pixels = bench::bytesOf(size, settings.components);
    bench::compare(
        {function, variant, size, pixels, plain().size()}, [page, compress] { compress(*page, nullptr); },
        {"libjpeg", plain},
        [page, compress, plain] {
            Stream stream;
            compress(*page, &stream);
            return stream == plain();
        });
}

// The functions that return a block.
using BlockCompressor = std::function<OSErr(const PageRecord& page, void** data, unsigned* bytes)>;

Compressor intoBlock(const BlockCompressor& compress) {
    return [compress](const PageRecord& page, Stream* stream) {
        void* data = nullptr;
        unsigned bytes = 0;
        compress(page, &data, &bytes);
        if (stream) stream->assign(static_cast<unsigned char*>(data), static_cast<unsigned char*>(data) + bytes);
        std::free(data);
    };
}

// The functions that append to a vector.
using VectorCompressor = std::function<bool(const KVIMG& image, Stream& stream)>;

Compressor intoVector(const VectorCompressor& compress) {
    return [compress](const PageRecord& page, Stream* stream) {
        Stream own;
        compress(page.record, stream ? *stream : own);
    };
}

void compareCompressing(IppiSize size) {
    for (const int channels : {1, 3}) {
        const std::string depth = std::to_string(8 * channels) + " bit";
        compareCompressor("CompressJPEG", depth, size, settingsOf(channels, 1, 80, true),
                          intoBlock([](const PageRecord& page, void** data, unsigned* bytes) {
                              return CompressJPEG(&page.record, 300, kMode, data, bytes);
                          }));
        compareCompressor("CompressJPEGEx", depth, size, settingsOf(channels, channels == 3 ? 2 : 1, 70, false),
                          intoBlock([](const PageRecord& page, void** data, unsigned* bytes) {
                              KVImageDescription description = page.description;
                              KVImageDescription* record = &description;
                              return CompressJPEGEx(&page.record, &record, kMode, data, bytes);
                          }));
    }
    compareCompressor("CompressGray2Gray444", "", size, settingsOf(1, 1, 70, false),
                      intoVector([](const KVIMG& image, Stream& stream) {
                          return CompressGray2Gray444(image.data, image.rowBytes, image.width, image.height, stream, 70,
                                                      300, 300, false);
                      }));
    compareCompressor("CompressRGB2YCbCr444", "", size, settingsOf(3, 1, 70, false),
                      intoVector([](const KVIMG& image, Stream& stream) {
                          return CompressRGB2YCbCr444(image.data, image.rowBytes, image.width, image.height, stream, 70,
                                                      300, 300, false);
                      }));
    compareCompressor("CompressRGB2YCbCr411", "", size, settingsOf(3, 2, 70, false),
                      intoVector([](const KVIMG& image, Stream& stream) {
                          return CompressRGB2YCbCr411(image.data, image.rowBytes, image.width, image.height, stream, 70,
                                                      300, 300);
                      }));
}

cv::Mat deskewPlain(const cv::Mat& page) {
    const cv::Point2f centre(static_cast<float>(page.cols - 1) / 2, static_cast<float>(page.rows - 1) / 2);
    cv::Mat straight;
    cv::warpAffine(page, straight, cv::getRotationMatrix2D(centre, kAngle, 1), page.size(), cv::INTER_LINEAR,
                   cv::BORDER_CONSTANT, cv::Scalar::all(page.channels() == 3 ? 255 : 0));
    return straight;
}

void compareRoundTrip(IppiSize size, Layout layout) {
    bench::compare(
        {"ReadJPEG, DeskewImageWithIPP, CompressJPEGEx", nameOf(layout), size, bench::bytesOf(size, channelsOf(layout)),
         bytesRead(size, layout)},
        [size, layout] {
            KVImageDescription description{0, 0, 300, 300, 0, 0};
            KVImageDescription* record = &description;
            opcv::RecordPtr page = readPage(streamOf(size, layout), description);
            KVIMG* straight = nullptr;
            DeskewImageWithIPP(page.get(), &record, &straight, 0, 1, kAngle);
            page.reset();    // so that no more than two pages exist at once
            void* data = nullptr;
            unsigned bytes = 0;
            CompressJPEGEx(straight, &record, kMode, &data, &bytes);
            std::free(data);
            const opcv::RecordPtr owner(straight);
        },
        bench::openCV([size, layout] {
            cv::Mat page = cv::imdecode(streamOf(size, layout), cv::IMREAD_ANYCOLOR);
            page = deskewPlain(page);
            Stream stream;
            cv::imencode(".jpg", page, stream, {cv::IMWRITE_JPEG_QUALITY, 70});
        }));
}

void compareJpeg() {
    for (const IppiSize size : bench::sizes()) {
        for (const Layout layout : {Layout::kGrey, Layout::k444, Layout::k420}) compareReading(size, layout);
        compareCompressing(size);
        for (const Layout layout : {Layout::kGrey, Layout::k420}) compareRoundTrip(size, layout);
    }
}

const bench::Goals goals({
    {"ReadJPEG", "8 bit", 0.92},
    {"ReadJPEG", "24 bit 4:4:4", 0.46},
    {"ReadJPEG", "24 bit 4:2:0", 0.4},
    {"CompressJPEG", "8 bit", 0.97},
    {"CompressJPEG", "24 bit", 0.97},
    {"CompressJPEGEx", "8 bit", 0.97},
    {"CompressJPEGEx", "24 bit", 0.97},
    {"ReadJPEG, DeskewImageWithIPP, CompressJPEGEx", "8 bit", 0.6},
});

const bench::Registration registration("JPEG", compareJpeg);

}    // namespace
