// SPDX-License-Identifier: MIT
#include "linux/ItemIcon.h"

#include "linux/FigureIcon.h"
#include "linux/GaugeIcon.h"
#include "linux/TitleIcon.h"

#include <cstdlib>

namespace vorla {

ItemIcon itemIcon(IconKind kind, const IconContents& contents, const std::string& file) {
    switch (kind) {
    case IconKind::gauge:
        return {.pixmaps = gaugeIcons(contents.figures)};
    case IconKind::figures:
        return {.pixmaps = figureIcons(contents.figures)};
    case IconKind::figuresAndTitle: {
        ItemIcon icon{.pixmaps = figureIcons(contents.figures)};
        icon.pixmaps.push_back(titleIcon(contents.title));
        return icon;
    }
    case IconKind::file:
        return {.name = file};
    }
    std::abort();
}

} // namespace vorla
