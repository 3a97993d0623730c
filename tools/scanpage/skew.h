// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// The skew of a page.
#pragma once

#include "page.h"

// The angle that straightens the page, in degrees counter-clockwise, or the reason why there is none.
Skew findSkew(const KVIMG& page);
