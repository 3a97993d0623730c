// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The checked arguments that the page functions share.
#pragma once

#include "OPCV_dlib.h"
#include "geometry/page_format.h"

namespace opcv {

struct Page {
    const KVIMG* record = nullptr;    // only its pixels and bytes per row are used
    int width = 0;
    int height = 0;
    unsigned char depth = 0;
    PageFormat format;

    IppiSize size() const { return {width, height}; }
    IppiRect rect() const { return {0, 0, width, height}; }
    KVRect bounds() const { return {0, 0, height, width}; }
};

inline OSErr describePage(const KVIMG* src, KVImageDescriptionHandle description, Page& page) {
    if (!src || !description || !*description) return paramErr;
    const KVImageDescription& d = **description;
    const std::optional<PageFormat> format = pageFormatOf(d.depth);
    if (!format) return rotateFailedErr;
    page.format = *format;
    page.record = src;
    page.width = d.width;
    page.height = d.height;
    page.depth = static_cast<unsigned char>(d.depth);
    return noErr;
}

}    // namespace opcv
