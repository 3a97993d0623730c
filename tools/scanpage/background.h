// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Paper of one brightness.
#pragma once

#include "pix.h"

// Evens out shading and the colour of the paper: the background of each small tile becomes nearly white, and what is on
// it is scaled with it. An image of less than a few tiles stays as it is.
PixPtr flattened(PixPtr pix);

void flatten(KVIMG& page);
