// A picture of pages before and after, side by side.
#pragma once

#include "page.h"

void writeContactSheet(const std::vector<Report>& reports, const std::string& file);
