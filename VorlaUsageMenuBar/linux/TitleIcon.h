// SPDX-License-Identifier: MIT
#pragma once

#include "linux/Pixmap.h"

#include <string_view>

namespace vorla {

/// The whole title in white on a coloured plate 48 pixels high, for panels that show an icon as
/// wide as it is.
///
/// It is made for the titles of StatusMenu; any other character shows as "?", and what comes after
/// the 32nd is left out. Equally many digits are equally wide. Any thread.
Pixmap titleIcon(std::string_view title);

} // namespace vorla
