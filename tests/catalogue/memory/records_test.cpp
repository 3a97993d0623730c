// Functions that make records and planes, when memory runs out.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "OPCV_dlib.h"
#include "core/ownership.h"
#include "every_failure.h"
#include "failing_heap.h"

namespace {

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
