// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The exported function: arguments in, exceptions out.
#include <OPCV_dlib_skew.h>

#include <algorithm>
#include <new>
#include <stdexcept>

#include "judgement.h"

namespace {

constexpr int kLeastSide = 64;                // pixels of the working image; a smaller one has no lines to measure
constexpr int kLeastPage = kLeastSide / 2;    // of a page, which is enlarged at most twice

bool isValid(const KVIMG* page) {
    if (!page || !page->data || page->width < 1 || page->height < 1) return false;
    if (page->depth != 1 && page->depth != 8 && page->depth != 24 && page->depth != 32) return false;
    return page->rowBytes >= (int64_t{page->width} * page->depth + 7) / 8;
}

opcv_skew skewOf(const KVIMG& page) {
    if (std::min(page.width, page.height) >= kLeastPage) {
        const page_skew::GreyImage image = page_skew::workingImageOf(page);
        if (std::min(image.width, image.height) >= kLeastSide) return page_skew::judge(page_skew::inkOf(image));
    }
    opcv_skew unsure{};
    unsure.struct_size = sizeof(unsure);
    unsure.outcome = OPCV_SKEW_UNSURE;
    return unsure;
}

}    // namespace

OSErr opcv_find_skew(const KVIMG* page, opcv_skew* skew) {
    if (!skew || skew->struct_size != sizeof(opcv_skew) || !isValid(page)) return paramErr;
    try {
        *skew = skewOf(*page);
        return noErr;
    } catch (const std::bad_alloc&) {
        return memFullErr;
    } catch (const std::length_error&) {    // a vector longer than any memory
        return memFullErr;
    }
}
