// SPDX-License-Identifier: MIT
#pragma once

#include <set>
#include <string>

namespace vorla {

/// What the item's icon has to be, by what the panels make of it.
enum class IconKind {
    /// Beside the title, which the panel shows as text.
    gauge,
    /// The figures in a square, for a panel that shows nothing else.
    figures,
    /// Besides, the whole title, for a panel that takes the largest picture as wide as it is.
    figuresAndTitle,
    /// Beside the title, by a panel that reads icons from files only.
    file,
};

/// By the command names of the processes that own the bus names of panels, as the kernel knows
/// them: cut to 15 bytes. Unknown panels, none at all, and several that need different icons get
/// the figures, which every panel can show.
IconKind iconKind(const std::set<std::string>& panels);

} // namespace vorla
