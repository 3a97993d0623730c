// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Turning a page by its skew or by an angle that is asked for.
#pragma once

#include "page.h"

// Counter-clockwise. The quarter turns in the angle move whole pixels, and an odd number of them exchanges width and
// height, in the description too. By the rest, up to 45 degrees, the page is turned in its size; corners become white.
Record turned(const KVIMG& page, KVImageDescription& description, double degrees);
