// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>

namespace vorla::bench {

/// A snapshot of about 3 KB in which every line of the menu has something to say. The title is made
/// of `fiveHourRemaining`, 0 to 100 percent; other times and figures stay.
std::string snapshotText(int fiveHourRemaining);

/// The title that goes with it.
std::string titleOf(int fiveHourRemaining);

/// The same snapshot, filled up to exactly `bytes` with a member that nobody reads.
std::string paddedSnapshotText(int fiveHourRemaining, std::size_t bytes);

} // namespace vorla::bench
