// SPDX-License-Identifier: MIT
#include "linux/ItemIcon.h"

#include "linux/GlyphAtlas.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <string_view>

namespace vorla {
namespace {

struct Colour {
    std::uint8_t red;
    std::uint8_t green;
    std::uint8_t blue;
};

// As far from black as from white, so that the plate shows on any panel, and just dark enough for
// white text to keep a contrast of 4.5 to 1.
constexpr Colour plateColour{0x2D, 0x72, 0xD2};
constexpr Colour textColour{0xFF, 0xFF, 0xFF};

/// How digits are set.
struct Face {
    const GlyphSet& glyphs;
    /// Pixels added between two cells, or taken away.
    int tracking;
};

/// How the square of one size is filled. "100" has its own faces, as the only figure of three
/// digits.
struct Layout {
    int size;
    /// Free rows between two figures.
    int lineGap;
    Face pair;
    Face pairHundred;
    Face single;
    Face singleHundred;
};

constexpr std::array<Layout, 6> layouts{{
    {16, 2, {digits6, 1}, {narrow6, 0}, {digits7, 1}, {narrow6, 0}},
    {22, 2, {digits8, 0}, {digits8, -1}, {digits10, 0}, {digits8, -1}},
    {24, 2, {digits9, 0}, {digits8, -1}, {digits12, 0}, {digits8, -1}},
    {32, 2, {digits13, 0}, {digits12, -1}, {digits16, 0}, {digits12, -1}},
    {48, 4, {digits19, 0}, {digits16, -1}, {digits24, 0}, {digits16, -1}},
    {64, 6, {digits26, 0}, {narrow20, 0}, {digits30, 0}, {narrow20, 0}},
}};

/// An opaque square but for its rounded corners.
Pixmap plate(int size) {
    constexpr std::array<std::uint8_t, 4> pixel{
        0xFF, plateColour.red, plateColour.green, plateColour.blue};
    std::vector<std::uint8_t> line;
    for (int column = 0; column < size; ++column) {
        line.insert(line.end(), pixel.begin(), pixel.end());
    }
    Pixmap pixmap{size, size, {}};
    pixmap.argb.reserve(line.size() * static_cast<std::size_t>(size));
    for (int row = 0; row < size; ++row) {
        pixmap.argb.insert(pixmap.argb.end(), line.begin(), line.end());
    }

    const double radius = size * 0.19;
    const int last = size - 1;
    for (int row = 0; row < radius; ++row) {
        for (int column = 0; column < radius; ++column) {
            // How far the middle of the pixel is outside the circle, in pixels.
            const double outside = std::hypot(radius - column - 0.5, radius - row - 0.5) - radius;
            const long alpha = std::lround(std::clamp(0.5 - outside, 0.0, 1.0) * 255);
            for (const int y : {row, last - row}) {
                for (const int x : {column, last - column}) {
                    pixmap.argb[static_cast<std::size_t>(y * size + x) * pixel.size()] =
                        static_cast<std::uint8_t>(alpha);
                }
            }
        }
    }
    return pixmap;
}

/// `coverage` of 255 gives the text's colour, 0 leaves the plate's.
void blendText(Pixmap& pixmap, int column, int row, int coverage) {
    const int pixel = row * pixmap.width + column;
    std::uint8_t* channel = &pixmap.argb[static_cast<std::size_t>(pixel) * 4 + 1];
    for (const int text : {textColour.red, textColour.green, textColour.blue}) {
        *channel = static_cast<std::uint8_t>(*channel + (text - *channel) * coverage / 255);
        ++channel;
    }
}

/// The set must have the character.
const Glyph& glyphOf(const GlyphSet& set, char character) {
    const auto code = static_cast<unsigned char>(character);
    const auto found = std::ranges::find(set.glyphs, char32_t{code}, &Glyph::character);
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

void drawGlyph(Pixmap& pixmap, const GlyphSet& set, const Glyph& glyph, int left, int top) {
    for (int row = 0; row < set.height; ++row) {
        for (int column = 0; column < glyph.advance; ++column) {
            // A cell may reach past the edge; its ink does not.
            if (const int coverage = coverageAt(set, glyph, column, row); coverage > 0) {
                blendText(pixmap, left + column, top + row, coverage);
            }
        }
    }
}

/// Centres `text` between the left and right edges, and in the `height` rows from `top` on.
void drawText(Pixmap& pixmap, std::string_view text, const Face& face, int top, int height) {
    int width = -face.tracking;
    for (const char character : text) {
        width += glyphOf(face.glyphs, character).advance + face.tracking;
    }
    int left = (pixmap.width - width) / 2;
    for (const char character : text) {
        const Glyph& glyph = glyphOf(face.glyphs, character);
        drawGlyph(pixmap, face.glyphs, glyph, left, top + (height - face.glyphs.height) / 2);
        left += glyph.advance + face.tracking;
    }
}

void drawFigure(
    Pixmap& pixmap, std::int64_t figure, const Face& face, const Face& hundred, int top,
    int height) {
    assert(figure >= 0 && figure <= 100);
    std::array<char, 3> digits{};
    const char* end = std::to_chars(digits.data(), digits.data() + digits.size(), figure).ptr;
    drawText(pixmap, {digits.data(), end}, figure == 100 ? hundred : face, top, height);
}

Pixmap figureIcon(const Layout& layout, std::span<const std::int64_t> figures) {
    Pixmap pixmap = plate(layout.size);
    if (figures.empty()) {
        drawText(pixmap, "?", layout.single, 0, layout.size);
    } else if (figures.size() == 1) {
        drawFigure(pixmap, figures[0], layout.single, layout.singleHundred, 0, layout.size);
    } else {
        const int lineHeight = layout.pair.glyphs.height;
        const int top = (layout.size - 2 * lineHeight - layout.lineGap) / 2;
        const int secondTop = top + lineHeight + layout.lineGap;
        drawFigure(pixmap, figures[0], layout.pair, layout.pairHundred, top, lineHeight);
        drawFigure(pixmap, figures[1], layout.pair, layout.pairHundred, secondTop, lineHeight);
    }
    return pixmap;
}

} // namespace

std::vector<Pixmap> figureIcons(std::span<const std::int64_t> figures) {
    std::vector<Pixmap> icons;
    icons.reserve(layouts.size());
    for (const Layout& layout : layouts) {
        icons.push_back(figureIcon(layout, figures));
    }
    return icons;
}

} // namespace vorla
