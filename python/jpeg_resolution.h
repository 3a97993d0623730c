// The resolution that a JPEG stream states.
#pragma once

#include <cstddef>

#include "page.h"

namespace binding {

// In the directions of the page, which may have been turned by its orientation; `otherwise` if none is stated.
Dpi resolutionOf(const unsigned char* stream, size_t size, const KVIMG& page, int otherwise);

}    // namespace binding
