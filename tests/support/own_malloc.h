// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

// Replaces malloc and its relatives, including operator new, for the program and every library in it. They forward to
// the C library. The program defines these hooks, which must not allocate.
#pragma once

#include <cstddef>

namespace own_malloc {

// Whether the next allocation may succeed. Otherwise it fails as if out of memory.
bool mayTake();

// The first `kept` bytes of the block have defined contents: all bytes after calloc, the old ones after realloc.
void taken(void* block, size_t kept);

// The block is about to be freed, or moved by a realloc. Never null.
void leaving(void* block);

}    // namespace own_malloc
