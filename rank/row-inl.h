// Covering a row of bytes with vectors; included once a target by the kernel files.
#if defined(OPCV_DLIB_RANK_ROW_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef OPCV_DLIB_RANK_ROW_INL_H
#undef OPCV_DLIB_RANK_ROW_INL_H
#else
#define OPCV_DLIB_RANK_ROW_INL_H
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
};

template <class FilterPair>
HWY_INLINE void forEachRowPair(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep, int width,
                               int height, const FilterPair& filterPair) {
    for (; height > 0; height -= 2, src += 2 * srcStep, dst += 2 * dstStep) {
        if (height > 3) {
            for (int next = 2; next <= 3; ++next) {
                prefetchRow(src + (next + 1) * srcStep, width);
                prefetchRow(dst + next * dstStep, width);
            }
        }
        filterPair(RowPair{src, height > 1, dst, height > 1 ? dst + dstStep : dst});
    }
}

}    // namespace HWY_NAMESPACE
}    // namespace rank_rows
HWY_AFTER_NAMESPACE();

#endif    // include guard of the target
