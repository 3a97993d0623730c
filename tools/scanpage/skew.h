// The skew of a page, measured by Leptonica.
#pragma once

#include "page.h"

// False where no text lines can be told. Otherwise the degrees by which the page must be turned counter-clockwise.
bool findSkew(const Bits& bits, double& degrees);
