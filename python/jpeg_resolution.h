// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The resolution in a JPEG stream.
#pragma once

#include <cstddef>

#include "page.h"

namespace binding {

// In the directions of the page, which its orientation may have turned; `otherwise` if the stream has none.
Dpi resolutionOf(const unsigned char* stream, size_t size, const KVIMG& page, int otherwise);

}    // namespace binding
