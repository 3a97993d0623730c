// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Whether there is anything on a page.
#pragma once

#include "grey.h"

// 1: nothing. 0.5: about one letter. 0: much. Specks, thin shadows along the edges, shading and what shines through
// from the other side do not count.
double blankScore(const Grey& grey, int dpi);
