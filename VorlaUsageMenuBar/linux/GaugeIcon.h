// SPDX-License-Identifier: MIT
#pragma once

#include "linux/Pixmap.h"

#include <cstdint>
#include <span>
#include <vector>

namespace vorla {

/// The icon for panels that show the title as text beside it: an upright bar for each figure, full
/// as far as quota is left, in squares of 16, 22, 24, 32, 48 and 64 pixels. There is no plate: the
/// bars themselves stand out from light and dark panels alike.
///
/// Each figure lies within 0 to 100; what comes after the second is left out. Without any there are
/// two empty bars; the text beside them says that the figures are unknown. Any thread.
std::vector<Pixmap> gaugeIcons(std::span<const std::int64_t> figures);

} // namespace vorla
