// SPDX-License-Identifier: MIT
#pragma once

#include "linux/GlyphAtlas.h"
#include "linux/Pixmap.h"

#include <string_view>

namespace vorla {

/// As far from black as from white, so that it shows on any panel, and just dark enough for white
/// text to keep a contrast of 4.5 to 1.
inline constexpr Colour iconColour{0x2D, 0x72, 0xD2};

/// How text is set.
struct Face {
    const GlyphSet& glyphs;
    /// Pixels added between two cells, or taken away.
    int tracking;
};

/// A rectangle of the icon's colour, opaque but for its rounded corners.
Pixmap plate(int width, int height, double cornerRadius);

/// In pixels, side bearings included. The face must have every character.
int textWidth(std::u32string_view text, const Face& face);

/// Writes on a plate, in white. Cells may reach past its edges; their ink must not.
void drawText(Pixmap& plate, std::u32string_view text, const Face& face, int left, int top);

} // namespace vorla
