// SPDX-License-Identifier: MIT
#include "linux/ItemIcon.h"

#include "linux/FigureIcon.h"
#include "linux/GaugeIcon.h"
#include "linux/TitleIcon.h"

#include <cstdlib>

namespace vorla {

std::vector<Pixmap> iconPixmaps(IconKind kind, const IconContents& contents) {
    switch (kind) {
    case IconKind::gauge:
        return gaugeIcons(contents.figures);
    case IconKind::figures:
        return figureIcons(contents.figures);
    case IconKind::figuresAndTitle: {
        auto pixmaps = figureIcons(contents.figures);
        pixmaps.push_back(titleIcon(contents.title));
        return pixmaps;
    }
    case IconKind::file:
        return {};
    }
    std::abort();
}

// FNV-1a, with the constants that its authors chose for 64 bits.
std::uint64_t fingerprint(std::span<const Pixmap> pixmaps) {
    std::uint64_t hash = 0xCBF29CE484222325U;
    const auto add = [&hash](std::uint64_t value) { hash = (hash ^ value) * 0x100000001B3U; };
    for (const Pixmap& pixmap : pixmaps) {
        add(static_cast<std::uint64_t>(pixmap.width));
        add(static_cast<std::uint64_t>(pixmap.height));
        for (const std::uint8_t byte : pixmap.argb) {
            add(byte);
        }
    }
    return hash;
}

} // namespace vorla
