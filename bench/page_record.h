// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// A page record over a shared page, and a description of it.
#pragma once

#include "support.h"

namespace bench {

struct PageRecord {
    PageRecord(IppiSize size, int depth)
        : page(source(size, depth / 8)),
          record{const_cast<uint8_t*>(page.data()), depth, size.width, size.height, page.step(), 0},
          description{size.width, size.height, 300, 300, 0, static_cast<int16_t>(depth)} {}

    const Page& page;
    KVIMG record;
    KVImageDescription description;
    KVImageDescription* pointer = &description;
};

}    // namespace bench
