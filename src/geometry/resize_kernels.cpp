// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Bilinear resize in OpenCV's 11-bit fixed point. A source row is resampled to the scaled width first:
//
//     h(x) = (S[s] * w0 + S[s + 1] * w1) >> 4       s, w0, w1 by column, w0 + w1 = 2048, S of the same channel
//
// which fits in 16 bits; each result is a mix of two resampled rows:
//
//     (((h0 * b0) >> 16) + ((h1 * b1) >> 16) + 2) >> 2
//
// Four neighbouring results (bytes of any channel) read from one block of 16 source bytes. For each four, a table,
// which is created once for all rows, holds the first byte of the block, the shuffle that arranges its bytes as pairs
// of 16-bit numbers, and the weights of the pairs. Blocks at the end of a row are moved back to end with it. A
// resampled row is kept as long as results need it.
#include "geometry/resize_kernels.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "geometry/resize_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/row-inl.h"

HWY_BEFORE_NAMESPACE();
namespace opcv {
namespace {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using simd::HWY_NAMESPACE::coverBeyond;
using simd::HWY_NAMESPACE::coverWithRest;

constexpr int kBlockBytes = 16;
constexpr int kFour = 4;               // results of a block
constexpr uint8_t kZeroByte = 0x80;    // in a shuffle

using D8 = hn::ScalableTag<uint8_t>;
using D16 = hn::ScalableTag<int16_t>;
using D32 = hn::ScalableTag<int32_t>;

constexpr int kBlocks = static_cast<int>(hn::MaxLanes(D8())) / kBlockBytes;    // of a vector
constexpr int kResults = 2 * kBlocks * kFour;    // of two vectors, which are narrowed to one of 16-bit lanes

int roundUpToVectors(int results) { return (results + kResults - 1) / kResults * kResults; }

struct Taps {
    int first;    // source pixel
    int16_t weightOfFirst;
    int16_t weightOfSecond;
};

Taps tapsAt(int position, double scale) {
    auto fraction = static_cast<float>((position + 0.5) * scale - 0.5);
    const float first = std::floor(fraction);
    fraction -= first;
    constexpr float kOne = 2048;
    return {static_cast<int>(first), static_cast<int16_t>(std::lrint((1.0F - fraction) * kOne)),
            static_cast<int16_t>(std::lrint(fraction * kOne))};
}

// A column beyond the outermost pixel has the value of that pixel.
Taps columnTapsAt(int position, double scale, int width) {
    const Taps taps = tapsAt(position, scale);
    if (taps.first >= 0 && taps.first < width - 1) return taps;
    return {std::clamp(taps.first, 0, width - 1), 2048, 0};
}

// The index of four results in the table. In two vectors, block b of vector k has index 2 b + k, so that narrowing the
// two within their blocks puts the results in order.
int slotOf(int four) {
    const int inPair = four % (2 * kBlocks);
    return four - inPair + inPair % 2 * kBlocks + inPair / 2;
}

void prepare(const BilinearJob& job, ColumnTable& table) {
    const int results = job.width * job.channels;
    const auto slots = static_cast<size_t>(roundUpToVectors(results) / kFour);
    table.firstBytes.resize(slots);
    table.shuffles.resize(slots * kBlockBytes, kZeroByte);
    table.weights.resize(slots * 2 * kFour);

    const int lastBlock = job.sourceWidth * job.channels - kBlockBytes;
    for (int start = 0; start < results; start += kFour) {
        const auto slot = static_cast<size_t>(slotOf(start / kFour));
        uint8_t* shuffles = &table.shuffles[slot * kBlockBytes];
        int16_t* weights = &table.weights[slot * 2 * kFour];
        const int count = std::min(kFour, results - start);
        int bytes[kFour] = {};
        int firstByte = lastBlock;
        for (int i = 0; i < count; ++i) {
            const int column = (start + i) / job.channels;
            const int channel = (start + i) % job.channels;
            const Taps taps = columnTapsAt(job.x + column, job.xScale, job.sourceWidth);
            bytes[i] = taps.first * job.channels + channel;
            firstByte = std::min(firstByte, bytes[i]);
            weights[2 * i] = taps.weightOfFirst;
            weights[2 * i + 1] = taps.weightOfSecond;
        }
        table.firstBytes[slot] = firstByte;
        for (int i = 0; i < count; ++i) {
            const int inBlock = bytes[i] - firstByte;
            const bool alone = weights[2 * i + 1] == 0;    // at the right edge there is no second pixel
            shuffles[4 * i] = static_cast<uint8_t>(inBlock);
            shuffles[4 * i + 2] = static_cast<uint8_t>(alone ? inBlock : inBlock + job.channels);
        }
    }
}

// One block of a row for each block of the vector.
template <class D>
hn::Vec<D> loadBlocks(D d, const uint8_t* row, const int32_t* firstBytes) {
    constexpr size_t blocks = hn::MaxLanes(d) / kBlockBytes;
    if constexpr (blocks == 1) {
        return hn::LoadU(d, row + *firstBytes);
    } else {
        const hn::Half<D> half;
        return hn::Combine(d, loadBlocks(half, row, firstBytes + blocks / 2), loadBlocks(half, row, firstBytes));
    }
}

// The entries of the table for one vector, for any number of rows.
struct Columns {
    Columns(const ColumnTable& table, ptrdiff_t result, int vector) {
        const auto slot = static_cast<size_t>(result) / kFour + static_cast<size_t>(vector) * kBlocks;
        firstBytes = &table.firstBytes[slot];
        shuffle = hn::LoadU(D8(), &table.shuffles[slot * kBlockBytes]);
        weights = hn::LoadU(D16(), &table.weights[slot * 2 * kFour]);
    }

    hn::Vec<D32> resample(const uint8_t* row) const {
        const D32 d32;
        const auto pairs = hn::TableLookupBytesOr0(loadBlocks(D8(), row, firstBytes), shuffle);
        auto rest = hn::Zero(d32);
        const auto sums = hn::ReorderWidenMulAccumulate(d32, hn::BitCast(D16(), pairs), weights, hn::Zero(d32), rest);
        return hn::ShiftRight<4>(hn::RearrangeToOddPlusEven(sums, rest));
    }

    const int32_t* firstBytes;
    hn::Vec<D8> shuffle;
    hn::Vec<D16> weights;
};

void resampleRow(const ColumnTable& table, int results, const uint8_t* row, int16_t* resampled) {
    coverBeyond(results, kResults, [&](ptrdiff_t x) HWY_ATTR {
        const Columns first(table, x, 0);
        const Columns second(table, x, 1);
        hn::StoreU(hn::ReorderDemote2To(D16(), first.resample(row), second.resample(row)), D16(), resampled + x);
    });
}

// Two new rows of a result are resampled together, so that the table is loaded once.
void resampleTwoRows(const ColumnTable& table, int results, const uint8_t* row, const uint8_t* next, int16_t* resampled,
                     int16_t* nextResampled) {
    coverBeyond(results, kResults, [&](ptrdiff_t x) HWY_ATTR {
        const Columns first(table, x, 0);
        const Columns second(table, x, 1);
        hn::StoreU(hn::ReorderDemote2To(D16(), first.resample(row), second.resample(row)), D16(), resampled + x);
        hn::StoreU(hn::ReorderDemote2To(D16(), first.resample(next), second.resample(next)), D16(), nextResampled + x);
    });
}

void mixRows(const int16_t* above, const int16_t* below, const Taps& taps, int results, uint8_t* target) {
    const D16 d16;
    const hn::Half<D8> d8;
    const auto weightOfAbove = hn::Set(d16, taps.weightOfFirst);
    const auto weightOfBelow = hn::Set(d16, taps.weightOfSecond);
    const auto mixAt = [&](ptrdiff_t x, uint8_t* mixed) HWY_ATTR {
        const auto fromAbove = hn::MulHigh(hn::LoadU(d16, above + x), weightOfAbove);
        const auto fromBelow = hn::MulHigh(hn::LoadU(d16, below + x), weightOfBelow);
        const auto sum = hn::Add(hn::Add(fromAbove, fromBelow), hn::Set(d16, 2));
        hn::StoreU(hn::DemoteTo(d8, hn::ShiftRight<2>(sum)), d8, mixed);
    };
    coverWithRest(
        results, kResults, [&](ptrdiff_t x) HWY_ATTR { mixAt(x, target + x); },
        [&](ptrdiff_t x, ptrdiff_t count) HWY_ATTR {
            uint8_t block[kResults];
            mixAt(x, block);
            std::memcpy(target + x, block, static_cast<size_t>(count));
        });
}

// The two resampled rows of a result.
class RowPair {
public:
    RowPair(const BilinearJob& job, const ColumnTable& table)
        : job_(job), table_(table), results_(job.width * job.channels) {
        const auto size = static_cast<size_t>(roundUpToVectors(results_));
        buffers_.resize(2 * size);
        above_ = {-1, buffers_.data()};
        below_ = {-1, buffers_.data() + size};
    }

    void mix(int y, uint8_t* target) {
        const Taps taps = tapsAt(y, job_.yScale);
        resample(clampToImage(taps.first), clampToImage(taps.first + 1));
        mixRows(above_.values, below_.values, taps, results_, target);
    }

private:
    struct Resampled {
        int row;
        int16_t* values;
    };

    int clampToImage(int row) const { return std::clamp(row, 0, job_.sourceHeight - 1); }
    const uint8_t* sourceRow(int row) const { return job_.source + row * job_.sourceStep; }

    void resample(int aboveRow, int belowRow) {
        if (below_.row == aboveRow) std::swap(above_, below_);
        if (above_.row != aboveRow && below_.row != belowRow) {
            resampleTwoRows(table_, results_, sourceRow(aboveRow), sourceRow(belowRow), above_.values, below_.values);
        } else {
            if (above_.row != aboveRow) resampleRow(table_, results_, sourceRow(aboveRow), above_.values);
            if (below_.row != belowRow) resampleRow(table_, results_, sourceRow(belowRow), below_.values);
        }
        above_.row = aboveRow;
        below_.row = belowRow;
    }

    const BilinearJob& job_;
    const ColumnTable& table_;
    int results_;
    std::vector<int16_t> buffers_;
    Resampled above_{};
    Resampled below_{};
};

void resizeRows(const BilinearJob& job, const ColumnTable& table, int firstRow, int rowCount) {
    RowPair rows(job, table);
    uint8_t* target = job.target + firstRow * job.targetStep;
    for (int y = firstRow; y < firstRow + rowCount; ++y, target += job.targetStep) rows.mix(job.y + y, target);
}

}    // namespace HWY_NAMESPACE
}    // namespace
}    // namespace opcv
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace opcv {

namespace {
HWY_EXPORT(prepare);
HWY_EXPORT(resizeRows);
}    // namespace

// Four results belong to four pixels of one channel, two of three channels or one of four. At the largest scale,
// including the second taps and one more column where float rounds a position up, they read 15, 16 and 8 bytes. Beyond
// the width up to which float represents whole pixels, rounding errors are larger.
bool BilinearResize::canDo(const BilinearJob& job) {
    constexpr int kFullBlock = 16;
    constexpr int kLongestRow = 1 << 24;
    const double greatestScale = job.channels == 3 ? 3 : 4;
    return job.xScale <= greatestScale && job.sourceWidth >= kFullBlock && job.sourceWidth <= kLongestRow;
}

BilinearResize::BilinearResize(const BilinearJob& job) : job_(job) { HWY_DYNAMIC_DISPATCH(prepare)(job_, columns_); }

void BilinearResize::run(int firstRow, int rowCount) const {
    HWY_DYNAMIC_DISPATCH(resizeRows)(job_, columns_, firstRow, rowCount);
}

}    // namespace opcv
#endif    // HWY_ONCE
