// SPDX-License-Identifier: MIT
#pragma once

#include "linux/IconKind.h"
#include "linux/Pixmap.h"

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace vorla {

/// What the item's icon shows. `figures` are those of the title, each within 0 to 100.
struct IconContents {
    std::span<const std::int64_t> figures;
    std::string_view title;
};

/// The item's icon as it is published. A file takes the place of pixmaps: panels that find an
/// icon's name look at nothing else. Any thread.
std::vector<Pixmap> iconPixmaps(IconKind kind, const IconContents& contents);

/// Equal for equal pictures, and different for different ones as far as 64 bits can tell.
std::uint64_t fingerprint(std::span<const Pixmap> pixmaps);

} // namespace vorla
