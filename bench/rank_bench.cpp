// Rank filters: each beside memcpy of the bytes read and written once, and beside its definition in plain code.
#include <algorithm>
#include <cstdlib>
#include <string>

#include "OPCV_dlib.h"
#include "support.h"

namespace {

size_t bytesMoved(IppiSize size, int pixelSize) {
    return size_t{2} * static_cast<size_t>(size.width) * static_cast<size_t>(size.height) *
           static_cast<size_t>(pixelSize);
}

// Runs a definition of one pixel over the region, as plain code would.
template <class Definition>
void forEachPixel(const bench::Page& source, bench::Page& result, int pixelSize, Definition define) {
    for (int y = 0; y < source.size().height; ++y) {
        const uint8_t* from = source.data() + ptrdiff_t{y} * source.step();
        uint8_t* to = result.data() + ptrdiff_t{y} * result.step();
        for (int x = 0; x < source.size().width; ++x) define(from + x * pixelSize, source.step(), to + x * pixelSize);
    }
}

uint8_t medianOf(uint8_t* values, int count) {
    std::nth_element(values, values + count / 2, values + count);
    return values[count / 2];
}

void crossMedian(int reach, const uint8_t* centre, ptrdiff_t step, uint8_t* to) {
    uint8_t values[9] = {*centre};
    int count = 1;
    for (int i = 1; i <= reach; ++i)
        for (const ptrdiff_t offset : {ptrdiff_t{-i}, ptrdiff_t{i}, -i * step, i * step})
            values[count++] = centre[offset];
    *to = medianOf(values, count);
}

void weightedMedian(int weight, const uint8_t* centre, ptrdiff_t step, uint8_t* to) {
    uint8_t values[13];
    int count = 0;
    for (; count < weight - 1; ++count) values[count] = *centre;
    for (int j = -1; j <= 1; ++j)
        for (int i = -1; i <= 1; ++i) values[count++] = centre[j * step + i];
    *to = medianOf(values, count);
}

void colorMedian(const uint8_t* centre, ptrdiff_t step, uint8_t* to) {
    const uint8_t* best = nullptr;
    int least = 0;
    for (int k = 0; k < 9; ++k) {
        const uint8_t* candidate = centre + (k / 3 - 1) * step + 3 * (k % 3 - 1);
        int score = 0;
        for (int j = 0; j < 9; ++j) {
            const uint8_t* other = centre + (j / 3 - 1) * step + 3 * (j % 3 - 1);
            for (int c = 0; c < 3; ++c) score += std::abs(candidate[c] - other[c]);
        }
        if (!best || score < least) {
            best = candidate;
            least = score;
        }
    }
    std::copy_n(best, 3, to);
}

using FixedWindowFilter = IppStatus (*)(const unsigned char*, int, unsigned char*, int, IppiSize, int);

template <class Definition>
void compareFixedWindow(const char* name, FixedWindowFilter filter, int code, IppiSize size, int pixelSize,
                        Definition define) {
    const bench::Page& source = bench::source(size, pixelSize);
    bench::Page& result = bench::target(size, pixelSize);
    bench::Page& expected = bench::otherTarget(size, pixelSize);
    bench::compare(
        bench::withSize(name, size),
        [&source, &result, filter, code, size] {
            filter(source.data(), source.step(), result.data(), result.step(), size, code);
        },
        {bench::memcpyOf(bytesMoved(size, pixelSize)),
         {"scalar", [&source, &expected, pixelSize, define] { forEachPixel(source, expected, pixelSize, define); }}},
        [&result, &expected] { return result.sameRegion(expected); });
}

void compareFixedWindows() {
    for (const IppiSize size : {bench::kPage, bench::kTile}) {
        for (const int mask : {33, 55})
            compareFixedWindow(mask == 33 ? "cross 3x3" : "cross 5x5", IPPShare_ippiFilterMedianCross_8u_C1R, mask,
                               size, 1, [mask](const uint8_t* centre, ptrdiff_t step, uint8_t* to) {
                                   crossMedian(mask == 33 ? 1 : 2, centre, step, to);
                               });
        for (const int weight : {3, 5})
            compareFixedWindow(weight == 3 ? "weighted centre 3" : "weighted centre 5",
                               IPPShare_ippiFilterMedianWeightedCenter3x3_8u_C1R, weight, size, 1,
                               [weight](const uint8_t* centre, ptrdiff_t step, uint8_t* to) {
                                   weightedMedian(weight, centre, step, to);
                               });
        compareFixedWindow("colour 3x3", IPPShare_ippiFilterMedianColor_8u_C3R, 33, size, 3, colorMedian);
    }
}

const bench::Registration fixedWindows(compareFixedWindows);

}    // namespace
