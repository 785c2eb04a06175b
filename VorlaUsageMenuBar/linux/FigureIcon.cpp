// SPDX-License-Identifier: MIT
#include "linux/FigureIcon.h"

#include "linux/Plate.h"

#include <array>
#include <cassert>
#include <string>
#include <string_view>

namespace vorla {
namespace {

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
    {64, 6, {digits26, 0}, {narrow20, 0}, {title30, 0}, {narrow20, 0}},
}};

constexpr double cornerShare = 0.19;

/// Centres `text` between the left and right edges, and in the `height` rows from `top` on.
void drawCentred(Pixmap& pixmap, std::u32string_view text, const Face& face, int top, int height) {
    const int left = (pixmap.width - textWidth(text, face)) / 2;
    drawText(pixmap, text, face, left, top + (height - face.glyphs.height) / 2);
}

void drawFigure(
    Pixmap& pixmap, std::int64_t figure, const Face& face, const Face& hundred, int top,
    int height) {
    assert(figure >= 0 && figure <= 100);
    const std::string digits = std::to_string(figure);
    const std::u32string text(digits.begin(), digits.end());
    drawCentred(pixmap, text, figure == 100 ? hundred : face, top, height);
}

Pixmap figureIcon(const Layout& layout, std::span<const std::int64_t> figures) {
    Pixmap pixmap = plate(layout.size, layout.size, layout.size * cornerShare);
    if (figures.empty()) {
        drawCentred(pixmap, U"?", layout.single, 0, layout.size);
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
