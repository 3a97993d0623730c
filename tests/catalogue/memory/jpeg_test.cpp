// Compressors and readers, when memory runs out.
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "OPCV_dlib.h"
#include "core/ownership.h"
#include "every_failure.h"
#include "failing_heap.h"

namespace {

// Functions that turn a record into a stream.
class CompressCall : public Call {
public:
    using Function = OSErr (*)(const KVIMG*, KVImageDescriptionHandle, int, void**, unsigned*);

    CompressCall(std::string name, Function function, int depth, int side)
        : name_(std::move(name)), function_(function), source_(recordOf(side, side, depth)) {}
    std::string name() const override { return name_; }
    int run() override {
        data_ = &size_;
        size_ = kUnset;
        KVImageDescription* record = &description_;
        const OSErr err = function_(source_.get(), &record, 788, &data_, &size_);
        return err;
    }
    Bytes takeOutput() override {
        const std::unique_ptr<void, void (*)(void*)> owner(data_, std::free);
        length_ = size_;
        return {static_cast<uint8_t*>(data_), static_cast<uint8_t*>(data_) + size_};
    }
    int noMemory() const override { return memFullErr; }
    bool mayThrow() const override { return false; }
    // Nothing is written; or, when only the block for the stream was missing, its length and null.
    void expectNothingPartial() override {
        if (data_)
            ASSERT_TRUE(data_ == &size_ && size_ == kUnset);
        else
            ASSERT_EQ(size_, length_);
    }

private:
    static constexpr unsigned kUnset = 0xABCDEF01;
    std::string name_;
    Function function_;
    RecordPtr source_;
    KVImageDescription description_{0, 0, 300, 200, 0, 0};
    void* data_ = nullptr;
    unsigned size_ = 0;
    unsigned length_ = 0;    // of the whole stream
};

OSErr compressPlain(const KVIMG* image, KVImageDescriptionHandle /*unused*/, int mode, void** data, unsigned* size) {
    return CompressJPEG(image, 300, mode, data, size);
}

TEST(OutOfMemory, Compressors) {
    for (const int depth : {8, 24}) {
        const std::string at = " at depth " + std::to_string(depth);
        for (auto& call :
             {std::make_shared<CompressCall>("CompressJPEG" + at, compressPlain, depth, 50),
              std::make_shared<CompressCall>("CompressJPEGEx" + at, CompressJPEGEx, depth, 50),
              std::make_shared<CompressCall>("CompressJPEGWithIPP" + at, CompressJPEGWithIPP, depth, 50),
              std::make_shared<CompressCall>("CompressJPEGWithIPPEx" + at, CompressJPEGWithIPPEx, depth, 50)})
            checkEveryFailure(*call);
    }
}

// Long enough for the work buffer to be flushed: the vector cannot grow while libjpeg runs.
TEST(OutOfMemory, CompressorsOfLongStreams) {
    CompressCall call("CompressJPEG, long", compressPlain, 24, 700);
    checkEveryFailure(call);
}

TEST(OutOfMemory, LengthIsToldWhenOnlyTheBlockIsMissing) {
    const RecordPtr image = recordOf(20, 20, 8);
    bool told = false;
    for (long n = 1; !told; ++n) {
        unsigned size = 0;
        void* data = &size;
        FailingHeap::arm(n, FailingHeap::Failure::kOnce);
        const OSErr err = CompressJPEG(image.get(), 300, 0, &data, &size);
        ASSERT_TRUE(FailingHeap::disarm()) << "no allocation for the block";
        if (err == noErr) std::free(data);    // libjpeg did with less
        told = err == memFullErr && data == nullptr && size > 100;
    }
}

// Buffer compressors say it by false; the work buffer's exception passes.
TEST(OutOfMemory, BufferCompressors) {
    const Bytes pixels(64 * 64 * 3, 77);
    const auto encode = [&pixels](int which, std::vector<unsigned char>& out) {
        switch (which) {
            case 0: return CompressGray2Gray444(pixels.data(), 64, 64, 64, out, 50, 300, 300, true);
            case 1: return CompressRGB2YCbCr444(pixels.data(), 192, 64, 64, out, 50, 300, 300, true);
            default: return CompressRGB2YCbCr411(pixels.data(), 192, 64, 64, out, 50, 300, 300);
        }
    };
    for (int which = 0; which < 3; ++which) {
        std::vector<unsigned char> expected;
        ASSERT_TRUE(encode(which, expected));
        for (const auto failure : {FailingHeap::Failure::kOnce, FailingHeap::Failure::kLasting})
            for (long n = 1;; ++n) {
                bool thrown = false;
                bool good = false;
                bool failed = false;
                {
                    std::vector<unsigned char> out;
                    FailingHeap::arm(n, failure);
                    try {
                        good = encode(which, out);
                    } catch (const std::bad_alloc&) {
                        thrown = true;
                    }
                    failed = FailingHeap::disarm();
                    ASSERT_TRUE(out.empty() || !thrown);
                    ASSERT_TRUE(good ? out == expected : failed) << which << " allocation " << n;
                }
                ASSERT_EQ(FailingHeap::liveBlocks(), 0U) << which << " allocation " << n;
                if (!failed) break;
            }
    }
}

// Functions that read a stream, of a page of this size, into a new record.
class ReadCall : public Call {
public:
    ReadCall(std::string name, bool split, int depth, IppiSize page, Bytes stream)
        : name_(std::move(name)), split_(split), depth_(depth), page_(page), stream_(std::move(stream)) {}
    std::string name() const override { return name_; }
    int run() override {
        image_ = nullptr;
        description_ = {page_.width, page_.height, 0, 0, 0, -1};
        KVImageDescription* record = &description_;
        KVImageDescriptionHandle handle = &record;
        const auto size = static_cast<unsigned>(stream_.size());
        return split_ ? ReadSplitJPEG(stream_.data(), size, handle, &image_)
                      : ReadJPEG(stream_.data(), size, &handle, &image_);
    }
    Bytes takeOutput() override { return takeRecord(image_); }
    int noMemory() const override { return memFullErr; }
    bool mayThrow() const override { return false; }
    // The markers tell the size, and ReadJPEG tells it on, before anything is allocated.
    void expectNothingPartial() override {
        ASSERT_EQ(image_, nullptr);
        ASSERT_EQ(description_.width, page_.width);
        ASSERT_EQ(description_.height, page_.height);
        ASSERT_EQ(description_.depth, split_ ? -1 : depth_);
    }

private:
    std::string name_;
    bool split_;
    int depth_;
    IppiSize page_;
    Bytes stream_;
    KVImageDescription description_{};
    KVIMG* image_ = nullptr;
};

Bytes streamOf(int depth) {
    const RecordPtr image = recordOf(40, 30, depth);
    Bytes stream;
    EXPECT_TRUE(depth == 8 ? CompressGray2Gray444(image->data, image->rowBytes, 40, 30, stream, 80, 300, 300, true)
                           : CompressRGB2YCbCr411(image->data, image->rowBytes, 40, 30, stream, 80, 300, 300));
    return stream;
}

TEST(OutOfMemory, Readers) {
    for (const int depth : {8, 24})
        for (const bool split : {false, true}) {
            ReadCall call((split ? "ReadSplitJPEG of " : "ReadJPEG of ") + std::to_string(depth) + " bits", split,
                          depth, {40, 30}, streamOf(depth));
            checkEveryFailure(call);
        }
}

// An EXIF orientation turns the page on its way through a strip of rows.
TEST(OutOfMemory, ReadersOfTurnedStreams) {
    const Bytes exif = {0xFF, 0xE1, 0, 34, 'E', 'x', 'i', 'f', 0, 0, 'M', 'M', 0, 42, 0, 0, 0, 8,
                        0,    1,    1, 18, 0,   3,   0,   0,   0, 1, 0,   6,   0, 0,  0, 0, 0, 0};
    for (const int depth : {8, 24})
        for (const bool split : {false, true}) {
            Bytes stream = streamOf(depth);
            stream.insert(stream.begin() + 2, exif.begin(), exif.end());
            ReadCall call((split ? "ReadSplitJPEG, turned, " : "ReadJPEG, turned, ") + std::to_string(depth), split,
                          depth, {30, 40}, stream);
            checkEveryFailure(call);
        }
}

// A piece of another size is refused before there is a block for its pixels.
TEST(OutOfMemory, APieceOfAnotherSizeLeavesNothing) {
    const Bytes stream = streamOf(24);
    KVImageDescription description{41, 30, 0, 0, 0, 0};
    KVImageDescription* record = &description;
    KVIMG* image = nullptr;
    FailingHeap::arm(kNever, FailingHeap::Failure::kOnce);
    EXPECT_EQ(ReadSplitJPEG(stream.data(), static_cast<unsigned>(stream.size()), &record, &image), paramErr);
    EXPECT_FALSE(FailingHeap::disarm());
    EXPECT_EQ(FailingHeap::liveBlocks(), 0U);
    EXPECT_EQ(image, nullptr);
}

}    // namespace
