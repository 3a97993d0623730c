// How far around its region a call reads.
#pragma once

#include <string>

#include "rows.h"

// Runs the call, which must succeed.
void succeed(const Row& row, Scene& scene);

// The margins on the left, above, on the right and below, or one number if they are the same.
std::string marginText(const Row& row);
