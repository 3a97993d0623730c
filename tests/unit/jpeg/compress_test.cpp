// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <map>
#include <memory>
#include <vector>

#include <malloc.h>

#include "OPCV_dlib.h"
#include "jpeg/KVCompress.h"
#include "oracle/jpeg.h"
#include "support/guarded_image.h"
#include "support/jpeg_stream.h"
#include "support/random.h"

namespace {

using Bytes = std::vector<uint8_t>;

struct Result {
    OSErr status;
    Bytes stream;
};

// A record over a guarded image, and a description with resolutions.
struct Fixture {
    explicit Fixture(int depth, unsigned seed = 1, IppiSize size = {37, 29})
        : random(seed),
          pixels(random, size, {depth / 8, 0, depth == 24 ? 3 : 5, 0}, random.anyValues()),
          image{pixels.data(), depth, size.width, size.height, pixels.step(), pixels.step() * size.height} {}

    oracle::JpegSettings settings(int quality, bool own, int lumaSampling, int x, int y) const {
        oracle::JpegSettings s;
        s.components = image.depth / 8;
        s.lumaSampling = s.components == 3 ? lumaSampling : 1;
        s.quality = quality;
        s.luminance = own ? g_customLuminanceQuant : nullptr;
        s.chrominance = own && s.components == 3 ? g_customChrominanceQuant : nullptr;
        s.xDensity = x;
        s.yDensity = y;
        return s;
    }
    Bytes expected(const oracle::JpegSettings& s) const {
        return oracle::encodeJpeg(image.data, image.rowBytes, image.width, image.height, s);
    }

    Random random;
    GuardedImage pixels;
    KVIMG image;
    KVImageDescription description{0, 0, 400, 200, 0, 0};
    KVImageDescription* record = &description;
};

using Compressor = OSErr (*)(const KVIMG*, KVImageDescriptionHandle, int, void**, unsigned*);

OSErr plainAt300(const KVIMG* image, KVImageDescriptionHandle /*unused*/, int mode, void** data, unsigned* size) {
    return CompressJPEG(image, 300, mode, data, size);
}

const std::vector<Compressor> kAll = {plainAt300, CompressJPEGEx, CompressJPEGWithIPP, CompressJPEGWithIPPEx};
const std::vector<Compressor> kWithHandle = {CompressJPEGEx, CompressJPEGWithIPP, CompressJPEGWithIPPEx};

Result run(Compressor compressor, const KVIMG* image, KVImageDescriptionHandle description, int mode) {
    static int never;
    void* data = &never;
    unsigned size = 12345;
    Result result{compressor(image, description, mode, &data, &size), {}};
    if (result.status == noErr) {
        const std::unique_ptr<void, void (*)(void*)> owner(data, std::free);
        result.stream.assign(static_cast<uint8_t*>(data), static_cast<uint8_t*>(data) + size);
    } else {
        EXPECT_EQ(data, &never);
        EXPECT_EQ(size, 12345U);
    }
    return result;
}

struct Qualities {
    int plain, ex, withIPP;
};
const std::map<int, Qualities> kQualities = {
    {0, {15, 14, 15}}, {286, {50, 35, 45}}, {389, {67, 55, 67}}, {450, {80, 70, 80}}, {788, {95, 95, 95}}};

TEST(CompressJPEG, WritesEachModeOfEachFunctionLikeLibjpeg) {
    for (const int depth : {8, 24})
        for (const auto& [mode, quality] : kQualities) {
            Fixture f(depth);
            EXPECT_EQ(run(plainAt300, &f.image, nullptr, mode).stream,
                      f.expected(f.settings(quality.plain, true, 1, 300, 300)));
            EXPECT_EQ(run(CompressJPEGEx, &f.image, &f.record, mode).stream,
                      f.expected(f.settings(quality.ex, false, 2, 400, 200)));
            EXPECT_EQ(run(CompressJPEGWithIPP, &f.image, &f.record, mode).stream,
                      f.expected(f.settings(quality.withIPP, false, 2, 400, 200)));
            EXPECT_EQ(run(CompressJPEGWithIPPEx, &f.image, &f.record, mode).stream,
                      run(CompressJPEGEx, &f.image, &f.record, mode).stream);
            EXPECT_TRUE(f.pixels.untouched());
        }
}

TEST(CompressJPEG, RefusesUnknownModes) {
    Fixture f(8);
    for (const Compressor compressor : kAll)
        for (const int mode : {-1, 1, 285, 287, 388, 390, 449, 451, 787, 789, INT_MAX, INT_MIN})
            EXPECT_EQ(run(compressor, &f.image, &f.record, mode).status, paramErr) << mode;
}

TEST(CompressJPEG, RefusesOtherDepthsForEveryMode) {
    for (const Compressor compressor : kAll)
        for (const int depth : {0, 1, 16, 32, 40, -8, 256 + 8})
            for (const auto& mode : kQualities) {
                Fixture f(8);
                f.image.depth = depth;
                EXPECT_EQ(run(compressor, &f.image, &f.record, mode.first).status, paramErr) << depth;
            }
}

TEST(CompressJPEG, RefusesMissingAndEmptyArguments) {
    Fixture f(8);
    for (const Compressor compressor : kAll) {
        EXPECT_EQ(run(compressor, nullptr, &f.record, 0).status, paramErr);
        unsigned size = 7;
        void* data = &size;
        EXPECT_EQ(compressor(&f.image, &f.record, 0, nullptr, &size), paramErr);
        EXPECT_EQ(compressor(&f.image, &f.record, 0, &data, nullptr), paramErr);
        EXPECT_EQ(data, &size);
        EXPECT_EQ(size, 7U);
        for (int field = 0; field < 5; ++field) {
            KVIMG broken = f.image;
            if (field == 0) broken.data = nullptr;
            if (field == 1) broken.width = 0;
            if (field == 2) broken.width = -3;
            if (field == 3) broken.height = 0;
            if (field == 4) broken.height = -3;
            EXPECT_EQ(run(compressor, &broken, &f.record, 0).status, paramErr) << field;
        }
    }
    for (const Compressor compressor : kWithHandle) {
        KVImageDescription* none = nullptr;
        EXPECT_EQ(run(compressor, &f.image, nullptr, 0).status, paramErr);
        EXPECT_EQ(run(compressor, &f.image, &none, 0).status, paramErr);
    }
}

TEST(CompressJPEG, AFailedEncodingIsOutOfMemory) {
    for (const int depth : {8, 24}) {
        Bytes pixels(size_t{65501} * 3);
        const KVIMG wide = {pixels.data(), depth, 65501, 1, 65501 * 3, 65501 * 3};
        const KVIMG high = {pixels.data(), depth, 1, 65501, 0, 0};
        KVImageDescription description{};
        KVImageDescription* record = &description;
        for (const Compressor compressor : kAll) {
            EXPECT_EQ(run(compressor, &wide, &record, 0).status, memFullErr);
            EXPECT_EQ(run(compressor, &high, &record, 0).status, memFullErr);
        }
    }
}

TEST(CompressJPEG, WritesLargeStreamsWhole) {
    Fixture f(24, 6, {800, 800});
    const Result result = run(plainAt300, &f.image, nullptr, 788);
    EXPECT_EQ(result.stream, f.expected(f.settings(95, true, 1, 300, 300)));
}

TEST(CompressJPEG, ReturnsABlockOfTheStreamsSize) {
    Fixture f(24, 5, {500, 400});
    void* data = nullptr;
    unsigned size = 0;
    ASSERT_EQ(CompressJPEG(&f.image, 300, 788, &data, &size), noErr);
    const std::unique_ptr<void, void (*)(void*)> owner(data, std::free);
    constexpr size_t kOfThePage = 8192;    // the heap rounds up
    EXPECT_LT(malloc_usable_size(data), size + kOfThePage);
}

TEST(CompressJPEG, StreamRunsFromStartToEndOfImage) {
    Fixture f(24);
    const Result result = run(plainAt300, &f.image, nullptr, 389);
    const std::vector<int> markers = JpegStream(result.stream).markers();
    EXPECT_EQ(markers.front(), JpegStream::kSOI);
    EXPECT_EQ(markers.back(), JpegStream::kEOI);
}

TEST(CompressBuffers, AppendLikeLibjpeg) {
    Random random(8);
    for (int round = 0; round < 40; ++round) {
        Fixture f(random.chance(50) ? 8 : 24, static_cast<unsigned>(round),
                  {random.between(1, 70), random.between(1, 70)});
        const int quality = random.between(1, 100);
        const int x = random.between(1, 70000);
        const int y = random.between(1, 70000);
        const bool own = random.chance(50);
        Bytes out = {1, 2};
        Bytes expected = out;
        const KVIMG& i = f.image;
        if (i.depth == 8) {
            ASSERT_TRUE(CompressGray2Gray444(i.data, i.rowBytes, i.width, i.height, out, quality, y, x, own));
            const Bytes stream = f.expected(f.settings(quality, own, 1, x, y));
            expected.insert(expected.end(), stream.begin(), stream.end());
        } else {
            ASSERT_TRUE(CompressRGB2YCbCr444(i.data, i.rowBytes, i.width, i.height, out, quality, y, x, own));
            ASSERT_TRUE(CompressRGB2YCbCr411(i.data, i.rowBytes, i.width, i.height, out, quality, y, x));
            for (const auto& settings : {f.settings(quality, own, 1, x, y), f.settings(quality, false, 2, x, y)}) {
                const Bytes stream = f.expected(settings);
                expected.insert(expected.end(), stream.begin(), stream.end());
            }
        }
        ASSERT_EQ(out, expected);
    }
}

TEST(CompressBuffers, ReportThatEncodingFailed) {
    const Bytes pixels(70000);
    Bytes out;
    EXPECT_FALSE(CompressGray2Gray444(pixels.data(), 0, 1, 65501, out, 50, 1, 1, true));
    EXPECT_FALSE(CompressRGB2YCbCr444(pixels.data(), 0, 1, 65501, out, 50, 1, 1, true));
    EXPECT_FALSE(CompressRGB2YCbCr411(pixels.data(), 0, 1, 65501, out, 50, 1, 1));
    EXPECT_TRUE(out.empty());
}

}    // namespace
