#include "every_failure.h"

#include <gtest/gtest.h>

#include <new>
#include <opencv2/core.hpp>

#include "failing_heap.h"
#include "support/random.h"

namespace {

// How a call ended. `output` is what it handed over; it is taken after the heap is whole again.
enum class Ending { kSuccess, kOutOfMemory, kRefused, kException };

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

}    // namespace

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
