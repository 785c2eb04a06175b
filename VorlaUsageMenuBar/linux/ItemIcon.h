// SPDX-License-Identifier: MIT
#pragma once

#include "linux/IconKind.h"
#include "linux/Pixmap.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vorla {

/// The item's icon as it is published: a name or pixmaps, since panels that find a name look at
/// nothing else.
struct ItemIcon {
    /// The absolute path of a picture, or empty.
    std::string name = {};
    std::vector<Pixmap> pixmaps = {};

    bool operator==(const ItemIcon&) const = default;
};

/// What an icon shows. `figures` are those of the title, each within 0 to 100.
struct IconContents {
    std::span<const std::int64_t> figures;
    std::string_view title;
};

/// `file` is the path for IconKind::file; if it is empty, there is no icon then. Any thread.
ItemIcon itemIcon(IconKind kind, const IconContents& contents, const std::string& file);

} // namespace vorla
