// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// A median with a fixed window, described for the tests that every one of them runs (fixed_window_test.cpp). The
// test beside each median's source makes instances of them.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <ostream>
#include <vector>

#include "OPCV_dlib.h"
#include "support/guarded_image.h"
#include "support/random.h"

struct FixedWindowFilter {
    using Kernel = void (*)(const unsigned char*, int, unsigned char*, int, int, int);
    using EntryPoint = IppStatus (*)(const unsigned char*, int, unsigned char*, int, IppiSize, int);

    const char* name;
    EntryPoint entryPoint;
    int code;    // its last argument
    Kernel kernel;
    int pixelSize;
    int reach;    // pixels from the centre to the window's edge
    std::function<void(const uint8_t* centre, int step, uint8_t* expected)> definition;    // one pixel
};

inline void PrintTo(const FixedWindowFilter& filter, std::ostream* out) { *out << filter.name; }

class FixedWindow : public testing::TestWithParam<FixedWindowFilter> {
protected:
    const FixedWindowFilter& filter() const { return GetParam(); }

    std::vector<uint8_t> expectedRow(const GuardedImage& source, int y) const {
        std::vector<uint8_t> row(static_cast<size_t>(source.rowBytes()));
        for (int x = 0; x < source.size().width; ++x)
            filter().definition(source.at(x, y), source.step(), row.data() + ptrdiff_t{x} * filter().pixelSize);
        return row;
    }

    void expectLikeTheDefinition(const GuardedImage& source, GuardedImage& result) const {
        ASSERT_EQ(filter().entryPoint(source.data(), source.step(), result.data(), result.step(), source.size(),
                                      filter().code),
                  ippStsNoErr);
        ASSERT_TRUE(result.untouchedOutsideRegion());
        for (int y = 0; y < source.size().height; ++y)
            ASSERT_EQ(expectedRow(source, y), std::vector<uint8_t>(result.at(0, y), result.at(source.size().width, y)))
                << "row " << y;
    }

    // Also steps that are not a multiple of the pixel size.
    GuardedImage::Layout anyLayout(Random& random, int margin) const {
        return {filter().pixelSize, margin, random.between(0, 17), random.between(0, 31)};
    }

    void expectLikeTheDefinition(Random& random, IppiSize size) const {
        const GuardedImage source(random, size, anyLayout(random, filter().reach), random.anyValues());
        GuardedImage result(random, size, anyLayout(random, 0));
        ASSERT_NO_FATAL_FAILURE(expectLikeTheDefinition(source, result)) << size.width << " x " << size.height;
    }
};

// A 1 x 1 region in a 7 x 7 image of dark pixels, some of them bright.
inline uint8_t filterOnDark(FixedWindowFilter::EntryPoint entryPoint, int code, const std::vector<IppiPoint>& bright) {
    std::array<uint8_t, 49> image{};
    for (const IppiPoint p : bright) image.data()[(3 + p.y) * 7 + 3 + p.x] = 200;
    uint8_t result = 1;
    EXPECT_EQ(entryPoint(&image[24], 7, &result, 1, {1, 1}, code), ippStsNoErr);
    return result;
}

// The codes of other filters.
inline void expectRefused(FixedWindowFilter::EntryPoint entryPoint, std::initializer_list<int> codes) {
    const std::vector<uint8_t> source(1000, 7);
    uint8_t result = 9;
    for (const int code : codes)
        EXPECT_EQ(entryPoint(source.data() + 500, 60, &result, 3, {1, 1}, code), ippStsBadArgErr) << code;
    EXPECT_EQ(result, 9);
}
