// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Whether the lines that were found are lines of text.
#pragma once

#include <OPCV_dlib_skew.h>

#include "ink.h"

namespace page_skew {

// The angle, if the page is to be turned by it; otherwise the reason.
opcv_skew judge(const Ink& ink);

}    // namespace page_skew
