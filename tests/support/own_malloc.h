// malloc and its kin, operator new included, of the whole program and every library in it. They forward to the C
// library's; what the program wants of them it says in these hooks, which it defines and which must not allocate.
#pragma once

#include <cstddef>

namespace own_malloc {

// Whether the next block may be had. Otherwise the allocation fails as one for want of memory.
bool mayTake();

// Whoever asked for the block relies on what its first `kept` bytes hold: all of a calloc's, a realloc's old ones.
void taken(void* block, size_t kept);

// The block is about to be freed, or moved by a realloc. Never null.
void leaving(void* block);

}    // namespace own_malloc
