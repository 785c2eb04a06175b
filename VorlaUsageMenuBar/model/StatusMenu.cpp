// SPDX-License-Identifier: MIT
#include "model/StatusMenu.h"

#include "model/UsageLines.h"

#include <tuple>

namespace vorla {

namespace {

using Lines = std::vector<MenuLine>;

/// Enough for an everyday menu, so that its lines are not moved while more are added.
constexpr std::size_t usualLineCount = 32;

void addIfPresent(Lines& lines, LineRole role, const std::optional<std::string>& title) {
    if (title) {
        lines.push_back({.identity = {role}, .title = *title});
    }
}

void addStatus(Lines& lines, const MenuState& state) {
    addIfPresent(lines, LineRole::dashboardError, state.dashboardError);
    addIfPresent(lines, LineRole::diagnosticStatus, state.diagnosticStatus);
    addIfPresent(lines, LineRole::notificationError, state.notificationError);
    if (state.loginItemStatus == LoginItemStatus::requiresApproval) {
        lines.push_back(
            {.identity = {LineRole::loginItemApproval},
             .title = "Launch at Login needs approval in System Settings"});
    }
    addIfPresent(lines, LineRole::loginItemError, state.loginItemError);
    addIfPresent(lines, LineRole::fennicError, state.fennicError);
}

void addActions(Lines& lines, const MenuState& state) {
    lines.push_back(
        {.identity = {LineRole::refresh},
         .title = state.refreshing ? "Refreshing…" : "Refresh",
         .enabled = !state.refreshing,
         .action = MenuAction::refresh});
    lines.push_back(
        {.identity = {LineRole::openDashboard},
         .title = "Open Dashboard",
         .enabled = true,
         .action = MenuAction::openDashboard});
    lines.push_back(
        {.identity = {LineRole::openFennic},
         .title = "Fennic…",
         .enabled = true,
         .action = MenuAction::openFennic});
    lines.push_back(
        {.identity = {LineRole::launchAtLogin},
         .title = "Launch at Login",
         .enabled = true,
         .checked = state.loginItemStatus == LoginItemStatus::enabled,
         .action = MenuAction::toggleLaunchAtLogin});
    lines.push_back(
        {.identity = {LineRole::quotaNotifications},
         .title = "Quota Notifications",
         .enabled = true,
         .checked = state.quotaNotificationsEnabled,
         .action = MenuAction::toggleQuotaNotifications});
    lines.push_back(
        {.identity = {LineRole::copyDiagnosticSnapshot},
         .title = state.copyingDiagnostic ? "Copying Diagnostic…" : "Copy Diagnostic Snapshot",
         .enabled = !state.copyingDiagnostic,
         .action = MenuAction::copyDiagnosticSnapshot});
    lines.push_back(
        {.identity = {LineRole::quit},
         .title = "Quit",
         .enabled = true,
         .keyEquivalent = "q",
         .action = MenuAction::quit});
}

std::vector<std::int64_t> figuresInTitle(const Usage& usage) {
    std::vector<std::int64_t> figures;
    for (const Usage::TitlePart& part : usage.titleParts()) {
        figures.push_back(part.remainingPercent);
    }
    return figures;
}

/// A bucket's windows stand below that bucket and above the next one.
auto standing(const LineIdentity& identity) {
    const bool isBucketWindow = identity.role == LineRole::bucketWindow;
    return std::tuple(
        isBucketWindow ? LineRole::bucket : identity.role, identity.bucket, isBucketWindow,
        identity.window);
}

} // namespace

bool standsAbove(const LineIdentity& left, const LineIdentity& right) {
    return standing(left) < standing(right);
}

StatusMenu composeMenu(const MenuState& state, double now) {
    StatusMenu menu;
    menu.lines.reserve(usualLineCount);
    if (state.usage) {
        menu.title = state.usage->title();
        menu.figures = figuresInTitle(*state.usage);
        addUsageLines(menu.lines, *state.usage, state.pace, now);
    } else {
        menu.title = titleWithoutFigures;
        addIfPresent(menu.lines, LineRole::error, state.error);
    }
    addStatus(menu.lines, state);
    menu.lines.push_back({.identity = {LineRole::separator}, .title = ""});
    addActions(menu.lines, state);
    return menu;
}

} // namespace vorla
