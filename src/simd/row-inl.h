// Covering a row of bytes with vectors; included once a target by the kernel files.
#if defined(OPCV_DLIB_SIMD_ROW_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef OPCV_DLIB_SIMD_ROW_INL_H
#undef OPCV_DLIB_SIMD_ROW_INL_H
#else
#define OPCV_DLIB_SIMD_ROW_INL_H
#endif

#include <hwy/cache_control.h>
#include <hwy/highway.h>

#include <cstddef>
#include <cstdint>

HWY_BEFORE_NAMESPACE();
namespace rank_rows {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Calls `filterAt(d, x)` for vectors that cover the columns 0 to width - 1 and no other. The last vector is pulled back
// to end at the edge, so some columns come twice; a row shorter than a vector goes one lane at a time.
template <class FilterAt>
HWY_INLINE void coverRow(ptrdiff_t width, const FilterAt& filterAt) {
    const hn::ScalableTag<uint8_t> full;
    const hn::CappedTag<uint8_t, 1> one;
    const auto lanes = static_cast<ptrdiff_t>(hn::Lanes(full));
    if (width < lanes) {
        for (ptrdiff_t x = 0; x < width; ++x) filterAt(one, x);
        return;
    }
    for (ptrdiff_t x = 0; x < width - lanes; x += lanes) filterAt(full, x);
    filterAt(full, width - lanes);
}

// Rows are too short for the processor to see that the next one follows a step later.
HWY_INLINE void prefetchRow(const uint8_t* row, ptrdiff_t width) {
    constexpr ptrdiff_t kCacheLine = 64;
    for (ptrdiff_t i = 0; i < width; i += kCacheLine) hwy::Prefetch(row + i);
}

// Two rows that are filtered together, because their windows share pixels. A last row without a partner is its own: both
// results then go to the same place, so the upper one must be stored last.
struct RowPair {
    const uint8_t* upper;    // first source pixel
    bool hasLower;
    uint8_t* upperDst;
    uint8_t* lowerDst;
    const uint8_t* next[4];    // rows that the next pair is the first to use: two it reads, two it writes
};

template <class FilterPair>
HWY_INLINE void forEachRowPair(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep, int height,
                               const FilterPair& filterPair) {
    for (; height > 0; height -= 2, src += 2 * srcStep, dst += 2 * dstStep) {
        RowPair pair{src, height > 1, dst, height > 1 ? dst + dstStep : dst, {src, src, dst, dst}};
        if (height > 3)
            for (ptrdiff_t i = 0; i < 2; ++i) {
                pair.next[i] = src + (3 + i) * srcStep;
                pair.next[2 + i] = dst + (2 + i) * dstStep;
            }
        filterPair(pair);
    }
}

// coverRow for both rows of a pair. On the way it fetches the next pair's pixels: rows are too short for the processor to
// see that another one follows a step later, and fetched at once they would keep the arithmetic waiting.
template <class FilterAt>
HWY_INLINE void coverPair(const RowPair& pair, ptrdiff_t width, const FilterAt& filterAt) {
    coverRow(width, [&](auto d, ptrdiff_t x) HWY_ATTR {
        for (const uint8_t* row : pair.next) hwy::Prefetch(row + x);
        filterAt(d, x);
    });
}

}    // namespace HWY_NAMESPACE
}    // namespace rank_rows
HWY_AFTER_NAMESPACE();

#endif    // include guard of the target
