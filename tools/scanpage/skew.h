// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The skew of a page, measured by Leptonica.
#pragma once

#include <optional>

#include "page.h"

// The angle that straightens the page, in degrees counter-clockwise; nothing if the page has no lines of text.
std::optional<double> findSkew(const Bits& bits);
