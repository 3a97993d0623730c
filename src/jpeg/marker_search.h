// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Finds markers in the coded data of a JPEG stream.
#pragma once

// The first byte of 255 in [begin, end) that is not followed by 0, or `end`.
const unsigned char* findMarker(const unsigned char* begin, const unsigned char* end);
