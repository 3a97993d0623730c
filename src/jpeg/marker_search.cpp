// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Coded data contains a byte of 255 every few hundred bytes, each followed by 0. Vectors of bytes are compared together
// with the bytes that follow them, so that only real markers stop the search.
#include "jpeg/marker_search.h"

#include <cstddef>
#include <cstdint>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "jpeg/marker_search.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

const uint8_t* find(const uint8_t* at, const uint8_t* end) {
    const hn::ScalableTag<uint8_t> d;
    const auto lanes = static_cast<ptrdiff_t>(hn::Lanes(d));
    for (; end - at > lanes; at += lanes) {
        const auto is255 = hn::Eq(hn::LoadU(d, at), hn::Set(d, 255));
        const auto isFollowedBy0 = hn::Eq(hn::LoadU(d, at + 1), hn::Zero(d));
        const intptr_t found = hn::FindFirstTrue(d, hn::AndNot(isFollowedBy0, is255));
        if (found >= 0) return at + found;
    }
    while (at < end && !(at[0] == 255 && (at + 1 == end || at[1] != 0))) ++at;
    return at;
}

}    // namespace HWY_NAMESPACE
}    // namespace
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace {
HWY_EXPORT(find);
}    // namespace

const unsigned char* findMarker(const unsigned char* begin, const unsigned char* end) {
    return HWY_DYNAMIC_DISPATCH(find)(begin, end);
}
#endif    // HWY_ONCE
