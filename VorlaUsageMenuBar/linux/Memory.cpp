// SPDX-License-Identifier: MIT
#include "linux/Memory.h"

#include <malloc.h>

namespace vorla {

namespace {

/// The allocator's own starting value. Setting it stops the allocator from raising it to the size
/// of the largest block freed so far, after which such blocks would come from the heap and tear
/// holes into it that cannot be given back.
constexpr int separateBlockBytes = 128 * 1024;

} // namespace

void keepMemorySmall() {
    // Each thread would get a heap of its own, and that heap stays when the thread has gone.
    mallopt(M_ARENA_MAX, 1);
    mallopt(M_MMAP_THRESHOLD, separateBlockBytes);
}

void giveBackFreedMemory() {
    malloc_trim(0);
}

} // namespace vorla
