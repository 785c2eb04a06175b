// SPDX-License-Identifier: MIT
#include "linux/Plate.h"

#include <algorithm>
#include <cassert>
#include <cstddef>

namespace vorla {

namespace {

constexpr Colour textColour{0xFF, 0xFF, 0xFF};

/// `coverage` of 255 gives the text's colour, 0 leaves the plate's.
void blendText(Pixmap& plate, int column, int row, int coverage) {
    const int pixel = row * plate.width + column;
    std::uint8_t* channel = &plate.argb[static_cast<std::size_t>(pixel) * 4 + 1];
    for (const int text : {textColour.red, textColour.green, textColour.blue}) {
        *channel = static_cast<std::uint8_t>(*channel + (text - *channel) * coverage / 255);
        ++channel;
    }
}

const Glyph& glyphOf(const GlyphSet& set, char32_t character) {
    const auto found = std::ranges::find(set.glyphs, character, &Glyph::character);
    assert(found != set.glyphs.end());
    return *found;
}

/// 0 to 255, of a pixel within the glyph's cell.
int coverageAt(const GlyphSet& set, const Glyph& glyph, int column, int row) {
    const int pixel = row * set.rowLength + glyph.x + column;
    const char level = set.picture[static_cast<std::size_t>(pixel)];
    if (level == '.') {
        return 0;
    }
    return (level <= '9' ? level - '0' : level - 'A' + 10) * 17;
}

void drawGlyph(Pixmap& plate, const GlyphSet& set, const Glyph& glyph, int left, int top) {
    for (int row = 0; row < set.height; ++row) {
        for (int column = 0; column < glyph.advance; ++column) {
            if (const int coverage = coverageAt(set, glyph, column, row); coverage > 0) {
                blendText(plate, left + column, top + row, coverage);
            }
        }
    }
}

} // namespace

Pixmap plate(int width, int height, double cornerRadius) {
    Pixmap pixmap = emptyPixmap(width, height);
    fill(pixmap, {0, 0, width, height, cornerRadius}, iconColour, 0xFF);
    return pixmap;
}

int textWidth(std::u32string_view text, const Face& face) {
    int width = text.empty() ? 0 : -face.tracking;
    for (const char32_t character : text) {
        width += glyphOf(face.glyphs, character).advance + face.tracking;
    }
    return width;
}

void drawText(Pixmap& plate, std::u32string_view text, const Face& face, int left, int top) {
    for (const char32_t character : text) {
        const Glyph& glyph = glyphOf(face.glyphs, character);
        drawGlyph(plate, face.glyphs, glyph, left, top);
        left += glyph.advance + face.tracking;
    }
}

} // namespace vorla
