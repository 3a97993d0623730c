// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The arguments that the deskew functions reject; a failure leaves the slot empty.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>

#include "geometry/deskew_call.h"
#include "geometry/test_page.h"

namespace {

// A failing call with the slot empty, and with a record of the caller's in it: both end with an empty slot and nothing
// leaked.
void expectFailure(DeskewFunction function, DeskewArguments a, OSErr expected) {
    KVIMG* slot = nullptr;
    a.dst = &slot;
    EXPECT_EQ(deskew(function, a), expected);
    EXPECT_EQ(slot, nullptr);
    slot = makeRecord({30, 20}, 24).release();
    EXPECT_EQ(deskew(function, a), expected);
    EXPECT_EQ(slot, nullptr);
}

class DeskewStatus : public testing::TestWithParam<DeskewFunction> {
protected:
    DeskewArguments good() { return {page_.record(), page_.description(), nullptr, &crop_, 2}; }
    void TearDown() override {
        EXPECT_TRUE(crop_.top == -1 && crop_.left == -2 && crop_.bottom == 10 && crop_.right == 20);
    }

    Random random_{331};
    TestPage page_{random_, {40, 30}, 8};
    KVRect crop_ = {-1, -2, 10, 20};
};

TEST_P(DeskewStatus, NullArguments) {
    DeskewArguments a = good();
    a.src = nullptr;
    expectFailure(GetParam(), a, paramErr);
    a = good();
    a.description = nullptr;
    expectFailure(GetParam(), a, paramErr);
    a = good();
    KVImageDescription* nothing = nullptr;
    a.description = &nothing;
    expectFailure(GetParam(), a, paramErr);
    if (GetParam() != DeskewFunction::kWhole) {
        a = good();
        a.crop = nullptr;
        expectFailure(GetParam(), a, paramErr);
    }
    a = good();
    a.dst = nullptr;
    EXPECT_EQ(deskew(GetParam(), a), paramErr);
    EXPECT_TRUE(page_.untouched());
}

TEST_P(DeskewStatus, DepthsThatAreRefused) {
    for (const int depth : {0, 1, 16, 40, 9, -8, 256 + 8, 256 + 24, 32767}) {
        page_.described().depth = static_cast<int16_t>(depth);
        expectFailure(GetParam(), good(), rotateFailedErr);
        // A null pointer is reported before a bad depth.
        DeskewArguments a = good();
        if (GetParam() == DeskewFunction::kWhole) a.src = nullptr;
        a.crop = nullptr;
        expectFailure(GetParam(), a, paramErr);
    }
}

TEST_P(DeskewStatus, PageThatDoesNotFitInItsRows) {
    KVRect crop = crop_;
    DeskewArguments a = good();
    a.crop = &crop;
    page_.mutableRecord().rowBytes = 39;
    expectFailure(GetParam(), a, rotateFailedErr);
    page_.mutableRecord().rowBytes = page_.pixels().step();
    page_.mutableRecord().data = nullptr;
    expectFailure(GetParam(), a, rotateFailedErr);
}

INSTANTIATE_TEST_SUITE_P(All, DeskewStatus, testing::ValuesIn(kDeskewFunctions));

TEST(Deskew, PageSizesThatMakeNoRecord) {
    Random random(332);
    TestPage page(random, {40, 30}, 24);
    const auto sized = [&](int width, int height) {
        page.described().width = width;
        page.described().height = height;
        return DeskewArguments{page.record(), page.description(), nullptr, nullptr, 2};
    };
    expectFailure(DeskewFunction::kWhole, sized(0, 30), rotateFailedErr);
    expectFailure(DeskewFunction::kWhole, sized(40, 0), rotateFailedErr);
    expectFailure(DeskewFunction::kWhole, sized(-40, -30), rotateFailedErr);    // their product is positive
    expectFailure(DeskewFunction::kWhole, sized(-40, 30), memFullErr);
    expectFailure(DeskewFunction::kWhole, sized(40, -30), memFullErr);
    expectFailure(DeskewFunction::kWhole, sized(INT_MAX, 30), memFullErr);
    expectFailure(DeskewFunction::kWhole, sized(40, INT_MAX), memFullErr);
    expectFailure(DeskewFunction::kWhole, sized(65536, 65536), memFullErr);    // 0 bytes in 32 bits
}

TEST(Deskew, CropsThatMakeNoRecord) {
    Random random(333);
    TestPage page(random, {40, 30}, 24);
    for (const DeskewFunction function : {DeskewFunction::kCrop, DeskewFunction::kPoint}) {
        const auto expectCrop = [&](KVRect crop, OSErr expected, bool moved) {
            KVRect slot = crop;
            KVIMG* turned = nullptr;
            EXPECT_EQ(deskew(function, {page.record(), page.description(), &turned, &slot, 2}), expected);
            EXPECT_EQ(turned, nullptr);
            EXPECT_EQ(slot.top, moved && function == DeskewFunction::kCrop ? 0 : crop.top);
        };
        expectCrop({-5, 5, -5, 10}, rotateFailedErr, true);     // no rows
        expectCrop({-5, 5, 10, 5}, rotateFailedErr, true);      // no columns
        expectCrop({-5, 10, -10, 5}, rotateFailedErr, true);    // both negative
        expectCrop({-5, 10, 10, 5}, memFullErr, false);         // a negative number of columns
        expectCrop({-5, 5, -10, 10}, memFullErr, false);        // a negative number of rows
        expectCrop({-5, 0, INT_MAX, 1}, memFullErr, false);     // one more row than int holds
        expectCrop({0, INT_MIN, 10, INT_MAX}, memFullErr, false);
        EXPECT_TRUE(page.untouched());
    }
}

TEST(DeskewWithPoint, RefusesPointsThatShiftThePageOutOfRange) {
    Random random(334);
    TestPage page(random, {40, 30}, 8);
    KVRect crop = {0, 0, 10, 10};
    for (const int64_t far : {INT64_MAX, INT64_MIN, int64_t{1} << 40}) {
        KVIMG* turned = nullptr;
        EXPECT_EQ(deskew(DeskewFunction::kPoint, {page.record(), page.description(), &turned, &crop, 2}, 0, far, 0),
                  rotateFailedErr);
        EXPECT_EQ(deskew(DeskewFunction::kPoint, {page.record(), page.description(), &turned, &crop, 2}, 0, 0, far),
                  rotateFailedErr);
        EXPECT_EQ(turned, nullptr);
    }
}

TEST(Deskew, RefusesAnglesThatGiveNoShift) {
    Random random(335);
    TestPage page(random, {40, 30}, 8);
    for (const double angle : {std::nan(""), std::numeric_limits<double>::infinity()}) {
        KVIMG* turned = nullptr;
        KVRect crop = {0, 0, 10, 10};
        EXPECT_EQ(deskew(DeskewFunction::kCrop, {page.record(), page.description(), &turned, &crop, angle}),
                  rotateFailedErr);
        EXPECT_EQ(deskew(DeskewFunction::kPoint, {page.record(), page.description(), &turned, &crop, angle}),
                  rotateFailedErr);
        EXPECT_EQ(turned, nullptr);
    }
}

TEST(Deskew, OpenCVExceptionsLeaveTheSlotEmpty) {
    // One pixel too long for a warp.
    Random random(338);
    TestPage page(random, {32767, 1}, 8);
    KVIMG* slot = makeRecord({5, 5}, 8).release();
    EXPECT_THROW(deskew(DeskewFunction::kWhole, {page.record(), page.description(), &slot, nullptr, 1}), cv::Exception);
    EXPECT_EQ(slot, nullptr);
}

// What the crop shows around the page counts.
TEST(DeskewEx, OpenCVExceptionsLeaveTheSlotEmpty) {
    Random random(339);
    TestPage page(random, {20, 10}, 8);
    for (KVRect crop : {KVRect{0, 0, 3, 32767}, {0, 0, 32767, 3}, {-32757, 0, 3, 3}, {0, -32747, 3, 3}}) {
        KVIMG* slot = makeRecord({5, 5}, 8).release();
        EXPECT_THROW(deskew(DeskewFunction::kCrop, {page.record(), page.description(), &slot, &crop, 0}),
                     cv::Exception);
        EXPECT_EQ(slot, nullptr);
    }
    KVRect crop = {0, 0, 3, 32766};
    KVIMG* slot = nullptr;
    EXPECT_EQ(deskew(DeskewFunction::kCrop, {page.record(), page.description(), &slot, &crop, 0}), noErr);
    const opcv::RecordPtr owner(slot);
}

TEST(DeskewWithPoint, OpenCVExceptionsLeaveTheSlotEmpty) {
    Random random(340);
    TestPage page(random, {20, 10}, 8);
    for (KVRect crop : {KVRect{0, 0, 3, 32767}, {0, 0, 32767, 3}}) {
        KVIMG* slot = makeRecord({5, 5}, 8).release();
        EXPECT_THROW(deskew(DeskewFunction::kPoint, {page.record(), page.description(), &slot, &crop, 0}, 0, 0, 0),
                     cv::Exception);
        EXPECT_EQ(slot, nullptr);
    }
}

}    // namespace
