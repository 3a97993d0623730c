// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Medians of larger windows, on images that are high enough that the kernel reuses the rows and counts that it keeps.
#include "rank/median_counting.h"

#include <gtest/gtest.h>

#include <functional>
#include <opencv2/imgproc.hpp>
#include <string>
#include <vector>

#include "oracle/median.h"
#include "support/guarded_image.h"
#include "support/random.h"

namespace {

constexpr int kHeight = 150;

// Fills an image, its margin included, with a value for each column and row of samples.
void paint(GuardedImage& image, int margin, int channels, const std::function<int(int, int)>& value) {
    for (int y = -margin; y < image.size().height + margin; ++y)
        for (int x = -margin * channels; x < (image.size().width + margin) * channels; ++x)
            image.at(0, y)[x] = static_cast<uint8_t>(value(x, y));
}

class CountingMedian : public testing::TestWithParam<int> {
protected:
    static int m() { return GetParam(); }

    // Filters an image whose samples have these values, and compares all medians with those of OpenCV.
    void filter(Random& random, IppiSize size, int channels, const std::function<int(int, int)>& value) {
        GuardedImage source(random, size, {channels, m(), 3, 0});
        paint(source, m(), channels, value);
        GuardedImage result(random, size, {channels, 0, 5, 0});
        const uint8_t* corner = source.at(-(m() / 2), -(m() / 2));
        ASSERT_TRUE(opcv::hasCountingMedian(m()));
        opcv::countingMedian(corner, source.step(), result.data(), result.step(), ptrdiff_t{size.width} * channels,
                             size.height, m(), channels);
        ASSERT_TRUE(result.untouchedOutsideRegion());

        const cv::Mat view(size.height + m() - 1, size.width + m() - 1, CV_8UC(channels), const_cast<uint8_t*>(corner),
                           static_cast<size_t>(source.step()));
        cv::Mat filtered;
        cv::medianBlur(view.clone(), filtered, m());
        for (int y = 0; y < size.height; ++y) {
            const uint8_t* expected = filtered.ptr(y + m() / 2, m() / 2);
            for (int x = 0; x < size.width * channels; ++x)
                ASSERT_EQ(expected[x], result.at(0, y)[x]) << "sample " << x << " row " << y << " width " << size.width;
        }
        // A few by the definition: one in each row, in a column that any window may begin in.
        for (int y = 0; y < size.height; y += 7) {
            const int x = random.between(0, size.width * channels - 1);
            const uint8_t* first = corner + ptrdiff_t{y} * source.step() + x;
            ASSERT_EQ(oracle::squareMedian(first, source.step(), m(), channels), result.at(0, y)[x]);
        }
    }
};

// Widths from one window to three strips.
TEST_P(CountingMedian, OfNoise) {
    Random random(321);
    for (const int width : {1, 2, 3, 4, 5, 30, 97, 98, 99, 100, 113, 114, 115, 226, 227, 242, 243, 300, 470}) {
        const int height = random.between(1, kHeight);
        ASSERT_NO_FATAL_FAILURE(filter(random, {width, height}, 1, [&](int, int) { return random.byte(); }));
    }
    for (const int width : {1, 40, 120})
        ASSERT_NO_FATAL_FAILURE(filter(random, {width, kHeight}, 3, [&](int, int) { return random.byte(); }));
}

TEST_P(CountingMedian, OfFlatImagesAndRamps) {
    Random random(322);
    const IppiSize size = {130, kHeight};
    for (const int flat : {0, 1, 127, 128, 254, 255})
        ASSERT_NO_FATAL_FAILURE(filter(random, size, 1, [=](int, int) { return flat; }));
    for (const int slope : {1, 3, -5, 40}) {
        ASSERT_NO_FATAL_FAILURE(filter(random, size, 1, [=](int x, int) { return x * slope; }));
        ASSERT_NO_FATAL_FAILURE(filter(random, size, 1, [=](int, int y) { return y * slope; }));
        ASSERT_NO_FATAL_FAILURE(filter(random, size, 3, [=](int x, int y) { return (x + y) * slope; }));
    }
}

// Half of the pixels have each value, so the number of pixels below a threshold is close to half of the window.
TEST_P(CountingMedian, OfTwoValues) {
    Random random(323);
    for (const auto& [low, high] : {std::pair{0, 255}, {0, 1}, {254, 255}, {127, 128}, {40, 225}})
        ASSERT_NO_FATAL_FAILURE(filter(random, {150, kHeight}, 1,
                                       [&, from = low, to = high](int, int) { return random.chance(50) ? from : to; }));
}

// Bands of rows with few grey levels each: a threshold is tried in some rows, not in the next ones, and tried again
// after any number of rows.
TEST_P(CountingMedian, OfBands) {
    Random random(324);
    for (const int highest : {3, 12, 24, 48, 90}) {
        std::vector<int> levels;
        while (levels.size() < kHeight + 2 * 31) {
            const int level = random.between(0, 7) * 32 + random.between(0, 2);
            levels.insert(levels.end(), static_cast<size_t>(random.between(1, highest)), level);
        }
        ASSERT_NO_FATAL_FAILURE(filter(random, {140, kHeight}, 1, [&](int, int y) {
            return levels[static_cast<size_t>(y + m())] + random.between(0, 3);
        }));
    }
}

std::string nameOf(const testing::TestParamInfo<int>& info) { return "Mask" + std::to_string(info.param); }

INSTANTIATE_TEST_SUITE_P(Masks, CountingMedian, testing::Range(11, 32, 2), nameOf);

TEST(CountingMedianMasks, AreOddAndFrom11To31) {
    for (int m = -1; m < 300; ++m) EXPECT_EQ(opcv::hasCountingMedian(m), m >= 11 && m <= 31 && m % 2 == 1) << m;
}

}    // namespace
