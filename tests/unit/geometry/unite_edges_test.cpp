// Angles so large that their sine depends on how they are brought below 180 degrees, and the state after a failure.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "geometry/test_page.h"

namespace {

constexpr IppiSize kPage = {40, 28};
constexpr IppiSize kCanvas = {64, 56};

std::vector<uint8_t> united(TestPage& page, double angle) {
    KVImageHeader to = {nullptr, 0, 8, kCanvas.width, kCanvas.height, kCanvas.width};
    const KVImageHeader from = {page.pixels().data(), 0, 8, kPage.width, kPage.height, page.pixels().step()};
    KVIMG* record = nullptr;
    EXPECT_EQ(UniteImageIplRotateImage(&to, &from, &record, angle), noErr);
    const opcv::RecordPtr owner(record);
    return {record->data, record->data + record->size};
}

std::vector<uint8_t> turnedBy(TestPage& page, double counterClockwise) {
    const double r = counterClockwise * 3.141592653589793 / 180;
    const double xc = kPage.width * 0.5;
    const double yc = kPage.height * 0.5;
    const double xShift = kCanvas.width * 0.5 - xc + (xc - xc * std::cos(r) - yc * std::sin(r));
    const double yShift = kCanvas.height * 0.5 - yc + (yc + xc * std::sin(r) - yc * std::cos(r));
    std::vector<uint8_t> expected(static_cast<size_t>(kCanvas.width) * kCanvas.height);
    oracle::rotateByOpenCV(page.onto(expected, kCanvas.width, kCanvas, counterClockwise, true),
                           static_cast<float>(xShift), static_cast<float>(yShift));
    return expected;
}

TEST(Unite, WrapsLargeAnglesOnce) {
    Random random(381);
    TestPage page(random, kPage, 8);
    for (const double angle : {1e15, 3e15, 7.7e14}) {
        EXPECT_EQ(united(page, angle), turnedBy(page, -(angle - 360))) << angle;
        EXPECT_NE(united(page, angle), turnedBy(page, -angle)) << angle;
    }
}

TEST(Unite, DoesNotWrapNegativeAngles) {
    Random random(382);
    TestPage page(random, kPage, 8);
    for (const double angle : {-1e15, -3e15, -7.7e14}) {
        EXPECT_EQ(united(page, angle), turnedBy(page, -angle)) << angle;
        EXPECT_NE(united(page, angle), turnedBy(page, -(angle + 360))) << angle;
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
