// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Every rule that covers a row, on the vectors of the target that the program runs: which columns are reached by which
// call, for rows from none to a little more than two vectors.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "support/fenced_memory.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simd/row_test.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/row-inl.h"

#ifndef OPCV_DLIB_ROW_TEST_CALLS
#define OPCV_DLIB_ROW_TEST_CALLS
namespace {

struct Call {
    ptrdiff_t first;
    ptrdiff_t count;
};

bool operator==(const Call& a, const Call& b) { return a.first == b.first && a.count == b.count; }

using Calls = std::vector<Call>;

}    // namespace
#endif

HWY_BEFORE_NAMESPACE();
namespace {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;
namespace row = opcv::simd::HWY_NAMESPACE;

template <class T>
constexpr hn::ScalableTag<T> kTag;

ptrdiff_t byteLanes() { return row::lanesOf(kTag<uint8_t>); }
ptrdiff_t floatLanes() { return row::lanesOf(kTag<float>); }

template <class T>
Calls callsOfRow(ptrdiff_t width) {
    Calls calls;
    row::coverRow(kTag<T>, width, [&](auto d, ptrdiff_t x) HWY_ATTR { calls.push_back({x, row::lanesOf(d)}); });
    return calls;
}

Calls byteRow(ptrdiff_t width) { return callsOfRow<uint8_t>(width); }
Calls floatRow(ptrdiff_t width) { return callsOfRow<float>(width); }

// Increments in place, which detects columns that are processed twice and writes outside the row.
void incrementOnce(uint8_t* bytes, ptrdiff_t width) {
    row::coverRowOnce(kTag<uint8_t>, width, [&](auto d, ptrdiff_t x) HWY_ATTR {
        hn::StoreU(hn::Add(hn::LoadU(d, bytes + x), hn::Set(d, uint8_t{1})), d, bytes + x);
    });
}

void incrementOnceFloats(float* values, ptrdiff_t width) {
    row::coverRowOnce(kTag<float>, width, [&](auto d, ptrdiff_t x) HWY_ATTR {
        hn::StoreU(hn::Add(hn::LoadU(d, values + x), hn::Set(d, 1.0F)), d, values + x);
    });
}

// Copies by coverRow, with nothing read or written but the row.
void copyRow(const uint8_t* from, uint8_t* to, ptrdiff_t width) {
    row::coverRow(kTag<uint8_t>, width,
                  [&](auto d, ptrdiff_t x) HWY_ATTR { hn::StoreU(hn::LoadU(d, from + x), d, to + x); });
}

Calls pulledBack(ptrdiff_t width, ptrdiff_t block) {
    Calls calls;
    row::coverPulledBack(
        width, block,
        [&](ptrdiff_t x) {
            calls.push_back({x, block});
        },
        [&] {
            calls.push_back({0, width});
        });
    return calls;
}

Calls withRest(ptrdiff_t width, ptrdiff_t block) {
    Calls calls;
    row::coverWithRest(
        width, block,
        [&](ptrdiff_t x) {
            calls.push_back({x, block});
        },
        [&](ptrdiff_t x, ptrdiff_t count) {
            calls.push_back({x, -count});
        });
    return calls;
}

Calls beyond(ptrdiff_t width, ptrdiff_t block) {
    Calls calls;
    row::coverBeyond(width, block, [&](ptrdiff_t x) { calls.push_back({x, block}); });
    return calls;
}

void prefetchToWrite(const uint8_t* first, ptrdiff_t bytes) { row::prefetchToWrite(first, bytes); }

}    // namespace HWY_NAMESPACE
}    // namespace
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace {
HWY_EXPORT(byteLanes);
HWY_EXPORT(floatLanes);
HWY_EXPORT(byteRow);
HWY_EXPORT(floatRow);
HWY_EXPORT(incrementOnce);
HWY_EXPORT(incrementOnceFloats);
HWY_EXPORT(copyRow);
HWY_EXPORT(pulledBack);
HWY_EXPORT(withRest);
HWY_EXPORT(beyond);
HWY_EXPORT(prefetchToWrite);

constexpr ptrdiff_t kBlocks[] = {1, 2, 3, 16, 48};

// Vectors from the left, the last one ending with the row; one lane at a time in a row that is shorter than a vector.
Calls expectedOfRow(ptrdiff_t width, ptrdiff_t lanes) {
    Calls calls;
    if (width < lanes) {
        for (ptrdiff_t x = 0; x < width; ++x) calls.push_back({x, 1});
        return calls;
    }
    for (ptrdiff_t end = lanes; end < width; end += lanes) calls.push_back({end - lanes, lanes});
    calls.push_back({width - lanes, lanes});
    return calls;
}

TEST(Row, EndsWithAVectorThatIsPulledBack) {
    const ptrdiff_t bytes = HWY_DYNAMIC_DISPATCH(byteLanes)();
    for (ptrdiff_t width = 0; width <= 2 * bytes + 1; ++width)
        EXPECT_EQ(HWY_DYNAMIC_DISPATCH(byteRow)(width), expectedOfRow(width, bytes)) << width;
    const ptrdiff_t floats = HWY_DYNAMIC_DISPATCH(floatLanes)();
    for (ptrdiff_t width = 0; width <= 2 * floats + 1; ++width)
        EXPECT_EQ(HWY_DYNAMIC_DISPATCH(floatRow)(width), expectedOfRow(width, floats)) << width;
}

TEST(Row, CopyWritesNothingElse) {
    const ptrdiff_t lanes = HWY_DYNAMIC_DISPATCH(byteLanes)();
    for (ptrdiff_t width = 0; width <= 2 * lanes + 1; ++width) {
        const auto size = static_cast<size_t>(width);
        std::vector<uint8_t> from(size);
        for (size_t i = 0; i < size; ++i) from[i] = static_cast<uint8_t>(i + 1);
        std::vector<uint8_t> to(size + 2, 0xA5);
        HWY_DYNAMIC_DISPATCH(copyRow)(from.data(), to.data() + 1, width);
        EXPECT_EQ(to.front(), 0xA5) << width;
        EXPECT_EQ(to.back(), 0xA5) << width;
        EXPECT_EQ(std::vector<uint8_t>(to.begin() + 1, to.end() - 1), from) << width;
    }
}

template <class T, class Increment>
void expectEachColumnOnce(ptrdiff_t width, const Increment& increment) {
    std::vector<T> values(static_cast<size_t>(width) + 2, T{7});
    increment(values.data() + 1, width);
    std::vector<T> expected(values.size(), T{8});
    expected.front() = expected.back() = T{7};
    EXPECT_EQ(values, expected) << width;
}

TEST(Row, CoversEachColumnOnce) {
    const auto bytes = [](uint8_t* row, ptrdiff_t width) { HWY_DYNAMIC_DISPATCH(incrementOnce)(row, width); };
    for (ptrdiff_t width = 0; width <= 2 * HWY_DYNAMIC_DISPATCH(byteLanes)() + 1; ++width)
        expectEachColumnOnce<uint8_t>(width, bytes);
    const auto floats = [](float* row, ptrdiff_t width) { HWY_DYNAMIC_DISPATCH(incrementOnceFloats)(row, width); };
    for (ptrdiff_t width = 0; width <= 2 * HWY_DYNAMIC_DISPATCH(floatLanes)() + 1; ++width)
        expectEachColumnOnce<float>(width, floats);
}

TEST(Row, GoesByBlocksOfAnyLengthThatArePulledBack) {
    for (const ptrdiff_t block : kBlocks)
        for (ptrdiff_t width = 0; width <= 2 * block + 1; ++width) {
            const Calls expected = width < block ? Calls{{0, width}} : expectedOfRow(width, block);
            EXPECT_EQ(HWY_DYNAMIC_DISPATCH(pulledBack)(width, block), expected) << block << ' ' << width;
        }
}

TEST(Row, LeavesTheRestToTheCaller) {
    for (const ptrdiff_t block : kBlocks)
        for (ptrdiff_t width = 0; width <= 2 * block + 1; ++width) {
            Calls expected;
            for (ptrdiff_t i = 0; i < width / block; ++i) expected.push_back({i * block, block});
            if (width % block != 0) expected.push_back({width - width % block, -(width % block)});
            EXPECT_EQ(HWY_DYNAMIC_DISPATCH(withRest)(width, block), expected) << block << ' ' << width;
        }
}

TEST(Row, RunsPastTheEndByLessThanABlock) {
    for (const ptrdiff_t block : kBlocks)
        for (ptrdiff_t width = 0; width <= 2 * block + 1; ++width) {
            Calls expected;
            for (ptrdiff_t i = 0; i < (width + block - 1) / block; ++i) expected.push_back({i * block, block});
            EXPECT_EQ(HWY_DYNAMIC_DISPATCH(beyond)(width, block), expected) << block << ' ' << width;
        }
}

TEST(Row, PrefetchesWithoutEffectOnAnyMemory) {
    std::vector<uint8_t> bytes(200, 0x5A);
    for (ptrdiff_t count = 0; count < 200; ++count) HWY_DYNAMIC_DISPATCH(prefetchToWrite)(bytes.data(), count);
    EXPECT_EQ(bytes, std::vector<uint8_t>(200, 0x5A));
    FencedMemory fenced(100, FencedMemory::Fence::kBehind);
    HWY_DYNAMIC_DISPATCH(prefetchToWrite)(fenced.data(), 1000);
    HWY_DYNAMIC_DISPATCH(prefetchToWrite)(nullptr, 1000);
}

}    // namespace
#endif    // HWY_ONCE
