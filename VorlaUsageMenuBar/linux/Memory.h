// SPDX-License-Identifier: MIT
#pragma once

namespace vorla {

/// Lets threads and large blocks leave no memory behind. Call at the start of main, before any
/// thread starts.
void keepMemorySmall();

/// Gives the pages of freed memory back to the system: after something large has been freed.
void giveBackFreedMemory();

} // namespace vorla
