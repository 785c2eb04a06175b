// SPDX-License-Identifier: MIT
#pragma once

#include "bus/PrivateBus.h"
#include "bus/ScriptedPanel.h"
#include "linux/StatusNotifierItem.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <stdexcept>

namespace vorla {

class RecordingListener final : public StatusItem::Listener {
public:
    void menuWillOpen() override {
        ++openings;
        if (whenOpening) {
            whenOpening();
        }
    }

    void chosen(MenuAction action) override { actions.push_back(action); }

    int openings = 0;
    std::vector<MenuAction> actions;
    std::function<void()> whenOpening;
};

/// An item and a panel, each with a connection of its own to a private bus.
class ItemFixture : public testing::Test {
protected:
    ItemFixture() {
        applicationBus.requestName(applicationName);
        item.setListener(&listener);
        // From here on the panel hears every signal.
        panel.catchUp();
    }

    static MenuLine informational(LineRole role, std::string title) {
        return {.identity = {.role = role}, .title = std::move(title)};
    }

    static MenuLine action(LineRole role, std::string title, MenuAction action) {
        return {
            .identity = {.role = role},
            .title = std::move(title),
            .enabled = true,
            .action = action};
    }

    /// Title "5h 87% · W 62%", four informational lines, the separator and four actions.
    static StatusMenu usualMenu() {
        MenuLine launch =
            action(LineRole::launchAtLogin, "Launch at Login", MenuAction::toggleLaunchAtLogin);
        launch.checked = false;
        MenuLine quit = action(LineRole::quit, "Quit", MenuAction::quit);
        quit.keyEquivalent = "q";
        return {
            .title = "5h 87% · W 62%",
            .figures = {87, 62},
            .lines = {
                informational(LineRole::plan, "Parlo Plus"),
                informational(LineRole::fiveHourRemaining, "5-hour: 87% remaining"),
                informational(LineRole::fiveHourReset, "Resets in 3h 5m"),
                informational(LineRole::weeklyRemaining, "Weekly: 62% remaining"),
                {.identity = {.role = LineRole::separator}, .title = ""},
                action(LineRole::refresh, "Refresh", MenuAction::refresh),
                action(LineRole::openDashboard, "Open Dashboard", MenuAction::openDashboard),
                launch,
                quit,
            }};
    }

    static MenuLine& lineOf(StatusMenu& menu, LineRole role) {
        for (auto& line : menu.lines) {
            if (line.identity.role == role) {
                return line;
            }
        }
        throw std::logic_error("no line of that role");
    }

    static void erase(StatusMenu& menu, LineRole role) {
        std::erase_if(menu.lines, [&](const MenuLine& line) { return line.identity.role == role; });
    }

    /// Puts `line` where it belongs.
    static void insert(StatusMenu& menu, const MenuLine& line) {
        const auto place = std::ranges::find_if(menu.lines, [&](const MenuLine& other) {
            return standsAbove(line.identity, other.identity);
        });
        menu.lines.insert(place, line);
    }

    /// A menu with a line that no layout has held so far.
    static StatusMenu menuWithNewLine() {
        auto menu = usualMenu();
        insert(menu, informational(LineRole::pressure, "Pressure Check · calm"));
        return menu;
    }

    static std::int32_t idOf(LineRole role) { return lineId({.role = role}); }

    static std::vector<std::string> names(const std::vector<ReceivedSignal>& signals) {
        std::vector<std::string> result;
        for (const auto& signal : signals) {
            result.push_back(signal.name);
        }
        return result;
    }

    /// Shows a menu and drops what was sent for it.
    void showQuietly(const StatusMenu& menu) {
        item.show(menu);
        panel.newSignals();
    }

    /// Properties of a line as a panel that reads the layout gets them.
    std::optional<bus::Dictionary> propertiesOf(LineRole role) {
        for (const auto& [id, properties, children] : panel.lines()) {
            if (id == idOf(role)) {
                return properties;
            }
        }
        return std::nullopt;
    }

    PrivateBus daemon;
    ManualLoop loop;
    bus::Bus applicationBus = bus::Bus::open(loop.real(), daemon.address());
    StatusNotifierItem item{applicationBus, loop, "/usr/share/icons/of-the-program.svg"};
    RecordingListener listener;
    ScriptedPanel panel{loop, daemon.address()};
};

} // namespace vorla
