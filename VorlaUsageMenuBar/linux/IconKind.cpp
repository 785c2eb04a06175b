// SPDX-License-Identifier: MIT
#include "linux/IconKind.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace vorla {

namespace {

constexpr std::array<std::pair<std::string_view, IconKind>, 5> kinds{{
    {"gnome-shell", IconKind::gauge},
    // The tray of MATE's own panel.
    {"notification-ar", IconKind::gauge},
    // For the indicator applets of MATE and Budgie.
    {"ayatana-indicat", IconKind::file},
    {"waybar", IconKind::figuresAndTitle},
    // For Cinnamon, and whoever else uses its applet.
    {"xapp-sn-watcher", IconKind::figuresAndTitle},
}};

IconKind kindFor(std::string_view panel) {
    const auto* const known =
        std::ranges::find(kinds, panel, [](const auto& kind) { return kind.first; });
    return known == kinds.end() ? IconKind::figures : known->second;
}

} // namespace

IconKind iconKind(const std::set<std::string>& panels) {
    if (panels.empty()) {
        return IconKind::figures;
    }
    const IconKind first = kindFor(*panels.begin());
    const bool allAlike = std::ranges::all_of(
        panels, [&](const std::string& panel) { return kindFor(panel) == first; });
    return allAlike ? first : IconKind::figures;
}

} // namespace vorla
