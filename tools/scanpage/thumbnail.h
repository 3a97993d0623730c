// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Small pictures of pages.
#pragma once

#include "pix.h"

// Each pixel is the mean of a square of the page.
Thumbnail thumbnailOf(const KVIMG& page);

// At most of this size.
PixPtr picture(const Thumbnail& thumbnail, int width, int height);
