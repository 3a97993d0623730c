// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <climits>
#include <cmath>

#include "geometry/deskew_call.h"
#include "geometry/test_page.h"

namespace {

using Bytes = std::vector<uint8_t>;

// The record's row rule, to which the canvas header's step must be set.
int canvasStep(int width, int depth) {
    const int bytes = width * depth / 8;
    return depth == 24 ? (bytes + 3) / 4 * 4 : (bytes + 15) / 16 * 16;
}

KVImageHeader canvasOf(IppiSize size, int depth) {
    return {nullptr, 4711, depth, size.width, size.height, canvasStep(size.width, depth)};
}

KVImageHeader headerOf(TestPage& page) {
    return {page.pixels().data(), 4712, 99, page.size().width, page.size().height, page.pixels().step()};
}

double counterClockwise(double angle) { return angle > 180 ? 360 - angle : -angle; }

// What the canvas must hold, with the copy's own pitch: as many whole pixels as the header's step holds.
Bytes expectedCanvas(TestPage& page, IppiSize canvas, double angle) {
    const double turn = counterClockwise(angle);
    const double r = turn * 3.141592653589793 / 180;
    const double s = std::sin(r);
    const double c = std::cos(r);
    const double xc = page.size().width * 0.5;
    const double yc = page.size().height * 0.5;
    const double xShift = (canvas.width * 0.5 - xc) + std::fma(-yc, s, std::fma(-xc, c, xc));
    const double yShift = (canvas.height * 0.5 - yc) + std::fma(-yc, c, std::fma(xc, s, yc));
    const int step = canvasStep(canvas.width, page.depth());
    Bytes expected(static_cast<size_t>(step) * static_cast<size_t>(canvas.height));
    oracle::rotateByOpenCV(page.onto(expected, step, canvas, turn, true), static_cast<float>(xShift),
                           static_cast<float>(yShift));
    return expected;
}

void expectUnited(TestPage& page, IppiSize canvas, double angle) {
    const int depth = page.depth();
    KVImageHeader to = canvasOf(canvas, depth);
    const KVImageHeader from = headerOf(page);
    KVIMG* united = nullptr;
    ASSERT_EQ(UniteImageIplRotateImage(&to, &from, &united, angle), noErr);
    const opcv::RecordPtr owner(united);
    ASSERT_EQ(united->width, canvas.width);
    ASSERT_EQ(united->height, canvas.height);
    ASSERT_EQ(united->depth, depth);
    ASSERT_EQ(united->rowBytes, canvasStep(canvas.width, depth));
    ASSERT_EQ(to.pixels, united->data);
    ASSERT_TRUE(to.reserved == 4711 && to.depth == depth && to.width == canvas.width && to.height == canvas.height &&
                to.rowStep == united->rowBytes);

    const Bytes expected = expectedCanvas(page, canvas, angle);
    const int pitch = united->rowBytes / page.pixelSize() * page.pixelSize();
    for (int y = 0; y < canvas.height; ++y)
        ASSERT_EQ(rowOf(united->data, pitch, y, canvas.width * depth / 8),
                  rowOf(expected.data(), pitch, y, canvas.width * depth / 8))
            << "depth " << depth << " angle " << angle << " row " << y;
    ASSERT_TRUE(page.untouched());
    ASSERT_TRUE(from.pixels == page.pixels().data() && from.depth == 99 && from.reserved == 4712);
}

TEST(Unite, CentresTheTurnedSourceOnTheCanvas) {
    Random random(351);
    for (int round = 0; round < 200; ++round) {
        TestPage page(random, {random.between(1, 80), random.between(1, 80)}, kDepths[round % 3],
                      random.chance(20) ? random.between(0, 3) : 0);
        const double angle = random.chance(50) ? random.real(-4, 4) : random.real(-400, 400);
        ASSERT_NO_FATAL_FAILURE(expectUnited(page, {random.between(1, 110), random.between(1, 110)}, angle))
            << "round " << round;
    }
}

TEST(Unite, WrapsOnlyAbove180) {
    Random random(352);
    TestPage page(random, {40, 28}, 24);
    for (const double angle : {180.0, std::nextafter(180.0, 200.0), 190.0, 359.0, -190.0, -180.0})
        ASSERT_NO_FATAL_FAILURE(expectUnited(page, {60, 56}, angle)) << angle;
}

// A dot right of the centre of a 41 x 41 grey source, turned onto a canvas of the same size.
IppiPoint dotAfter(double angle) {
    Bytes source(41 * 41);
    source[41 * 20 + 35] = 255;
    const KVImageHeader from = {source.data(), 0, 8, 41, 41, 41};
    KVImageHeader to = canvasOf({41, 41}, 8);
    KVIMG* united = nullptr;
    EXPECT_EQ(UniteImageIplRotateImage(&to, &from, &united, angle), noErr);
    const opcv::RecordPtr owner(united);
    IppiPoint brightest = {0, 0};
    const auto at = [&](IppiPoint p) { return united->data[p.y * united->rowBytes + p.x]; };
    for (int y = 0; y < 41; ++y)
        for (int x = 0; x < 41; ++x)
            if (at({x, y}) > at(brightest)) brightest = {x, y};
    return brightest;
}

TEST(Unite, PositiveAngleTurnsClockwise) {
    const IppiPoint right = dotAfter(0);
    EXPECT_TRUE(right.x == 35 && right.y == 20);
    const IppiPoint below = dotAfter(90);
    EXPECT_NEAR(below.x, 20, 1);
    EXPECT_NEAR(below.y, 35, 1);
    const IppiPoint above = dotAfter(-90);
    EXPECT_NEAR(above.x, 20, 1);
    EXPECT_NEAR(above.y, 5, 1);
    // 190 clockwise: 10 degrees past the left, upwards on screen.
    const IppiPoint turned = dotAfter(190);
    EXPECT_NEAR(turned.x, 20.5 - 14.5 * std::cos(10 * oracle::kPi / 180), 1.5);
    EXPECT_NEAR(turned.y, 20.5 - 14.5 * std::sin(10 * oracle::kPi / 180), 1.5);
}

TEST(Unite, CornersAreWhiteExceptOnGrey) {
    Random random(353);
    for (const int depth : kDepths) {
        TestPage page(random, {10, 10}, depth);
        KVImageHeader to = canvasOf({50, 50}, depth);
        const KVImageHeader from = headerOf(page);
        KVIMG* united = nullptr;
        ASSERT_EQ(UniteImageIplRotateImage(&to, &from, &united, 3), noErr);
        const opcv::RecordPtr owner(united);
        const Bytes fill = depth == 8 ? Bytes{0} : depth == 24 ? Bytes{255, 255, 255} : Bytes{0, 255, 255, 255};
        EXPECT_EQ(Bytes(united->data, united->data + depth / 8), fill);
    }
}

TEST(Unite, RowsOf24BitsArePaddedInTheRecordButCopiedByWholePixels) {
    // 101 pixels are 303 bytes, 304 in the record; 304 bytes hold 101 pixels, so the copy's rows are 303 bytes apart.
    Random random(354);
    TestPage page(random, {101, 5}, 24);
    KVImageHeader to = canvasOf({101, 5}, 24);
    const KVImageHeader from = headerOf(page);
    KVIMG* united = nullptr;
    ASSERT_EQ(UniteImageIplRotateImage(&to, &from, &united, 0), noErr);
    const opcv::RecordPtr owner(united);
    ASSERT_EQ(united->rowBytes, 304);
    for (int y = 0; y < 5; ++y)
        EXPECT_EQ(rowOf(united->data, 303, y, 303), rowOf(page.pixels().data(), page.pixels().step(), y, 303));
    KVIMG* packed = nullptr;
    ASSERT_EQ(deskew(DeskewFunction::kWhole, {page.record(), page.description(), &packed, nullptr, 0}), noErr);
    const opcv::RecordPtr packedOwner(packed);
    EXPECT_EQ(packed->rowBytes, 303);
}

TEST(Unite, ReadsOneByteOfTheDepth) {
    Random random(355);
    TestPage page(random, {20, 20}, 8);
    const KVImageHeader from = headerOf(page);
    for (const int depth : {8, 8 + 256, 8 - 256, 0x7FFFFF08}) {
        KVImageHeader to = canvasOf({20, 20}, 8);
        to.depth = depth;
        KVIMG* united = nullptr;
        ASSERT_EQ(UniteImageIplRotateImage(&to, &from, &united, 0), noErr) << depth;
        const opcv::RecordPtr owner(united);
        EXPECT_EQ(united->depth, 8);
        EXPECT_EQ(united->rowBytes, 32);
        EXPECT_EQ(rowOf(united->data, 32, 7, 20), rowOf(page.pixels().data(), page.pixels().step(), 7, 20));
    }
}

class UniteStatus : public testing::Test {
protected:
    // Refused; the slot keeps what it held, as it is written on success only.
    void expectRefused(KVImageHeader to, const KVImageHeader& from, double angle = 2) {
        const opcv::RecordPtr before = makeRecord({5, 5}, 8);
        KVIMG* slot = before.get();
        EXPECT_EQ(UniteImageIplRotateImage(&to, &from, &slot, angle), uniteFailedErr);
        EXPECT_EQ(slot, before.get());
        EXPECT_TRUE(page_.untouched());
    }
    KVImageHeader to() const { return canvasOf({40, 30}, 24); }

    Random random_{356};
    TestPage page_{random_, {30, 20}, 24};
    KVImageHeader from_ = headerOf(page_);
};

TEST_F(UniteStatus, NullArguments) {
    KVImageHeader canvas = to();
    KVIMG* slot = nullptr;
    EXPECT_EQ(UniteImageIplRotateImage(nullptr, &from_, &slot, 2), uniteFailedErr);
    EXPECT_EQ(UniteImageIplRotateImage(&canvas, nullptr, &slot, 2), uniteFailedErr);
    EXPECT_EQ(UniteImageIplRotateImage(&canvas, &from_, nullptr, 2), uniteFailedErr);
    EXPECT_EQ(slot, nullptr);
    EXPECT_EQ(canvas.pixels, nullptr);
}

TEST_F(UniteStatus, DepthsThatAreRefused) {
    for (const int depth : {0, 1, 2, 16, 40, 41, 255}) {
        KVImageHeader canvas = to();
        canvas.depth = depth;
        expectRefused(canvas, from_);
        KVIMG* slot = nullptr;
        EXPECT_EQ(UniteImageIplRotateImage(&canvas, &from_, &slot, 2), uniteFailedErr);
        EXPECT_EQ(canvas.pixels, nullptr) << "refused before the pixels are set";
    }
}

TEST_F(UniteStatus, CanvasSizesThatMakeNoRecord) {
    for (const IppiSize size :
         {IppiSize{0, 30}, {40, 0}, {-40, 30}, {40, -30}, {-40, -30}, {INT_MAX, 30}, {65536, 65536}}) {
        KVImageHeader canvas = to();
        canvas.width = size.width;
        canvas.height = size.height;
        expectRefused(canvas, from_);
    }
}

TEST_F(UniteStatus, SourceThatCannotBeTurned) {
    KVImageHeader from = from_;
    from.pixels = nullptr;
    expectRefused(to(), from);
    from = from_;
    from.rowStep = 89;
    expectRefused(to(), from);
    from = from_;
    from.width = 0;
    expectRefused(to(), from);
    from = from_;
    from.height = -1;
    expectRefused(to(), from);
    expectRefused(to(), from_, std::nan(""));
}

TEST_F(UniteStatus, StepOfTheCanvasMustStayInsideTheRecord) {
    for (const int step : {119, 0, -120, 123, 240, INT_MAX}) {
        KVImageHeader canvas = to();
        canvas.rowStep = step;
        expectRefused(canvas, from_);
    }
    // A remainder moves no row, and the only row of a canvas may have any step.
    for (const int step : {120, 121, 122}) {
        KVImageHeader canvas = to();
        canvas.rowStep = step;
        KVIMG* slot = nullptr;
        EXPECT_EQ(UniteImageIplRotateImage(&canvas, &from_, &slot, 2), noErr) << step;
        const opcv::RecordPtr owner(slot);
    }
    KVImageHeader canvas = to();
    canvas.height = 1;
    canvas.rowStep = 999;
    KVIMG* slot = nullptr;
    EXPECT_EQ(UniteImageIplRotateImage(&canvas, &from_, &slot, 2), noErr);
    const opcv::RecordPtr owner(slot);
}

TEST_F(UniteStatus, PixelPointerIsSetBeforeTheTurn) {
    KVImageHeader canvas = to();
    KVImageHeader from = from_;
    from.rowStep = 0;
    KVIMG* slot = nullptr;
    EXPECT_EQ(UniteImageIplRotateImage(&canvas, &from, &slot, 2), uniteFailedErr);
    EXPECT_NE(canvas.pixels, nullptr);
    EXPECT_EQ(slot, nullptr);
}

// One pixel too long for a warp.
TEST_F(UniteStatus, OpenCVExceptionsLeaveTheSlotUnchanged) {
    KVImageHeader canvas = to();
    canvas.depth = 8;
    canvas.width = 32768;
    canvas.rowStep = 32768;
    canvas.height = 2;
    KVIMG* slot = nullptr;
    EXPECT_THROW(UniteImageIplRotateImage(&canvas, &from_, &slot, 0), cv::Exception);
    EXPECT_EQ(slot, nullptr);
}

// An empty row makes a record of 0 bytes for any height.
TEST_F(UniteStatus, RefusesTheLowestHeight) {
    KVImageHeader canvas = to();
    canvas.width = 0;
    canvas.height = INT_MIN;
    expectRefused(canvas, from_);
}

constexpr IppiSize kPage = {40, 28};
constexpr IppiSize kCanvas = {64, 56};

// Angles so large that their sine depends on how they are brought below 180 degrees.
Bytes unitedBytes(TestPage& page, double angle) {
    KVImageHeader to = {nullptr, 0, 8, kCanvas.width, kCanvas.height, kCanvas.width};
    const KVImageHeader from = {page.pixels().data(), 0, 8, kPage.width, kPage.height, page.pixels().step()};
    KVIMG* record = nullptr;
    EXPECT_EQ(UniteImageIplRotateImage(&to, &from, &record, angle), noErr);
    const opcv::RecordPtr owner(record);
    return {record->data, record->data + record->size};
}

Bytes turnedBy(TestPage& page, double counterClockwise) {
    const double r = counterClockwise * 3.141592653589793 / 180;
    const double xc = kPage.width * 0.5;
    const double yc = kPage.height * 0.5;
    const double xShift = kCanvas.width * 0.5 - xc + (xc - xc * std::cos(r) - yc * std::sin(r));
    const double yShift = kCanvas.height * 0.5 - yc + (yc + xc * std::sin(r) - yc * std::cos(r));
    Bytes expected(static_cast<size_t>(kCanvas.width) * kCanvas.height);
    oracle::rotateByOpenCV(page.onto(expected, kCanvas.width, kCanvas, counterClockwise, true),
                           static_cast<float>(xShift), static_cast<float>(yShift));
    return expected;
}

TEST(Unite, WrapsLargeAnglesOnce) {
    Random random(381);
    TestPage page(random, kPage, 8);
    for (const double angle : {1e15, 3e15, 7.7e14}) {
        EXPECT_EQ(unitedBytes(page, angle), turnedBy(page, -(angle - 360))) << angle;
        EXPECT_NE(unitedBytes(page, angle), turnedBy(page, -angle)) << angle;
    }
}

TEST(Unite, DoesNotWrapNegativeAngles) {
    Random random(382);
    TestPage page(random, kPage, 8);
    for (const double angle : {-1e15, -3e15, -7.7e14}) {
        EXPECT_EQ(unitedBytes(page, angle), turnedBy(page, -angle)) << angle;
        EXPECT_NE(unitedBytes(page, angle), turnedBy(page, -(angle + 360))) << angle;
    }
}

// As before every other refusal of a canvas that can be made.
TEST(Unite, SetsThePixelsOfACanvasWhoseStepIsRefused) {
    Random random(383);
    TestPage page(random, kPage, 8);
    KVImageHeader to = {nullptr, 0, 8, kCanvas.width, kCanvas.height, 2 * kCanvas.width};
    const KVImageHeader from = {page.pixels().data(), 0, 8, kPage.width, kPage.height, page.pixels().step()};
    KVIMG* record = nullptr;
    EXPECT_EQ(UniteImageIplRotateImage(&to, &from, &record, 2), uniteFailedErr);
    EXPECT_EQ(record, nullptr);
    EXPECT_NE(to.pixels, nullptr);
}

}    // namespace
