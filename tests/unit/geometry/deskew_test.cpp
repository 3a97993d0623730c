// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "geometry/deskew_call.h"
#include "geometry/test_page.h"

namespace {

using Bytes = std::vector<uint8_t>;

void expectRecord(const KVIMG& record, IppiSize size, int depth, const Bytes& expected) {
    ASSERT_EQ(record.width, size.width);
    ASSERT_EQ(record.height, size.height);
    ASSERT_EQ(record.depth, depth);
    ASSERT_EQ(record.rowBytes, rowBytesOf(size.width, depth));
    ASSERT_EQ(record.size, record.rowBytes * size.height);
    for (int y = 0; y < size.height; ++y)
        ASSERT_EQ(rowOf(record.data, record.rowBytes, y, size.width * depth / 8),
                  rowOf(expected.data(), record.rowBytes, y, size.width * depth / 8))
            << "row " << y;
}

Bytes blank(IppiSize size, int depth) {
    return Bytes(static_cast<size_t>(rowBytesOf(size.width, depth)) * static_cast<size_t>(size.height));
}

struct Shift {
    double x;
    double y;
};
Shift shiftAbout(double xc, double yc, double angle) {
    const double r = angle * 3.141592653589793 / 180;
    return {std::fma(-yc, std::sin(r), std::fma(-xc, std::cos(r), xc)),
            std::fma(-yc, std::cos(r), std::fma(xc, std::sin(r), yc))};
}

double anyAngle(Random& random) { return random.chance(60) ? random.real(-4, 4) : random.real(-200, 200); }

TEST(Deskew, TurnsAboutTheCentreOfThePage) {
    Random random(321);
    for (int round = 0; round < 200; ++round) {
        const int depth = kDepths[round % 3];
        const IppiSize size = {random.between(1, 90), random.between(1, 90)};
        TestPage page(random, size, depth, random.chance(20) ? random.between(0, 3) : 0);
        const bool white = random.chance(50);
        const double angle = anyAngle(random);
        Bytes expected = blank(size, depth);
        oracle::rotateAboutByOpenCV(page.onto(expected, rowBytesOf(size.width, depth), size, angle, white),
                                    (size.width - 1) * 0.5, (size.height - 1) * 0.5);
        KVIMG* turned = nullptr;
        ASSERT_EQ(deskew(DeskewFunction::kWhole,
                         {page.record(), page.description(), &turned, nullptr, angle, random.between(-5, 5)},
                         white ? static_cast<unsigned char>(random.between(1, 255)) : 0),
                  noErr);
        const opcv::RecordPtr owner(turned);
        ASSERT_NO_FATAL_FAILURE(expectRecord(*turned, size, depth, expected)) << "round " << round;
        ASSERT_TRUE(page.untouched());
    }
}

TEST(DeskewEx, ShowsTheTurnedPageThroughTheCrop) {
    Random random(322);
    for (int round = 0; round < 300; ++round) {
        const int depth = kDepths[round % 3];
        const IppiSize size = {random.between(1, 90), random.between(1, 90)};
        TestPage page(random, size, depth, random.chance(20) ? random.between(0, 3) : 0);
        const bool white = random.chance(50);
        const double angle = anyAngle(random);
        KVRect crop = {random.between(-60, 60), random.between(-60, 60), 0, 0};
        const IppiSize shown = {random.between(1, 120), random.between(1, 120)};
        crop.right = crop.left + shown.width;
        crop.bottom = crop.top + shown.height;
        const KVRect asked = crop;

        const Shift shift = shiftAbout((size.width - 1) * 0.5, (size.height - 1) * 0.5, angle);
        Bytes expected = blank(shown, depth);
        oracle::rotateByOpenCV(page.onto(expected, rowBytesOf(shown.width, depth), shown, angle, white),
                               static_cast<float>(shift.x - asked.left), static_cast<float>(shift.y - asked.top));
        KVIMG* turned = nullptr;
        ASSERT_EQ(deskew(DeskewFunction::kCrop,
                         {page.record(), page.description(), &turned, &crop, angle, random.between(-5, 5)}, white),
                  noErr);
        const opcv::RecordPtr owner(turned);
        ASSERT_NO_FATAL_FAILURE(expectRecord(*turned, shown, depth, expected)) << "round " << round;
        ASSERT_TRUE(page.untouched());
        ASSERT_EQ(crop.top, std::max(asked.top, 0));
        ASSERT_EQ(crop.left, std::max(asked.left, 0));
        ASSERT_EQ(crop.bottom - crop.top, shown.height);
        ASSERT_EQ(crop.right - crop.left, shown.width);
    }
}

TEST(DeskewWithPoint, MakesThePointTheFirstPixel) {
    Random random(323);
    for (int round = 0; round < 200; ++round) {
        const int depth = kDepths[round % 3];
        const IppiSize size = {random.between(1, 90), random.between(1, 90)};
        TestPage page(random, size, depth, random.chance(20) ? random.between(0, 3) : 0);
        const bool white = random.chance(50);
        const double angle = anyAngle(random);
        const IppiSize shown = {random.between(1, 120), random.between(1, 120)};
        KVRect crop = {random.between(-60, 60), random.between(-60, 60), 0, 0};
        crop.right = crop.left + shown.width;
        crop.bottom = crop.top + shown.height;
        const KVRect asked = crop;
        const int64_t x = random.between(-100, 200);
        const int64_t y = random.between(-100, 200);

        const auto xc = static_cast<double>(x);
        const auto yc = static_cast<double>(y);
        const Shift shift = shiftAbout(xc, yc, angle);
        Bytes expected = blank(shown, depth);
        oracle::rotateByOpenCV(page.onto(expected, rowBytesOf(shown.width, depth), shown, angle, white),
                               static_cast<float>(shift.x - xc), static_cast<float>(shift.y - yc));
        KVIMG* turned = nullptr;
        ASSERT_EQ(
            deskew(DeskewFunction::kPoint,
                   {page.record(), page.description(), &turned, &crop, angle, random.between(-5, 5)}, white, x, y),
            noErr);
        const opcv::RecordPtr owner(turned);
        ASSERT_NO_FATAL_FAILURE(expectRecord(*turned, shown, depth, expected)) << "round " << round;
        ASSERT_TRUE(page.untouched());
        ASSERT_TRUE(crop.top == asked.top && crop.left == asked.left && crop.bottom == asked.bottom &&
                    crop.right == asked.right);
    }
}

TEST(Deskew, ZeroAngleReturnsThePage) {
    Random random(324);
    for (const int depth : kDepths) {
        TestPage page(random, {61, 17}, depth);
        KVIMG* turned = nullptr;
        ASSERT_EQ(deskew(DeskewFunction::kWhole, {page.record(), page.description(), &turned, nullptr, 0}, 1), noErr);
        const opcv::RecordPtr owner(turned);
        for (int y = 0; y < 17; ++y)
            EXPECT_EQ(rowOf(turned->data, turned->rowBytes, y, 61 * depth / 8),
                      rowOf(page.pixels().data(), page.pixels().step(), y, 61 * depth / 8));
    }
}

TEST(Deskew, CornersTakeTheFillOfTheDepth) {
    Random random(325);
    for (const DeskewFunction function : kDeskewFunctions)
        for (const int depth : kDepths)
            for (const int white : {0, 1, 255}) {
                TestPage page(random, {40, 40}, depth);
                KVIMG* turned = nullptr;
                KVRect crop = {0, 0, 40, 40};
                // The point of the third function is on the page's left edge, above the page.
                ASSERT_EQ(deskew(function, {page.record(), page.description(), &turned, &crop, 45},
                                 static_cast<unsigned char>(white), 0, -30),
                          noErr);
                const opcv::RecordPtr owner(turned);
                Bytes fill(static_cast<size_t>(depth / 8));
                if (white && depth == 24) fill = {255, 255, 255};
                if (white && depth == 32) fill = {0, 255, 255, 255};
                EXPECT_EQ(Bytes(turned->data, turned->data + depth / 8), fill) << depth << ' ' << white;
            }
}

TEST(Deskew, PositiveAngleTurnsCounterClockwiseOnScreen) {
    Random random(326);
    TestPage page(random, {21, 21}, 8);
    std::fill_n(page.pixels().data(), 21 * page.pixels().step() - (page.pixels().step() - 21), uint8_t{0});
    *page.pixels().at(17, 10) = 255;    // right of the centre
    KVIMG* turned = nullptr;
    ASSERT_EQ(deskew(DeskewFunction::kWhole, {page.record(), page.description(), &turned, nullptr, 90}), noErr);
    const opcv::RecordPtr owner(turned);
    EXPECT_EQ(turned->data[3 * turned->rowBytes + 10], 255);    // above it
    EXPECT_EQ(turned->data[10 * turned->rowBytes + 17], 0);
}

TEST(Deskew, PixelsLieWhereGeometrySays) {
    Random random(327);
    const auto shade = [](int x, int y) { return 128 + 60 * std::sin(0.1 * x) + 60 * std::cos(0.12 * y + 0.05 * x); };
    const IppiSize size = {80, 63};
    for (int round = 0; round < 30; ++round) {
        TestPage page(random, size, 8);
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x)
                *page.pixels().at(x, y) = static_cast<uint8_t>(std::lround(shade(x, y)));
        const auto at = [&](int x, int y) {
            return x >= 0 && y >= 0 && x < size.width && y < size.height ? static_cast<double>(*page.pixels().at(x, y))
                                                                         : 0.0;
        };
        const double angle = anyAngle(random);
        const oracle::Point centre = {(size.width - 1) * 0.5, (size.height - 1) * 0.5};
        KVIMG* turned = nullptr;
        ASSERT_EQ(deskew(DeskewFunction::kWhole, {page.record(), page.description(), &turned, nullptr, angle}), noErr);
        const opcv::RecordPtr owner(turned);
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x)
                ASSERT_TRUE(oracle::isNear(turned->data[y * turned->rowBytes + x], at,
                                           oracle::beforeTurn({double(x), double(y)}, centre, angle)))
                    << angle << ' ' << x << ' ' << y;
    }
}

TEST(DeskewEx, CropOutsideThePageIsMovedIntoItAfterUse) {
    Random random(328);
    TestPage page(random, {300, 200}, 24);
    KVRect crop = {-10, -20, 90, 180};
    KVIMG* turned = nullptr;
    ASSERT_EQ(deskew(DeskewFunction::kCrop, {page.record(), page.description(), &turned, &crop, 0}, 1), noErr);
    const opcv::RecordPtr owner(turned);
    EXPECT_EQ(turned->width, 200);
    EXPECT_EQ(turned->height, 100);
    EXPECT_TRUE(crop.top == 0 && crop.left == 0 && crop.bottom == 100 && crop.right == 200);
    const Bytes border(60, 255);
    for (int y = 0; y < 100; ++y) {
        const Bytes row = rowOf(turned->data, turned->rowBytes, y, 600);
        EXPECT_EQ(Bytes(row.begin(), row.begin() + 60), border);
        if (y < 10) {
            EXPECT_EQ(row, Bytes(600, 255));
        } else {
            EXPECT_EQ(Bytes(row.begin() + 60, row.end()),
                      rowOf(page.pixels().data(), page.pixels().step(), y - 10, 540));
        }
    }
}

TEST(DeskewEx, CropMayBeLargerThanThePageOnAllSides) {
    Random random(329);
    TestPage page(random, {16, 12}, 8);    // rows of 16 bytes hold nothing but the page
    page.mutableRecord().rowBytes = page.pixels().step();
    KVRect crop = {-5, -7, 20, 30};
    KVIMG* turned = nullptr;
    ASSERT_EQ(deskew(DeskewFunction::kCrop, {page.record(), page.description(), &turned, &crop, 0}), noErr);
    const opcv::RecordPtr owner(turned);
    ASSERT_EQ(turned->width, 37);
    ASSERT_EQ(turned->height, 25);
    for (int y = 0; y < 25; ++y)
        for (int x = 0; x < 23; ++x) {
            const bool inside = x >= 7 && y >= 5 && y < 17;
            EXPECT_EQ(turned->data[y * turned->rowBytes + x], inside ? *page.pixels().at(x - 7, y - 5) : 0);
        }
}

TEST(DeskewWithPoint, IgnoresWhereTheCropLies) {
    Random random(330);
    for (const int depth : kDepths) {
        TestPage page(random, {120, 130}, depth);
        KVRect here = {0, 0, 100, 100};
        KVRect there = {500, 500, 600, 600};
        KVRect outside = {-200, -300, -100, -200};
        const auto deskewed = [&](KVRect& crop) {
            KVIMG* turned = nullptr;
            EXPECT_EQ(deskew(DeskewFunction::kPoint, {page.record(), page.description(), &turned, &crop, 2.3}), noErr);
            return opcv::RecordPtr(turned);
        };
        const opcv::RecordPtr first = deskewed(here);
        for (const opcv::RecordPtr& other : {deskewed(there), deskewed(outside)})
            for (int y = 0; y < 100; ++y)
                EXPECT_EQ(rowOf(first->data, first->rowBytes, y, 100 * depth / 8),
                          rowOf(other->data, other->rowBytes, y, 100 * depth / 8));
        EXPECT_TRUE(there.top == 500 && there.left == 500 && outside.top == -200 && outside.left == -300);
    }
}

TEST(Deskew, DescriptionGovernsSizeAndDepth) {
    Random random(336);
    TestPage page(random, {40, 30}, 24);
    page.described().width = 25;
    page.described().height = 20;
    KVIMG* turned = nullptr;
    ASSERT_EQ(deskew(DeskewFunction::kWhole, {page.record(), page.description(), &turned, nullptr, 0}), noErr);
    const opcv::RecordPtr owner(turned);
    ASSERT_EQ(turned->width, 25);
    ASSERT_EQ(turned->height, 20);
    ASSERT_EQ(turned->rowBytes, 75);
    for (int y = 0; y < 20; ++y)
        EXPECT_EQ(rowOf(turned->data, 75, y, 75), rowOf(page.pixels().data(), page.pixels().step(), y, 75));
}

TEST(Deskew, SuccessOverwritesTheSlot) {
    Random random(337);
    TestPage page(random, {40, 30}, 8);
    const opcv::RecordPtr before = makeRecord({5, 5}, 8);
    KVIMG* slot = before.get();
    ASSERT_EQ(deskew(DeskewFunction::kWhole, {page.record(), page.description(), &slot, nullptr, 1}), noErr);
    const opcv::RecordPtr owner(slot);
    EXPECT_NE(slot, before.get());
    EXPECT_EQ(before->width, 5);
}

}    // namespace
