// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <limits>

#include "geometry/quarter_turn_kernels.h"
#include "geometry/test_page.h"
#include "oracle/quarter_turn.h"
#include "support/fenced_memory.h"

namespace {

using Bytes = std::vector<uint8_t>;

void expectTurned(TestPage& page, double angle, int degreesClockwise) {
    const IppiSize size = page.size();
    const bool onItsSide = degreesClockwise != 180;
    KVIMG* turned = nullptr;
    ASSERT_EQ(RotateImageWithIPP(page.record(), page.description(), &turned, angle), noErr);
    const opcv::RecordPtr owner(turned);
    ASSERT_EQ(turned->width, onItsSide ? size.height : size.width);
    ASSERT_EQ(turned->height, onItsSide ? size.width : size.height);
    ASSERT_EQ(turned->depth, page.depth());
    ASSERT_EQ(turned->rowBytes, rowBytesOf(turned->width, page.depth()));
    ASSERT_EQ(turned->size, turned->rowBytes * turned->height);
    // The rows of the view are whole pixels apart.
    const int pixelSize = page.pixelSize();
    const int pitch = page.pixels().step() / pixelSize * pixelSize;
    for (int y = 0; y < turned->height; ++y)
        for (int x = 0; x < turned->width; ++x) {
            const IppiPoint from = oracle::beforeQuarterTurn(x, y, degreesClockwise, size);
            ASSERT_EQ(std::memcmp(turned->data + ptrdiff_t{y} * turned->rowBytes + x * pixelSize,
                                  page.pixels().data() + ptrdiff_t{from.y} * pitch + from.x * pixelSize,
                                  static_cast<size_t>(pixelSize)),
                      0)
                << "depth " << page.depth() << ", " << size.width << " x " << size.height << " by " << angle << " at "
                << x << ' ' << y;
        }
    ASSERT_TRUE(page.untouched());
}

TEST(QuarterTurn, PutsEachPixelWhereItBelongs) {
    Random random(341);
    for (int round = 0; round < 400; ++round) {
        const int longest = round % 2 == 0 ? 40 : 150;
        TestPage page(random, {random.between(1, longest), random.between(1, longest)}, kDepths[round % 3],
                      random.chance(20) ? random.between(0, 3) : 0);
        const int quarters = random.between(1, 3);
        ASSERT_NO_FATAL_FAILURE(
            expectTurned(page, random.chance(50) ? 90 * quarters : 90 * quarters - 360, 90 * quarters));
    }
}

TEST(QuarterTurn, EverySideAroundAVector) {
    Random random(342);
    for (const int depth : kDepths)
        for (const int width : {1, 2, 3, 4, 5, 7, 8, 15, 16, 17, 31, 32, 33, 47, 48, 63, 64, 65})
            for (const int height : {1, 3, 4, 15, 16, 17, 33, 64, 65}) {
                TestPage page(random, {width, height}, depth);
                for (const int degrees : {90, 180, 270}) ASSERT_NO_FATAL_FAILURE(expectTurned(page, degrees, degrees));
            }
}

// Several tiles in both directions.
TEST(QuarterTurn, IsWhatOpenCVTurns) {
    Random random(348);
    for (const int depth : kDepths)
        for (const IppiSize size : {IppiSize{400, 300}, {257, 129}, {128, 513}, {1000, 17}, {16, 700}, {9, 300}})
            for (const int code : {cv::ROTATE_90_CLOCKWISE, cv::ROTATE_180, cv::ROTATE_90_COUNTERCLOCKWISE}) {
                TestPage page(random, size, depth);
                KVIMG* turned = nullptr;
                ASSERT_EQ(RotateImageWithIPP(page.record(), page.description(), &turned, 90.0 * (code + 1)), noErr);
                const opcv::RecordPtr owner(turned);
                cv::Mat expected;
                cv::rotate(oracle::regionOf(page.pixels().data(), page.pixels().step(), {0, 0, size.width, size.height},
                                            page.type()),
                           expected, code);
                ASSERT_EQ(turned->width, expected.cols);
                ASSERT_EQ(turned->height, expected.rows);
                for (int y = 0; y < turned->height; ++y)
                    ASSERT_EQ(std::memcmp(turned->data + ptrdiff_t{y} * turned->rowBytes, expected.ptr(y),
                                          static_cast<size_t>(turned->width * page.pixelSize())),
                              0)
                        << "depth " << depth << ", " << size.width << " x " << size.height << ", code " << code;
                ASSERT_TRUE(page.untouched());
            }
}

TEST(QuarterTurn, ReadsNoByteTooMany) {
    Random random(349);
    for (const auto fence : {FencedMemory::Fence::kBehind, FencedMemory::Fence::kInFront})
        for (const int depth : kDepths)
            for (int round = 0; round < 40; ++round) {
                const IppiSize size = {random.between(1, 70), random.between(1, 70)};
                const int rowBytes = size.width * depth / 8;
                FencedMemory pixels(static_cast<size_t>(rowBytes) * static_cast<size_t>(size.height), fence);
                const KVIMG page = {pixels.data(), depth, size.width, size.height, rowBytes, 0};
                KVImageDescription description = {size.width, size.height, 0, 0, 0, static_cast<int16_t>(depth)};
                KVImageDescription* pointer = &description;
                for (const double angle : {90, 180, 270}) {
                    KVIMG* turned = nullptr;
                    ASSERT_EQ(RotateImageWithIPP(&page, &pointer, &turned, angle), noErr);
                    const opcv::RecordPtr owner(turned);
                }
            }
}

// The kernels write exactly the target's pixels; the record's own memory could hide more.
TEST(QuarterTurn, KernelsWriteNoByteTooMany) {
    Random random(350);
    for (const int pixelSize : {1, 3, 4})
        for (int round = 0; round < 60; ++round) {
            const IppiSize size = {random.between(1, 50), random.between(1, 50)};
            const GuardedImage source(random, size, GuardedImage::anyLayout(random, pixelSize));
            GuardedImage onItsSide(random, {size.height, size.width}, GuardedImage::anyLayout(random, pixelSize));
            GuardedImage mirrored(random, size, GuardedImage::anyLayout(random, pixelSize));
            opcv::transpose({source.data(), source.step()}, {onItsSide.data(), onItsSide.step()}, size.width,
                            size.height, pixelSize);
            opcv::mirror({source.data(), source.step()}, {mirrored.data(), mirrored.step()}, size.width, size.height,
                         pixelSize);
            ASSERT_TRUE(onItsSide.untouchedOutsideRegion());
            ASSERT_TRUE(mirrored.untouchedOutsideRegion());
            for (int y = 0; y < size.height; ++y)
                for (int x = 0; x < size.width; ++x) {
                    const auto bytes = static_cast<size_t>(pixelSize);
                    ASSERT_EQ(std::memcmp(onItsSide.at(y, x), source.at(x, y), bytes), 0);
                    ASSERT_EQ(std::memcmp(mirrored.at(size.width - 1 - x, y), source.at(x, y), bytes), 0);
                }
        }
}

TEST(QuarterTurn, DropsTheFractionOfTheAngle) {
    Random random(343);
    TestPage page(random, {11, 7}, 24);
    for (const double angle : {90.0, 90.9, std::nextafter(91.0, 0.0), -270.0, -270.9})
        ASSERT_NO_FATAL_FAILURE(expectTurned(page, angle, 90));
    for (const double angle : {180.0, 180.5, -180.0, -180.5}) ASSERT_NO_FATAL_FAILURE(expectTurned(page, angle, 180));
    for (const double angle : {270.0, 270.9, -90.0, -90.9}) ASSERT_NO_FATAL_FAILURE(expectTurned(page, angle, 270));
}

TEST(QuarterTurn, PositiveAngleTurnsClockwise) {
    Random random(344);
    TestPage page(random, {100, 40}, 8);
    KVIMG* turned = nullptr;
    ASSERT_EQ(RotateImageWithIPP(page.record(), page.description(), &turned, 90), noErr);
    const opcv::RecordPtr owner(turned);
    ASSERT_EQ(turned->width, 40);
    ASSERT_EQ(turned->height, 100);
    for (int x = 0; x < 40; ++x) EXPECT_EQ(turned->data[x], *page.pixels().at(0, 39 - x));
}

TEST(QuarterTurn, FourQuarterTurnsRestoreThePage) {
    Random random(345);
    for (const int depth : kDepths) {
        TestPage page(random, {53, 38}, depth);
        opcv::RecordPtr turned;
        const KVIMG* from = page.record();
        for (int i = 0; i < 4; ++i) {
            KVImageDescription description = page.described();
            if (i % 2 == 1) std::swap(description.width, description.height);
            KVImageDescription* pointer = &description;
            KVIMG* next = nullptr;
            ASSERT_EQ(RotateImageWithIPP(from, &pointer, &next, 90), noErr);
            turned.reset(next);
            from = next;
        }
        for (int y = 0; y < 38; ++y)
            EXPECT_EQ(rowOf(turned->data, turned->rowBytes, y, 53 * depth / 8),
                      rowOf(page.pixels().data(), page.pixels().step(), y, 53 * depth / 8));
    }
}

TEST(QuarterTurn, DescriptionGovernsSizeAndDepth) {
    Random random(346);
    TestPage page(random, {40, 30}, 8);
    page.described().width = 25;
    page.described().height = 20;
    KVIMG* turned = nullptr;
    ASSERT_EQ(RotateImageWithIPP(page.record(), page.description(), &turned, 180), noErr);
    const opcv::RecordPtr owner(turned);
    ASSERT_EQ(turned->width, 25);
    ASSERT_EQ(turned->height, 20);
    EXPECT_EQ(turned->data[0], *page.pixels().at(24, 19));
}

// With the slot empty, and with a record of the caller's in it.
void expectFailure(const KVIMG* src, KVImageDescriptionHandle description, double angle, OSErr expected) {
    KVIMG* slot = nullptr;
    EXPECT_EQ(RotateImageWithIPP(src, description, &slot, angle), expected) << angle;
    EXPECT_EQ(slot, nullptr);
    slot = makeRecord({30, 20}, 24).release();
    EXPECT_EQ(RotateImageWithIPP(src, description, &slot, angle), expected) << angle;
    EXPECT_EQ(slot, nullptr);
}

class QuarterTurnStatus : public testing::Test {
protected:
    void expect(OSErr expected, double angle = 90) {
        expectFailure(page_.record(), page_.description(), angle, expected);
    }
    void expectSized(int width, int height, OSErr expected) {
        page_.described().width = width;
        page_.described().height = height;
        for (const double angle : {90, 180, 270}) expect(expected, angle);
    }

    Random random_{347};
    TestPage page_{random_, {40, 30}, 24};
};

TEST_F(QuarterTurnStatus, NullArguments) {
    expectFailure(nullptr, page_.description(), 90, paramErr);
    expectFailure(page_.record(), nullptr, 90, paramErr);
    KVImageDescription* nothing = nullptr;
    expectFailure(page_.record(), &nothing, 90, paramErr);
    EXPECT_EQ(RotateImageWithIPP(page_.record(), page_.description(), nullptr, 90), paramErr);
    EXPECT_TRUE(page_.untouched());
}

TEST_F(QuarterTurnStatus, OtherAngles) {
    for (const double angle :
         {0.0,   1.0,   89.9,   -89.9, 91.0,   -91.0, 179.9,        -179.9,        181.0, 269.9, -269.9,
          271.0, 360.0, -360.0, 450.0, -450.0, 1e9,   4294967386.0, -4294967206.0, 1e300, -1e300})
        expect(badAngleErr, angle);
    expect(badAngleErr, std::nan(""));
    expect(badAngleErr, std::numeric_limits<double>::infinity());
    expect(badAngleErr, -std::numeric_limits<double>::infinity());
    EXPECT_TRUE(page_.untouched());
}

TEST_F(QuarterTurnStatus, ChecksPointersThenDepthThenAngleThenRecordThenRows) {
    page_.described() = {-40, 30, 0, 0, 0, 16};
    page_.mutableRecord().rowBytes = 3;
    expectFailure(nullptr, page_.description(), 1, paramErr);
    expect(rotateFailedErr, 1);
    page_.described().depth = 24;
    expect(badAngleErr, 1);
    expect(memFullErr, 90);
    page_.described().width = 40;
    expect(paramErr, 90);
}

TEST_F(QuarterTurnStatus, DepthsThatAreRefused) {
    for (const int depth : {0, 1, 16, 40, 9, -8, 256 + 8, 32767}) {
        page_.described().depth = static_cast<int16_t>(depth);
        expect(rotateFailedErr);
    }
}

TEST_F(QuarterTurnStatus, SizesThatMakeNoRecordOrNoView) {
    expectSized(0, 30, paramErr);
    expectSized(40, 0, paramErr);
    expectSized(-40, -30, paramErr);
    expectSized(-40, 30, memFullErr);
    expectSized(40, -30, memFullErr);
    expectSized(INT_MAX, 30, memFullErr);
    expectSized(40, INT_MAX, memFullErr);
    expectSized(65536, 65536, memFullErr);
}

TEST_F(QuarterTurnStatus, PageThatDoesNotFitInItsRows) {
    for (const int rowBytes : {119, 0, -120}) {
        page_.mutableRecord().rowBytes = rowBytes;
        for (const double angle : {90, 180, 270}) expect(paramErr, angle);
    }
    page_.mutableRecord().rowBytes = page_.pixels().step();
    page_.mutableRecord().data = nullptr;
    for (const double angle : {90, 180, 270}) expect(paramErr, angle);
}

}    // namespace
