// SPDX-License-Identifier: MIT
#pragma once

#include "model/StatusMenu.h"

#include <vector>

namespace vorla {

/// Adds the lines that tell of one snapshot, in their order. `now` and the precondition are those
/// of composeMenu().
void addUsageLines(
    std::vector<MenuLine>& lines, const Usage& usage, const PaceEstimates& pace, double now);

} // namespace vorla
