// Every allocation of a call fails once, one after the other, and then all from it on. Each time the call must say so
// by its status or by the exception that OpenCV throws, hand out nothing and keep nothing.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

#include "OPCV_dlib.h"
#include "core/ownership.h"
#include "failing_heap.h"
#include "support/random.h"

namespace {

using Bytes = std::vector<uint8_t>;

// How a call ended. `output` is what it handed over; it is taken after the heap is whole again.
enum class Ending { kSuccess, kOutOfMemory, kRefused, kException };

constexpr long kNever = 1 << 30;

class Call {
public:
    virtual ~Call() = default;
    virtual std::string name() const = 0;
    virtual int run() = 0;                // the status
    virtual Bytes takeOutput() = 0;       // releases what was handed over; empty if nothing was
    virtual int noMemory() const = 0;     // the status that says so
    virtual bool mayThrow() const = 0;    // whether OpenCV's exceptions pass

    // What a failed call leaves in the caller's variables is as documented.
    virtual void expectNothingPartial() = 0;
};

Ending endingOf(Call& call, int& status) {
    try {
        status = call.run();
        return status == 0 ? Ending::kSuccess : status == call.noMemory() ? Ending::kOutOfMemory : Ending::kRefused;
    } catch (const std::bad_alloc&) {
        return Ending::kException;
    } catch (const cv::Exception& e) {
        return e.code == cv::Error::StsNoMem ? Ending::kException : Ending::kRefused;
    }
}

void checkEveryFailure(Call& call) {
    SCOPED_TRACE(call.name());
    int status = 0;
    ASSERT_EQ(endingOf(call, status), Ending::kSuccess) << status;    // also lets OpenCV fill its caches
    const Bytes expected = call.takeOutput();
    ASSERT_FALSE(expected.empty());

    FailingHeap::arm(kNever, FailingHeap::Failure::kOnce);
    endingOf(call, status);
    FailingHeap::disarm();
    call.takeOutput();
    ASSERT_EQ(FailingHeap::liveBlocks(), 0U) << "without a failure";

    for (const auto failure : {FailingHeap::Failure::kOnce, FailingHeap::Failure::kLasting})
        for (long n = 1;; ++n) {
            FailingHeap::arm(n, failure);
            const Ending ending = endingOf(call, status);
            const bool failed = FailingHeap::disarm();
            SCOPED_TRACE("allocation " + std::to_string(n));
            if (ending == Ending::kSuccess) {
                // libjpeg and OpenCV do without some of what they ask for.
                ASSERT_EQ(call.takeOutput(), expected);
            } else {
                ASSERT_TRUE(failed);
                ASSERT_TRUE(ending == Ending::kOutOfMemory || (ending == Ending::kException && call.mayThrow()))
                    << "status " << status;
                call.expectNothingPartial();
            }
            ASSERT_EQ(FailingHeap::liveBlocks(), 0U);
            if (!failed) break;
        }
}

Bytes takeRecord(KVIMG*& record) {
    if (!record) return {};
    Bytes bytes(record->data, record->data + record->size);
    DisposeKVIMG(record);
    record = nullptr;
    return bytes;
}

RecordPtr recordOf(int width, int height, int depth) {
    RecordPtr record;
    EXPECT_EQ(createRecord({0, 0, height, width}, static_cast<unsigned char>(depth), record), noErr);
    Random random(91);
    random.fill(record->data, static_cast<size_t>(record->size));
    return record;
}

// Functions that put a new record into the caller's slot.
class RecordCall : public Call {
public:
    using Function = OSErr (*)(const KVIMG* source, KVImageDescriptionHandle description, KVIMG** slot);

    RecordCall(std::string name, Function function, int depth, bool mayThrow)
        : name_(std::move(name)), function_(function), mayThrow_(mayThrow), source_(recordOf(61, 47, depth)) {
        description_.width = 61;
        description_.height = 47;
        description_.depth = static_cast<int16_t>(depth);
    }
    std::string name() const override { return name_; }
    int run() override {
        slot_ = nullptr;
        KVImageDescription* record = &description_;
        return function_(source_.get(), &record, &slot_);
    }
    Bytes takeOutput() override { return takeRecord(slot_); }
    int noMemory() const override { return memFullErr; }
    bool mayThrow() const override { return mayThrow_; }
    void expectNothingPartial() override { ASSERT_EQ(slot_, nullptr); }

private:
    std::string name_;
    Function function_;
    bool mayThrow_;
    RecordPtr source_;
    KVImageDescription description_{};
    KVIMG* slot_ = nullptr;
};

OSErr create(const KVIMG* source, KVImageDescriptionHandle /*unused*/, KVIMG** slot) {
    const KVRect r = {0, 0, source->height, source->width};
    const OSErr err = CreateNewKVIMGPtr(slot, &r, static_cast<unsigned char>(source->depth));
    if (err == noErr) std::memset((*slot)->data, 0, static_cast<size_t>((*slot)->size));
    return err;
}

OSErr createForUnite(const KVIMG* source, KVImageDescriptionHandle /*unused*/, KVIMG** slot) {
    const KVRect r = {0, 0, source->height, source->width};
    const OSErr err = CreateNewKVIMGPtrForUnite(slot, &r, static_cast<unsigned char>(source->depth));
    if (err == noErr) std::memset((*slot)->data, 0, static_cast<size_t>((*slot)->size));
    return err;
}

OSErr deskew(const KVIMG* source, KVImageDescriptionHandle description, KVIMG** slot) {
    return DeskewImageWithIPP(source, description, slot, 0, 1, 3.0);
}

OSErr deskewCropped(const KVIMG* source, KVImageDescriptionHandle description, KVIMG** slot) {
    KVRect crop = {-3, -5, 43, 60};
    return DeskewImageWithIPPEx(source, description, slot, 0, 1, &crop, 3.0);
}

OSErr deskewAbout(const KVIMG* source, KVImageDescriptionHandle description, KVIMG** slot) {
    KVRect crop = {0, 0, 40, 50};
    return DeskewImageWithIPPExWithShirftPoint(source, description, slot, 0, 1, &crop, 20, 10, -4.0);
}

OSErr quarterTurn(const KVIMG* source, KVImageDescriptionHandle description, KVIMG** slot) {
    return RotateImageWithIPP(source, description, slot, 90);
}

// Its own status for everything.
OSErr unite(const KVIMG* source, KVImageDescriptionHandle description, KVIMG** slot) {
    const KVImageDescription& d = **description;
    const int step = d.depth == 24 ? (3 * 70 + 3) / 4 * 4 : (d.depth / 8 * 70 + 15) / 16 * 16;
    KVImageHeader canvas = {nullptr, 0, d.depth, 70, 60, step};
    const KVImageHeader image = {source->data, 0, d.depth, d.width, d.height, source->rowBytes};
    const OSErr err = UniteImageIplRotateImage(&canvas, &image, slot, 5.0);
    return err == uniteFailedErr ? static_cast<OSErr>(memFullErr) : err;
}

// Rows of a record end in padding that no function writes.
OSErr withClearPadding(OSErr err, KVIMG** slot) {
    if (err != noErr) return err;
    KVIMG& record = **slot;
    const int used = record.width * record.depth / 8;
    for (int y = 0; y < record.height; ++y)
        std::memset(record.data + ptrdiff_t{y} * record.rowBytes + used, 0,
                    static_cast<size_t>(record.rowBytes - used));
    return err;
}

template <RecordCall::Function function>
OSErr padded(const KVIMG* source, KVImageDescriptionHandle description, KVIMG** slot) {
    return withClearPadding(function(source, description, slot), slot);
}

TEST(OutOfMemory, RecordFunctions) {
    for (const int depth : {8, 24, 32}) {
        const std::string at = " at depth " + std::to_string(depth);
        for (auto& call : {std::make_shared<RecordCall>("create" + at, create, depth, false),
                           std::make_shared<RecordCall>("create for unite" + at, createForUnite, depth, false),
                           std::make_shared<RecordCall>("deskew" + at, padded<deskew>, depth, true),
                           std::make_shared<RecordCall>("deskew cropped" + at, padded<deskewCropped>, depth, true),
                           std::make_shared<RecordCall>("deskew about a point" + at, padded<deskewAbout>, depth, true),
                           std::make_shared<RecordCall>("quarter turn" + at, padded<quarterTurn>, depth, true),
                           std::make_shared<RecordCall>("unite" + at, padded<unite>, depth, true)})
            checkEveryFailure(*call);
    }
}

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

TEST(OutOfMemory, PlaneAllocators) {
    int step = 0;
    FailingHeap::arm(1, FailingHeap::Failure::kOnce);
    short* samples = IPPShare_ippiMalloc_16s_C1(33, 2, &step);
    EXPECT_TRUE(FailingHeap::disarm());
    EXPECT_EQ(samples, nullptr);
    EXPECT_EQ(step, 128);
    step = 0;
    FailingHeap::arm(1, FailingHeap::Failure::kOnce);
    unsigned char* pixels = IPPMini_ippiMalloc_8u_C3(22, 1, &step);
    EXPECT_TRUE(FailingHeap::disarm());
    EXPECT_EQ(pixels, nullptr);
    EXPECT_EQ(step, 128);
}

// A caller's own record in the slot is released when the new one cannot be made.
TEST(OutOfMemory, AStaleRecordIsReleased) {
    const RecordPtr source = recordOf(20, 10, 8);
    KVImageDescription description{20, 10, 0, 0, 0, 8};
    KVImageDescription* record = &description;
    for (long n = 1; n <= 2; ++n) {
        constexpr long kStaleBlocks = 2;
        FailingHeap::arm(kStaleBlocks + n, FailingHeap::Failure::kOnce);
        KVIMG* slot = recordOf(5, 5, 24).release();
        ASSERT_EQ(FailingHeap::liveBlocks(), size_t{kStaleBlocks});
        EXPECT_EQ(DeskewImageWithIPP(source.get(), &record, &slot, 0, 0, 1.0), memFullErr);
        EXPECT_TRUE(FailingHeap::disarm());
        EXPECT_EQ(slot, nullptr);
        EXPECT_EQ(FailingHeap::liveBlocks(), 0U);
    }
}

// The creators free the block in the slot, and leave the slot, when the pixels cannot be had.
TEST(OutOfMemory, CreatorsFreeTheBlockInTheSlot) {
    const KVRect r = {0, 0, 10, 10};
    for (const auto creator : {CreateNewKVIMGPtr, CreateNewKVIMGPtrForUnite}) {
        FailingHeap::arm(2, FailingHeap::Failure::kOnce);
        auto* slot = static_cast<KVIMG*>(std::malloc(sizeof(KVIMG)));
        const auto stale = reinterpret_cast<uintptr_t>(slot);
        EXPECT_EQ(creator(&slot, &r, 8), memFullErr);
        EXPECT_TRUE(FailingHeap::disarm());
        EXPECT_EQ(reinterpret_cast<uintptr_t>(slot), stale);
        EXPECT_EQ(FailingHeap::liveBlocks(), 0U);
    }
}

TEST(OutOfMemory, NothingIsAllocatedForADepthWithoutARowRule) {
    const KVRect r = {0, 0, 10, 10};
    for (const auto creator : {CreateNewKVIMGPtr, CreateNewKVIMGPtrForUnite})
        for (const int depth : {0, 2, 16, 41}) {
            KVIMG* slot = nullptr;
            FailingHeap::arm(1, FailingHeap::Failure::kOnce);
            EXPECT_EQ(creator(&slot, &r, static_cast<unsigned char>(depth)), noErr);
            EXPECT_FALSE(FailingHeap::disarm()) << depth;
        }
}

}    // namespace
