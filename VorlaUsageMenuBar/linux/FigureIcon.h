// SPDX-License-Identifier: MIT
#pragma once

#include "linux/Pixmap.h"

#include <cstdint>
#include <span>
#include <vector>

namespace vorla {

/// The icon for panels that show no text: the figures in white on a coloured plate that stands out
/// from light and dark panels alike, as squares of 16, 22, 24, 32, 48 and 64 pixels, so that a
/// panel finds one it need not scale.
///
/// Two figures stand one above the other, a single one is larger, and without any there is a "?".
/// Each lies within 0 to 100; what comes after the second is left out. Any thread.
std::vector<Pixmap> figureIcons(std::span<const std::int64_t> figures);

} // namespace vorla
