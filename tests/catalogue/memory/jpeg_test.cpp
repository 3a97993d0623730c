// Compressors and readers that are out of memory, in cases that the catalogue does not have.
#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "OPCV_dlib.h"
#include "core/ownership.h"
#include "failing_heap.h"
#include "observation.h"
#include "records.h"

namespace {

// Long enough for the work buffer to be flushed: the vector cannot grow while libjpeg runs.
TEST(OutOfMemory, CompressorsOfLongStreams) {
    for (const Entry& entry : catalogue()) {
        if (entry.name.rfind("Compress", 0) != 0) continue;
        Case::Setting setting;
        setting.variant = entry.variants - 1;    // the best quality
        setting.size = {700, 700};
        Observation seen;
        observe(entry, setting, seen);
        EXPECT_EQ(seen.fault, "") << entry.name;
    }
}

TEST(OutOfMemory, TheLengthIsWrittenWhenOnlyTheBlockIsMissing) {
    const RecordPtr image = recordOf(20, 20, 8);
    bool written = false;
    for (long n = 1; !written; ++n) {
        unsigned size = 0;
        void* data = &size;
        FailingHeap::arm(n, FailingHeap::Failure::kOnce);
        const OSErr err = CompressJPEG(image.get(), 300, 0, &data, &size);
        ASSERT_TRUE(FailingHeap::disarm()) << "no allocation for the block";
        if (err == noErr) std::free(data);    // libjpeg did with less
        written = err == memFullErr && data == nullptr && size > 100;
    }
}

// A piece of another size is refused before there is a block for its pixels.
TEST(OutOfMemory, APieceOfAnotherSizeLeavesNothing) {
    const RecordPtr page = recordOf(40, 30, 24);
    std::vector<unsigned char> stream;
    ASSERT_TRUE(CompressRGB2YCbCr411(page->data, page->rowBytes, 40, 30, stream, 80, 300, 300));
    KVImageDescription description{41, 30, 0, 0, 0, 0};
    KVImageDescription* record = &description;
    KVIMG* image = nullptr;
    FailingHeap::arm(FailingHeap::kNever, FailingHeap::Failure::kOnce);
    EXPECT_EQ(ReadSplitJPEG(stream.data(), static_cast<unsigned>(stream.size()), &record, &image), paramErr);
    EXPECT_FALSE(FailingHeap::disarm());
    EXPECT_EQ(FailingHeap::liveBlocks(), 0U);
    EXPECT_EQ(image, nullptr);
}

}    // namespace
