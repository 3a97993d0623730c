// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Turning a page by its skew or by an angle that is asked for.
#pragma once

#include "page.h"

// Counter-clockwise. Multiples of 90 degrees move whole pixels, and a quarter turn exchanges width and height, in the
// description too. By any other angle the page keeps its size.
Record turned(const KVIMG& page, KVImageDescription& description, double degrees);
