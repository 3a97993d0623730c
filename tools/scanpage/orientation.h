// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Which side of a page is up, by Leptonica's count of ascenders and descenders.
#pragma once

#include <optional>

#include "page.h"

// Quarter turns, counter-clockwise, that put the text upright; nothing if there is too little text to tell. The page is
// first turned by `skew`, which must make its lines horizontal or vertical.
std::optional<int> quartersToUpright(const Bits& bits, int dpi, double skew);
