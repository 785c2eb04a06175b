// SPDX-License-Identifier: MIT
#include "linux/IconKind.h"

#include <gtest/gtest.h>

#include <vector>

namespace vorla {
namespace {

TEST(IconKind, isWhatThePanelsAtHandMakeTheBestOf) {
    struct Case {
        std::set<std::string> panels;
        IconKind expected;
    };

    const std::vector<Case> cases = {
        {{}, IconKind::figures},
        {{""}, IconKind::figures},
        {{"gnome-shell"}, IconKind::gauge},
        {{"notification-ar"}, IconKind::gauge},
        {{"ayatana-indicat"}, IconKind::file},
        {{"waybar"}, IconKind::figuresAndTitle},
        {{"xapp-sn-watcher"}, IconKind::figuresAndTitle},
        {{"panel-6-systray"}, IconKind::figures},
        {{"kded5", "plasmashell"}, IconKind::figures},
        {{"lxqt-panel"}, IconKind::figures},
        {{"swaybar"}, IconKind::figures},
        {{"anything"}, IconKind::figures},
        // Nearly one that is known.
        {{"gnome-shell\n"}, IconKind::figures},
        {{"gnome-shell\nx"}, IconKind::figures},
        {{"\nwaybar"}, IconKind::figures},
        {{"Waybar"}, IconKind::figures},
        {{"gnome-shell-cal"}, IconKind::figures},
        // Several that need the same, and several that do not.
        {{"gnome-shell", "notification-ar"}, IconKind::gauge},
        {{"waybar", "xapp-sn-watcher"}, IconKind::figuresAndTitle},
        {{"waybar", "panel-6-systray"}, IconKind::figures},
        {{"gnome-shell", "waybar"}, IconKind::figures},
        {{"kded5", "waybar"}, IconKind::figures},
        {{"ayatana-indicat", "notification-ar"}, IconKind::figures},
        {{"", "gnome-shell"}, IconKind::figures},
    };
    for (const auto& [panels, expected] : cases) {
        EXPECT_EQ(iconKind(panels), expected) << testing::PrintToString(panels);
    }
}

} // namespace
} // namespace vorla
