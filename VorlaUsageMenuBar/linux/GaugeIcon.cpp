// SPDX-License-Identifier: MIT
#include "linux/GaugeIcon.h"

#include "linux/Plate.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>

namespace vorla {

namespace {

/// Whole pixels for all edges, so that none is blurred.
struct Layout {
    int size;
    int barHeight;
    int barWidth;
    int barGap;
    int singleWidth;
    double cornerRadius;
};

constexpr std::array<Layout, 6> layouts{{
    {16, 14, 5, 2, 8, 1.5},
    {22, 20, 7, 2, 10, 2},
    {24, 20, 8, 2, 12, 2},
    {32, 28, 11, 2, 14, 3},
    {48, 42, 16, 4, 22, 4},
    {64, 56, 21, 6, 30, 6},
}};

constexpr std::uint8_t filledAlpha = 0xFF;
/// Of what has been used up: still to be seen on black and on white, and about 3 to 1 weaker there
/// than what is left.
constexpr std::uint8_t emptyAlpha = 0x50;

/// Whole rows. Little is never shown as nothing, nor nearly all as all.
int filledRows(std::int64_t figure, int height) {
    assert(figure >= 0 && figure <= 100);
    if (figure == 0 || figure == 100) {
        return figure == 0 ? 0 : height;
    }
    const auto rows = static_cast<int>(std::lround(static_cast<double>(figure) * height / 100));
    return std::clamp(rows, 1, height - 1);
}

void drawBar(Pixmap& pixmap, const RoundedBox& bar, std::int64_t figure) {
    fill(pixmap, bar, iconColour, emptyAlpha);
    fill(pixmap, bar, iconColour, filledAlpha, bar.height - filledRows(figure, bar.height));
}

Pixmap gaugeIcon(const Layout& layout, std::span<const std::int64_t> figures) {
    Pixmap pixmap = emptyPixmap(layout.size, layout.size);
    const int top = (layout.size - layout.barHeight) / 2;
    const auto bar = [&](int left, int width) {
        return RoundedBox{left, top, width, layout.barHeight, layout.cornerRadius};
    };
    if (figures.size() == 1) {
        const int left = (layout.size - layout.singleWidth) / 2;
        drawBar(pixmap, bar(left, layout.singleWidth), figures[0]);
        return pixmap;
    }
    const int left = (layout.size - 2 * layout.barWidth - layout.barGap) / 2;
    const int right = left + layout.barWidth + layout.barGap;
    drawBar(pixmap, bar(left, layout.barWidth), figures.empty() ? 0 : figures[0]);
    drawBar(pixmap, bar(right, layout.barWidth), figures.empty() ? 0 : figures[1]);
    return pixmap;
}

} // namespace

std::vector<Pixmap> gaugeIcons(std::span<const std::int64_t> figures) {
    std::vector<Pixmap> icons;
    icons.reserve(layouts.size());
    for (const Layout& layout : layouts) {
        icons.push_back(gaugeIcon(layout, figures));
    }
    return icons;
}

} // namespace vorla
